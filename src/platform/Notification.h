// One posted notification of the process-wide notification centre.
#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

namespace platform {

struct Notification
{
    QString name;
    QObject *object = nullptr;
    QVariantMap userInfo;
};

} // namespace platform
