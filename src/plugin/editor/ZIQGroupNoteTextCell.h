// The kit's text row as the note's settings page draws it: on the page's own background, with
// a rule underneath and no grey flash when tapped.
#pragma once

#include "kit/common/ZIQCommonTextCell.h"

class ZIQGroupNoteBottomLine;

class ZIQGroupNoteTextCell : public ZIQCommonTextCell
{
    Q_OBJECT

public:
    explicit ZIQGroupNoteTextCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    QWidget *bottomLine() const;

private:
    ZIQGroupNoteBottomLine *m_bottomLine;
};
