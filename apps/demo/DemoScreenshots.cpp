#include "DemoScreenshots.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/chat/ZIQConversationList.h"
#include "kit/chat/ZIQConversationListViewController.h"
#include "platform/MainQueue.h"
#include "platform/NavigationController.h"

#include <QDebug>
#include <QDir>
#include <QWidget>

DemoScreenshots::DemoScreenshots(platform::NavigationController *navigation, ZIQConversationListViewController *list,
                                 const QString &directory, QObject *parent)
    : QObject(parent)
    , m_navigation(navigation)
    , m_list(list)
    , m_directory(directory)
{
}

void DemoScreenshots::take(std::function<void(bool written)> done)
{
    m_done = std::move(done);
    if (!QDir().mkpath(m_directory)) {
        qWarning().noquote() << "cannot create" << m_directory;
        m_ok = false;
        finish();
        return;
    }
    // Faces arrive a turn or two after the rows; give them time before the picture.
    platform::MainQueue::after(SettleMs, this, [this] { shootList(); });
}

void DemoScreenshots::shootList()
{
    m_ok = save(QStringLiteral("demo-conversations.png")) && m_ok;
    ZIQConversationList *conversations = m_list ? m_list->conversationList() : nullptr;
    int row = -1;
    for (int i = 0; conversations && i < conversations->count() && row < 0; ++i) {
        if (conversations->at(i).conversation.isGroup())
            row = i;
    }
    if (row < 0 || !m_list->openRow(row)) {
        finish();
        return;
    }
    m_navigation->finishTransition();
    // The group chat is pictured with its "more" panel open.
    if (auto *chat = qobject_cast<ZIQBaseChatViewController *>(m_navigation->topViewController()))
        chat->inputController()->setMorePanelVisible(true);
    platform::MainQueue::after(SettleMs, this, [this] { shootChat(); });
}

void DemoScreenshots::shootChat()
{
    m_ok = save(QStringLiteral("demo-group-chat.png")) && m_ok;
    auto *chat = m_navigation ? qobject_cast<ZIQBaseChatViewController *>(m_navigation->topViewController()) : nullptr;
    if (!chat) {
        finish();
        return;
    }
    // Without the panel the chat has room for the note card and the tips lines under it.
    chat->setNeedScrollToBottom(true);
    chat->inputController()->setMorePanelVisible(false);
    platform::MainQueue::after(SettleMs, this, [this] { shootNoteCard(); });
}

void DemoScreenshots::shootNoteCard()
{
    m_ok = save(QStringLiteral("demo-note-card.png")) && m_ok;
    finish();
}

bool DemoScreenshots::save(const QString &name)
{
    return m_navigation && save(m_navigation->view(), m_directory, name);
}

bool DemoScreenshots::save(QWidget *view, const QString &directory, const QString &name)
{
    const QString path = QDir(directory).filePath(name);
    if (!view->grab().save(path)) {
        qWarning().noquote() << "cannot write" << path;
        return false;
    }
    return true;
}

void DemoScreenshots::finish()
{
    if (m_done)
        m_done(m_ok);
}
