#include "plugin/provider/ZIQGroupNotePreviewCellData.h"

#include "kit/common/ZIQGlobalization.h"

bool ZIQGroupNotePreviewCellData::isExpandRow() const
{
    return m_item && m_item->index() == -1
        && m_item->content() == ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteExpand"));
}
