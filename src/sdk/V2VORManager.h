// The messaging client library: one client per logged-in user, talking to an in-process
// MessagingServer that several clients may share (so tests can play a whole group).
// Every callback and event is delivered later on the main queue, never inside the call.
//
// Limits (see V2VORErrorCode.h for the codes):
// - at most 20 extensions or keys per call (whole call refused);
// - extension keys of 1 to 100 bytes, values up to 1024 bytes, at most 300 live keys per
//   message (refused per key, in the key's result);
// - extensions only on sent messages created with extension support, and only by members of
//   the message's group (whole call refused);
// - a message body of at most 12 KB.
// The service versions every extension key; the client remembers the version it last saw
// (from reads, its own writes, conflict results and change events). A write of a key that
// changed since (or that exists but was never seen by this client) is refused for that key
// with V2VOR_ERR_EXTENSION_VERSION_CONFLICT and the latest value. Deletions never conflict.
//
// A client of a server across the network (NetworkBackend) keeps its connection by itself.
// Calls made while it is down wait for it (at most 30 s, then V2VOR_ERR_SERVICE_UNAVAILABLE);
// calls in flight when it dropped go out again (a message keeps its ID, so a resend is stored
// once). After a reconnection the client catches up, so it loses no change made while it was
// offline: listeners hear every message newer than the newest one it held of each
// conversation as a new message (never one it already held), every held message whose
// version changed as a modification, every extension key of a held message that changed as
// a change and every key it knew live that is gone as a deletion, and finally every
// conversation as a conversation change. Messages it never held are not fetched back.
//
// The events of a change are queued for every member's client before the answer to the call
// that made it: once a callback has arrived, every member's client (the caller's included)
// has heard of the change, unless the service holds events.
#pragma once

#include "sdk/V2VORCallbacks.h"
#include "sdk/V2VORConnectionState.h"
#include "sdk/V2VORConversation.h"
#include "sdk/V2VORGroupInfo.h"
#include "sdk/V2VORGroupMemberFullInfo.h"
#include "sdk/V2VORMessage.h"
#include "sdk/V2VORMessageExtension.h"
#include "sdk/V2VORMessageExtensionResult.h"
#include "sdk/V2VOROfflinePushInfo.h"
#include "sdk/V2VORUserFullInfo.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>

class MessagingBackend;
class MessagingServer;
class V2VORAdvancedMsgListener;
class V2VORConversationListener;

enum V2VORLoginStatus : int {
    V2VOR_STATUS_LOGINED = 1,
    V2VOR_STATUS_LOGINING = 2,
    V2VOR_STATUS_LOGOUT = 3,
};

enum V2VORMessagePriority : int {
    V2VOR_PRIORITY_DEFAULT = 0,
    V2VOR_PRIORITY_HIGH = 1,
    V2VOR_PRIORITY_NORMAL = 2,
    V2VOR_PRIORITY_LOW = 3,
};

class V2VORManager : public QObject
{
    Q_OBJECT

public:
    using MessageListSucc = V2VORValueSucc<QList<V2VORMessagePtr>>;
    using ExtensionListSucc = V2VORValueSucc<QList<V2VORMessageExtension>>;
    using ExtensionResultSucc = V2VORValueSucc<QList<V2VORMessageExtensionResult>>;
    using MemberListSucc = V2VORValueSucc<QList<V2VORGroupMemberFullInfo>>;
    using UserListSucc = V2VORValueSucc<QList<V2VORUserFullInfo>>;
    using ModifyCompletion = std::function<void(int code, const QString &desc, const V2VORMessagePtr &message)>;
    using ExperimentalSucc = V2VORValueSucc<QVariant>;
    using ConversationListSucc = V2VORValueSucc<QList<V2VORConversation>>;
    using GroupListSucc = V2VORValueSucc<QList<V2VORGroupInfo>>;

    /// A client of the in-process service.
    explicit V2VORManager(MessagingServer *server, QObject *parent = nullptr);
    /// A client of any service: in-process, or a server across the network.
    explicit V2VORManager(std::unique_ptr<MessagingBackend> backend, QObject *parent = nullptr);
    ~V2VORManager() override;

    /// The client of the current process (the one the kit and the plug-in use).
    static V2VORManager *sharedInstance();
    static void setSharedInstance(V2VORManager *manager);

    /// The in-process service; null for a client of a server across the network.
    MessagingServer *server() const;
    MessagingBackend *backend() const;
    /// The proof of identity the next login presents to a service that asks for one.
    void setLoginToken(const QString &token);

    // Login.
    void login(const QString &userID, V2VORSucc succ, V2VORFail fail);
    void logout(V2VORSucc succ, V2VORFail fail);
    int getLoginStatus() const;
    QString getLoginUser() const;
    /// Always connected for the in-process service.
    V2VORConnectionState connectionState() const;

    // Messages.
    /// A custom message carrying `data`; null when `data` is empty.
    V2VORMessagePtr createCustomMessage(const QByteArray &data);
    V2VORMessagePtr createTextMessage(const QString &text);
    /// Sends to `groupID` (or to `receiver` one-to-one). On success the message object gets
    /// its msgID, seq, sender, timestamp and status 2; on failure status 3. Returns the msgID
    /// the message will carry.
    QString sendMessage(const V2VORMessagePtr &message, const QString &receiver, const QString &groupID,
                        int priority, bool onlineUserOnly, const std::optional<V2VOROfflinePushInfo> &offlinePushInfo,
                        V2VORProgress progress, V2VORSucc succ, V2VORFail fail);
    /// Looks messages up in this client's own local history only (sent, received or fetched).
    void findMessages(const QStringList &msgIDs, MessageListSucc succ, V2VORFail fail);
    /// Fetches up to `count` messages of a group from the service, newest first, older than
    /// `lastMsg` when given, and keeps them in the local history.
    void getGroupHistoryMessageList(const QString &groupID, int count, const V2VORMessagePtr &lastMsg,
                                    MessageListSucc succ, V2VORFail fail);
    /// The one-to-one history with `userID`, as getGroupHistoryMessageList; empty while the two
    /// have exchanged nothing.
    void getC2CHistoryMessageList(
        const QString &userID, int count, const V2VORMessagePtr &lastMsg, MessageListSucc succ, V2VORFail fail);
    /// Replaces the message's custom data on the service. A copy older than the service's
    /// answers V2VOR_ERR_MESSAGE_MODIFY_CONFLICT with the current message.
    void modifyMessage(const V2VORMessagePtr &message, ModifyCompletion completion);

    // Extensions, by message object.
    void setMessageExtensions(const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensions,
                              ExtensionResultSucc succ, V2VORFail fail);
    void getMessageExtensions(const V2VORMessagePtr &message, ExtensionListSucc succ, V2VORFail fail);
    void deleteMessageExtensions(const V2VORMessagePtr &message, const QStringList &keys, ExtensionResultSucc succ,
                                 V2VORFail fail);

    /// Named calls outside the stable API:
    /// - "getMessageExtensionsBySequence": param QVariantMap {"groupID", "messageSequence"};
    ///   result QList<V2VORMessageExtension>.
    /// - "setMessageExtensionsBySequence": param adds "messageExtensionList"
    ///   (QList<V2VORMessageExtension>); result QList<V2VORMessageExtensionResult>.
    /// - "writeLog": param the text; it goes to this client's log (writtenLogs()).
    void callExperimentalAPI(const QString &api, const QVariant &param, ExperimentalSucc succ, V2VORFail fail);

    // Users and groups.
    void getUsersInfo(const QStringList &userIDs, UserListSucc succ, V2VORFail fail);
    void getGroupMembersInfo(const QString &groupID, const QStringList &memberList, MemberListSucc succ,
                             V2VORFail fail);

    /// Profiles of the groups the user belongs to; other IDs are left out.
    void getGroupsInfo(const QStringList &groupIDs, GroupListSucc succ, V2VORFail fail);

    // Conversations.
    /// The user's groups and one-to-one chats, latest activity first.
    void getConversationList(ConversationListSucc succ, V2VORFail fail);
    /// Marks everything received so far read; the user's clients hear the conversation change.
    void markGroupMessageAsRead(const QString &groupID, V2VORSucc succ, V2VORFail fail);
    void markC2CMessageAsRead(const QString &userID, V2VORSucc succ, V2VORFail fail);

    // Listeners.
    void addAdvancedMsgListener(V2VORAdvancedMsgListener *listener);
    void removeAdvancedMsgListener(V2VORAdvancedMsgListener *listener);
    void addConversationListener(V2VORConversationListener *listener);
    void removeConversationListener(V2VORConversationListener *listener);

    /// Lines written with "writeLog", oldest first.
    QStringList writtenLogs() const;

Q_SIGNALS:
    /// `state` is a V2VORConnectionState.
    void connectionStateChanged(int state);

private:
    friend class V2VORAdvancedMsgListener;
    friend class V2VORConversationListener;
    class Private;
    std::unique_ptr<Private> d;
};
