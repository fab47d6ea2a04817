#include "server/nats/NatsExtensions.h"

#include "sdk/ExtensionStore.h"
#include "sdk/V2VORErrorCode.h"
#include "server/nats/NatsKeyCodec.h"

#include <algorithm>

namespace {

QByteArray storeKey(const QString &msgID, const QString &key)
{
    return NatsKeyCodec::encode(msgID) + '.' + NatsKeyCodec::encode(key);
}

NatsExtensions::Outcome outcome(
    int code, const QString &info, const QString &key, const QString &value, quint64 version = 0, bool changed = false)
{
    return { { code, info, { key, value } }, version, changed };
}

/// Beyond this many remembered keys the memory starts afresh; writes then read once more.
constexpr qsizetype kMaxRemembered = 200000;

QString keyInvalid()
{
    return QStringLiteral("extension key must be 1 to %1 bytes").arg(V2VORLimits::kMaxExtensionKeyBytes);
}

} // namespace

NatsExtensions::NatsExtensions(NatsStore &store)
    : m_store(store)
{
}

NatsExtensions::Record NatsExtensions::read(const QByteArray &key)
{
    Record record { m_store.last(NatsStore::Extensions, key) };
    if (record.live()) {
        const qsizetype split = record.entry.value.indexOf('\n');
        record.firstWritten = record.entry.value.left(split).toULongLong();
        if (record.firstWritten == 0)
            record.firstWritten = record.entry.revision;
        record.value = QString::fromUtf8(record.entry.value.mid(split + 1));
    }
    if (record.entry.ok())
        remember(key, record.entry.revision, record.firstWritten);
    return record;
}

void NatsExtensions::remember(const QByteArray &storeKey, quint64 revision, quint64 firstWritten)
{
    Known &known = m_known[storeKey];
    // Events may arrive after this store has seen a later revision.
    if (revision < known.revision)
        return;
    known = { revision, firstWritten };
    if (m_known.size() > kMaxRemembered)
        m_known.clear();
}

std::optional<quint64> NatsExtensions::liveAt(const QByteArray &storeKey, quint64 revision) const
{
    const auto known = m_known.constFind(storeKey);
    if (revision == 0 || known == m_known.constEnd() || known->revision != revision || known->firstWritten == 0)
        return std::nullopt;
    return known->firstWritten;
}

void NatsExtensions::learn(const QString &msgID, const QString &key, quint64 revision, quint64 firstWritten)
{
    remember(storeKey(msgID, key), revision, firstWritten);
}

QList<V2VORMessageExtension> NatsExtensions::list(const QString &msgID, QHash<QString, quint64> *versions)
{
    struct Live
    {
        quint64 firstWritten;
        V2VORMessageExtension extension;
    };
    QList<Live> live;
    for (const NatsStore::Entry &entry : m_store.list(NatsStore::Extensions, NatsKeyCodec::encode(msgID))) {
        const std::optional<QString> key = NatsKeyCodec::decode(entry.key.mid(entry.key.lastIndexOf('.') + 1));
        const qsizetype split = entry.value.indexOf('\n');
        if (!key || split < 0)
            continue;
        const quint64 firstWritten = entry.value.left(split).toULongLong();
        live.append(
            { firstWritten ? firstWritten : entry.revision, { *key, QString::fromUtf8(entry.value.mid(split + 1)) } });
        remember(entry.key, entry.revision, live.constLast().firstWritten);
        versions->insert(*key, entry.revision);
    }
    std::sort(live.begin(), live.end(), [](const Live &a, const Live &b) { return a.firstWritten < b.firstWritten; });
    QList<V2VORMessageExtension> extensions;
    for (const Live &one : std::as_const(live))
        extensions.append(one.extension);
    return extensions;
}

NatsExtensions::Outcome NatsExtensions::set(const QString &msgID, const V2VORMessageExtension &extension, quint64 seen)
{
    const QString &key = extension.extensionKey;
    const QString &value = extension.extensionValue;
    if (ExtensionStore::checkKey(key) != V2VOR_SUCC)
        return outcome(V2VOR_ERR_EXTENSION_KEY_INVALID, keyInvalid(), key, value);
    if (value.toUtf8().size() > V2VORLimits::kMaxExtensionValueBytes)
        return outcome(V2VOR_ERR_EXTENSION_VALUE_TOO_LONG,
            QStringLiteral("extension value is longer than %1 bytes").arg(V2VORLimits::kMaxExtensionValueBytes), key,
            value);

    const QByteArray at = storeKey(msgID, key);
    if (const std::optional<quint64> firstWritten = liveAt(at, seen)) {
        if (const std::optional<Outcome> written = write(at, extension, seen, *firstWritten))
            return *written;
        return conflict(at, extension);
    }
    Record current = read(at);
    if (seen == current.entry.revision && !current.live()
        && m_store.list(NatsStore::Extensions, NatsKeyCodec::encode(msgID)).size()
            >= V2VORLimits::kMaxExtensionKeysPerMessage)
        return outcome(V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED,
            QStringLiteral("message already holds %1 extension keys").arg(V2VORLimits::kMaxExtensionKeysPerMessage),
            key, value);
    if (seen == current.entry.revision) {
        if (const std::optional<Outcome> written = write(at, extension, seen, current.firstWritten))
            return *written;
    }
    return conflict(at, extension);
}

std::optional<NatsExtensions::Outcome> NatsExtensions::write(
    const QByteArray &at, const V2VORMessageExtension &extension, quint64 seen, quint64 firstWritten)
{
    // "0": this record begins the key's life; its own revision is where it began.
    const QByteArray record = QByteArray::number(firstWritten) + '\n' + extension.extensionValue.toUtf8();
    const NatsStore::Entry written = m_store.update(NatsStore::Extensions, at, record, seen);
    if (!written.ok())
        return std::nullopt;
    const quint64 began = firstWritten ? firstWritten : written.revision;
    remember(at, written.revision, began);
    Outcome done = outcome(V2VOR_SUCC, {}, extension.extensionKey, extension.extensionValue, written.revision, true);
    done.firstWritten = began;
    return done;
}

NatsExtensions::Outcome NatsExtensions::conflict(const QByteArray &at, const V2VORMessageExtension &extension)
{
    const Record current = read(at);
    return outcome(V2VOR_ERR_EXTENSION_VERSION_CONFLICT,
        QStringLiteral("extension was changed by someone else; the latest value is attached"), extension.extensionKey,
        current.value, current.entry.revision);
}

NatsExtensions::Outcome NatsExtensions::remove(const QString &msgID, const QString &key)
{
    if (ExtensionStore::checkKey(key) != V2VOR_SUCC)
        return outcome(V2VOR_ERR_EXTENSION_KEY_INVALID, keyInvalid(), key, {});
    const QByteArray at = storeKey(msgID, key);
    // Deletions never conflict: when someone else wrote first, delete what is there now.
    for (;;) {
        const Record current = read(at);
        if (!current.live())
            return outcome(V2VOR_SUCC, {}, key, {});
        const NatsStore::Entry marker = m_store.erase(NatsStore::Extensions, at, current.entry.revision);
        if (marker.ok()) {
            remember(at, marker.revision, 0);
            return outcome(V2VOR_SUCC, {}, key, current.value, marker.revision, true);
        }
    }
}
