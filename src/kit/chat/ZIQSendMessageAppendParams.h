// Options of sending a message through the chat module.
#pragma once

struct ZIQSendMessageAppendParams
{
    bool isSendPushInfo = false;
    bool isOnlineUserOnly = false;
    int priority = 0;
};
