// Rounded corners on chosen corners of a widget: a mask that follows the widget's size, and the
// painter path for backgrounds that want the same outline drawn smooth.
#pragma once

#include <QFlags>
#include <QObject>
#include <QPainterPath>
#include <QRegion>

class QWidget;

namespace platform {

enum class Corner {
    TopLeft = 0x1,
    TopRight = 0x2,
    BottomLeft = 0x4,
    BottomRight = 0x8,
    All = TopLeft | TopRight | BottomLeft | BottomRight,
};
Q_DECLARE_FLAGS(Corners, Corner)

class CornerMask : public QObject
{
    Q_OBJECT

public:
    /// Masks `widget` to its rectangle with `corners` rounded by `radius`, again after every
    /// resize. A widget has at most one such mask: applying again updates it.
    static CornerMask *apply(QWidget *widget, Corners corners, qreal radius);
    /// Takes the mask off `widget`, if it has one: every corner is square again.
    static void remove(QWidget *widget);
    /// The mask `widget` carries, or nullptr.
    static CornerMask *of(const QWidget *widget);

    Corners corners() const { return m_corners; }
    qreal radius() const { return m_radius; }

    /// The outline of `rect` with `corners` rounded by `radius` (clamped to half the shorter
    /// side), for drawing with antialiasing.
    static QPainterPath roundedRectPath(const QRectF &rect, Corners corners, qreal radius);
    /// The pixels inside that outline: what a mask keeps.
    static QRegion roundedRectRegion(const QRect &rect, Corners corners, qreal radius);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit CornerMask(QWidget *widget);
    void update(Corners corners, qreal radius);
    void reapply();

    QWidget *m_widget;
    Corners m_corners;
    qreal m_radius = 0;
};

} // namespace platform

Q_DECLARE_OPERATORS_FOR_FLAGS(platform::Corners)
