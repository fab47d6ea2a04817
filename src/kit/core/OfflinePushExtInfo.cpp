#include "kit/core/OfflinePushExtInfo.h"

#include <QJsonDocument>
#include <QJsonObject>

QString OfflinePushExtInfo::toReportExtString() const
{
    const QJsonObject entityObject {
        { QStringLiteral("action"), entity.action },
        { QStringLiteral("content"), entity.content },
        { QStringLiteral("sender"), entity.sender },
        { QStringLiteral("nickname"), entity.nickname },
        { QStringLiteral("faceUrl"), entity.faceUrl },
        { QStringLiteral("chatType"), entity.chatType },
    };
    const QJsonObject report { { QStringLiteral("entity"), entityObject } };
    return QString::fromUtf8(QJsonDocument(report).toJson(QJsonDocument::Compact));
}
