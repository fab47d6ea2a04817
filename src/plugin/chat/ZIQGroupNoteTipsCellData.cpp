#include "plugin/chat/ZIQGroupNoteTipsCellData.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTheme.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

/// The body read as JSON, a lone value ("fragment") included; nothing when it is not JSON.
std::optional<QJsonValue> parseBody(const QByteArray &body)
{
    // A document holds only arrays and objects, so a lone value is read as the one element of
    // an array around it.
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson("[" + body + "]", &error);
    if (error.error != QJsonParseError::NoError || document.array().size() != 1)
        return std::nullopt;
    return document.array().first();
}

} // namespace

std::shared_ptr<ZIQGroupNoteTipsCellData> ZIQGroupNoteTipsCellData::getCellData(const V2VORMessagePtr &message)
{
    const std::optional<QJsonValue> body
        = message && message->customElem() ? parseBody(message->customElem()->data) : std::nullopt;
    if (!body)
        return nullptr;
    auto data = std::make_shared<ZIQGroupNoteTipsCellData>(directionOf(*message));
    const QString prefix = ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteTipsMessagePrefix"))
                               .arg(displayedNameOfInfo(message));
    const QString titlePart
        = QStringLiteral(" [%1]").arg(body->toObject().value(QStringLiteral("title")).toVariant().toString());
    ZIQAttributedString text(prefix + titlePart);
    text.setForegroundColor(0, int(prefix.size()), ZIQTheme::d_systemGrayColor());
    text.setForegroundColor(int(prefix.size()), int(titlePart.size()), ZIQTheme::d_systemBlueColor());
    data->setAttributedString(text);
    return data;
}

QString ZIQGroupNoteTipsCellData::getDisplayString(const V2VORMessagePtr &)
{
    return ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteDisplayString"));
}

QString ZIQGroupNoteTipsCellData::displayedNameOfInfo(const V2VORMessagePtr &message)
{
    if (!message)
        return {};
    return message->nickName().isEmpty() ? message->sender() : message->nickName();
}
