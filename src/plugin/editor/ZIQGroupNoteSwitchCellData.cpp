#include "plugin/editor/ZIQGroupNoteSwitchCellData.h"

qreal ZIQGroupNoteSwitchCellData::heightOfWidth(qreal) const
{
    return RowHeight;
}
