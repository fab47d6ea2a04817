#include "kit/chat/ZIQUnsupportedMessageCellData.h"

#include "kit/common/ZIQGlobalization.h"

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
    return ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitNotSupportMessage"));
}

QString ZIQUnsupportedMessageCellData::content() const
{
    return getDisplayString(innerMessage());
}
