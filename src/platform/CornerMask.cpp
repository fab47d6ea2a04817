#include "platform/CornerMask.h"

#include <QEvent>
#include <QPolygon>
#include <QWidget>

namespace platform {

CornerMask *CornerMask::apply(QWidget *widget, Corners corners, qreal radius)
{
    CornerMask *mask = of(widget);
    if (!mask)
        mask = new CornerMask(widget);
    mask->update(corners, radius);
    return mask;
}

void CornerMask::remove(QWidget *widget)
{
    if (CornerMask *mask = of(widget)) {
        delete mask;
        widget->clearMask();
    }
}

CornerMask *CornerMask::of(const QWidget *widget)
{
    return widget ? widget->findChild<CornerMask *>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

QPainterPath CornerMask::roundedRectPath(const QRectF &rect, Corners corners, qreal radius)
{
    const qreal r = std::clamp(radius, 0.0, std::min(rect.width(), rect.height()) / 2);
    const qreal d = 2 * r;
    auto cornerRadius = [&](Corner corner) { return corners.testFlag(corner) ? r : 0.0; };
    QPainterPath path;
    // Clockwise from the top-left, each rounded corner a quarter circle.
    path.moveTo(rect.left() + cornerRadius(Corner::TopLeft), rect.top());
    path.lineTo(rect.right() - cornerRadius(Corner::TopRight), rect.top());
    if (corners.testFlag(Corner::TopRight))
        path.arcTo(rect.right() - d, rect.top(), d, d, 90, -90);
    path.lineTo(rect.right(), rect.bottom() - cornerRadius(Corner::BottomRight));
    if (corners.testFlag(Corner::BottomRight))
        path.arcTo(rect.right() - d, rect.bottom() - d, d, d, 0, -90);
    path.lineTo(rect.left() + cornerRadius(Corner::BottomLeft), rect.bottom());
    if (corners.testFlag(Corner::BottomLeft))
        path.arcTo(rect.left(), rect.bottom() - d, d, d, 270, -90);
    path.lineTo(rect.left(), rect.top() + cornerRadius(Corner::TopLeft));
    if (corners.testFlag(Corner::TopLeft))
        path.arcTo(rect.left(), rect.top(), d, d, 180, -90);
    path.closeSubpath();
    return path;
}

QRegion CornerMask::roundedRectRegion(const QRect &rect, Corners corners, qreal radius)
{
    // A pixel belongs to the region when its centre lies inside the outline of the rectangle's
    // full extent (QRect's right and bottom are the last pixels, not the edges).
    const QRectF outline(rect.x(), rect.y(), rect.width(), rect.height());
    const QPolygonF polygon = roundedRectPath(outline, corners, radius).toFillPolygon();
    return QRegion(polygon.toPolygon(), Qt::WindingFill);
}

bool CornerMask::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_widget && event->type() == QEvent::Resize)
        reapply();
    return QObject::eventFilter(watched, event);
}

CornerMask::CornerMask(QWidget *widget)
    : QObject(widget)
    , m_widget(widget)
{
    widget->installEventFilter(this);
}

void CornerMask::update(Corners corners, qreal radius)
{
    m_corners = corners;
    m_radius = radius;
    reapply();
}

void CornerMask::reapply()
{
    m_widget->setMask(roundedRectRegion(m_widget->rect(), m_corners, m_radius));
}

} // namespace platform
