// The kit's extension record of an offline push: what a tapped notification opens.
#pragma once

#include <QString>

class OfflinePushExtInfo
{
public:
    struct Entity
    {
        int action = 0;
        QString content;
        QString sender;
        QString nickname;
        QString faceUrl;
        /// 1 one-to-one, 2 group.
        int chatType = 0;
    };

    Entity entity;

    /// The JSON text the push service carries as the push's ext.
    QString toReportExtString() const;
};
