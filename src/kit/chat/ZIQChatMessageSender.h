// How the chat hands a message to the messaging client: where it goes, and the offline push
// that goes with it.
#pragma once

#include "kit/chat/ZIQChatConversation.h"
#include "kit/chat/ZIQSendMessageAppendParams.h"
#include "sdk/V2VORCallbacks.h"
#include "sdk/V2VOROfflinePushInfo.h"

class V2VORManager;

class ZIQChatMessageSender
{
public:
    /// The message's own group when it names one, else the open chat.
    static ZIQChatConversation targetOf(const V2VORMessage &message, const ZIQChatConversation &openChat);

    /// Sends into `target`; answers later, on the main queue, also when there is no client or
    /// no target. Returns the message ID the message will carry (empty when refused at once).
    static QString send(V2VORManager *client, const V2VORMessagePtr &message, const ZIQChatConversation &target,
        const ZIQSendMessageAppendParams &params, V2VORSucc succ, V2VORFail fail);

    /// What a tapped notification of the message opens, and what it reads.
    static V2VOROfflinePushInfo offlinePushInfo(const V2VORMessagePtr &message, const ZIQChatConversation &target);
};
