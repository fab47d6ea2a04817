#include "kit/common/ZIQCommonSwitchCellData.h"

ZIQCommonSwitchCellData::ZIQCommonSwitchCellData(QObject *parent)
    : ZIQCommonCellData(parent)
{
}
