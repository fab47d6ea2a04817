#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"

qreal ZIQGroupNoteTextFieldCellData::heightOfWidth(qreal) const
{
    return 46;
}
