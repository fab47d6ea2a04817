#include "kit/chat/ZIQMessageCellData.h"

ZIQMessageCellData::ZIQMessageCellData(ZIQMessageDirection direction, QObject *parent)
    : QObject(parent)
    , m_direction(direction)
{
}

ZIQMessageCellData::~ZIQMessageCellData() = default;

ZIQMessageDirection ZIQMessageCellData::directionOf(const V2VORMessage &message)
{
    return message.isSelf() ? ZIQMessageDirection::Outgoing : ZIQMessageDirection::Incoming;
}

ZIQMessageStatus ZIQMessageCellData::status() const
{
    if (!m_innerMessage)
        return ZIQMessageStatus::Sent;
    switch (m_innerMessage->status()) {
    case V2VOR_MSG_STATUS_SENDING:
        return ZIQMessageStatus::Sending;
    case V2VOR_MSG_STATUS_SEND_FAIL:
        return ZIQMessageStatus::Failed;
    default:
        return ZIQMessageStatus::Sent;
    }
}
