// One row of the editor's entry list: the entry it edits, the note's deadline (a row stops
// accepting input once it has passed) and the names of the editor's actions the row reports.
#pragma once

#include "kit/common/ZIQCommonCellData.h"
#include "plugin/model/ZIQGroupNoteItem.h"

#include <QByteArray>
#include <memory>

class ZIQGroupNoteTextFieldCellData;
using ZIQGroupNoteTextFieldCellDataPtr = std::shared_ptr<ZIQGroupNoteTextFieldCellData>;

class ZIQGroupNoteTextFieldCellData : public ZIQCommonCellData
{
    Q_OBJECT

public:
    explicit ZIQGroupNoteTextFieldCellData(const ZIQGroupNoteItemPtr &item = {})
        : m_item(item)
    {
    }

    /// Shared with the note: the row edits the entry's content in place.
    ZIQGroupNoteItemPtr item() const { return m_item; }
    void setItem(const ZIQGroupNoteItemPtr &item) { m_item = item; }
    /// Milliseconds since 1970; 0 or less means no deadline.
    double deadlineTimestampInMS() const { return m_deadlineTimestampInMS; }
    void setDeadlineTimestampInMS(double deadline) { m_deadlineTimestampInMS = deadline; }
    /// Method of the owning screen called after an accepted text change, with the row data.
    QByteArray onEditItemSelector() const { return m_onEditItemSelector; }
    void setOnEditItemSelector(const QByteArray &selector) { m_onEditItemSelector = selector; }
    /// Method of the owning screen called when the row's repeat button is tapped.
    QByteArray onRepeatButtonClickedSelector() const { return m_onRepeatButtonClickedSelector; }
    void setOnRepeatButtonClickedSelector(const QByteArray &selector) { m_onRepeatButtonClickedSelector = selector; }

    qreal heightOfWidth(qreal width) const override;

private:
    ZIQGroupNoteItemPtr m_item;
    double m_deadlineTimestampInMS = 0;
    QByteArray m_onEditItemSelector;
    QByteArray m_onRepeatButtonClickedSelector;
};
