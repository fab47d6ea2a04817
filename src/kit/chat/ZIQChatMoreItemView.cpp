#include "kit/chat/ZIQChatMoreItemView.h"

#include "kit/chat/ZIQChatColors.h"
#include "kit/chat/ZIQChatMorePanel.h"
#include "platform/SystemFont.h"

#include <QPainter>
#include <QPainterPath>

namespace {
constexpr qreal TileRadius = 12;
constexpr int TextFontSize = 12;
} // namespace

ZIQChatMoreItemView::ZIQChatMoreItemView(const QIcon &icon, const QString &text, QWidget *parent)
    : QAbstractButton(parent)
{
    setIcon(icon);
    setText(text);
    setAccessibleName(text);
    setFocusPolicy(Qt::NoFocus);
    ZIQTheme::bind(this, [this] { update(); });
}

void ZIQChatMoreItemView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int tile = ZIQChatMorePanel::TileSize;
    const QRectF tileRect((width() - tile) / 2.0, 0, tile, tile);
    QPainterPath path;
    path.addRoundedRect(tileRect, TileRadius, TileRadius);
    painter.fillPath(path, isDown() ? ZIQChatColors::moreTile().darker(110) : ZIQChatColors::moreTile());
    icon().paint(&painter, tileRect.toRect());
    painter.setFont(platform::SystemFont::regular(TextFontSize));
    painter.setPen(ZIQChatColors::secondaryText());
    const QRectF textRect(0, tile + 6, width(), height() - tile - 6);
    painter.drawText(textRect, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, text());
}
