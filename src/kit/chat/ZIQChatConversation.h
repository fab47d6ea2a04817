// Whom a chat talks to: a group, or one other user.
#pragma once

#include "sdk/V2VORMessage.h"

#include <QString>

struct ZIQChatConversation
{
    /// Set for a group chat.
    QString groupID;
    /// The other user of a one-to-one chat; empty in a group chat.
    QString userID;

    bool isGroup() const { return !groupID.isEmpty(); }
    bool isValid() const { return !groupID.isEmpty() || !userID.isEmpty(); }
    /// The messaging client's conversation ID: "group_<groupID>" or "c2c_<userID>".
    QString conversationID() const
    {
        return isGroup() ? QStringLiteral("group_") + groupID : QStringLiteral("c2c_") + userID;
    }
    /// Whether the message was posted in this chat (as the client holding the copy sees it).
    bool contains(const V2VORMessage &message) const
    {
        return isGroup() ? message.groupID() == groupID : message.groupID().isEmpty() && message.userID() == userID;
    }

    friend bool operator==(const ZIQChatConversation &, const ZIQChatConversation &) = default;
};
