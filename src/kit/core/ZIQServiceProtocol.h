// A service registered with the kit core under a name. A service that is destroyed leaves
// the registry.
#pragma once

#include <QVariant>
#include <QVariantMap>

class ZIQServiceProtocol
{
public:
    virtual ~ZIQServiceProtocol();
    virtual QVariant onCall(const QString &method, const QVariantMap &param) = 0;
};
