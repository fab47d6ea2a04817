// Event fan-out between the servers of one service. A change of a group is published once, on
// "vor.conv.<group>"; a server subscribes to the groups its logged-in users belong to (counted
// per user), from their list of conversations at login and from every membership write it
// hears afterwards. A one-to-one chat has two members, so its changes go to each of them on
// "vor.user.<user>", which a server hears for each user logged in on it; that subject also
// carries what only one user is told (their read mark moved).
//
// Each server makes its own members' copies of a change (isSelf, the peer of a one-to-one
// chat, the conversation as the viewer sees it) only for users with sessions on it, hands its
// own changes to its own sessions directly, before the caller's callback, and ignores the
// echo of its publications.
//
// A member added on another server hears that server's membership write before this server
// subscribes to the group; a change made in between does not reach them live. Right after
// subscribing, each such member is therefore sent the conversation as it now stands (latest
// message, unread count), so what happened in between shows in their list. Who hears a change
// is decided where it arrives: a member who joins while a change is on its way hears it too.
#pragma once

#include "sdk/MessagingSession.h"
#include "server/nats/NatsChange.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <functional>

class NatsDirectory;
class NatsStore;

class NatsEvents
{
public:
    using Observer = std::function<void(const NatsChange &change)>;
    using ConversationViews
        = std::function<QHash<QString, V2VORConversation>(const QString &conversation, const QList<QString> &viewers)>;

    NatsEvents(NatsStore &store, NatsDirectory &directory);
    ~NatsEvents();

    void attach(MessagingSession *session);
    void detach(MessagingSession *session);
    /// From now on `session` hears the changes of the conversations of `userID`, from every server.
    void listen(MessagingSession *session, const QString &userID);
    void stopListening(MessagingSession *session);

    /// Hands the change to the sessions of its conversation's members here (but `except`)
    /// and to the other servers.
    void emitChange(const NatsChange &change, MessagingSession *except = nullptr);
    /// Hands the change to `viewer`'s sessions only, here and on the other servers.
    void emitChangeTo(const QString &viewer, const NatsChange &change);
    /// Sees every change from another server before the sessions here get it.
    void setRemoteObserver(Observer observer);
    /// Makes the viewers' copies of a conversation for ConversationChanged.
    void setConversationViews(ConversationViews views);

private:
    struct Group
    {
        quint64 subscription = 0;
        QSet<QString> users;
    };

    void join(const QString &group, const QString &userID);
    void leave(const QString &group, const QString &userID);
    void onMembersLearned(const QString &conversation, const QStringList &added);
    /// Hands the change to the sessions here of each of `viewers` but `except`.
    void deliver(const QList<QString> &viewers, const NatsChange &change, MessagingSession *except);
    void deliver(const QString &viewer, const NatsChange &change, MessagingSession *except,
        const std::optional<V2VORConversation> &view);
    void deliverToMembers(const NatsChange &change, MessagingSession *except);
    void onRemoteChange(const QByteArray &payload, const QString &viewer);

    NatsStore &m_store;
    NatsDirectory &m_directory;
    /// user -> their logged-in sessions here
    QHash<QString, QList<MessagingSession *>> m_sessionsOf;
    /// session -> the user whose changes it hears
    QHash<MessagingSession *, QString> m_listening;
    /// user -> subscription to their own subject
    QHash<QString, quint64> m_userSubscriptions;
    QHash<QString, Group> m_groups;
    /// user -> the groups heard for them
    QHash<QString, QStringList> m_groupsOf;
    Observer m_remoteObserver;
    ConversationViews m_conversationViews;
};
