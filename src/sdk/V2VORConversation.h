// One conversation as the user holding it sees it: a group or a one-to-one chat, with its
// title, picture, last message and how many messages of others this user has not read.
#pragma once

#include "sdk/V2VORMessage.h"

#include <QMetaType>
#include <QString>

enum V2VORConversationType : int {
    V2VOR_C2C = 1,
    V2VOR_GROUP = 2,
};

struct V2VORConversation
{
    /// "c2c_<peer user ID>" or "group_<group ID>".
    QString conversationID;
    int type = V2VOR_GROUP;
    /// The other user of a one-to-one chat; empty for a group.
    QString userID;
    /// The group; empty for a one-to-one chat.
    QString groupID;
    /// The group's name or the other user's nick name, else their ID.
    QString showName;
    QString faceURL;
    /// Null while the conversation has no message.
    V2VORMessagePtr lastMessage;
    int unreadCount = 0;
    /// Grows with every activity of the conversation (creation, a new message): conversations
    /// are listed by descending order key.
    quint64 orderKey = 0;
};

Q_DECLARE_METATYPE(V2VORConversation)
