#include "kit/chat/ZIQMessageStatusView.h"

#include "kit/chat/ZIQChatColors.h"
#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"
#include "platform/SystemFont.h"

#include <QPainter>
#include <cmath>

ZIQMessageStatusView::ZIQMessageStatusView(QWidget *parent)
    : QAbstractButton(parent)
{
    setObjectName(QStringLiteral("messageStatus"));
    setAccessibleName(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitChatResend")));
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    setFixedSize(Size, Size);
    hide();
}

void ZIQMessageStatusView::setStatus(ZIQMessageStatus status)
{
    m_status = status;
    setVisible(status != ZIQMessageStatus::Sent);
    setEnabled(status == ZIQMessageStatus::Failed);
    scheduleSpin();
    update();
}

void ZIQMessageStatusView::scheduleSpin()
{
    if (m_spinScheduled || m_status != ZIQMessageStatus::Sending)
        return;
    m_spinScheduled = true;
    platform::MainQueue::after(SpinnerFrameMs, this, [this] {
        m_spinScheduled = false;
        update();
        scheduleSpin();
    });
}

void ZIQMessageStatusView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(2, 2, -2, -2);
    if (m_status == ZIQMessageStatus::Failed) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(ZIQChatColors::failed());
        painter.drawEllipse(box);
        painter.setPen(Qt::white);
        painter.setFont(platform::SystemFont::bold(12));
        painter.drawText(box, Qt::AlignCenter, QStringLiteral("!"));
        return;
    }
    // One turn a second, in twelve steps, on the main queue's clock.
    const double turns = std::fmod(platform::MainQueue::now() / 1000.0, 1.0);
    const int startAngle = int(std::floor(turns * 12)) * 30 * 16;
    painter.setPen(QPen(ZIQChatColors::secondaryText(), 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(box, -startAngle, 270 * 16);
}
