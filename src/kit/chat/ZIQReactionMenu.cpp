#include "kit/chat/ZIQReactionMenu.h"

#include "kit/chat/ZIQChatColors.h"
#include "platform/SystemFont.h"

#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

namespace {
constexpr int Inset = 4;
constexpr int Gap = 6;
} // namespace

ZIQReactionMenu::ZIQReactionMenu(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("reactionMenu"));
    for (int index = 0; index < emojis.size(); ++index) {
        auto *button = new QToolButton(this);
        button->setObjectName(QStringLiteral("reaction_%1").arg(index));
        button->setText(emojis[index]);
        button->setAccessibleName(emojis[index]);
        button->setFont(platform::SystemFont::regular(22));
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRaise(true);
        button->setGeometry(Inset + index * ButtonSize, Inset, ButtonSize, ButtonSize);
        connect(button, &QToolButton::clicked, this, [this, index] {
            hide();
            Q_EMIT chosen(m_msgID, emojis[index]);
        });
    }
    resize(int(emojis.size()) * ButtonSize + 2 * Inset, ButtonSize + 2 * Inset);
    hide();
}

void ZIQReactionMenu::showFor(const QString &msgID, const QRect &anchor)
{
    m_msgID = msgID;
    const int maxX = parentWidget() ? parentWidget()->width() - width() : 0;
    const int x = std::clamp(anchor.center().x() - width() / 2, 0, std::max(maxX, 0));
    const int above = anchor.top() - Gap - height();
    move(x, above >= 0 ? above : anchor.bottom() + Gap);
    raise();
    show();
}

void ZIQReactionMenu::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), height() / 2.0, height() / 2.0);
    painter.fillPath(path, ZIQChatColors::menu());
    painter.setPen(QPen(ZIQChatColors::secondaryText().lighter(130), 0.5));
    painter.drawPath(path);
}
