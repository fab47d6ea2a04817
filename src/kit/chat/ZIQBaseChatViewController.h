// The conversation screen: the chat's messages as rows of a table, newest at the bottom, with
// the input bar (and its "more" panel) under them following the keyboard. Rows are built by the
// cell classes registered for the messages' kinds: each row is measured through its class
// before its cell is filled, and re-measured alone when its message, its reactions or its
// plug-in view change size. A long press on a message offers emoji reactions.
#pragma once

#include "kit/chat/ZIQChatConversation.h"
#include "kit/chat/ZIQChatInputMoreItems.h"
#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"
#include "platform/ViewController.h"

#include <QPointer>
#include <QSet>

class V2VORManager;
class ZIQChatInputController;
class ZIQChatMessageList;
class ZIQMessageCell;
class ZIQReactionMenu;

namespace platform {
class TableView;
struct Notification;
}

class ZIQBaseChatViewController : public platform::ViewController,
                                  private platform::TableViewDataSource,
                                  private platform::TableViewDelegate
{
    Q_OBJECT

public:
    /// A screen of `conversation` on `client` (the shared client when null).
    explicit ZIQBaseChatViewController(
        const ZIQChatConversation &conversation, V2VORManager *client = nullptr, QObject *parent = nullptr);
    ~ZIQBaseChatViewController() override;

    /// Registers the kit's own cells (text, system, unsupported) under their class names.
    static void registerKitCells();

    ZIQChatConversation conversation() const { return m_conversation; }
    ZIQChatMessageList *messageList() const { return m_messageList; }
    /// The input bar; built with the view.
    ZIQChatInputController *inputController();
    platform::TableView *tableView();
    ZIQReactionMenu *reactionMenu();

    /// When true, the next layout or new message scrolls the list to the bottom.
    bool needScrollToBottom() const { return m_needScrollToBottom; }
    void setNeedScrollToBottom(bool need);

    /// What the "more" panel asks its items with.
    ZIQChatInputMoreItemQuery moreItemQuery();

protected:
    QWidget *loadView() override;
    void viewDidLoad() override;
    void viewDidAppear(bool animated) override;
    void viewDidDisappear(bool animated) override;
    void viewDidLayoutSubviews() override;

private:
    // Table.
    int numberOfRows(platform::TableView *table, int section) const override;
    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &path) override;
    qreal heightForRow(platform::TableView *table, const platform::IndexPath &path) override;
    void didSelectRow(platform::TableView *table, const platform::IndexPath &path) override;
    void ensureCellKind(const QString &cellClassName);
    void connectCell(ZIQMessageCell *cell);

    // Message list.
    void rowsInserted(int first, int count);
    /// Re-measures and redraws one row; content on screen stays where it is.
    void reloadRow(int row);
    bool isAtBottom() const;
    void scrollToBottom();

    // User actions.
    void sendText(const QString &text);
    void showReactionMenu(const QString &msgID, const QRect &anchorInWindow);
    void react(const QString &msgID, const QString &emoji);
    void toggleReaction(const QString &msgID, const QString &emoji);
    void resend(const QString &msgID);
    void fillMorePanel();

    void keyboardChanged(const platform::Notification &notification, bool showing);
    void loadTitle();

    ZIQChatConversation m_conversation;
    V2VORManager *m_client;
    ZIQChatMessageList *m_messageList;
    // The table goes with the view, which a navigation stack may delete before its screens.
    QPointer<platform::TableView> m_tableView;
    ZIQChatInputController *m_inputController = nullptr;
    ZIQReactionMenu *m_reactionMenu = nullptr;
    QSet<QString> m_cellKinds;
    qreal m_keyboardHeight = 0;
    bool m_needScrollToBottom = true;
};
