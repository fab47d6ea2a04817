#include "kit/chat/ZIQBubbleView.h"

#include <QPainter>
#include <QPainterPath>

ZIQBubbleView::ZIQBubbleView(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ZIQBubbleView::setColor(const QColor &color)
{
    m_color = color;
    update();
}

void ZIQBubbleView::setOutgoing(bool outgoing)
{
    m_outgoing = outgoing;
    update();
}

QPainterPath ZIQBubbleView::bubblePath(const QRectF &rect, bool outgoing)
{
    const qreal big = std::min({ CornerRadius, rect.width() / 2, rect.height() / 2 });
    const qreal small = std::min(SenderCornerRadius, big);
    const qreal topLeft = outgoing ? big : small;
    const qreal topRight = outgoing ? small : big;
    QPainterPath path;
    path.moveTo(rect.left() + topLeft, rect.top());
    path.lineTo(rect.right() - topRight, rect.top());
    path.arcTo(rect.right() - 2 * topRight, rect.top(), 2 * topRight, 2 * topRight, 90, -90);
    path.lineTo(rect.right(), rect.bottom() - big);
    path.arcTo(rect.right() - 2 * big, rect.bottom() - 2 * big, 2 * big, 2 * big, 0, -90);
    path.lineTo(rect.left() + big, rect.bottom());
    path.arcTo(rect.left(), rect.bottom() - 2 * big, 2 * big, 2 * big, 270, -90);
    path.lineTo(rect.left(), rect.top() + topLeft);
    path.arcTo(rect.left(), rect.top(), 2 * topLeft, 2 * topLeft, 180, -90);
    path.closeSubpath();
    return path;
}

void ZIQBubbleView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(bubblePath(QRectF(rect()), m_outgoing), m_color);
}
