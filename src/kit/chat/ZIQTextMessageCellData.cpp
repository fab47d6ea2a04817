#include "kit/chat/ZIQTextMessageCellData.h"

ZIQTextMessageCellData::ZIQTextMessageCellData(ZIQMessageDirection direction, QObject *parent)
    : ZIQBubbleMessageCellData(direction, parent)
{
}

std::shared_ptr<ZIQTextMessageCellData> ZIQTextMessageCellData::getCellData(const V2VORMessagePtr &message)
{
    if (!message)
        return nullptr;
    auto data = std::make_shared<ZIQTextMessageCellData>(directionOf(*message));
    data->setMsgID(message->msgID());
    data->setInnerMessage(message);
    return data;
}

QString ZIQTextMessageCellData::getDisplayString(const V2VORMessagePtr &message)
{
    return message ? message->text() : QString();
}

QString ZIQTextMessageCellData::content() const
{
    return innerMessage() ? innerMessage()->text() : QString();
}
