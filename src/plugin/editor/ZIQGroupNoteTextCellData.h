// A row of the note's settings page that names a value (the deadline) and opens its editor.
#pragma once

#include "kit/common/ZIQCommonTextCellData.h"

class ZIQGroupNoteTextCellData;
using ZIQGroupNoteTextCellDataPtr = std::shared_ptr<ZIQGroupNoteTextCellData>;

class ZIQGroupNoteTextCellData : public ZIQCommonTextCellData
{
    Q_OBJECT

public:
    static constexpr qreal RowHeight = 50;

    using ZIQCommonTextCellData::ZIQCommonTextCellData;

    qreal heightOfWidth(qreal width) const override;
};
