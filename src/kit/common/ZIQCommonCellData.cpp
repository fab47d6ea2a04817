#include "kit/common/ZIQCommonCellData.h"

ZIQCommonCellData::ZIQCommonCellData(QObject *parent)
    : QObject(parent)
{
}

qreal ZIQCommonCellData::heightOfWidth(qreal) const
{
    return DefaultHeight;
}
