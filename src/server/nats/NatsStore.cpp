#include "server/nats/NatsStore.h"

#include <QUuid>

#include <nats/nats.h>

namespace {

const char *const kBucketNames[] = { "vor_messages", "vor_extensions", "vor_directory" };
const char *const kOriginHeader = "Vor-Origin";
constexpr int64_t kTimeoutMs = 3000;

QString statusText(natsStatus status)
{
    const char *detail = nats_GetLastError(nullptr);
    return QString::fromUtf8(detail && *detail ? detail : natsStatus_GetText(status));
}

NatsStore::Entry entryOf(natsMsg *msg, const QByteArray &key)
{
    NatsStore::Entry entry;
    entry.status = NatsStore::Status::Ok;
    entry.key = key;
    entry.revision = natsMsg_GetSequence(msg);
    entry.value = QByteArray(natsMsg_GetData(msg), natsMsg_GetDataLength(msg));
    const char *operation = nullptr;
    if (natsMsgHeader_Get(msg, "KV-Operation", &operation) == NATS_OK && operation)
        entry.deleted = qstrcmp(operation, "DEL") == 0 || qstrcmp(operation, "PURGE") == 0;
    return entry;
}

} // namespace

struct NatsStore::Subscription
{
    natsSubscription *sub = nullptr;
    QObject *relay = nullptr;
    QByteArray origin;
    /// Where the key starts in a bucket write's subject; -1 for plain subjects.
    int keyOffset = -1;
    KeyHandler handler;
};

std::unique_ptr<NatsStore> NatsStore::connect(const QString &url, QString *error)
{
    std::unique_ptr<NatsStore> store(new NatsStore);
    if (store->open(url))
        return store;
    if (error)
        *error = store->lastError();
    return nullptr;
}

bool NatsStore::open(const QString &url)
{
    m_origin = QUuid::createUuid().toByteArray(QUuid::Id128);
    m_relay = std::make_unique<QObject>();
    natsOptions *options = nullptr;
    natsStatus s = natsOptions_Create(&options);
    const QByteArray address = url.toUtf8();
    if (s == NATS_OK)
        s = natsOptions_SetURL(options, address.constData());
    if (s == NATS_OK)
        s = natsOptions_SetTimeout(options, kTimeoutMs);
    if (s == NATS_OK)
        s = natsOptions_SetMaxReconnect(options, -1);
    if (s == NATS_OK)
        s = natsOptions_SetReconnectWait(options, 100);
    if (s == NATS_OK)
        s = natsConnection_Connect(&m_connection, options);
    natsOptions_Destroy(options);
    if (s != NATS_OK) {
        m_lastError = QStringLiteral("cannot reach NATS at %1: %2").arg(url, statusText(s));
        return false;
    }
    jsOptions jsOpts;
    jsOptions_Init(&jsOpts);
    jsOpts.Wait = kTimeoutMs;
    jsAccountInfo *account = nullptr;
    jsErrCode code = jsErrCode(0);
    s = natsConnection_JetStream(&m_js, m_connection, &jsOpts);
    if (s == NATS_OK)
        s = js_GetAccountInfo(&account, m_js, nullptr, &code);
    jsAccountInfo_Destroy(account);
    if (s != NATS_OK) {
        m_lastError = QStringLiteral("NATS at %1 has no JetStream: %2").arg(url, statusText(s));
        return false;
    }
    for (int bucket = Messages; bucket <= Directory; ++bucket) {
        if (js_KeyValue(&m_buckets[bucket], m_js, kBucketNames[bucket]) == NATS_OK)
            continue;
        kvConfig config;
        kvConfig_Init(&config);
        config.Bucket = kBucketNames[bucket];
        config.History = 1;
        config.StorageType = js_FileStorage;
        if ((s = js_CreateKeyValue(&m_buckets[bucket], m_js, &config)) != NATS_OK) {
            m_lastError = QStringLiteral("cannot create bucket %1: %2").arg(kBucketNames[bucket], statusText(s));
            return false;
        }
    }
    return true;
}

NatsStore::~NatsStore()
{
    for (Subscription *subscription : std::as_const(m_subscriptions)) {
        // Waiting for the drain guarantees no callback still runs when the relay goes.
        if (natsSubscription_Drain(subscription->sub) == NATS_OK)
            natsSubscription_WaitForDrainCompletion(subscription->sub, kTimeoutMs);
        natsSubscription_Destroy(subscription->sub);
        delete subscription;
    }
    for (kvStore *bucket : m_buckets)
        kvStore_Destroy(bucket);
    jsCtx_Destroy(m_js);
    if (m_connection) {
        natsConnection_Close(m_connection);
        natsConnection_Destroy(m_connection);
    }
}

QString NatsStore::lastError() const
{
    return m_lastError;
}

void NatsStore::fail(const QString &what) const
{
    m_lastError = what;
    throw Unavailable { what };
}

QByteArray NatsStore::subjectOf(Bucket bucket, const QByteArray &key) const
{
    return QByteArrayLiteral("$KV.") + kBucketNames[bucket] + '.' + key;
}

NatsStore::Entry NatsStore::get(Bucket bucket, const QByteArray &key) const
{
    kvEntry *found = nullptr;
    const natsStatus s = kvStore_Get(&found, m_buckets[bucket], key.constData());
    if (s == NATS_NOT_FOUND)
        return { Status::NotFound, key };
    if (s != NATS_OK)
        fail(statusText(s));
    Entry entry { Status::Ok, key, QByteArray(static_cast<const char *>(kvEntry_Value(found)), kvEntry_ValueLen(found)),
        kvEntry_Revision(found) };
    kvEntry_Destroy(found);
    return entry;
}

NatsStore::Entry NatsStore::last(Bucket bucket, const QByteArray &key) const
{
    natsMsg *msg = nullptr;
    jsErrCode code = jsErrCode(0);
    const QByteArray stream = QByteArrayLiteral("KV_") + kBucketNames[bucket];
    const natsStatus s
        = js_GetLastMsg(&msg, m_js, stream.constData(), subjectOf(bucket, key).constData(), nullptr, &code);
    if (s == NATS_NOT_FOUND || code == JSNoMessageFoundErr)
        return { Status::NotFound, key };
    if (s != NATS_OK)
        fail(statusText(s));
    Entry entry = entryOf(msg, key);
    natsMsg_Destroy(msg);
    return entry;
}

NatsStore::Entry NatsStore::write(
    Bucket bucket, const QByteArray &key, const QByteArray &value, std::optional<quint64> lastRevision, bool marker)
{
    natsMsg *msg = nullptr;
    natsStatus s
        = natsMsg_Create(&msg, subjectOf(bucket, key).constData(), nullptr, value.constData(), int(value.size()));
    if (s == NATS_OK && marker)
        s = natsMsgHeader_Set(msg, "KV-Operation", "DEL");
    if (s != NATS_OK) {
        natsMsg_Destroy(msg);
        fail(statusText(s));
    }
    jsPubOptions options;
    jsPubOptions_Init(&options);
    if (lastRevision) {
        options.ExpectLastSubjectSeq = *lastRevision;
        options.ExpectNoMessage = *lastRevision == 0;
    }
    jsPubAck *ack = nullptr;
    jsErrCode code = jsErrCode(0);
    s = js_PublishMsg(&ack, m_js, msg, &options, &code);
    natsMsg_Destroy(msg);
    Entry entry { Status::Ok, key, value, ack ? ack->Sequence : 0, marker };
    jsPubAck_Destroy(ack);
    if (code == JSStreamWrongLastSequenceErr)
        return { Status::Conflict, key };
    if (s != NATS_OK)
        fail(statusText(s));
    return entry;
}

NatsStore::Entry NatsStore::update(Bucket bucket, const QByteArray &key, const QByteArray &value, quint64 lastRevision)
{
    return write(bucket, key, value, lastRevision, false);
}

NatsStore::Entry NatsStore::put(Bucket bucket, const QByteArray &key, const QByteArray &value)
{
    return write(bucket, key, value, std::nullopt, false);
}

NatsStore::Entry NatsStore::erase(Bucket bucket, const QByteArray &key, quint64 lastRevision)
{
    return write(bucket, key, {}, lastRevision, true);
}

QList<NatsStore::Entry> NatsStore::list(Bucket bucket, const QByteArray &prefix) const
{
    kvWatchOptions options;
    kvWatchOptions_Init(&options);
    options.IgnoreDeletes = true;
    kvWatcher *watcher = nullptr;
    const QByteArray filter = prefix + ".*";
    natsStatus s = kvStore_Watch(&watcher, m_buckets[bucket], filter.constData(), &options);
    QList<Entry> entries;
    while (s == NATS_OK) {
        kvEntry *found = nullptr;
        s = kvWatcher_Next(&found, watcher, kTimeoutMs);
        if (s != NATS_OK || !found)
            break;
        entries.append({ Status::Ok, QByteArray(kvEntry_Key(found)),
            QByteArray(static_cast<const char *>(kvEntry_Value(found)), kvEntry_ValueLen(found)),
            kvEntry_Revision(found) });
        kvEntry_Destroy(found);
    }
    kvWatcher_Destroy(watcher);
    if (s != NATS_OK)
        fail(statusText(s));
    return entries;
}

bool NatsStore::publish(const QByteArray &subject, const QByteArray &payload)
{
    natsMsg *msg = nullptr;
    natsStatus s = natsMsg_Create(&msg, subject.constData(), nullptr, payload.constData(), int(payload.size()));
    if (s == NATS_OK)
        s = natsMsgHeader_Set(msg, kOriginHeader, m_origin.constData());
    if (s == NATS_OK)
        s = natsConnection_PublishMsg(m_connection, msg);
    natsMsg_Destroy(msg);
    if (s != NATS_OK)
        m_lastError = statusText(s);
    return s == NATS_OK;
}

void NatsStore::onMessage(natsConnection *, natsSubscription *, natsMsg *msg, void *closure)
{
    const auto *subscription = static_cast<const Subscription *>(closure);
    const char *origin = nullptr;
    natsMsgHeader_Get(msg, kOriginHeader, &origin);
    if (!origin || subscription->origin != origin) {
        const QByteArray payload(natsMsg_GetData(msg), natsMsg_GetDataLength(msg));
        const QByteArray key = subscription->keyOffset < 0
            ? QByteArray()
            : QByteArray(natsMsg_GetSubject(msg) + subscription->keyOffset);
        const KeyHandler handler = subscription->handler;
        QMetaObject::invokeMethod(
            subscription->relay, [handler, key, payload] { handler(key, payload); }, Qt::QueuedConnection);
    }
    natsMsg_Destroy(msg);
}

quint64 NatsStore::subscribe(const QByteArray &subject, Handler handler)
{
    return listen(subject, -1, [handler](const QByteArray &, const QByteArray &payload) { handler(payload); });
}

quint64 NatsStore::watchWrites(Bucket bucket, const QByteArray &prefix, KeyHandler handler)
{
    const QByteArray subject = subjectOf(bucket, prefix) + ".*";
    return listen(subject, int(subjectOf(bucket, {}).size()), std::move(handler));
}

quint64 NatsStore::listen(const QByteArray &subject, int keyOffset, KeyHandler handler)
{
    auto *subscription = new Subscription { nullptr, m_relay.get(), m_origin, keyOffset, std::move(handler) };
    const natsStatus s
        = natsConnection_Subscribe(&subscription->sub, m_connection, subject.constData(), onMessage, subscription);
    // The subscription must be live on the server before the caller relies on hearing it.
    if (s != NATS_OK || natsConnection_Flush(m_connection) != NATS_OK) {
        m_lastError = statusText(s);
        natsSubscription_Destroy(subscription->sub);
        delete subscription;
        return 0;
    }
    m_subscriptions.insert(++m_lastSubscription, subscription);
    return m_lastSubscription;
}

void NatsStore::unsubscribe(quint64 id)
{
    Subscription *subscription = m_subscriptions.take(id);
    if (!subscription)
        return;
    if (natsSubscription_Drain(subscription->sub) == NATS_OK)
        natsSubscription_WaitForDrainCompletion(subscription->sub, kTimeoutMs);
    natsSubscription_Destroy(subscription->sub);
    delete subscription;
}
