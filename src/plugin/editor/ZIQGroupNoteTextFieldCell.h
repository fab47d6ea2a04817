// One numbered line of a note's entry list in the editor: the line number, the entry's text in
// a field the author edits in place, and a button that repeats the entry as a new line. The
// field accepts input only from the entry's author and only until the note's deadline; every
// accepted change is written into the entry and reported to the owning screen by name.
#pragma once

#include "kit/common/ZIQCommonTableViewCell.h"
#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"

class QLabel;
class QToolButton;

namespace platform {
class TextField;
}

class ZIQGroupNoteTextFieldCell : public ZIQCommonTableViewCell
{
    Q_OBJECT

public:
    explicit ZIQGroupNoteTextFieldCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// Shows a ZIQGroupNoteTextFieldCellData; other data leaves the row as it was.
    void fillWithData(const ZIQCommonCellDataPtr &data) override;
    /// The row data last filled in, or nullptr.
    ZIQGroupNoteTextFieldCellDataPtr cellData() const { return m_cellData; }

    QLabel *indexLabel() const { return m_indexLabel; }
    platform::TextField *textField() const { return m_textField; }
    QToolButton *repeatButton() const { return m_repeatButton; }

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyTheme();
    void layoutSubviews();
    bool isEditable() const;
    void textEdited(const QString &text);
    /// Delivers `action` with the row data to the screen owning this cell.
    void reportWithData(const QByteArray &action);

    QLabel *m_indexLabel;
    platform::TextField *m_textField;
    QToolButton *m_repeatButton;
    ZIQGroupNoteTextFieldCellDataPtr m_cellData;
};
