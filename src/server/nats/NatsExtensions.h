// The extensions of every message in the "vor_extensions" bucket, one key per message and
// extension key:
//
//   <message ID>.<extension key>    "<first written>\n<value as UTF-8>"
//
// (both IDs as NatsKeyCodec tokens). A key's revision in the bucket IS the extension's version:
// a write names the revision it saw (0: never written) and the store refuses it when the key
// has moved on, so the first writer wins across all servers. A deletion writes a deletion
// marker whose revision is the new version; it checks only that the key is still live.
// "first written" is the revision at which the key's current life began (0 in the record
// that began it), so listings keep the order in which keys were first written.
//
// A write needs the "first written" of the record it replaces. That is remembered per key
// together with the revision it is valid for, learned from this store's own writes and reads
// and from other servers' events; a write naming exactly that revision goes straight to the
// store, whose revision check still decides. Only a write naming another revision (or a new
// key) reads the key first.
//
// The 300 live keys of a message are counted before a key is created. Two servers creating
// different new keys at the same moment both see 299 and both succeed: a message may end
// up a few keys over the limit under such a race, never under it.
#pragma once

#include "sdk/V2VORMessageExtension.h"
#include "sdk/V2VORMessageExtensionResult.h"
#include "server/nats/NatsStore.h"

#include <QHash>
#include <optional>

class NatsExtensions
{
public:
    struct Outcome
    {
        V2VORMessageExtensionResult result;
        /// The key's version after the call (0 when the result says nothing about it).
        quint64 version = 0;
        /// The call changed the key (written, or deleted while live).
        bool changed = false;
        /// Where the key's current life began (0 when not live or unknown).
        quint64 firstWritten = 0;
    };

    explicit NatsExtensions(NatsStore &store);

    /// The live extensions in the order their keys were first written, with their versions.
    QList<V2VORMessageExtension> list(const QString &msgID, QHash<QString, quint64> *versions);
    Outcome set(const QString &msgID, const V2VORMessageExtension &extension, quint64 seenVersion);
    Outcome remove(const QString &msgID, const QString &key);
    /// Takes note of another server's change of a key: live from `firstWritten` at `revision`,
    /// or deleted at `revision` when `firstWritten` is 0.
    void learn(const QString &msgID, const QString &key, quint64 revision, quint64 firstWritten);

private:
    struct Record
    {
        NatsStore::Entry entry;
        quint64 firstWritten = 0;
        QString value;
        bool live() const { return entry.ok() && !entry.deleted; }
    };
    /// What is known of a key at one revision.
    struct Known
    {
        quint64 revision = 0;
        /// 0: not live at that revision.
        quint64 firstWritten = 0;
    };
    Record read(const QByteArray &storeKey);
    /// Writes the value over revision `seen`; nothing when the key has moved on.
    std::optional<Outcome> write(
        const QByteArray &at, const V2VORMessageExtension &extension, quint64 seen, quint64 firstWritten);
    /// Answers that the key moved on, with its latest value and version.
    Outcome conflict(const QByteArray &at, const V2VORMessageExtension &extension);
    void remember(const QByteArray &storeKey, quint64 revision, quint64 firstWritten);
    /// The live key's "first written" when `revision` is the latest known of it.
    std::optional<quint64> liveAt(const QByteArray &storeKey, quint64 revision) const;

    NatsStore &m_store;
    QHash<QByteArray, Known> m_known;
};
