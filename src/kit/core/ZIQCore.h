// The kit core: a registry of named services, an event bus keyed by (key, sub-key), and
// extension points. Modules talk to each other only through it.
#pragma once

#include "kit/core/ZIQExtensionInfo.h"

#include <QList>
#include <QVariant>

class QObject;
class ZIQExtensionProtocol;
class ZIQNotifyProtocol;
class ZIQServiceProtocol;

class ZIQCore
{
public:
    static void registerService(const QString &serviceName, ZIQServiceProtocol *service);
    static void unregisterService(const QString &serviceName);
    /// Removes the service under whatever name it was registered.
    static void unRegisterServiceByObject(ZIQServiceProtocol *service);
    /// The service registered under the name, or null.
    static ZIQServiceProtocol *getService(const QString &serviceName);
    /// Calls a method of a registered service; an invalid QVariant when there is no such service.
    static QVariant callService(const QString &serviceName, const QString &method, const QVariantMap &param);

    /// An empty sub-key listens to every sub-key of the key. Registering twice changes nothing.
    static void registerEvent(const QString &key, const QString &subKey, ZIQNotifyProtocol *object);
    static void unRegisterEventByObject(ZIQNotifyProtocol *object);
    /// Tells every listener at once, in the order they registered. A listener unregistered or
    /// destroyed by an earlier one is not called.
    static void notifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param);

    static void registerExtension(const QString &extensionID, ZIQExtensionProtocol *object);
    static void unRegisterExtension(ZIQExtensionProtocol *object);
    /// Every item offered for the extension point, heaviest first; equal weights keep the
    /// order their providers registered in.
    static QList<ZIQExtensionInfo> getExtensionList(const QString &extensionID, const QVariantMap &param);
};
