// The chat screen's colours: theme keys of the kit's common module with the colours used when a
// theme does not name them.
#pragma once

#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"

#include <QPalette>
#include <QWidget>

namespace ZIQChatColors {

inline QColor color(const QString &key, const char *defaultHex)
{
    return ZIQTheme::dynamicColor(key, ZIQThemeModuleCommon, QString::fromLatin1(defaultHex));
}

inline QColor background() { return color(QStringLiteral("chat_bg_color"), "#EDEDED"); }
inline QColor incomingBubble() { return color(QStringLiteral("chat_bubble_incoming_bg_color"), "#FFFFFF"); }
inline QColor outgoingBubble() { return color(QStringLiteral("chat_bubble_outgoing_bg_color"), "#CDE3FF"); }
inline QColor text() { return color(QStringLiteral("chat_text_color"), "#000000"); }
inline QColor secondaryText() { return color(QStringLiteral("chat_secondary_text_color"), "#999999"); }
inline QColor failed() { return color(QStringLiteral("chat_failed_color"), "#FA5151"); }
inline QColor primary() { return color(QStringLiteral("primary_theme_color"), "#147AFF"); }
inline QColor inputBar() { return color(QStringLiteral("chat_input_bar_bg_color"), "#F7F7F7"); }
inline QColor inputField() { return color(QStringLiteral("chat_input_field_bg_color"), "#FFFFFF"); }
inline QColor moreTile() { return color(QStringLiteral("chat_more_tile_bg_color"), "#FFFFFF"); }
inline QColor reactionChip() { return color(QStringLiteral("chat_reaction_chip_bg_color"), "#E9E9EB"); }
inline QColor ownReactionChip() { return color(QStringLiteral("chat_reaction_chip_mine_bg_color"), "#B8D6FF"); }
inline QColor menu() { return color(QStringLiteral("chat_reaction_menu_bg_color"), "#FFFFFF"); }

/// Draws a label's text in `textColor` wherever it sits. A label left to itself takes its
/// foreground role from its parent's background role: inside a table's viewport that is Base,
/// so it would draw with Text and never with the WindowText set here.
inline void setTextColor(QWidget *label, const QColor &textColor)
{
    label->setForegroundRole(QPalette::WindowText);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, textColor);
    label->setPalette(palette);
}

} // namespace ZIQChatColors
