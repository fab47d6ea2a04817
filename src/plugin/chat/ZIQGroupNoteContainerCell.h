// The chat row of a note message: a bubble whose content is the note card. The row is measured
// from the note alone (getContentSize); the card, made once per cell, is pointed at each message
// the cell is filled with and lays itself out to that same size.
#pragma once

#include "kit/chat/ZIQBubbleMessageCell.h"
#include "plugin/chat/ZIQGroupNoteContainerCellData.h"

#include <QPointer>

class ZIQGroupNotePreviewViewController;

class ZIQGroupNoteContainerCell : public ZIQBubbleMessageCell
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit ZIQGroupNoteContainerCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);
    ~ZIQGroupNoteContainerCell() override;

    /// The card's size for the row's note with as many entry rows as the card will show: the
    /// note's "show_line_num", or every entry once the row is expanded. Stores the row's
    /// businessID and the size in the data.
    static QSizeF getContentSize(ZIQMessageCellData *cellData);

    ZIQGroupNoteContainerCellDataPtr customData() const { return m_customData; }
    /// The card's root view, inside the bubble's container.
    QWidget *customView() const { return m_customView; }
    /// The card; it lives as long as this cell.
    ZIQGroupNotePreviewViewController *vc() const { return m_vc; }

    void fillWithData(const ZIQMessageCellDataPtr &data) override;
    /// With a reaction strip under the card, the bubble gives way: the strip takes the card's
    /// background and the card its square corners, so the two read as one block.
    void reConfigTagView();

protected:
    void layoutMessage() override;

private:
    ZIQGroupNoteContainerCellDataPtr m_customData;
    QPointer<QWidget> m_customView;
    ZIQGroupNotePreviewViewController *m_vc;
};
