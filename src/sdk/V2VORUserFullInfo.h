// A user's public profile.
#pragma once

#include <QString>

struct V2VORUserFullInfo
{
    QString userID;
    QString nickName;
    QString faceURL;
};
