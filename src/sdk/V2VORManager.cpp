#include "sdk/V2VORManager.h"

#include "sdk/LocalBackend.h"
#include "sdk/V2VORManagerPrivate.h"

namespace {

QPointer<V2VORManager> &sharedClient()
{
    static QPointer<V2VORManager> client;
    return client;
}

CallError invalid(const QString &desc)
{
    return { V2VOR_ERR_INVALID_PARAMETERS, desc };
}

/// Takes over what the service assigned when it accepted `source`.
void adoptSentState(V2VORMessage &target, const V2VORMessage &source)
{
    target.setMsgID(source.msgID());
    target.setSeq(source.seq());
    target.setGroupID(source.groupID());
    target.setUserID(source.userID());
    target.setSender(source.sender());
    target.setNickName(source.nickName());
    target.setFaceURL(source.faceURL());
    target.setTimestamp(source.timestamp());
    target.setIsSelf(source.isSelf());
    target.setStatus(source.status());
    target.setMessageVersion(source.messageVersion());
}

} // namespace

V2VORManager::V2VORManager(MessagingServer *server, QObject *parent)
    : V2VORManager(std::make_unique<LocalBackend>(server), parent)
{
}

V2VORManager::V2VORManager(std::unique_ptr<MessagingBackend> backend, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this, std::move(backend)))
{
    Private::allClients().append(this);
}

V2VORManager::~V2VORManager()
{
    Private::allClients().removeOne(this);
}

V2VORManager *V2VORManager::sharedInstance()
{
    return sharedClient();
}

void V2VORManager::setSharedInstance(V2VORManager *manager)
{
    sharedClient() = manager;
}

MessagingServer *V2VORManager::server() const
{
    auto *local = dynamic_cast<LocalBackend *>(d->backend.get());
    return local ? local->server() : nullptr;
}

MessagingBackend *V2VORManager::backend() const
{
    return d->backend.get();
}

void V2VORManager::setLoginToken(const QString &token)
{
    d->token = token;
}

void V2VORManager::login(const QString &userID, V2VORSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("login"), false))
        return d->postFailure(fail, *refused);
    if (userID.isEmpty())
        return d->postFailure(fail, invalid(QStringLiteral("login needs a user ID")));
    if (userID != d->userID) {
        d->history.clear();
        d->versions.clear();
        d->liveKeys.clear();
    }
    d->userID = userID;
    d->status = V2VOR_STATUS_LOGINING;
    d->backend->login(d.get(), userID, d->token, d->guarded([this, userID, succ, fail](const CallError &error) {
        if (error) {
            if (d->userID == userID) {
                d->userID.clear();
                d->status = V2VOR_STATUS_LOGOUT;
            }
            return d->postFailure(fail, error);
        }
        d->learnOwnProfile([this, succ] {
            d->post([this, succ] {
                if (d->status == V2VOR_STATUS_LOGINING)
                    d->status = V2VOR_STATUS_LOGINED;
                if (succ)
                    succ();
            });
        });
    }));
}

void V2VORManager::logout(V2VORSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("logout")))
        return d->postFailure(fail, *refused);
    d->userID.clear();
    d->status = V2VOR_STATUS_LOGOUT;
    d->backend->logout(d.get(), d->guarded([this, succ](const CallError &) {
        d->post([succ] {
            if (succ)
                succ();
        });
    }));
}

V2VORConnectionState V2VORManager::connectionState() const
{
    return d->connectionState;
}

int V2VORManager::getLoginStatus() const
{
    return d->status;
}

QString V2VORManager::getLoginUser() const
{
    return d->userID;
}

V2VORMessagePtr V2VORManager::createCustomMessage(const QByteArray &data)
{
    if (data.isEmpty())
        return nullptr;
    auto message = std::make_shared<V2VORMessage>();
    message->setElemType(V2VOR_ELEM_TYPE_CUSTOM);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { data, {}, {} }));
    return message;
}

V2VORMessagePtr V2VORManager::createTextMessage(const QString &text)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setElemType(V2VOR_ELEM_TYPE_TEXT);
    message->setText(text);
    return message;
}

QString V2VORManager::sendMessage(const V2VORMessagePtr &message, const QString &receiver, const QString &groupID,
    int priority, bool onlineUserOnly, const std::optional<V2VOROfflinePushInfo> &offlinePushInfo,
    V2VORProgress progress, V2VORSucc succ, V2VORFail fail)
{
    // A message sent before (a resend after a failure) gets a fresh ID.
    if (message && (message->msgID().isEmpty() || message->status() != V2VOR_MSG_STATUS_SENDING))
        message->setMsgID(d->backend->newMessageID());
    if (message)
        message->setStatus(V2VOR_MSG_STATUS_SENDING);
    const QString msgID = message ? message->msgID() : QString();

    auto failed = [this, message, fail](const CallError &error) {
        d->post([message, fail, error] {
            if (message)
                message->setStatus(V2VOR_MSG_STATUS_SEND_FAIL);
            if (fail)
                fail(error.code, error.desc);
        });
    };
    if (auto refused = d->admit(QStringLiteral("sendMessage"))) {
        failed(*refused);
        return msgID;
    }
    // Who sends it is known at once: a row drawn before the send completes (a line naming its
    // sender) reads the sender from the message.
    if (message && message->sender().isEmpty()) {
        message->setSender(d->userID);
        if (d->ownProfile.userID == d->userID) {
            message->setNickName(d->ownProfile.nickName);
            message->setFaceURL(d->ownProfile.faceURL);
        }
    }
    const SendRecord record { msgID, priority, onlineUserOnly, offlinePushInfo };
    d->backend->send(d.get(), message, receiver, groupID, record,
        d->guarded([this, message, progress, succ, failed](const ServiceReply<V2VORMessagePtr> &reply) {
            if (reply.error)
                return failed(reply.error);
            d->remember(reply.value);
            message->setNickName(reply.value->nickName());
            message->setFaceURL(reply.value->faceURL());
            d->post([message, sent = reply.value, progress, succ] {
                adoptSentState(*message, *sent);
                if (progress)
                    progress(100);
                if (succ)
                    succ();
            });
        }));
    return msgID;
}

void V2VORManager::findMessages(const QStringList &msgIDs, MessageListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("findMessages")))
        return d->postFailure(fail, *refused);
    QList<V2VORMessagePtr> found;
    for (const QString &msgID : msgIDs) {
        if (const V2VORMessagePtr local = d->history.value(msgID))
            found.append(local->clone());
    }
    d->postValue(succ, found);
}

void V2VORManager::getGroupHistoryMessageList(
    const QString &groupID, int count, const V2VORMessagePtr &lastMsg, MessageListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("getGroupHistoryMessageList")))
        return d->postFailure(fail, *refused);
    d->backend->history(d.get(), groupID, count, lastMsg ? lastMsg->seq() : 0,
        d->guarded([this, succ, fail](const ServiceReply<QList<V2VORMessagePtr>> &reply) {
            d->replyMessages(reply, succ, fail);
        }));
}

void V2VORManager::getC2CHistoryMessageList(
    const QString &userID, int count, const V2VORMessagePtr &lastMsg, MessageListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("getC2CHistoryMessageList")))
        return d->postFailure(fail, *refused);
    d->backend->directHistory(d.get(), userID, count, lastMsg ? lastMsg->seq() : 0,
        d->guarded([this, succ, fail](const ServiceReply<QList<V2VORMessagePtr>> &reply) {
            d->replyMessages(reply, succ, fail);
        }));
}

void V2VORManager::modifyMessage(const V2VORMessagePtr &message, ModifyCompletion completion)
{
    auto complete = [this, completion](const CallError &error, const V2VORMessagePtr &current) {
        d->post([completion, error, current] {
            if (completion)
                completion(error.code, error.desc, current ? current->clone() : nullptr);
        });
    };
    if (auto refused = d->admit(QStringLiteral("modifyMessage"))) {
        auto *local = dynamic_cast<LocalBackend *>(d->backend.get());
        const bool withCurrent = refused->code == V2VOR_ERR_MESSAGE_MODIFY_CONFLICT && message && local;
        return complete(*refused, withCurrent ? local->currentCopy(message->msgID(), d->userID) : nullptr);
    }
    if (!message)
        return complete(invalid(QStringLiteral("no message to modify")), nullptr);
    d->backend->modify(d.get(), *message,
        d->guarded([this, message, completion, complete](const ServiceReply<V2VORMessagePtr> &reply) {
            if (reply.error)
                return complete(reply.error, reply.value);
            d->remember(reply.value);
            d->post([message, completion, modified = reply.value] {
                message->setMessageVersion(modified->messageVersion());
                if (completion)
                    completion(V2VOR_SUCC, {}, modified->clone());
            });
        }));
}

namespace {

/// Extensions live only on messages the service has accepted.
std::optional<CallError> checkSent(const V2VORMessagePtr &message)
{
    if (!message || message->msgID().isEmpty() || message->status() != V2VOR_MSG_STATUS_SEND_SUCC)
        return CallError { V2VOR_ERR_EXTENSION_NOT_SUPPORTED, QStringLiteral("extensions need a sent message") };
    return std::nullopt;
}

} // namespace

void V2VORManager::setMessageExtensions(const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensions,
    ExtensionResultSucc succ, V2VORFail fail)
{
    auto refused = d->admit(QStringLiteral("setMessageExtensions"));
    if (!refused)
        refused = checkSent(message);
    if (refused)
        return d->postFailure(fail, *refused);
    const QString msgID = message->msgID();
    d->backend->setExtensions(d.get(), msgID, extensions, d->seenVersions(msgID),
        d->guarded([this, succ, fail](const ExtensionReply &reply) { d->replyExtensionResults(reply, succ, fail); }));
}

void V2VORManager::getMessageExtensions(const V2VORMessagePtr &message, ExtensionListSucc succ, V2VORFail fail)
{
    auto refused = d->admit(QStringLiteral("getMessageExtensions"));
    if (!refused)
        refused = checkSent(message);
    if (refused)
        return d->postFailure(fail, *refused);
    d->backend->getExtensions(d.get(), message->msgID(), d->guarded([this, succ, fail](const ExtensionReply &reply) {
        if (reply.error)
            return d->postFailure(fail, reply.error);
        d->learnVersions(reply.msgID, reply.versions);
        d->learnLiveKeys(reply.msgID, reply.extensions);
        d->postValue(succ, reply.extensions);
    }));
}

void V2VORManager::deleteMessageExtensions(
    const V2VORMessagePtr &message, const QStringList &keys, ExtensionResultSucc succ, V2VORFail fail)
{
    auto refused = d->admit(QStringLiteral("deleteMessageExtensions"));
    if (!refused)
        refused = checkSent(message);
    if (refused)
        return d->postFailure(fail, *refused);
    d->backend->deleteExtensions(d.get(), message->msgID(), keys,
        d->guarded([this, succ, fail](const ExtensionReply &reply) { d->replyExtensionResults(reply, succ, fail); }));
}

void V2VORManager::callExperimentalAPI(const QString &api, const QVariant &param, ExperimentalSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(api, true, QStringLiteral("callExperimentalAPI")))
        return d->postFailure(fail, *refused);
    if (api == QLatin1String("getMessageExtensionsBySequence")
        || api == QLatin1String("setMessageExtensionsBySequence"))
        return d->callBySequence(api, param, succ, fail);
    if (api != QLatin1String("writeLog"))
        return d->postFailure(fail, invalid(QStringLiteral("unknown experimental API \"%1\"").arg(api)));
    if (param.typeId() != QMetaType::QString)
        return d->postFailure(fail, invalid(QStringLiteral("writeLog needs the text to write")));
    d->logs.append(param.toString());
    d->postValue(succ, QVariant());
}

void V2VORManager::getUsersInfo(const QStringList &userIDs, UserListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("getUsersInfo")))
        return d->postFailure(fail, *refused);
    d->backend->usersInfo(d.get(), userIDs, d->guarded([this, succ, fail](const ServiceReply<QList<V2VORUserFullInfo>> &reply) {
        d->replyValue(reply, succ, fail);
    }));
}

void V2VORManager::getGroupMembersInfo(
    const QString &groupID, const QStringList &memberList, MemberListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("getGroupMembersInfo")))
        return d->postFailure(fail, *refused);
    d->backend->members(d.get(), groupID, memberList,
        d->guarded([this, succ, fail](const ServiceReply<QList<V2VORGroupMemberFullInfo>> &reply) {
            d->replyValue(reply, succ, fail);
        }));
}

void V2VORManager::getGroupsInfo(const QStringList &groupIDs, GroupListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("getGroupsInfo")))
        return d->postFailure(fail, *refused);
    d->backend->groupsInfo(d.get(), groupIDs, d->guarded([this, succ, fail](const ServiceReply<QList<V2VORGroupInfo>> &reply) {
        d->replyValue(reply, succ, fail);
    }));
}

void V2VORManager::getConversationList(ConversationListSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("getConversationList")))
        return d->postFailure(fail, *refused);
    d->backend->conversationList(d.get(), d->guarded([this, succ, fail](const ServiceReply<QList<V2VORConversation>> &reply) {
        d->replyValue(reply, succ, fail);
    }));
}

void V2VORManager::markGroupMessageAsRead(const QString &groupID, V2VORSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("markGroupMessageAsRead")))
        return d->postFailure(fail, *refused);
    d->backend->markGroupRead(d.get(), groupID, d->guarded([this, succ, fail](const CallError &error) {
        d->postOutcome(succ, fail, error ? std::optional(error) : std::nullopt);
    }));
}

void V2VORManager::markC2CMessageAsRead(const QString &userID, V2VORSucc succ, V2VORFail fail)
{
    if (auto refused = d->admit(QStringLiteral("markC2CMessageAsRead")))
        return d->postFailure(fail, *refused);
    d->backend->markDirectRead(d.get(), userID, d->guarded([this, succ, fail](const CallError &error) {
        d->postOutcome(succ, fail, error ? std::optional(error) : std::nullopt);
    }));
}

void V2VORManager::addAdvancedMsgListener(V2VORAdvancedMsgListener *listener)
{
    if (listener && !d->listeners.contains(listener))
        d->listeners.append(listener);
}

void V2VORManager::removeAdvancedMsgListener(V2VORAdvancedMsgListener *listener)
{
    d->listeners.removeAll(listener);
}

void V2VORManager::addConversationListener(V2VORConversationListener *listener)
{
    if (listener && !d->conversationListeners.contains(listener))
        d->conversationListeners.append(listener);
}

void V2VORManager::removeConversationListener(V2VORConversationListener *listener)
{
    d->conversationListeners.removeAll(listener);
}

QStringList V2VORManager::writtenLogs() const
{
    return d->logs;
}
