// A settings row with a title on the leading side and an on/off switch on the trailing side.
// When the user flips the switch, the row's data follows and the row's action is reported to
// the owning screen with the cell, which the screen asks for the new state.
#pragma once

#include "kit/common/ZIQCommonSwitchCellData.h"
#include "kit/common/ZIQCommonTableViewCell.h"

class QLabel;

namespace platform {
class Switch;
}

class ZIQCommonSwitchCell : public ZIQCommonTableViewCell
{
    Q_OBJECT

public:
    explicit ZIQCommonSwitchCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// Shows a ZIQCommonSwitchCellData; other data leaves the title and switch as they were.
    void fillWithData(const ZIQCommonCellDataPtr &data) override;
    /// The switch data last filled in, or nullptr.
    ZIQCommonSwitchCellDataPtr switchData() const { return m_switchData; }

    QLabel *titleLabel() const { return m_titleLabel; }
    platform::Switch *switcher() const { return m_switcher; }

private:
    void applyColors();
    void switchFlipped(bool on);

    QLabel *m_titleLabel;
    platform::Switch *m_switcher;
    ZIQCommonSwitchCellDataPtr m_switchData;
};
