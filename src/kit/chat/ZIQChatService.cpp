#include "kit/chat/ZIQChatService.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageSender.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcChatService, "ziq.kit.chat.service")

const QString kBusinessID = QStringLiteral("businessID");
const QString kCellName = QStringLiteral("TMessageCell_Name");
const QString kCellDataName = QStringLiteral("TMessageCell_Data_Name");

/// Sends made for others go out with offline push, to online and offline members alike.
ZIQSendMessageAppendParams serviceSendParams()
{
    ZIQSendMessageAppendParams params;
    params.isSendPushInfo = true;
    params.isOnlineUserOnly = false;
    params.priority = V2VOR_PRIORITY_DEFAULT;
    return params;
}

} // namespace

ZIQChatService *ZIQChatService::instance()
{
    // Lives for the whole process: the kit core keeps a plain pointer to it.
    static ZIQChatService *service = new ZIQChatService;
    return service;
}

void ZIQChatService::registerInCore()
{
    ZIQCore::registerService(ZIQCore_ZIQChatService, instance());
}

QVariant ZIQChatService::onCall(const QString &method, const QVariantMap &param)
{
    if (method == ZIQCore_ZIQChatService_AppendCustomMessageMethod)
        return appendCustomMessage(param);
    if (method == ZIQCore_ZIQChatService_SendMessageMethod)
        return sendMessage(param);
    qCDebug(lcChatService) << "unknown method" << method;
    return {};
}

bool ZIQChatService::appendCustomMessage(const QVariantMap &param)
{
    const QString businessID = param.value(kBusinessID).toString();
    const QString cellName = param.value(kCellName).toString();
    const QString cellDataName = param.value(kCellDataName).toString();
    if (businessID.isEmpty() || cellName.isEmpty() || cellDataName.isEmpty()) {
        qCWarning(lcChatService) << "custom message registration lacks a name:" << param;
        return false;
    }
    ZIQChatClassRegistry::instance().appendCustomMessage(businessID, cellName, cellDataName);
    return true;
}

QString ZIQChatService::sendMessage(const QVariantMap &param)
{
    const auto message = param.value(ZIQCore_ZIQChatService_SendMessageMethod_MsgKey).value<V2VORMessagePtr>();
    auto succ = [] { notifySendResult(0, {}); };
    auto fail = [](int code, const QString &desc) { notifySendResult(code, desc); };
    if (m_currentChat)
        return m_currentChat->sendMessage(message, serviceSendParams(), succ, fail);
    // With no chat open only a message that names its group can go anywhere.
    const ZIQChatConversation target = message ? ZIQChatMessageSender::targetOf(*message, {}) : ZIQChatConversation();
    return ZIQChatMessageSender::send(V2VORManager::sharedInstance(), message, target, serviceSendParams(), succ, fail);
}

void ZIQChatService::notifySendResult(int code, const QString &desc)
{
    ZIQCore::notifyEvent(ZIQCore_ZIQChatNotify, ZIQCore_ZIQChatNotify_SendMessageSubKey, nullptr,
        { { ZIQCore_ZIQChatNotify_SendMessageSubKey_Code, code },
            { ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc, desc } });
}
