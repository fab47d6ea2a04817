#include "platform/TextField.h"

#include "platform/Keyboard.h"
#include "platform/SystemFont.h"

#include <QKeyEvent>
#include <QPainter>
#include <QStyle>

namespace platform {

namespace {

// QLineEdit keeps this much room between its margins and the text; the margins given to it
// take it back, so that the text starts right where the padding view ends.
constexpr int LineEditInnerMargin = 2;

// A phone's body text and its grey placeholder (60, 60, 67 at 30 %).
constexpr int DefaultPointSize = 17;
const QColor DefaultPlaceholderColor(60, 60, 67, 77);

} // namespace

TextField::TextField(QWidget *parent)
    : QLineEdit(parent)
    , m_placeholderColor(DefaultPlaceholderColor)
{
    setFrame(false);
    setFont(SystemFont::regular(DefaultPointSize));
    QPalette pal = palette();
    pal.setColor(QPalette::Base, Qt::transparent);
    // QLineEdit's own placeholder stays invisible; paintPlaceholder() draws it in its own font.
    pal.setColor(QPalette::PlaceholderText, Qt::transparent);
    setPalette(pal);
    setTextAlignment(Alignment::Natural);
    updateMargins();
    connect(this, &QLineEdit::textEdited, this, &TextField::editingChanged);
    Keyboard::instance();
}

void TextField::setPlaceholderColor(const QColor &color)
{
    m_placeholderColor = color;
    update();
}

void TextField::setPlaceholderFont(const QFont &font)
{
    m_placeholderFont = font;
    update();
}

QColor TextField::textColor() const
{
    return palette().color(QPalette::Text);
}

void TextField::setTextColor(const QColor &color)
{
    QPalette pal = palette();
    pal.setColor(QPalette::Text, color);
    setPalette(pal);
}

void TextField::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    update();
}

void TextField::setCornerRadius(qreal radius)
{
    m_cornerRadius = radius;
    update();
}

void TextField::setLeftView(QWidget *view)
{
    replaceView(m_leftView, view);
}

void TextField::setRightView(QWidget *view)
{
    replaceView(m_rightView, view);
}

void TextField::replaceView(QPointer<QWidget> &slot, QWidget *view)
{
    QWidget *old = slot;
    slot = view;
    if (old && old != view && old != m_leftView && old != m_rightView)
        old->deleteLater();
    if (view) {
        view->setParent(this);
        view->setFocusPolicy(Qt::NoFocus);
        view->show();
    }
    updateMargins();
    placeViews();
}

void TextField::setTextAlignment(Alignment alignment)
{
    m_textAlignment = alignment;
    // Without AlignAbsolute Qt mirrors left and right for right-to-left text: that is Natural.
    switch (alignment) {
    case Alignment::Natural:
        setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
        break;
    case Alignment::Left:
        setAlignment(Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignVCenter);
        break;
    case Alignment::Center:
        setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        break;
    case Alignment::Right:
        setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
        break;
    }
}

bool TextField::becomeFirstResponder()
{
    if (!isEnabled() || !isVisible())
        return false;
    setFocus(Qt::OtherFocusReason);
    return window()->focusWidget() == this;
}

void TextField::resignFirstResponder()
{
    clearFocus();
}

void TextField::paintEvent(QPaintEvent *event)
{
    if (m_backgroundColor.alpha() > 0) {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_backgroundColor);
        painter.drawRoundedRect(QRectF(rect()), m_cornerRadius, m_cornerRadius);
    }
    QLineEdit::paintEvent(event);
    if (text().isEmpty() && !placeholderText().isEmpty()) {
        QPainter painter(this);
        paintPlaceholder(painter);
    }
}

void TextField::paintPlaceholder(QPainter &painter) const
{
    const int left = m_leftView ? m_leftView->width() : 0;
    const int right = m_rightView ? m_rightView->width() : 0;
    const QRect area = rect().adjusted(left, 0, -right, 0);
    const QFont font = placeholderFont();
    const QString shown = QFontMetrics(font).elidedText(placeholderText(), Qt::ElideRight, area.width());
    painter.setFont(font);
    painter.setPen(m_placeholderColor);
    const Qt::LayoutDirection direction = placeholderText().isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight;
    painter.drawText(area, int(QStyle::visualAlignment(direction, alignment())), shown);
}

void TextField::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    placeViews();
}

void TextField::keyPressEvent(QKeyEvent *event)
{
    QLineEdit::keyPressEvent(event);
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        resignFirstResponder();
}

void TextField::updateMargins()
{
    const int left = m_leftView ? m_leftView->width() : 0;
    const int right = m_rightView ? m_rightView->width() : 0;
    setTextMargins(left - LineEditInnerMargin, 0, right - LineEditInnerMargin, 0);
}

void TextField::placeViews()
{
    if (m_leftView)
        m_leftView->move(0, (height() - m_leftView->height()) / 2);
    if (m_rightView)
        m_rightView->move(width() - m_rightView->width(), (height() - m_rightView->height()) / 2);
}

} // namespace platform
