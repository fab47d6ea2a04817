#include "platform/TableViewCell.h"

#include <QPainter>
#include <QPainterPath>

namespace platform {

namespace {

constexpr int SeparatorInset = 16;
constexpr int ChevronTrailing = 16;
constexpr qreal ChevronWidth = 7;
constexpr qreal ChevronHeight = 12;
const QColor ChevronColor(0xC4, 0xC4, 0xC7);
const QColor HighlightColor(0, 0, 0, 0x14);

} // namespace

TableViewCell::TableViewCell(const QString &reuseIdentifier, QWidget *parent)
    : QWidget(parent)
    , m_reuseIdentifier(reuseIdentifier)
    , m_contentView(new QWidget(this))
{
    m_contentView->setObjectName(QStringLiteral("contentView"));
}

void TableViewCell::prepareForReuse()
{
    setHighlighted(false);
}

void TableViewCell::setAccessoryType(AccessoryType type)
{
    if (m_accessoryType == type)
        return;
    m_accessoryType = type;
    layoutContentView();
    update();
}

void TableViewCell::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void TableViewCell::setSeparatorColor(const QColor &color)
{
    if (m_separatorColor == color)
        return;
    m_separatorColor = color;
    update();
}

void TableViewCell::setHighlighted(bool highlighted)
{
    if (m_highlighted == highlighted)
        return;
    m_highlighted = highlighted;
    if (m_selectionStyle != SelectionStyle::None)
        update();
}

void TableViewCell::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (m_backgroundColor.isValid())
        painter.fillRect(rect(), m_backgroundColor);
    if (m_highlighted && m_selectionStyle != SelectionStyle::None)
        painter.fillRect(rect(), HighlightColor);
    if (m_separatorColor.isValid())
        painter.fillRect(QRect(SeparatorInset, height() - 1, width() - SeparatorInset, 1), m_separatorColor);
    if (m_accessoryType == AccessoryType::DisclosureIndicator) {
        const qreal right = width() - ChevronTrailing;
        const qreal middle = height() / 2.0;
        QPainterPath chevron({ right - ChevronWidth, middle - ChevronHeight / 2 });
        chevron.lineTo(right, middle);
        chevron.lineTo(right - ChevronWidth, middle + ChevronHeight / 2);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(ChevronColor, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPath(chevron);
    }
}

void TableViewCell::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutContentView();
}

void TableViewCell::layoutContentView()
{
    const int accessory = m_accessoryType == AccessoryType::None ? 0 : AccessoryWidth;
    m_contentView->setGeometry(0, 0, std::max(width() - accessory, 0), height());
}

} // namespace platform
