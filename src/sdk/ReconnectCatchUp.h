// What a client does after its connection came back: the service sent nothing while the
// client was away, so it asks for everything the client holds and hands the session exactly
// the changes it missed, as if it had heard them live:
// - messages newer than the newest one held of each conversation, as new messages (IDs
//   already held are skipped);
// - held messages whose version changed, as modifications;
// - extension keys of held messages with a version newer than the one last seen, as changes,
//   and keys last seen live that are gone, as deletions;
// - finally every conversation of the user, as a conversation change.
// The object deletes itself when done; destroying it earlier cancels the rest.
#pragma once

#include "sdk/MessagingBackend.h"

#include <QObject>
#include <QSet>

class ReconnectCatchUp : public QObject
{
    Q_OBJECT

public:
    /// What the client held when the connection came back.
    struct Held
    {
        QHash<QString, V2VORMessagePtr> messages;
        /// msgID -> key -> version last seen
        QHash<QString, QHash<QString, quint64>> versions;
        /// msgID -> keys last seen live
        QHash<QString, QSet<QString>> liveKeys;
        /// Whether the client holds a message by now (its own send that went out again
        /// after the drop comes back in a history page too).
        std::function<bool(const QString &msgID)> holdsNow;
    };

    /// History is read in pages of this many messages.
    static constexpr int kPageSize = 20;

    ReconnectCatchUp(MessagingBackend *backend, MessagingSession *session, Held held, QObject *parent);
    void start();

private:
    struct Conversation
    {
        bool isGroup = true;
        QString id;
        quint64 newestSeq = 0;
        quint64 oldestSeq = 0;
        QList<V2VORMessagePtr> missed;
        QList<V2VORMessagePtr> modified;
    };

    void fetchPage(const std::shared_ptr<Conversation> &conversation, quint64 beforeSeq);
    void readPage(const std::shared_ptr<Conversation> &conversation, const QList<V2VORMessagePtr> &page);
    void deliverMessages(const Conversation &conversation);
    void fetchExtensions(const QString &msgID);
    void readExtensions(const QString &msgID, const ExtensionReply &reply);
    /// One fetch fewer outstanding; after the last, the conversation list.
    void settle();
    void fetchConversations();
    template<typename F> auto guarded(F callback);

    MessagingBackend *m_backend;
    MessagingSession *m_session;
    Held m_held;
    int m_outstanding = 0;
};
