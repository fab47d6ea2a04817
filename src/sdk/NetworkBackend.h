// The messaging service as a server across the network: every operation becomes a request of
// the JSON protocol (ServiceProtocol.h) on a WebSocket, every reply is read strictly (one that
// cannot be read answers V2VOR_ERR_PROTOCOL_MALFORMED, never a guess), and pushed events reach
// the logged-in session on the main queue.
//
// The connection comes back by itself after a drop (NetworkConnection's back-off). Requests
// that were out when it dropped go out again once the user is proven anew: a resent message
// carries its ID, so the server answers it with the stored message; an extension write that
// did land before the drop comes back as a conflict with our own value, which counts as
// success. Calls made while the connection is down wait for it, at most waitLimit() ms, then
// answer V2VOR_ERR_SERVICE_UNAVAILABLE. After a reconnection (not the first connection) the
// session hears receiveReconnected(), so it can ask for what it missed.
#pragma once

#include "sdk/MessagingBackend.h"
#include "sdk/NetworkConnection.h"
#include "sdk/RequestTable.h"

#include <QUrl>
#include <memory>

class NetworkBackend : public MessagingBackend
{
public:
    /// A client of the server at `url` (ws:// or wss://); nothing connects before login().
    explicit NetworkBackend(const QUrl &url);
    ~NetworkBackend() override;

    NetworkConnection *connection() const;
    V2VORConnectionState connectionState() const;
    /// How long a call waits for a connection (default 30 s of the main queue's clock).
    void setWaitLimit(int ms);

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
    template<typename T, typename Decode>
    void call(const QString &op, const QJsonObject &args, Decode decode, Reply<T> reply);
    void callDone(const QString &op, const QJsonObject &args, Done done);
    void callExtensions(const QString &op, const QString &msgID, const QJsonObject &args, ExtensionDone done,
        const QList<V2VORMessageExtension> &written = {});

    void onOpened();
    void onDropped();
    void onFrame(const QByteArray &bytes);
    void onHello(const ServiceProtocol::ServerFrame &frame);
    void finishLogin(const CallError &error);
    void refuse(const CallError &error);
    void flush();
    void setState(V2VORConnectionState state);
    void deliver(const ServiceProtocol::ServerFrame &event);
    void toSession(std::function<void(MessagingSession *)> call);

    std::unique_ptr<NetworkConnection> m_connection;
    RequestTable m_requests;
    QList<MessagingSession *> m_attached;
    MessagingSession *m_session = nullptr;
    QString m_userID;
    QString m_token;
    Done m_loginDone;
    quint64 m_loginSpell = 0;
    qint64 m_helloID = -1;
    bool m_proven = false;
    bool m_everProven = false;
    V2VORConnectionState m_state = V2VOR_CONNECTION_DISCONNECTED;
};
