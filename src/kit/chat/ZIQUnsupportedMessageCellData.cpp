#include "kit/chat/ZIQUnsupportedMessageCellData.h"

#include "kit/common/ZIQGlobalization.h"

namespace {

const QString kTextKey = QStringLiteral("ZIQKitNotSupportMessage");

} // namespace

ZIQUnsupportedMessageCellData::ZIQUnsupportedMessageCellData(ZIQMessageDirection direction, QObject *parent)
    : ZIQBubbleMessageCellData(direction, parent)
{
}

std::shared_ptr<ZIQUnsupportedMessageCellData> ZIQUnsupportedMessageCellData::getCellData(
    const V2VORMessagePtr &message)
{
    auto data = std::make_shared<ZIQUnsupportedMessageCellData>(
        message ? directionOf(*message) : ZIQMessageDirection::Incoming);
    if (message) {
        data->setMsgID(message->msgID());
        data->setInnerMessage(message);
    }
    return data;
}

QString ZIQUnsupportedMessageCellData::getDisplayString(const V2VORMessagePtr &)
{
    // The string tables may not carry the kit's own key yet.
    const QString text = ZIQGlobalization::getLocalizedStringForKey(kTextKey);
    return text == kTextKey ? QStringLiteral("[Unsupported message]") : text;
}

QString ZIQUnsupportedMessageCellData::content() const
{
    return getDisplayString(innerMessage());
}
