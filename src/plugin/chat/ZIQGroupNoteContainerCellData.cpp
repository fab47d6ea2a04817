#include "plugin/chat/ZIQGroupNoteContainerCellData.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTool.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"

ZIQGroupNoteContainerCellData::ZIQGroupNoteContainerCellData(ZIQMessageDirection direction, QObject *parent)
    : ZIQBubbleMessageCellData(direction, parent)
{
}

ZIQGroupNoteContainerCellDataPtr ZIQGroupNoteContainerCellData::getCellData(const V2VORMessagePtr &message)
{
    if (!message)
        return nullptr;
    auto data = std::make_shared<ZIQGroupNoteContainerCellData>(directionOf(*message));
    data->setMsgID(message->msgID());
    data->setInnerMessage(message);
    data->setMessage(message);
    return data;
}

QString ZIQGroupNoteContainerCellData::getDisplayString(const V2VORMessagePtr &message)
{
    if (parseBusinessID(message) != ZIQGroupNoteMessageBody::noteBusinessID)
        return {};
    return ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteDisplayString"));
}

QString ZIQGroupNoteContainerCellData::parseBusinessID(const V2VORMessagePtr &message)
{
    if (!message || !message->customElem())
        return {};
    const QJsonValue businessID
        = ZIQTool::jsonData2Dictionary(message->customElem()->data).value(QStringLiteral("businessID"));
    return businessID.isString() ? businessID.toString() : QString();
}
