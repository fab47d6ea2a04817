#include "plugin/editor/ZIQGroupNoteSwitchCell.h"

#include "kit/common/ZIQTheme.h"
#include "platform/Switch.h"
#include "plugin/editor/ZIQGroupNoteBottomLine.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QEvent>

ZIQGroupNoteSwitchCell::ZIQGroupNoteSwitchCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQCommonSwitchCell(reuseIdentifier, parent)
    , m_bottomLine(new ZIQGroupNoteBottomLine(contentView()))
{
    setBackgroundThemeColor({}, 0, {});
    // Bound after the kit's colours, so a theme change ends with the plug-in's tint.
    ZIQTheme::bind(
        this, [this] { applyOnTint(); }, ZIQTheme::Rebind::OnThemeChange);
}

void ZIQGroupNoteSwitchCell::fillWithData(const ZIQCommonCellDataPtr &data)
{
    ZIQCommonSwitchCell::fillWithData(data);
    applyOnTint();
}

QWidget *ZIQGroupNoteSwitchCell::bottomLine() const
{
    return m_bottomLine;
}

void ZIQGroupNoteSwitchCell::changeEvent(QEvent *event)
{
    ZIQCommonSwitchCell::changeEvent(event);
    // The kit re-applies its own tint on a palette change, before this handler runs.
    if (event->type() == QEvent::PaletteChange)
        applyOnTint();
}

void ZIQGroupNoteSwitchCell::applyOnTint()
{
    switcher()->setOnTintColor(ZIQTheme::dynamicColor(
        QStringLiteral("group_note_create_switch_fill_color"), ZIQGroupNoteThemeModule, QStringLiteral("#147AFF")));
}
