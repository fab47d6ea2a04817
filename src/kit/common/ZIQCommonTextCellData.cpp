#include "kit/common/ZIQCommonTextCellData.h"

ZIQCommonTextCellData::ZIQCommonTextCellData(QObject *parent)
    : ZIQCommonCellData(parent)
{
}
