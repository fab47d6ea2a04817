// The messages of every conversation in the "vor_messages" bucket:
//
//   m.<conversation>.<seq>  {"conversation", "message": protocol JSON}
//   id.<message ID>         {"conversation", "seq"}
//
// A send claims the next sequence by creating m.<conversation>.<seq> only if absent (a taken
// one moves on to seq + 1), so sequences are dense and every server agrees on them. A
// modification is an update checked against the revision it read: a stale one answers 8006
// with the current message. Two servers taking the same new message ID at the same moment
// would both store it; the index names the first.
//
// What never changes (where a message lives, whether it takes extensions, who sent it) is
// remembered in memory.
#pragma once

#include "sdk/MessagingSession.h"
#include "sdk/ServiceReply.h"

#include <QHash>
#include <optional>

class NatsDirectory;
class NatsEvents;
class NatsStore;

class NatsMessages
{
public:
    /// Where a message lives.
    struct Home
    {
        QString conversation;
        quint64 seq = 0;
        bool supportsExtensions = false;
    };
    struct Stored
    {
        V2VORMessagePtr message;
        quint64 revision = 0;
    };

    NatsMessages(NatsStore &store, NatsDirectory &directory, NatsEvents &events);

    std::optional<Home> locate(const QString &msgID);
    std::optional<Stored> load(const QString &conversation, quint64 seq) const;
    /// The stored message as `viewer` holds it.
    V2VORMessagePtr copyFor(const Stored &stored, const QString &conversation, const QString &viewer);
    /// The latest sequence of the conversation (0: no message yet).
    quint64 topSeq(const QString &conversation);
    QString senderAt(const QString &conversation, quint64 seq);

    /// Stores a new message (or answers the stored one when its sender sends it again) and
    /// tells the members; `conversation` receives where it went.
    ServiceReply<V2VORMessagePtr> send(MessagingSession *caller, const V2VORMessagePtr &message,
        const QString &receiver, const QString &groupID, QString *conversation);
    ServiceReply<QList<V2VORMessagePtr>> history(
        const QString &conversation, const QString &userID, int count, quint64 beforeSeq);
    ServiceReply<V2VORMessagePtr> modify(const QString &userID, const V2VORMessage &message);

private:
    CallError checkSend(
        const QString &sender, const V2VORMessagePtr &message, const QString &receiver, const QString &groupID) const;
    QString conversationFor(const QString &sender, const QString &receiver, const QString &groupID);
    quint64 claimSeq(const QString &conversation, V2VORMessage &message);
    ServiceReply<V2VORMessagePtr> storeNew(MessagingSession *caller, const QString &sender,
        const V2VORMessagePtr &message, const QString &groupID, const QString &conversation);
    bool storeModified(const Home &home, const V2VORMessage &message, Stored &stored);

    NatsStore &m_store;
    NatsDirectory &m_directory;
    NatsEvents &m_events;
    QHash<QString, Home> m_homes;
    QHash<QString, quint64> m_knownTop;
    /// "conversation/seq" -> sender, for unread counts.
    QHash<QString, QString> m_senders;
};
