// The service's connection to NATS JetStream: three key/value buckets read and written with
// blocking round trips from the main thread, and core subjects for events. Every write goes
// to the bucket's backing stream with an expectation on the key's last revision, so a write
// made from an outdated view is refused (Conflict) instead of overwriting.
//
// A call that cannot reach NATS throws Unavailable; the backend answers it as the service
// being unavailable.
//
// Messages from subscriptions arrive on libnats threads; the store hands their payloads to
// the main thread and drops those this store published itself (each store stamps its
// publications with its own origin).
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

struct __natsConnection;
struct __jsCtx;
struct __kvStore;

class NatsStore
{
public:
    enum Bucket { Messages, Extensions, Directory };
    enum class Status { Ok, NotFound, Conflict };
    struct Unavailable
    {
        QString reason;
    };
    struct Entry
    {
        Status status = Status::NotFound;
        QByteArray key;
        QByteArray value;
        quint64 revision = 0;
        /// The latest record of the key is a deletion marker.
        bool deleted = false;

        bool ok() const { return status == Status::Ok; }
    };
    /// Runs on the main thread with the payload of one message of a subscription.
    using Handler = std::function<void(const QByteArray &payload)>;

    /// Null with `error` set when NATS cannot be reached or has no JetStream.
    static std::unique_ptr<NatsStore> connect(const QString &url, QString *error);
    ~NatsStore();

    /// The key's live value (NotFound for an absent or deleted key).
    Entry get(Bucket bucket, const QByteArray &key) const;
    /// The key's latest record, deletion markers included (NotFound when never written).
    Entry last(Bucket bucket, const QByteArray &key) const;
    /// Writes `value` if the key's latest revision is `lastRevision` (0: never written).
    Entry update(Bucket bucket, const QByteArray &key, const QByteArray &value, quint64 lastRevision);
    /// Writes `value` whatever the key holds.
    Entry put(Bucket bucket, const QByteArray &key, const QByteArray &value);
    /// Marks the key deleted if its latest revision is `lastRevision`; the marker's revision
    /// comes back.
    Entry erase(Bucket bucket, const QByteArray &key, quint64 lastRevision);
    /// The live entries whose keys are `prefix` plus one more token, in revision order.
    QList<Entry> list(Bucket bucket, const QByteArray &prefix) const;

    /// Publishes an event; false (without throwing) when it could not be sent.
    bool publish(const QByteArray &subject, const QByteArray &payload);
    /// Returns an ID for unsubscribe(); 0 on failure.
    quint64 subscribe(const QByteArray &subject, Handler handler);
    /// Runs on the main thread with the key and value of one write to a bucket.
    using KeyHandler = std::function<void(const QByteArray &key, const QByteArray &value)>;
    /// Hears every write (this store's too) to the keys `prefix` plus one more token, as it
    /// is made; like subscribe(), for unsubscribe().
    quint64 watchWrites(Bucket bucket, const QByteArray &prefix, KeyHandler handler);
    void unsubscribe(quint64 id);

    /// Why the latest failed call failed.
    QString lastError() const;

private:
    struct Subscription;
    quint64 listen(const QByteArray &subject, int keyOffset, KeyHandler handler);
    NatsStore() = default;
    bool open(const QString &url);
    Entry write(Bucket bucket, const QByteArray &key, const QByteArray &value, std::optional<quint64> lastRevision,
        bool marker);
    QByteArray subjectOf(Bucket bucket, const QByteArray &key) const;
    [[noreturn]] void fail(const QString &what) const;
    static void onMessage(__natsConnection *, struct __natsSubscription *, struct __natsMsg *msg, void *closure);

    __natsConnection *m_connection = nullptr;
    __jsCtx *m_js = nullptr;
    __kvStore *m_buckets[3] = {};
    QByteArray m_origin;
    /// Receives payloads on the main thread; outlives every subscription callback.
    std::unique_ptr<QObject> m_relay;
    QHash<quint64, Subscription *> m_subscriptions;
    quint64 m_lastSubscription = 0;
    mutable QString m_lastError;
};
