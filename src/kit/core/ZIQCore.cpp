#include "kit/core/ZIQCore.h"

#include "kit/core/ZIQExtensionProtocol.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "kit/core/ZIQServiceProtocol.h"

#include <QHash>
#include <QLoggingCategory>

#include <algorithm>
#include <vector>

namespace {

Q_LOGGING_CATEGORY(lcCore, "ziq.kit.core")

struct EventListener
{
    quint64 id;
    QString key;
    QString subKey;
    ZIQNotifyProtocol *object;
};

struct ExtensionProvider
{
    quint64 id;
    QString extensionID;
    ZIQExtensionProtocol *object;
};

// Listeners and providers are called outside the registry's own iteration: each call may
// register, unregister or destroy others, so callers walk a snapshot and re-check each entry.
struct Registry
{
    QHash<QString, ZIQServiceProtocol *> services;
    std::vector<EventListener> listeners;
    std::vector<ExtensionProvider> providers;
    quint64 nextId = 1;

    template<typename Entry> static bool contains(const std::vector<Entry> &entries, quint64 id)
    {
        return std::any_of(entries.begin(), entries.end(), [id](const Entry &e) { return e.id == id; });
    }
};

Registry &registry()
{
    // Never destroyed, so that modules torn down at exit can still unregister.
    static Registry *instance = new Registry;
    return *instance;
}

} // namespace

void ZIQCore::registerService(const QString &serviceName, ZIQServiceProtocol *service)
{
    if (serviceName.isEmpty() || !service)
        return;
    registry().services.insert(serviceName, service);
}

void ZIQCore::unregisterService(const QString &serviceName)
{
    registry().services.remove(serviceName);
}

void ZIQCore::unRegisterServiceByObject(ZIQServiceProtocol *service)
{
    registry().services.removeIf([service](const auto &it) { return it.value() == service; });
}

ZIQServiceProtocol *ZIQCore::getService(const QString &serviceName)
{
    return registry().services.value(serviceName);
}

QVariant ZIQCore::callService(const QString &serviceName, const QString &method, const QVariantMap &param)
{
    ZIQServiceProtocol *service = getService(serviceName);
    if (!service) {
        qCDebug(lcCore) << "callService: no service" << serviceName << "for" << method;
        return {};
    }
    return service->onCall(method, param);
}

void ZIQCore::registerEvent(const QString &key, const QString &subKey, ZIQNotifyProtocol *object)
{
    if (key.isEmpty() || !object)
        return;
    auto &listeners = registry().listeners;
    const bool known = std::any_of(listeners.begin(), listeners.end(),
        [&](const EventListener &l) { return l.object == object && l.key == key && l.subKey == subKey; });
    if (!known)
        listeners.push_back({ registry().nextId++, key, subKey, object });
}

void ZIQCore::unRegisterEventByObject(ZIQNotifyProtocol *object)
{
    std::erase_if(registry().listeners, [object](const EventListener &l) { return l.object == object; });
}

void ZIQCore::notifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param)
{
    std::vector<EventListener> snapshot;
    std::copy_if(registry().listeners.begin(), registry().listeners.end(), std::back_inserter(snapshot),
        [&](const EventListener &l) { return l.key == key && (l.subKey.isEmpty() || l.subKey == subKey); });
    for (const EventListener &listener : snapshot) {
        if (Registry::contains(registry().listeners, listener.id))
            listener.object->onNotifyEvent(key, subKey, object, param);
    }
}

void ZIQCore::registerExtension(const QString &extensionID, ZIQExtensionProtocol *object)
{
    if (extensionID.isEmpty() || !object)
        return;
    auto &providers = registry().providers;
    const bool known = std::any_of(providers.begin(), providers.end(),
        [&](const ExtensionProvider &p) { return p.object == object && p.extensionID == extensionID; });
    if (!known)
        providers.push_back({ registry().nextId++, extensionID, object });
}

void ZIQCore::unRegisterExtension(ZIQExtensionProtocol *object)
{
    std::erase_if(registry().providers, [object](const ExtensionProvider &p) { return p.object == object; });
}

QList<ZIQExtensionInfo> ZIQCore::getExtensionList(const QString &extensionID, const QVariantMap &param)
{
    std::vector<ExtensionProvider> snapshot;
    std::copy_if(registry().providers.begin(), registry().providers.end(), std::back_inserter(snapshot),
        [&](const ExtensionProvider &p) { return p.extensionID == extensionID; });
    QList<ZIQExtensionInfo> items;
    for (const ExtensionProvider &provider : snapshot) {
        if (Registry::contains(registry().providers, provider.id))
            items += provider.object->onGetExtension(extensionID, param);
    }
    std::stable_sort(items.begin(), items.end(),
        [](const ZIQExtensionInfo &a, const ZIQExtensionInfo &b) { return a.weight > b.weight; });
    return items;
}
