#include "kit/chat/ZIQChatInputController.h"

#include "kit/chat/ZIQChatColors.h"
#include "kit/chat/ZIQChatMorePanel.h"
#include "kit/common/ZIQGlobalization.h"
#include "platform/Keyboard.h"
#include "platform/SystemFont.h"
#include "platform/TextField.h"

#include <QPainter>
#include <QPushButton>
#include <QToolButton>

namespace {
constexpr int Inset = 8;
constexpr int ButtonSize = 32;
constexpr int SendWidth = 56;

/// A "+" in a circle, drawn in `color`.
QIcon plusIcon(const QColor &color)
{
    QPixmap pixmap(ButtonSize * 2, ButtonSize * 2);
    pixmap.setDevicePixelRatio(2);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap));
    const QRectF circle(4, 4, ButtonSize - 8, ButtonSize - 8);
    painter.drawEllipse(circle);
    const QPointF c = circle.center();
    painter.drawLine(QPointF(c.x() - 6, c.y()), QPointF(c.x() + 6, c.y()));
    painter.drawLine(QPointF(c.x(), c.y() - 6), QPointF(c.x(), c.y() + 6));
    return QIcon(pixmap);
}
} // namespace

ZIQChatInputController::ZIQChatInputController(QWidget *parent)
    : QWidget(parent)
    , m_moreButton(new QToolButton(this))
    , m_textField(new platform::TextField(this))
    , m_sendButton(new QPushButton(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitChatSend")), this))
    , m_morePanel(new ZIQChatMorePanel(this))
{
    setObjectName(QStringLiteral("inputBar"));
    setAutoFillBackground(true);
    m_moreButton->setObjectName(QStringLiteral("moreButton"));
    m_moreButton->setAccessibleName(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitChatMore")));
    m_moreButton->setFocusPolicy(Qt::NoFocus);
    m_moreButton->setAutoRaise(true);
    m_moreButton->setIconSize(QSize(ButtonSize, ButtonSize));
    m_textField->setObjectName(QStringLiteral("inputTextField"));
    m_textField->setCornerRadius(8);
    m_sendButton->setObjectName(QStringLiteral("sendButton"));
    m_sendButton->setFocusPolicy(Qt::NoFocus);
    m_sendButton->setFont(platform::SystemFont::bold(15));
    m_sendButton->setFlat(true);
    m_morePanel->hide();
    connect(m_moreButton, &QToolButton::clicked, this, &ZIQChatInputController::toggleMorePanel);
    connect(m_sendButton, &QPushButton::clicked, this, &ZIQChatInputController::send);
    connect(m_textField, &QLineEdit::returnPressed, this, &ZIQChatInputController::send);
    ZIQTheme::bind(this, [this] { applyTheme(); });
}

void ZIQChatInputController::reset()
{
    m_textField->clear();
    setMorePanelVisible(false);
    m_textField->resignFirstResponder();
}

bool ZIQChatInputController::isMorePanelVisible() const
{
    return !m_morePanel->isHidden();
}

void ZIQChatInputController::setMorePanelVisible(bool visible)
{
    if (visible == isMorePanelVisible())
        return;
    if (visible) {
        // The panel takes the keyboard's place.
        m_textField->resignFirstResponder();
        Q_EMIT morePanelAboutToShow();
    }
    m_morePanel->setVisible(visible);
    layoutBar();
    Q_EMIT preferredHeightChanged();
}

int ZIQChatInputController::preferredHeight() const
{
    return BarHeight + (isMorePanelVisible() ? ZIQChatMorePanel::PanelHeight : 0);
}

void ZIQChatInputController::send()
{
    const QString text = m_textField->text();
    if (text.trimmed().isEmpty())
        return;
    m_textField->clear();
    Q_EMIT sendRequested(text);
}

void ZIQChatInputController::toggleMorePanel()
{
    setMorePanelVisible(!isMorePanelVisible());
}

void ZIQChatInputController::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutBar();
}

void ZIQChatInputController::layoutBar()
{
    const int w = width();
    const int buttonY = (BarHeight - ButtonSize) / 2;
    m_moreButton->setGeometry(Inset, buttonY, ButtonSize, ButtonSize);
    const int fieldX = Inset + ButtonSize + Inset;
    m_sendButton->setGeometry(w - Inset - SendWidth, buttonY, SendWidth, ButtonSize);
    m_textField->setGeometry(fieldX, Inset, w - fieldX - 2 * Inset - SendWidth, BarHeight - 2 * Inset);
    m_morePanel->setGeometry(0, BarHeight, w, ZIQChatMorePanel::PanelHeight);
}

void ZIQChatInputController::applyTheme()
{
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, ZIQChatColors::inputBar());
    setPalette(palette);
    m_textField->setBackgroundColor(ZIQChatColors::inputField());
    m_textField->setTextColor(ZIQChatColors::text());
    m_moreButton->setIcon(plusIcon(ZIQChatColors::text()));
    QPalette send = m_sendButton->palette();
    send.setColor(QPalette::ButtonText, ZIQChatColors::primary());
    m_sendButton->setPalette(send);
}
