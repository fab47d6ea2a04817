#include "kit/chat/ZIQBubbleMessageCellData.h"

ZIQBubbleMessageCellData::ZIQBubbleMessageCellData(ZIQMessageDirection direction, QObject *parent)
    : ZIQMessageCellData(direction, parent)
{
}
