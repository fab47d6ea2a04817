// The in-process messaging service seen through the backend interface: every call runs on the
// shared MessagingServer at once and answers inside the call. Any number of LocalBackends (one
// per client, or one per server connection) may share one MessagingServer.
#pragma once

#include "sdk/MessagingBackend.h"

#include <QPointer>

class MessagingServer;

class LocalBackend : public MessagingBackend
{
public:
    explicit LocalBackend(MessagingServer *server);
    ~LocalBackend() override;

    MessagingServer *server() const;
    /// The service's current message as `userID` holds it; null when there is none or the
    /// service is gone.
    V2VORMessagePtr currentCopy(const QString &msgID, const QString &userID) const;

    void attach(MessagingSession *session) override;
    void detach(MessagingSession *session) override;
    void login(MessagingSession *session, const QString &userID, const QString &token, Done done) override;
    void logout(MessagingSession *session, Done done) override;
    std::optional<CallError> admit(const QStringList &operations) override;
    QString newMessageID() override;

    void send(MessagingSession *caller, const V2VORMessagePtr &message, const QString &receiver,
              const QString &groupID, const SendRecord &record, Reply<V2VORMessagePtr> reply) override;
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
    void usersInfo(MessagingSession *caller, const QStringList &userIDs, Reply<QList<V2VORUserFullInfo>> reply) override;

    void addUser(MessagingSession *caller, const QString &userID, const QString &nickName, const QString &faceURL,
                 Done done) override;
    void createGroup(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs, Done done) override;
    void setGroupInfo(MessagingSession *caller, const QString &groupID, const QString &groupName,
                      const QString &faceURL, Done done) override;
    void addGroupMember(MessagingSession *caller, const QString &groupID, const QString &userID,
                        const QString &nameCard, Done done) override;
    void setNameCard(MessagingSession *caller, const QString &groupID, const QString &userID, const QString &nameCard,
                     Done done) override;
    void setFriendRemark(MessagingSession *caller, const QString &viewerID, const QString &targetID,
                         const QString &remark, Done done) override;

private:
    /// The service's internals, or null (answering `gone`) when the service was destroyed.
    struct Access;
    QPointer<MessagingServer> m_server;
    QList<MessagingSession *> m_attached;
};
