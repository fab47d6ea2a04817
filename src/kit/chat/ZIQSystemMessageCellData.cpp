#include "kit/chat/ZIQSystemMessageCellData.h"

ZIQSystemMessageCellData::ZIQSystemMessageCellData(ZIQMessageDirection direction, QObject *parent)
    : ZIQMessageCellData(direction, parent)
{
}
