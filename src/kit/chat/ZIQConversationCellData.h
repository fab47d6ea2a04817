// One row of the conversation list: whom the chat is with, what was said last and how much
// the user has not read yet.
#pragma once

#include "kit/chat/ZIQChatConversation.h"
#include "sdk/V2VORMessage.h"

#include <QString>

struct ZIQConversationCellData
{
    QString conversationID;
    /// Whom opening the row chats with.
    ZIQChatConversation conversation;
    /// The group's name or the other user's nick name (else their ID).
    QString title;
    QString faceURL;
    /// Null while nothing was said.
    V2VORMessagePtr lastMessage;
    /// The last message as one line ("[Group note]", the text of a text message).
    QString subTitle;
    /// Milliseconds since 1970 of the last message; 0 without one.
    double time = 0;
    int unreadCount = 0;
    quint64 orderKey = 0;
};
