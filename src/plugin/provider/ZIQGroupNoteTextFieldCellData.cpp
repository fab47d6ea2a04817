#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"

double ZIQGroupNoteTextFieldCellData::heightOfWidth(double) const
{
    return 46;
}
