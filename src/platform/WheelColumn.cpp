#include "platform/WheelColumn.h"

#include "platform/MainQueue.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace platform {

namespace {

constexpr int TextMargin = 4;
constexpr qreal DragThreshold = 4;
constexpr qreal HairlinePoints = 0.5;
constexpr qreal BandInset = 8;
constexpr qreal BandRadius = 8;
constexpr qreal BandTint = 0.06;
constexpr qreal FadeAtEdge = 0.85;
constexpr qreal ShrinkAtEdge = 0.3;

} // namespace

WheelColumn::WheelColumn(QWidget *parent)
    : QWidget(parent)
    , m_font(font())
    , m_animation(new QVariantAnimation(this))
{
    setFocusPolicy(Qt::WheelFocus);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    m_animation->setDuration(ScrollDurationMs);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QVariantAnimation::valueChanged, this,
        [this](const QVariant &value) { setScrollPosition(value.toReal()); });
}

void WheelColumn::setRows(const QStringList &rows)
{
    m_rows = rows;
    m_animation->stop();
    ++m_scrollGeneration;
    m_currentRow = clampRow(m_currentRow);
    setScrollPosition(m_currentRow);
}

void WheelColumn::setCurrentRow(int row, bool animated)
{
    m_currentRow = clampRow(row);
    scrollTo(m_currentRow, animated);
}

void WheelColumn::setRowHeight(int height)
{
    m_rowHeight = std::max(height, 1);
    update();
}

void WheelColumn::setTextFont(const QFont &font)
{
    m_font = font;
    update();
}

void WheelColumn::setTextColor(const QColor &color)
{
    m_textColor = color;
    update();
}

void WheelColumn::setSelectedTextFont(const QFont &font)
{
    m_selectedFont = font;
    update();
}

void WheelColumn::setSelectedTextColor(const QColor &color)
{
    m_selectedTextColor = color;
    update();
}

void WheelColumn::setSelectedRowColor(const QColor &color)
{
    m_selectedRowColor = color;
    update();
}

void WheelColumn::setBandEdges(Qt::Edges edges)
{
    m_bandEdges = edges;
    update();
}

void WheelColumn::setSeparator(const QColor &color, qreal height)
{
    m_separatorColor = color;
    m_separatorHeight = height;
    update();
}

QFont WheelColumn::fittedFont(const QFont &font, const QString &text, int width)
{
    const qreal fullSize = font.pointSizeF() > 0 ? font.pointSizeF() : font.pixelSize();
    const bool inPixels = font.pointSizeF() <= 0;
    QFont fitted = font;
    const int available = std::max(width - 2 * TextMargin, 1);
    const int textWidth = QFontMetrics(font).horizontalAdvance(text);
    if (textWidth <= available)
        return fitted;
    const qreal size = std::max(fullSize * available / textWidth, fullSize / 2);
    if (inPixels)
        fitted.setPixelSize(std::max(qRound(size), 1));
    else
        fitted.setPointSizeF(size);
    return fitted;
}

void WheelColumn::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRectF band = selectedRowRect();
    paintBand(painter, band);
    paintRows(painter);
    paintSeparators(painter, band);
}

QRectF WheelColumn::selectedRowRect() const
{
    return QRectF(0, height() / 2.0 - m_rowHeight / 2.0, width(), m_rowHeight);
}

void WheelColumn::paintBand(QPainter &painter, const QRectF &band) const
{
    QColor color = m_selectedRowColor;
    if (!color.isValid()) {
        color = m_textColor;
        color.setAlphaF(color.alphaF() * BandTint);
    }
    // The band's rounded ends sit inside the wheels' outer edges; between two wheels it runs on
    // unbroken, so that a row of wheels shows one band.
    const qreal left = m_bandEdges & Qt::LeftEdge ? BandInset : -BandRadius;
    const qreal right = m_bandEdges & Qt::RightEdge ? width() - BandInset : width() + BandRadius;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.setClipRect(rect());
    painter.drawRoundedRect(QRectF(left, band.top(), right - left, band.height()), BandRadius, BandRadius);
    painter.restore();
}

void WheelColumn::paintRows(QPainter &painter) const
{
    painter.save();
    painter.setRenderHint(QPainter::TextAntialiasing);
    const qreal centre = height() / 2.0;
    const qreal halfHeight = std::max(centre, 1.0);
    const int selected = clampRow(qRound(m_position));
    const int reach = height() / (2 * m_rowHeight) + 2;
    const int first = std::max(0, static_cast<int>(std::floor(m_position)) - reach);
    const int last = std::min(static_cast<int>(m_rows.size()) - 1, static_cast<int>(std::ceil(m_position)) + reach);
    for (int row = first; row <= last; ++row) {
        const qreal offset = (row - m_position) * m_rowHeight;
        // How far the row has turned away from the viewer, 0 on the centre line, 1 at the edge:
        // rows fade and flatten as on a drum seen from the front.
        const qreal turn = std::min(std::abs(offset) / halfHeight, 1.0);
        const bool isSelected = row == selected;
        const QFont &base = isSelected && m_selectedFont != QFont() ? m_selectedFont : m_font;
        QColor color = isSelected && m_selectedTextColor.isValid() ? m_selectedTextColor : m_textColor;
        color.setAlphaF(color.alphaF() * (1.0 - FadeAtEdge * std::pow(turn, 0.8)));
        painter.setTransform(QTransform::fromTranslate(width() / 2.0, centre + offset)
                .scale(1.0 - ShrinkAtEdge * turn / 3, 1.0 - ShrinkAtEdge * turn));
        painter.setFont(fittedFont(base, m_rows.at(row), width()));
        painter.setPen(color);
        painter.drawText(QRectF(-width() / 2.0, -m_rowHeight / 2.0, width(), m_rowHeight), Qt::AlignCenter,
            m_rows.at(row));
    }
    painter.restore();
}

void WheelColumn::paintSeparators(QPainter &painter, const QRectF &band) const
{
    if (!m_separatorColor.isValid())
        return;
    // Whole device pixels: a half-pixel line drawn without anti-aliasing lands on no pixel at some
    // row heights and scales, and with anti-aliasing it blurs over two.
    // The painter's own scale, not the widget's: grabs and renders may paint at another ratio.
    const qreal ratio = std::max(painter.deviceTransform().m22(), 1e-3);
    const qreal points = m_separatorHeight > 0 ? m_separatorHeight : HairlinePoints;
    const int thickness = std::max(1, qRound(points * ratio));
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const qreal edge : { band.top(), band.bottom() }) {
        const int top = qRound(edge * ratio - thickness / 2.0);
        painter.fillRect(QRectF(0, top / ratio, width(), thickness / ratio), m_separatorColor);
    }
    painter.restore();
}

void WheelColumn::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    m_animation->stop();
    ++m_scrollGeneration;
    m_pressed = true;
    m_dragged = false;
    m_pressY = event->position().y();
    m_pressPosition = m_position;
}

void WheelColumn::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return QWidget::mouseMoveEvent(event);
    const qreal dy = event->position().y() - m_pressY;
    if (std::abs(dy) > DragThreshold)
        m_dragged = true;
    if (!m_dragged)
        return;
    const qreal lastRow = std::max<qreal>(m_rows.size() - 1, 0);
    setScrollPosition(std::clamp(m_pressPosition - dy / m_rowHeight, -0.5, lastRow + 0.5));
}

void WheelColumn::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_pressed || event->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(event);
    m_pressed = false;
    // A drag settles on the row nearest the centre line; a tap turns the tapped row to it.
    selectByUser(m_dragged ? settledRow() : rowAt(event->position().y()));
}

void WheelColumn::wheelEvent(QWheelEvent *event)
{
    m_wheelDelta += event->angleDelta().y();
    const int steps = m_wheelDelta / QWheelEvent::DefaultDeltasPerStep;
    m_wheelDelta %= QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0)
        selectByUser(m_currentRow - steps);
    event->accept();
}

void WheelColumn::keyPressEvent(QKeyEvent *event)
{
    const int page = std::max(height() / m_rowHeight, 1);
    switch (event->key()) {
    case Qt::Key_Up:
        return selectByUser(m_currentRow - 1);
    case Qt::Key_Down:
        return selectByUser(m_currentRow + 1);
    case Qt::Key_PageUp:
        return selectByUser(m_currentRow - page);
    case Qt::Key_PageDown:
        return selectByUser(m_currentRow + page);
    case Qt::Key_Home:
        return selectByUser(0);
    case Qt::Key_End:
        return selectByUser(static_cast<int>(m_rows.size()) - 1);
    default:
        QWidget::keyPressEvent(event);
    }
}

int WheelColumn::clampRow(int row) const
{
    return std::clamp(row, 0, std::max(static_cast<int>(m_rows.size()) - 1, 0));
}

int WheelColumn::rowAt(qreal y) const
{
    return clampRow(qRound(m_position + (y - height() / 2.0) / m_rowHeight));
}

int WheelColumn::settledRow() const
{
    // The nearest row; a wheel left exactly halfway has not passed the middle and turns back.
    const qreal offset = m_position - m_currentRow;
    const int steps = static_cast<int>(std::ceil(std::abs(offset) - 0.5));
    return clampRow(m_currentRow + (offset < 0 ? -steps : steps));
}

void WheelColumn::scrollTo(int row, bool animated)
{
    const quint64 generation = ++m_scrollGeneration;
    m_animation->stop();
    if (!animated || qFuzzyCompare(m_position + 1, row + 1.0)) {
        setScrollPosition(row);
        return;
    }
    m_animation->setStartValue(m_position);
    m_animation->setEndValue(static_cast<qreal>(row));
    m_animation->start();
    // The main queue settles the wheel even where animations do not run on their own (manual clocks).
    MainQueue::after(ScrollDurationMs, this, [this, generation, row] {
        if (generation != m_scrollGeneration)
            return;
        m_animation->stop();
        setScrollPosition(row);
    });
}

void WheelColumn::selectByUser(int row)
{
    row = clampRow(row);
    scrollTo(row, true);
    if (m_rows.isEmpty() || row == m_currentRow)
        return;
    m_currentRow = row;
    Q_EMIT userSelectedRow(row);
}

void WheelColumn::setScrollPosition(qreal position)
{
    m_position = position;
    update();
}

} // namespace platform
