#include "kit/chat/ZIQMessageCell.h"

#include "platform/MainQueue.h"
#include "platform/ViewController.h"

#include <QContextMenuEvent>
#include <QMouseEvent>

namespace {
/// How long a finger rests on a message before the emoji bar shows.
constexpr int LongPressMs = 500;
} // namespace

ZIQMessageCell::ZIQMessageCell(const QString &reuseIdentifier, QWidget *parent)
    : platform::TableViewCell(reuseIdentifier, parent)
{
}

void ZIQMessageCell::fillWithData(const ZIQMessageCellDataPtr &data)
{
    m_messageData = data;
}

platform::ViewController *ZIQMessageCell::mm_viewController() const
{
    return platform::ViewController::owning(this);
}

void ZIQMessageCell::mousePressEvent(QMouseEvent *event)
{
    platform::TableViewCell::mousePressEvent(event);
    if (event->button() != Qt::LeftButton)
        return;
    const quint64 generation = ++m_pressGeneration;
    platform::MainQueue::after(LongPressMs, this, [this, generation] {
        if (generation == m_pressGeneration)
            requestReactionMenu();
    });
}

void ZIQMessageCell::mouseReleaseEvent(QMouseEvent *event)
{
    ++m_pressGeneration;
    platform::TableViewCell::mouseReleaseEvent(event);
}

void ZIQMessageCell::contextMenuEvent(QContextMenuEvent *event)
{
    event->accept();
    requestReactionMenu();
}

void ZIQMessageCell::requestReactionMenu()
{
    if (!m_messageData || m_messageData->msgID().isEmpty())
        return;
    const QRect anchor = reactionAnchor();
    Q_EMIT reactionMenuRequested(m_messageData->msgID(), QRect(mapTo(window(), anchor.topLeft()), anchor.size()));
}
