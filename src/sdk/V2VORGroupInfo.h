// A group's public profile, as the conversation list and the chat title show it.
#pragma once

#include <QString>

struct V2VORGroupInfo
{
    QString groupID;
    QString groupName;
    QString faceURL;
};
