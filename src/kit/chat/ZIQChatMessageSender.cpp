#include "kit/chat/ZIQChatMessageSender.h"

#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQLogin.h"
#include "kit/core/OfflinePushExtInfo.h"
#include "platform/MainQueue.h"
#include "sdk/V2VORManager.h"

ZIQChatConversation ZIQChatMessageSender::targetOf(const V2VORMessage &message, const ZIQChatConversation &openChat)
{
    if (!message.groupID().isEmpty())
        return { message.groupID(), {} };
    return openChat;
}

QString ZIQChatMessageSender::send(V2VORManager *client, const V2VORMessagePtr &message,
    const ZIQChatConversation &target, const ZIQSendMessageAppendParams &params, V2VORSucc succ, V2VORFail fail)
{
    if (!client || !message || !target.isValid()) {
        const QString desc = !client ? QStringLiteral("no messaging client")
            : !message               ? QStringLiteral("no message to send")
                                     : QStringLiteral("no chat to send to");
        platform::MainQueue::async([message, fail, desc] {
            if (message)
                message->setStatus(V2VOR_MSG_STATUS_SEND_FAIL);
            if (fail)
                fail(-1, desc);
        });
        return {};
    }
    std::optional<V2VOROfflinePushInfo> push;
    if (params.isSendPushInfo)
        push = offlinePushInfo(message, target);
    return client->sendMessage(message, target.userID, target.groupID, params.priority, params.isOnlineUserOnly, push,
        {}, std::move(succ), std::move(fail));
}

V2VOROfflinePushInfo ZIQChatMessageSender::offlinePushInfo(
    const V2VORMessagePtr &message, const ZIQChatConversation &target)
{
    const QString userID = ZIQLogin::getUserID();
    const QString nickName = ZIQLogin::getNickName();
    OfflinePushExtInfo extInfo;
    extInfo.entity.action = 1;
    extInfo.entity.content = ZIQChatClassRegistry::instance().displayStringForMessage(message);
    // The receiver's device opens the group, or the chat with the sender.
    extInfo.entity.sender = target.isGroup() ? target.groupID : userID;
    extInfo.entity.nickname = nickName.isEmpty() ? userID : nickName;
    extInfo.entity.faceUrl = ZIQLogin::getFaceUrl();
    extInfo.entity.chatType = target.isGroup() ? 2 : 1;

    V2VOROfflinePushInfo push;
    push.title = extInfo.entity.nickname;
    push.desc = extInfo.entity.content;
    push.ext = extInfo.toReportExtString();
    push.AndroidOPPOChannelID = QStringLiteral("ziqkit");
    if (ZIQConfig::defaultConfig().enableCustomRing())
        push.AndroidSound = QStringLiteral("private_ring");
    push.AndroidHuaWeiCategory = QStringLiteral("IM");
    push.AndroidVIVOCategory = QStringLiteral("IM");
    return push;
}
