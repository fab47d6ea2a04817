#include "platform/Toast.h"

#include "platform/MainQueue.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

#include <algorithm>

namespace platform {

namespace {

constexpr int EdgeMargin = 60;
constexpr int CornerRadius = 8;
constexpr int MaxWidth = 300;

/// Near-black on a light screen; on a dark one a raised grey that stands apart from dark rows,
/// nearly opaque so the text under it does not read through.
QColor background()
{
    const bool dark = QGuiApplication::palette().color(QPalette::Window).lightnessF() < 0.5;
    return dark ? QColor(72, 72, 74, 245) : QColor(0, 0, 0, 204);
}

} // namespace

Toast::Toast(const QString &text, ToastPosition position, QWidget *host)
    : QLabel(text, host)
    , m_position(position)
{
    setObjectName(QStringLiteral("toast"));
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setContentsMargins(14, 10, 14, 10);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    QPalette pal = palette();
    pal.setColor(QPalette::WindowText, Qt::white);
    setPalette(pal);
    if (host) {
        host->installEventFilter(this);
    } else {
        setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_ShowWithoutActivating);
    }
}

void Toast::showFor(int durationMs)
{
    place();
    show();
    raise();
    MainQueue::after(durationMs, this, [this] {
        hide();
        deleteLater();
    });
}

void Toast::paintEvent(QPaintEvent *event)
{
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(background());
        painter.drawRoundedRect(rect(), CornerRadius, CornerRadius);
    }
    QLabel::paintEvent(event);
}

bool Toast::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        place();
    return QLabel::eventFilter(watched, event);
}

void Toast::place()
{
    QRect area;
    if (QWidget *host = parentWidget())
        area = host->rect();
    else if (QScreen *screen = QGuiApplication::primaryScreen())
        area = screen->availableGeometry();

    const int width = std::min(MaxWidth, std::max(area.width() - 2 * EdgeMargin, 0));
    setFixedWidth(std::min(width, sizeHint().width()));
    const int height = heightForWidth(this->width());
    setFixedHeight(height > 0 ? height : sizeHint().height());

    const int x = area.x() + (area.width() - this->width()) / 2;
    int y = area.y() + (area.height() - this->height()) / 2;
    if (m_position == ToastPosition::Top)
        y = area.y() + EdgeMargin;
    else if (m_position == ToastPosition::Bottom)
        y = area.y() + area.height() - this->height() - EdgeMargin;
    move(x, y);
}

} // namespace platform
