#include "sdk/ExtensionStore.h"

#include "sdk/V2VORErrorCode.h"

namespace {

V2VORMessageExtensionResult result(int code, const QString &info, const QString &key, const QString &value = {})
{
    return { code, info, { key, value } };
}

} // namespace

QList<V2VORMessageExtension> ExtensionStore::list() const
{
    QList<V2VORMessageExtension> extensions;
    extensions.reserve(m_order.size());
    for (const QString &key : m_order)
        extensions.append({ key, m_values.value(key) });
    return extensions;
}

QHash<QString, quint64> ExtensionStore::versions() const
{
    return m_versions;
}

quint64 ExtensionStore::version(const QString &key) const
{
    return m_versions.value(key);
}

bool ExtensionStore::contains(const QString &key) const
{
    return m_values.contains(key);
}

int ExtensionStore::size() const
{
    return m_order.size();
}

int ExtensionStore::checkKey(const QString &key)
{
    const qsizetype bytes = key.toUtf8().size();
    if (bytes < 1 || bytes > V2VORLimits::kMaxExtensionKeyBytes)
        return V2VOR_ERR_EXTENSION_KEY_INVALID;
    return V2VOR_SUCC;
}

V2VORMessageExtensionResult ExtensionStore::set(const V2VORMessageExtension &extension, quint64 seenVersion)
{
    const QString &key = extension.extensionKey;
    if (checkKey(key) != V2VOR_SUCC)
        return result(V2VOR_ERR_EXTENSION_KEY_INVALID,
            QStringLiteral("extension key must be 1 to %1 bytes").arg(V2VORLimits::kMaxExtensionKeyBytes), key,
            extension.extensionValue);
    if (extension.extensionValue.toUtf8().size() > V2VORLimits::kMaxExtensionValueBytes)
        return result(V2VOR_ERR_EXTENSION_VALUE_TOO_LONG,
            QStringLiteral("extension value is longer than %1 bytes").arg(V2VORLimits::kMaxExtensionValueBytes), key,
            extension.extensionValue);
    if (seenVersion != version(key))
        return result(V2VOR_ERR_EXTENSION_VERSION_CONFLICT,
            QStringLiteral("extension was changed by someone else; the latest value is attached"), key,
            m_values.value(key));
    if (!contains(key) && size() >= V2VORLimits::kMaxExtensionKeysPerMessage)
        return result(V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED,
            QStringLiteral("message already holds %1 extension keys").arg(V2VORLimits::kMaxExtensionKeysPerMessage),
            key, extension.extensionValue);

    if (!contains(key))
        m_order.append(key);
    m_values.insert(key, extension.extensionValue);
    ++m_versions[key];
    return result(V2VOR_SUCC, {}, key, extension.extensionValue);
}

V2VORMessageExtensionResult ExtensionStore::remove(const QString &key)
{
    if (checkKey(key) != V2VOR_SUCC)
        return result(V2VOR_ERR_EXTENSION_KEY_INVALID,
            QStringLiteral("extension key must be 1 to %1 bytes").arg(V2VORLimits::kMaxExtensionKeyBytes), key);
    if (!contains(key))
        return result(V2VOR_SUCC, {}, key);
    const QString value = m_values.take(key);
    m_order.removeOne(key);
    ++m_versions[key];
    return result(V2VOR_SUCC, {}, key, value);
}
