#include "plugin/provider/ZIQGroupNoteSender.h"

#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQLogin.h"
#include "kit/core/OfflinePushExtInfo.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "plugin/provider/ZIQGroupNoteExtensionClient.h"
#include "plugin/provider/ZIQGroupNoteLog.h"

ZIQGroupNoteSender::ZIQGroupNoteSender(std::shared_ptr<ZIQGroupNoteEditingSession> session)
    : m_session(std::move(session))
{
    ZIQCore::registerEvent(ZIQCore_ZIQChatNotify, ZIQCore_ZIQChatNotify_SendMessageSubKey, this);
}

ZIQGroupNoteSender::~ZIQGroupNoteSender()
{
    ZIQCore::unRegisterEventByObject(this);
}

V2VORManager *ZIQGroupNoteSender::manager() const
{
    return m_session->context().client;
}

void ZIQGroupNoteSender::sendGroupNoteMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail)
{
    // The chat service sends to the open chat; the direct path sends to the group the message
    // names, which is the one submitted to.
    const V2VORMessagePtr message = createNoteMessage(
        ZIQGroupNoteMessageBody::noteBody(*m_session->info(), m_session->localShowLineNum()), groupID, fail);
    if (!message)
        return;
    m_session->adoptPostedMessage(message);
    sendNoteMessage(message, std::move(succ), std::move(fail));
}

void ZIQGroupNoteSender::sendNoteNotifyMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail)
{
    const V2VORMessagePtr note = m_session->message();
    const QByteArray body = note ? ZIQGroupNoteMessageBody::tipsBody(note, *m_session->info()) : QByteArray();
    if (const V2VORMessagePtr message = createNoteMessage(body, groupID, fail))
        sendNoteMessage(message, std::move(succ), std::move(fail));
}

V2VORMessagePtr ZIQGroupNoteSender::createNoteMessage(
    const QByteArray &body, const QString &groupID, const SendFail &fail) const
{
    V2VORManager *sdk = manager();
    const V2VORMessagePtr message = sdk && !body.isEmpty() ? sdk->createCustomMessage(body) : nullptr;
    if (!message) {
        if (fail)
            fail(-1, QStringLiteral("create custom message failed, message is empty"));
        return nullptr;
    }
    // Entries are stored as extensions of the note message.
    message->setSupportMessageExtension(true);
    message->setGroupID(groupID);
    return message;
}

void ZIQGroupNoteSender::sendNoteMessage(const V2VORMessagePtr &message, SendSucc succ, SendFail fail)
{
    // The kit's chat sends as the process's user. A session read through another member's client
    // (a member played beside the user in the same process) sends on that client itself.
    const V2VORManager *processClient = V2VORManager::sharedInstance();
    const bool sendsAsProcessUser = !processClient || !manager() || manager() == processClient;
    if (sendsAsProcessUser && ZIQCore::getService(ZIQCore_ZIQChatService)) {
        m_sendNoteMessageSucc = std::move(succ);
        m_sendNoteMessageFail = std::move(fail);
        m_awaitingAnswer = shared_from_this();
        sendMessageByZIQChat(message);
    } else {
        sendMessageByHALVEX(message, message->groupID(), std::move(succ), std::move(fail));
    }
}

void ZIQGroupNoteSender::sendMessageByZIQChat(const V2VORMessagePtr &message)
{
    // The outcome comes back as the chat module's send-result event.
    ZIQCore::callService(ZIQCore_ZIQChatService, ZIQCore_ZIQChatService_SendMessageMethod,
        { { ZIQCore_ZIQChatService_SendMessageMethod_MsgKey, QVariant::fromValue(message) } });
}

void ZIQGroupNoteSender::sendMessageByHALVEX(
    const V2VORMessagePtr &message, const QString &groupID, SendSucc succ, SendFail fail)
{
    ZIQSendMessageAppendParams params;
    params.isSendPushInfo = true;
    params.isOnlineUserOnly = false;
    params.priority = V2VOR_PRIORITY_DEFAULT;
    sendMessage(message, groupID, params, {}, std::move(succ), [fail](int code, const QString &desc) {
        ZIQGroupNoteLog::warning("sendMessageByHALVEX failed, code: %d, desc: %@", code, desc);
        if (fail)
            fail(code, desc);
    });
}

QString ZIQGroupNoteSender::sendMessage(const V2VORMessagePtr &message, const QString &groupID,
    const ZIQSendMessageAppendParams &appendParams, V2VORProgress progress, SendSucc succ, SendFail fail)
{
    if (appendParams.isSendPushInfo) {
        // Assembled as the kit does for its messages but not handed to the client: note messages
        // go out without offline push, as they do from every other client of these notes.
        [[maybe_unused]] const V2VOROfflinePushInfo pushInfo = offlinePushInfo(groupID);
    }
    V2VORManager *sdk = manager();
    if (!sdk) {
        if (fail)
            fail(-1, ZIQGroupNoteExtensionClient::noClientDesc);
        return {};
    }
    return sdk->sendMessage(message, QString(), groupID, appendParams.priority, appendParams.isOnlineUserOnly,
        std::nullopt, std::move(progress), std::move(succ), std::move(fail));
}

V2VOROfflinePushInfo ZIQGroupNoteSender::offlinePushInfo(const QString &groupID)
{
    const QString userID = ZIQLogin::getUserID();
    const QString nickName = ZIQLogin::getNickName();
    OfflinePushExtInfo extInfo;
    extInfo.entity.action = 1;
    extInfo.entity.content
        = ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQPollDisplayString"), VORCommonLocalizable);
    extInfo.entity.sender = groupID.isEmpty() ? userID : groupID;
    extInfo.entity.nickname = nickName.isEmpty() ? userID : nickName;
    extInfo.entity.faceUrl = ZIQLogin::getFaceUrl();
    extInfo.entity.chatType = groupID.isEmpty() ? 1 : 2;

    V2VOROfflinePushInfo pushInfo;
    pushInfo.ext = extInfo.toReportExtString();
    pushInfo.AndroidOPPOChannelID = QStringLiteral("ziqkit");
    if (ZIQConfig::defaultConfig().enableCustomRing())
        pushInfo.AndroidSound = QStringLiteral("private_ring");
    pushInfo.AndroidHuaWeiCategory = QStringLiteral("IM");
    pushInfo.AndroidVIVOCategory = QStringLiteral("IM");
    return pushInfo;
}

void ZIQGroupNoteSender::onNotifyEvent(const QString &key, const QString &subKey, QObject *, const QVariantMap &param)
{
    if (key != ZIQCore_ZIQChatNotify || subKey != ZIQCore_ZIQChatNotify_SendMessageSubKey)
        return;
    const int code = param.value(ZIQCore_ZIQChatNotify_SendMessageSubKey_Code).toInt();
    const QString desc = param.value(ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc).toString();
    // Lives to the end of this answer even when nothing else holds it any more.
    const std::shared_ptr<ZIQGroupNoteSender> keepAlive = std::exchange(m_awaitingAnswer, {});
    // The event names no message: it answers whatever send is pending. The callback of the other
    // outcome stays in place for the screen, which may still send again.
    if (code != 0) {
        ZIQGroupNoteLog::warning("sendMessageByZIQChat failed, code: %d, desc: %@", code, desc);
        if (const SendFail fail = std::exchange(m_sendNoteMessageFail, {}))
            fail(code, desc);
    } else if (const SendSucc succ = std::exchange(m_sendNoteMessageSucc, {})) {
        succ();
    }
    if (m_detached)
        forgetLeftoverCallbacks();
}

void ZIQGroupNoteSender::detach()
{
    m_detached = true;
    forgetLeftoverCallbacks();
}

void ZIQGroupNoteSender::forgetLeftoverCallbacks()
{
    // Without a screen no later answer can be meant for a leftover callback, and one holding the
    // chain that holds this sender would keep both alive for good.
    if (m_awaitingAnswer)
        return;
    m_sendNoteMessageSucc = {};
    m_sendNoteMessageFail = {};
}
