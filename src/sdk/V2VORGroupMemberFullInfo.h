// A group member as seen by the asking user (the friend remark is that user's own).
#pragma once

#include <QList>
#include <QString>

struct V2VORGroupMemberFullInfo
{
    QString userID;
    QString nickName;
    QString faceURL;
    QString nameCard;
    QString friendRemark;
};
