#include "plugin/editor/ZIQGroupNoteTextCell.h"

#include "plugin/editor/ZIQGroupNoteBottomLine.h"

ZIQGroupNoteTextCell::ZIQGroupNoteTextCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQCommonTextCell(reuseIdentifier, parent)
    , m_bottomLine(new ZIQGroupNoteBottomLine(contentView()))
{
    setBackgroundThemeColor({}, 0, {});
    setSelectionStyle(SelectionStyle::None);
}

QWidget *ZIQGroupNoteTextCell::bottomLine() const
{
    return m_bottomLine;
}
