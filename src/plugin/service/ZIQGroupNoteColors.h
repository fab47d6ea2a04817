// Colours of the note's views by theme key: the plug-in's theme module answers, else the default
// written beside each key.
#pragma once

#include "kit/chat/ZIQChatColors.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

namespace ZIQGroupNoteColors {

inline QColor color(const char *key, const char *defaultColor, int module = ZIQGroupNoteThemeModule)
{
    return ZIQTheme::dynamicColor(QString::fromLatin1(key), module, QString::fromLatin1(defaultColor));
}

/// The card's body, its entry table and a reaction strip joined under it.
inline QColor body()
{
    return color("group_note_body_bg_color", "#F9F9F9");
}

/// Fills `widget` with `color`. Inside a table's viewport a widget would otherwise take the
/// viewport's Base role for its background and ignore this colour.
inline void fillBackground(QWidget *widget, const QColor &color)
{
    widget->setAutoFillBackground(true);
    widget->setBackgroundRole(QPalette::Window);
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Window, color);
    widget->setPalette(palette);
}

/// Draws a label's text in `textColor`, whatever background it sits on.
inline void setTextColor(QWidget *label, const QColor &textColor)
{
    ZIQChatColors::setTextColor(label, textColor);
}

} // namespace ZIQGroupNoteColors
