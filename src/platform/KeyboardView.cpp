#include "platform/KeyboardView.h"

#include "platform/Screen.h"
#include "platform/SystemFont.h"

#include <QPainter>

namespace platform {

namespace {

constexpr qreal SuggestionBarHeight = 44;
constexpr qreal KeySpacing = 6;
constexpr qreal RowSpacing = 11;
constexpr qreal SideMargin = 3;
constexpr qreal KeyRadius = 5;
constexpr int KeysInFullRow = 10;

const QColor TrayColor(0xD1, 0xD3, 0xD9);
const QColor KeyColor(0xFF, 0xFF, 0xFF);
const QColor FunctionKeyColor(0xAB, 0xB0, 0xBA);
const QColor KeyShadowColor(0x89, 0x8A, 0x8D);
const QColor LabelColor(0x00, 0x00, 0x00);

const QStringList Letters[] = {
    { "Q", "W", "E", "R", "T", "Y", "U", "I", "O", "P" },
    { "A", "S", "D", "F", "G", "H", "J", "K", "L" },
    { "Z", "X", "C", "V", "B", "N", "M" },
};

} // namespace

KeyboardView::KeyboardView(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("keyboard"));
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(tr("Keyboard"));
}

void KeyboardView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), TrayColor);

    const qreal homeArea = Screen::safeAreaInsets().bottom();
    const QRectF keys = QRectF(rect()).adjusted(SideMargin, SuggestionBarHeight, -SideMargin, -homeArea - RowSpacing);
    const qreal rowHeight = (keys.height() - 3 * RowSpacing) / 4;
    const qreal keyWidth = (keys.width() - (KeysInFullRow - 1) * KeySpacing) / KeysInFullRow;
    auto row = [&](int index) {
        return QRectF(keys.left(), keys.top() + index * (rowHeight + RowSpacing), keys.width(), rowHeight);
    };

    paintRow(painter, Letters[0], row(0), keyWidth);
    paintRow(painter, Letters[1], row(1), keyWidth);
    paintRow(painter, Letters[2], row(2), keyWidth);
    const qreal wideKey = keyWidth * 1.3;
    paintKey(painter, QRectF(row(2).left(), row(2).top(), wideKey, rowHeight), QStringLiteral("⇧"), true);
    paintKey(painter, QRectF(row(2).right() - wideKey, row(2).top(), wideKey, rowHeight), QStringLiteral("⌫"), true);

    const QRectF bottom = row(3);
    const qreal returnWidth = keyWidth * 2.5;
    paintKey(painter, QRectF(bottom.left(), bottom.top(), returnWidth, rowHeight), QStringLiteral("123"), true);
    paintKey(painter, QRectF(bottom.right() - returnWidth, bottom.top(), returnWidth, rowHeight),
        QStringLiteral("return"), true);
    paintKey(painter, bottom.adjusted(returnWidth + KeySpacing, 0, -returnWidth - KeySpacing, 0),
        QStringLiteral("space"), false);
}

void KeyboardView::paintRow(QPainter &painter, const QStringList &keys, const QRectF &row, qreal keyWidth) const
{
    const qreal used = keys.size() * keyWidth + (keys.size() - 1) * KeySpacing;
    qreal x = row.left() + (row.width() - used) / 2;
    for (const QString &key : keys) {
        paintKey(painter, QRectF(x, row.top(), keyWidth, row.height()), key, false);
        x += keyWidth + KeySpacing;
    }
}

void KeyboardView::paintKey(QPainter &painter, const QRectF &key, const QString &label, bool function) const
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(KeyShadowColor);
    painter.drawRoundedRect(key.translated(0, 1), KeyRadius, KeyRadius);
    painter.setBrush(function ? FunctionKeyColor : KeyColor);
    painter.drawRoundedRect(key, KeyRadius, KeyRadius);
    painter.setPen(LabelColor);
    painter.setFont(SystemFont::regular(label.size() > 1 ? 15 : 22));
    painter.drawText(key, Qt::AlignCenter, label);
}

} // namespace platform
