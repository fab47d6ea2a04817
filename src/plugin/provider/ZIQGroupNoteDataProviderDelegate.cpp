#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"

ZIQGroupNoteDataProviderDelegate::~ZIQGroupNoteDataProviderDelegate() = default;

void ZIQGroupNoteDataProviderDelegate::dataProviderDidUpdateGroupNoteInfo(
    ZIQGroupNoteDataProvider *, const ZIQGroupNoteInfoPtr &)
{
}

void ZIQGroupNoteDataProviderDelegate::dataProviderDidUpdateShowLineNum(ZIQGroupNoteDataProvider *, qint64, qint64)
{
}
