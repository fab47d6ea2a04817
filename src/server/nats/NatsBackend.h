// The messaging service with its state in NATS JetStream: any number of server processes,
// each with its own NatsBackend on the same NATS, form one service with the rules of the
// in-process one (same codes, same events, same order of events before callbacks).
//
// Storage (key/value buckets on file storage, history 1): messages in "vor_messages" (see
// NatsMessages.h), extensions in "vor_extensions" (NatsExtensions.h; revisions are extension
// versions), users, conversations and read marks in "vor_directory" (NatsDirectory.h).
// Conversation keys are the group ID, or "c2c:<a>|<b>" for a one-to-one chat; every ID in a
// key is a NatsKeyCodec token. Events travel as NatsEvents.h describes.
//
// Threading: every operation runs on the main thread as a few blocking round trips and
// answers inside the call; subscription messages reach the main thread through a queued call.
#pragma once

#include "sdk/MessagingBackend.h"

#include <memory>

struct NatsChange;
class NatsConversations;
class NatsDirectory;
class NatsEvents;
class NatsExtensions;
class NatsMessages;
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
    explicit NatsBackend(std::unique_ptr<NatsStore> store);

    /// Finds the conversation of a message whose extensions `userID` may read and write.
    CallError checkExtensionAccess(const QString &userID, const QString &msgID, QString *conversation);
    /// Tells the members; other servers also learn where each written key's life began.
    void publishExtensionChange(const QString &msgID, const QString &conversation,
        const QList<V2VORMessageExtension> &changed, const QStringList &deleted,
        const QHash<QString, quint64> &versions, const QHash<QString, quint64> &firstWritten = {});
    /// Remembers what another server's extension change says of each key.
    void learnExtensions(const NatsChange &change);

    std::unique_ptr<NatsStore> m_store;
    std::unique_ptr<NatsDirectory> m_directory;
    std::unique_ptr<NatsEvents> m_events;
    std::unique_ptr<NatsExtensions> m_extensions;
    std::unique_ptr<NatsMessages> m_messages;
    std::unique_ptr<NatsConversations> m_conversations;
};
