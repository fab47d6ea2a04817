// Pictures of the demo for its documentation: the conversation list as the user first sees it,
// then a group chat opened from it, with its "more" panel when the chat screen has one, and the
// same chat scrolled to its latest note card.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class QWidget;
class ZIQConversationListViewController;

namespace platform {
class NavigationController;
}

class DemoScreenshots : public QObject
{
    Q_OBJECT

public:
    static constexpr int SettleMs = 600;

    DemoScreenshots(platform::NavigationController *navigation, ZIQConversationListViewController *list,
                    const QString &directory, QObject *parent = nullptr);

    /// Takes the pictures once the list has loaded, then calls `done` with whether all were written.
    void take(std::function<void(bool written)> done);
    /// Writes what `view` shows to `name` in `directory`; false (and a warning) when it cannot.
    static bool save(QWidget *view, const QString &directory, const QString &name);

private:
    void shootList();
    void shootChat();
    void shootNoteCard();
    bool save(const QString &name);
    void finish();

    QPointer<platform::NavigationController> m_navigation;
    QPointer<ZIQConversationListViewController> m_list;
    QString m_directory;
    std::function<void(bool)> m_done;
    bool m_ok = true;
};
