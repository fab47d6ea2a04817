// A listener of kit-core events. A listener that is destroyed is never called again.
#pragma once

#include <QObject>
#include <QVariantMap>

class ZIQNotifyProtocol
{
public:
    virtual ~ZIQNotifyProtocol();
    virtual void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param) = 0;
};
