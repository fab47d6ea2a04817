// One row of the note card's entry table. A row whose entry has index -1 and the localized
// "ZIQGroupNoteExpand" text is the expand row of a collapsed card.
#pragma once

#include "kit/common/ZIQCommonTextCellData.h"
#include "plugin/model/ZIQGroupNoteItem.h"

#include <memory>

class ZIQGroupNotePreviewCellData;
using ZIQGroupNotePreviewCellDataPtr = std::shared_ptr<ZIQGroupNotePreviewCellData>;

class ZIQGroupNotePreviewCellData : public ZIQCommonTextCellData
{
    Q_OBJECT

public:
    explicit ZIQGroupNotePreviewCellData(const ZIQGroupNoteItemPtr &item = {})
        : m_item(item)
    {
    }

    ZIQGroupNoteItemPtr item() const { return m_item; }
    void setItem(const ZIQGroupNoteItemPtr &item) { m_item = item; }

    bool isExpandRow() const;

private:
    ZIQGroupNoteItemPtr m_item;
};
