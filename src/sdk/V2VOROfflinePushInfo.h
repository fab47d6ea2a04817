// Offline push settings that may accompany a sent message.
#pragma once

#include <QString>

struct V2VOROfflinePushInfo
{
    QString title;
    QString desc;
    QString ext;
    bool disablePush = false;
    QString AndroidOPPOChannelID;
    QString AndroidSound;
    QString AndroidHuaWeiCategory;
    QString AndroidVIVOCategory;
};
