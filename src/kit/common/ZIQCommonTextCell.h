// A settings row naming a value: the key on the leading side, the value in grey on the trailing
// side, before a disclosure chevron when the row opens something. Pressing the row greys it, and
// a tap reports the row's action to the owning screen with the cell.
#pragma once

#include "kit/common/ZIQCommonTableViewCell.h"
#include "kit/common/ZIQCommonTextCellData.h"

class QHBoxLayout;
class QLabel;

class ZIQCommonTextCell : public ZIQCommonTableViewCell
{
    Q_OBJECT

public:
    explicit ZIQCommonTextCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// Shows a ZIQCommonTextCellData; other data leaves the labels as they were.
    void fillWithData(const ZIQCommonCellDataPtr &data) override;
    /// The text data last filled in, or nullptr.
    ZIQCommonTextCellDataPtr textData() const { return m_textData; }

    QLabel *keyLabel() const { return m_keyLabel; }
    QLabel *valueLabel() const { return m_valueLabel; }

private:
    void applyColors();

    QLabel *m_keyLabel;
    QLabel *m_valueLabel;
    QHBoxLayout *m_layout;
    ZIQCommonTextCellDataPtr m_textData;
};
