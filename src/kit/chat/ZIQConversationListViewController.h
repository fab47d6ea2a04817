// The user's chats, groups and one-to-one, latest activity first and kept live; tapping one
// opens its conversation screen on the navigation stack.
#pragma once

#include "kit/chat/ZIQChatConversation.h"
#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"
#include "platform/ViewController.h"

#include <QPointer>

#include <functional>

class V2VORManager;
class ZIQConversationList;

namespace platform {
class TableView;
}

class ZIQConversationListViewController : public platform::ViewController,
                                          public platform::TableViewDataSource,
                                          public platform::TableViewDelegate
{
    Q_OBJECT

public:
    /// Makes the screen of a chat the user opens; the list pushes it, and the stack owns it.
    using ChatFactory = std::function<platform::ViewController *(const ZIQChatConversation &conversation)>;

    /// The conversations of `client` (the shared client when null).
    explicit ZIQConversationListViewController(V2VORManager *client = nullptr, QObject *parent = nullptr);
    ~ZIQConversationListViewController() override;

    /// Without a factory, tapping a row only marks it read.
    void setChatFactory(ChatFactory factory) { m_chatFactory = std::move(factory); }

    ZIQConversationList *conversationList() const { return m_list; }
    /// The table of rows; null until the view is loaded.
    platform::TableView *tableView() const;

    /// Opens the chat of a row as a tap does; returns the screen pushed, or null.
    platform::ViewController *openRow(int row);

    int numberOfRows(platform::TableView *tableView, int section) const override;
    platform::TableViewCell *cellForRow(platform::TableView *tableView, const platform::IndexPath &path) override;
    void didSelectRow(platform::TableView *tableView, const platform::IndexPath &path) override;

protected:
    QWidget *loadView() override;
    void viewDidLoad() override;

private:
    void applyTheme();

    ZIQConversationList *m_list;
    QPointer<platform::TableView> m_tableView;
    ChatFactory m_chatFactory;
};
