#include "plugin/editor/ZIQGroupNoteTextCellData.h"

qreal ZIQGroupNoteTextCellData::heightOfWidth(qreal) const
{
    return RowHeight;
}
