// The messaging service with its state in NATS JetStream: any number of server processes,
// each with its own NatsBackend on the same NATS, form one service with the rules of the
// in-process one (same codes, same events, same order of events before callbacks).
//
// Storage (all buckets are key/value buckets on file storage, history 1):
//   vor_messages    m.<conversation>.<seq>  {"conversation", "message": protocol JSON}
//                   id.<message ID>         {"conversation", "seq"}
//                   A send claims the next sequence by creating m.<conversation>.<seq> only
//                   if absent (a taken one moves on to seq + 1), so sequences are dense and
//                   every server agrees on them. A modification is an update checked
//                   against the revision it read: a stale one answers 8006 with the current
//                   message. Two servers taking the same new message ID at the same moment
//                   would both store it; the index names the first.
//   vor_extensions  see NatsExtensions.h (revisions are extension versions)
//   vor_directory   see NatsDirectory.h (users, conversations, read marks, order keys)
// Conversation keys are the group ID, or "c2c:<a>|<b>" for a one-to-one chat; every ID in a
// key is a NatsKeyCodec token.
//
// Events: each member's own copy of an event is published on "vor.user.<user>"; a server
// subscribes to the subjects of the users logged in on its sessions (counted per user), so
// joining a group needs no new subscription. A server hands its own changes to its own
// sessions directly, before the callback, and ignores the echo of its publications.
//
// Threading: every operation runs on the main thread as a few blocking round trips and
// answers inside the call; subscription messages reach the main thread through a queued
// call. What never changes (where a message lives, whether it takes extensions, a group's
// members once seen) is cached in memory.
#pragma once

#include "sdk/MessagingBackend.h"

#include <QHash>
#include <QJsonObject>
#include <memory>

class NatsDirectory;
class NatsExtensions;
class NatsStore;

class NatsBackend : public MessagingBackend
{
public:
    /// Null with `error` set when NATS cannot be reached or runs without JetStream.
    static std::unique_ptr<NatsBackend> create(const QString &natsURL, QString *error);
    ~NatsBackend() override;

    void attach(MessagingSession *session) override;
    void detach(MessagingSession *session) override;
    void login(MessagingSession *session, const QString &userID, const QString &token, Done done) override;
    void logout(MessagingSession *session, Done done) override;
    QString newMessageID() override;

    void send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver, const QString &groupID,
        const SendRecord &record, Reply<V2VORMessagePtr> reply) override;
    void history(MessagingSession *caller, const QString &groupID, int count, quint64 beforeSeq,
        Reply<QList<V2VORMessagePtr>> reply) override;
    void directHistory(MessagingSession *caller, const QString &peerID, int count, quint64 beforeSeq,
        Reply<QList<V2VORMessagePtr>> reply) override;
    void modify(MessagingSession *caller, const V2VORMessage &message, Reply<V2VORMessagePtr> reply) override;
    void messageAt(MessagingSession *caller, const QString &groupID, quint64 seq, Reply<QString> reply) override;

    void getExtensions(MessagingSession *caller, const QString &msgID, ExtensionDone done) override;
    void setExtensions(MessagingSession *caller, const QString &msgID, const QList<V2VORMessageExtension> &extensions,
        const QHash<QString, quint64> &seenVersions, ExtensionDone done) override;
    void deleteExtensions(
        MessagingSession *caller, const QString &msgID, const QStringList &keys, ExtensionDone done) override;

    void conversationList(MessagingSession *caller, Reply<QList<V2VORConversation>> reply) override;
    void groupsInfo(MessagingSession *caller, const QStringList &groupIDs, Reply<QList<V2VORGroupInfo>> reply) override;
    void markGroupRead(MessagingSession *caller, const QString &groupID, Done done) override;
    void markDirectRead(MessagingSession *caller, const QString &peerID, Done done) override;
    void members(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs,
        Reply<QList<V2VORGroupMemberFullInfo>> reply) override;
    void usersInfo(
        MessagingSession *caller, const QStringList &userIDs, Reply<QList<V2VORUserFullInfo>> reply) override;

    void addUser(MessagingSession *caller, const QString &userID, const QString &nickName, const QString &faceURL,
        Done done) override;
    void createGroup(
        MessagingSession *caller, const QString &groupID, const QStringList &memberIDs, Done done) override;
    void setGroupInfo(MessagingSession *caller, const QString &groupID, const QString &groupName,
        const QString &faceURL, Done done) override;
    void addGroupMember(MessagingSession *caller, const QString &groupID, const QString &userID,
        const QString &nameCard, Done done) override;
    void setNameCard(MessagingSession *caller, const QString &groupID, const QString &userID, const QString &nameCard,
        Done done) override;
    void setFriendRemark(MessagingSession *caller, const QString &viewerID, const QString &targetID,
        const QString &remark, Done done) override;

private:
    struct Stored;
    struct Home
    {
        QString conversation;
        quint64 seq = 0;
        bool supportsExtensions = false;
    };
    using EventFor = std::function<QJsonObject(const QString &viewer)>;

    explicit NatsBackend(std::unique_ptr<NatsStore> store);

    CallError checkConversation(const QString &userID, const QString &groupID);
    CallError checkExtensionAccess(const QString &userID, const QString &msgID, Home *home);
    std::optional<Home> locate(const QString &msgID);
    std::optional<Stored> load(const QString &conversation, quint64 seq) const;
    V2VORMessagePtr copyFor(const Stored &stored, const QString &conversation, const QString &viewer);
    QStringList membersOf(const QString &conversation);
    quint64 topSeq(const QString &conversation);
    quint64 claimSeq(const QString &conversation, V2VORMessage &message);
    ServiceReply<V2VORMessagePtr> storeNew(MessagingSession *caller, const QString &sender,
        const V2VORMessagePtr &message, const QString &receiver, const QString &groupID);
    ServiceReply<QList<V2VORMessagePtr>> historyOf(
        const QString &conversation, const QString &userID, int count, quint64 beforeSeq);
    V2VORConversation conversationAs(const QString &conversation, const QString &viewer);
    void markRead(const QString &conversation, const QString &userID);

    /// Hands each viewer's event to their sessions here (but `except`) and to other servers.
    void emitEvent(const QStringList &viewers, const EventFor &eventFor, MessagingSession *except = nullptr);
    void deliver(const QString &viewer, const QJsonObject &event, MessagingSession *except);
    void onRemoteEvent(const QByteArray &payload);
    void publishConversation(const QString &conversation, const QStringList &viewers);
    void publishExtensionChange(const QString &msgID, const QString &conversation,
        const QList<V2VORMessageExtension> &changed, const QStringList &deleted,
        const QHash<QString, quint64> &versions);
    void listen(MessagingSession *session, const QString &userID);
    void stopListening(MessagingSession *session);

    std::unique_ptr<NatsStore> m_store;
    std::unique_ptr<NatsDirectory> m_directory;
    std::unique_ptr<NatsExtensions> m_extensions;
    QList<MessagingSession *> m_attached;
    /// session -> the user whose events it hears
    QHash<MessagingSession *, QString> m_listening;
    struct UserSubscription
    {
        quint64 id = 0;
        int sessions = 0;
    };
    QHash<QString, UserSubscription> m_subscriptions;
    QHash<QString, Home> m_homes;
    QHash<QString, quint64> m_knownTop;
    /// "conversation/seq" -> sender, for unread counts.
    QHash<QString, QString> m_senders;
};
