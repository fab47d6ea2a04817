// The kit's switch row as the note's settings page draws it: on the page's own background,
// with a rule underneath and the switch filled in the plug-in's accent colour when on.
#pragma once

#include "kit/common/ZIQCommonSwitchCell.h"

class ZIQGroupNoteBottomLine;

class ZIQGroupNoteSwitchCell : public ZIQCommonSwitchCell
{
    Q_OBJECT

public:
    explicit ZIQGroupNoteSwitchCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    void fillWithData(const ZIQCommonCellDataPtr &data) override;

    QWidget *bottomLine() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void applyOnTint();

    ZIQGroupNoteBottomLine *m_bottomLine;
};
