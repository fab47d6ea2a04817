// An on/off row of the note's settings page, one point taller than the kit's rows so that its
// bottom rule fits under the switch.
#pragma once

#include "kit/common/ZIQCommonSwitchCellData.h"

class ZIQGroupNoteSwitchCellData;
using ZIQGroupNoteSwitchCellDataPtr = std::shared_ptr<ZIQGroupNoteSwitchCellData>;

class ZIQGroupNoteSwitchCellData : public ZIQCommonSwitchCellData
{
    Q_OBJECT

public:
    static constexpr qreal RowHeight = 50;

    using ZIQCommonSwitchCellData::ZIQCommonSwitchCellData;

    qreal heightOfWidth(qreal width) const override;
};
