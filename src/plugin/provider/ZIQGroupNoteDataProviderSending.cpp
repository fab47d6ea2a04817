// Posting note and tips messages (through the kit's chat service when one is registered,
// straight through the messaging client otherwise) and following remote changes of the note.
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQTool.h"
#include "kit/core/OfflinePushExtInfo.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/Notification.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"
#include "plugin/provider/ZIQGroupNoteLog.h"

#include <QPointer>

void ZIQGroupNoteDataProvider::sendGroupNoteMessageToGroup(const QString &, SendSucc succ, SendFail fail)
{
    // The group is not needed: the chat service sends to the open chat, the direct path to the
    // message's own group.
    const V2VORMessagePtr message
        = createNoteMessage(ZIQGroupNoteMessageBody::noteBody(*m_info, m_localShowLineNum), fail);
    if (!message)
        return;
    m_customMessage = message;
    m_message = message;
    m_info->setMessage(message);
    sendNoteMessage(message, std::move(succ), std::move(fail));
}

void ZIQGroupNoteDataProvider::sendNoteNotifyMessageToGroup(const QString &, SendSucc succ, SendFail fail)
{
    const QByteArray body = m_message ? ZIQGroupNoteMessageBody::tipsBody(m_message, *m_info) : QByteArray();
    if (const V2VORMessagePtr message = createNoteMessage(body, fail))
        sendNoteMessage(message, std::move(succ), std::move(fail));
}

V2VORMessagePtr ZIQGroupNoteDataProvider::createNoteMessage(const QByteArray &body, const SendFail &fail) const
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
    return message;
}

void ZIQGroupNoteDataProvider::sendNoteMessage(const V2VORMessagePtr &message, SendSucc succ, SendFail fail)
{
    if (ZIQCore::getService(ZIQCore_ZIQChatService)) {
        m_sendNoteMessageSucc = std::move(succ);
        m_sendNoteMessageFail = std::move(fail);
        sendMessageByZIQChat(message);
    } else {
        sendMessageByHALVEX(message, message->groupID(), std::move(succ), std::move(fail));
    }
}

void ZIQGroupNoteDataProvider::sendMessageByZIQChat(const V2VORMessagePtr &message)
{
    // The outcome comes back as the chat module's send-result event.
    ZIQCore::callService(ZIQCore_ZIQChatService, ZIQCore_ZIQChatService_SendMessageMethod,
        { { ZIQCore_ZIQChatService_SendMessageMethod_MsgKey, QVariant::fromValue(message) } });
}

void ZIQGroupNoteDataProvider::sendMessageByHALVEX(
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

QString ZIQGroupNoteDataProvider::sendMessage(const V2VORMessagePtr &message, const QString &groupID,
    const ZIQSendMessageAppendParams &appendParams, V2VORProgress progress, SendSucc succ, SendFail fail)
{
    if (appendParams.isSendPushInfo) {
        // Assembled as the kit does for its messages, but deliberately not handed to the client:
        // note messages go out without offline push.
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

V2VOROfflinePushInfo ZIQGroupNoteDataProvider::offlinePushInfo(const QString &groupID)
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

void ZIQGroupNoteDataProvider::onNotifyEvent(
    const QString &key, const QString &subKey, QObject *, const QVariantMap &param)
{
    if (key != ZIQCore_ZIQChatNotify || subKey != ZIQCore_ZIQChatNotify_SendMessageSubKey)
        return;
    const int code = param.value(ZIQCore_ZIQChatNotify_SendMessageSubKey_Code).toInt();
    const QString desc = param.value(ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc).toString();
    // The event names no message: it answers whatever send is pending, and the callback of the
    // other outcome stays in place.
    if (code != 0) {
        ZIQGroupNoteLog::warning("sendMessageByZIQChat failed, code: %d, desc: %@", code, desc);
        if (const SendFail fail = std::exchange(m_sendNoteMessageFail, {}))
            fail(code, desc);
    } else if (const SendSucc succ = std::exchange(m_sendNoteMessageSucc, {})) {
        succ();
    }
}

void ZIQGroupNoteDataProvider::onRecvMessageModified(const V2VORMessagePtr &message)
{
    if (!message || message->elemType() != V2VOR_ELEM_TYPE_CUSTOM || !message->customElem())
        return;
    if (!m_message || message->msgID() != m_message->msgID() || message->msgID() != originMessageID())
        return;
    const QJsonObject body = ZIQTool::jsonData2Dictionary(message->customElem()->data);
    const qint64 newValue = body.value(QStringLiteral("show_line_num")).toInteger();
    const qint64 oldValue = m_info->showLineNum();
    if (newValue == oldValue)
        return;
    m_info->setShowLineNum(newValue);
    if (ZIQGroupNoteDataProviderDelegate *observer = delegate())
        observer->dataProviderDidUpdateShowLineNum(this, oldValue, newValue);
}

void ZIQGroupNoteDataProvider::onRecvMessageExtensionsChanged(
    const QString &msgID, const QList<V2VORMessageExtension> &)
{
    if (concernsMessage(msgID) && m_needUpdateDataListSynchronously)
        refreshAndTellDelegate();
}

void ZIQGroupNoteDataProvider::onReceivedGroupNoteUpdated(const platform::Notification &notification)
{
    if (concernsMessage(notification.userInfo.value(QStringLiteral("msgID")).toString()))
        refreshAndTellDelegate();
}

bool ZIQGroupNoteDataProvider::concernsMessage(const QString &msgID) const
{
    // A note that names no first message takes every message's change for its own, on purpose.
    const bool isSessionMessage = m_message && m_message->msgID() == msgID;
    return isSessionMessage || m_info->originMsgID().isEmpty() || m_info->originMsgID() == msgID;
}

void ZIQGroupNoteDataProvider::refreshAndTellDelegate()
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    getNoteStatistics([self](int code, const QString &, const ZIQGroupNoteInfoPtr &info) {
        if (code != 0 || !self)
            return;
        if (ZIQGroupNoteDataProviderDelegate *observer = self->delegate())
            observer->dataProviderDidUpdateGroupNoteInfo(self, info);
    });
}
