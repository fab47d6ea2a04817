#include "kit/chat/ZIQBaseChatViewController.h"

#include "kit/chat/ZIQBubbleMessageCell.h"
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatColors.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/chat/ZIQChatMorePanel.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/chat/ZIQReactionMenu.h"
#include "kit/chat/ZIQSystemMessageCell.h"
#include "kit/chat/ZIQTextMessageCell.h"
#include "kit/chat/ZIQTextMessageCellData.h"
#include "kit/chat/ZIQUnsupportedMessageCell.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/Keyboard.h"
#include "platform/NavigationController.h"
#include "platform/NotificationCenter.h"
#include "platform/Screen.h"
#include "platform/TableView.h"
#include "platform/TextField.h"
#include "sdk/V2VORManager.h"

using platform::IndexPath;

namespace {
/// How many messages a page of history holds.
constexpr int PageSize = 20;
/// Within this distance of the bottom the list counts as scrolled to the bottom.
constexpr qreal BottomSlack = 4;
} // namespace

ZIQBaseChatViewController::ZIQBaseChatViewController(
    const ZIQChatConversation &conversation, V2VORManager *client, QObject *parent)
    : platform::ViewController(parent)
    , m_conversation(conversation)
    , m_client(client ? client : V2VORManager::sharedInstance())
    , m_messageList(new ZIQChatMessageList(conversation, m_client, this))
{
    registerKitCells();
    setExtendsUnderNavigationBar(false);
    connect(m_messageList, &ZIQChatMessageList::rowsInserted, this, &ZIQBaseChatViewController::rowsInserted);
    connect(m_messageList, &ZIQChatMessageList::rowChanged, this, &ZIQBaseChatViewController::reloadRow);
    connect(m_messageList, &ZIQChatMessageList::rowSizeInvalidated, this, &ZIQBaseChatViewController::reloadRow);
    auto &center = platform::NotificationCenter::defaultCenter();
    center.addObserver(this, platform::KeyboardWillShowNotification,
        [this](const platform::Notification &notification) { keyboardChanged(notification, true); });
    center.addObserver(this, platform::KeyboardWillHideNotification,
        [this](const platform::Notification &notification) { keyboardChanged(notification, false); });
}

ZIQBaseChatViewController::~ZIQBaseChatViewController()
{
    platform::NotificationCenter::defaultCenter().removeObserver(this);
    if (m_tableView) {
        m_tableView->setDataSource(nullptr);
        m_tableView->setDelegate(nullptr);
    }
}

void ZIQBaseChatViewController::registerKitCells()
{
    auto &registry = ZIQChatClassRegistry::instance();
    if (registry.cellClass(ZIQChatClassRegistry::textCellName))
        return;
    registry.registerCellClass<ZIQTextMessageCell>();
    registry.registerCellClass<ZIQSystemMessageCell>();
    registry.registerCellClass<ZIQUnsupportedMessageCell>();
}

ZIQChatInputController *ZIQBaseChatViewController::inputController()
{
    view();
    return m_inputController;
}

platform::TableView *ZIQBaseChatViewController::tableView()
{
    view();
    return m_tableView;
}

ZIQReactionMenu *ZIQBaseChatViewController::reactionMenu()
{
    view();
    return m_reactionMenu;
}

void ZIQBaseChatViewController::setNeedScrollToBottom(bool need)
{
    m_needScrollToBottom = need;
    if (need && isViewLoaded())
        setNeedsLayout();
}

ZIQChatInputMoreItemQuery ZIQBaseChatViewController::moreItemQuery()
{
    ZIQChatInputMoreItemQuery query;
    query.groupID = m_conversation.groupID;
    query.filterGroupNote = false;
    query.chatScreen = this;
    query.navigationController = navigationController();
    return query;
}

QWidget *ZIQBaseChatViewController::loadView()
{
    auto *root = new QWidget;
    root->setObjectName(QStringLiteral("chatView"));
    root->setAutoFillBackground(true);
    m_tableView = new platform::TableView(root);
    m_tableView->setObjectName(QStringLiteral("messageTable"));
    m_inputController = new ZIQChatInputController(root);
    m_reactionMenu = new ZIQReactionMenu(root);
    return root;
}

void ZIQBaseChatViewController::viewDidLoad()
{
    m_tableView->setDataSource(this);
    m_tableView->setDelegate(this);
    connect(m_inputController, &ZIQChatInputController::sendRequested, this, &ZIQBaseChatViewController::sendText);
    connect(m_inputController, &ZIQChatInputController::morePanelAboutToShow, this,
        &ZIQBaseChatViewController::fillMorePanel);
    connect(m_inputController, &ZIQChatInputController::preferredHeightChanged, this, [this] {
        const bool atBottom = isAtBottom();
        layoutIfNeeded();
        viewDidLayoutSubviews();
        if (atBottom)
            scrollToBottom();
    });
    connect(m_reactionMenu, &ZIQReactionMenu::chosen, this, &ZIQBaseChatViewController::react);
    ZIQTheme::bind(this, [this] {
        QPalette palette = view()->palette();
        palette.setColor(QPalette::Window, ZIQChatColors::background());
        view()->setPalette(palette);
        m_tableView->setBackgroundColor(ZIQChatColors::background());
    });
    loadTitle();
    m_messageList->loadMessages(PageSize);
}

void ZIQBaseChatViewController::viewDidAppear(bool)
{
    ZIQChatService::instance()->setCurrentChat(m_messageList);
    m_messageList->markRead();
}

void ZIQBaseChatViewController::viewDidDisappear(bool)
{
    // Covered by a screen pushed over it (a plug-in's editor), the chat stays the one messages
    // are sent into, so what that screen sends shows here; only leaving the stack ends that.
    const platform::NavigationController *navigation = navigationController();
    const bool covered = navigation && navigation->viewControllers().contains(this);
    if (!covered && ZIQChatService::instance()->currentChat() == m_messageList)
        ZIQChatService::instance()->setCurrentChat(nullptr);
    m_reactionMenu->hide();
}

void ZIQBaseChatViewController::viewDidLayoutSubviews()
{
    const QRect bounds = view()->rect();
    const int safeBottom = int(platform::Screen::safeAreaInsets().bottom());
    // The keyboard covers the home area; the bar then stands right on the keyboard.
    const int below = m_keyboardHeight > 0 ? int(m_keyboardHeight) : safeBottom;
    const int barHeight = m_inputController->preferredHeight();
    const int barTop = bounds.height() - below - barHeight;
    m_inputController->setGeometry(0, barTop, bounds.width(), bounds.height() - barTop);
    m_tableView->setGeometry(0, 0, bounds.width(), std::max(barTop, 0));
    if (m_needScrollToBottom && m_messageList->count() > 0) {
        m_needScrollToBottom = false;
        scrollToBottom();
    }
}

int ZIQBaseChatViewController::numberOfRows(platform::TableView *, int) const
{
    return m_messageList->count();
}

qreal ZIQBaseChatViewController::heightForRow(platform::TableView *, const IndexPath &path)
{
    const ZIQMessageCellDataPtr data = m_messageList->cellData(path.row);
    if (!data)
        return 0;
    auto bubble = std::dynamic_pointer_cast<ZIQBubbleMessageCellData>(data);
    // The reaction strip is room the chat adds to the bubble's own content.
    if (bubble)
        bubble->setMessageContainerAppendSize(ZIQBubbleMessageCell::reactionAppendSize(data->reactions()));
    const QSizeF content = m_messageList->contentSize(path.row);
    if (bubble)
        return ZIQBubbleMessageCell::rowHeight(*bubble, content);
    if (qobject_cast<ZIQSystemMessageCellData *>(data.get()))
        return ZIQSystemMessageCell::rowHeight(content.isValid() ? content : QSizeF(0, 0));
    return content.isValid() ? content.height() : 0;
}

void ZIQBaseChatViewController::ensureCellKind(const QString &cellClassName)
{
    if (m_cellKinds.contains(cellClassName))
        return;
    m_cellKinds.insert(cellClassName);
    m_tableView->registerCell(cellClassName, [cellClassName](const QString &identifier) -> platform::TableViewCell * {
        const auto *cellClass = ZIQChatClassRegistry::instance().cellClass(cellClassName);
        QObject *made = cellClass && cellClass->metaObject
            ? cellClass->metaObject->newInstance(Q_ARG(QString, identifier))
            : nullptr;
        if (auto *cell = qobject_cast<ZIQMessageCell *>(made))
            return cell;
        // A class the chat cannot build keeps its row's room, drawn as an empty bubble.
        delete made;
        return new ZIQBubbleMessageCell(identifier);
    });
}

platform::TableViewCell *ZIQBaseChatViewController::cellForRow(platform::TableView *table, const IndexPath &path)
{
    const ZIQMessageCellDataPtr data = m_messageList->cellData(path.row);
    if (!data)
        return nullptr;
    ensureCellKind(data->cellClassName());
    auto *cell = qobject_cast<ZIQMessageCell *>(table->dequeueReusableCell(data->cellClassName()));
    if (!cell)
        return nullptr;
    connectCell(cell);
    cell->setContentSize(m_messageList->contentSize(path.row));
    cell->setCurrentUserID(m_client ? m_client->getLoginUser() : QString());
    cell->fillWithData(data);
    return cell;
}

void ZIQBaseChatViewController::connectCell(ZIQMessageCell *cell)
{
    connect(cell, &ZIQMessageCell::reactionMenuRequested, this, &ZIQBaseChatViewController::showReactionMenu,
        Qt::UniqueConnection);
    if (auto *bubble = qobject_cast<ZIQBubbleMessageCell *>(cell)) {
        connect(bubble, &ZIQBubbleMessageCell::resendRequested, this, &ZIQBaseChatViewController::resend,
            Qt::UniqueConnection);
        connect(bubble, &ZIQBubbleMessageCell::reactionToggled, this, &ZIQBaseChatViewController::toggleReaction,
            Qt::UniqueConnection);
    }
}

void ZIQBaseChatViewController::didSelectRow(platform::TableView *table, const IndexPath &path)
{
    m_reactionMenu->hide();
    m_inputController->setMorePanelVisible(false);
    platform::Keyboard::endEditing(view());
    auto *cell = qobject_cast<ZIQSystemMessageCell *>(table->cellForRow(path));
    if (!cell || !cell->pluginMsgSelectCallback)
        return;
    cell->pluginMsgSelectCallback({
        { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell, QVariant::fromValue<QObject *>(cell) },
        { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC,
            QVariant::fromValue<QObject *>(navigationController()) },
    });
}

void ZIQBaseChatViewController::rowsInserted(int first, int count)
{
    if (!m_tableView)
        return;
    const bool atBottom = isAtBottom();
    const qreal offset = m_tableView->contentOffset().y();
    QList<IndexPath> paths;
    for (int row = first; row < first + count; ++row)
        paths.append({ 0, row });
    m_tableView->insertRows(paths);
    const bool onTop = first == 0 && count < m_messageList->count();
    if (onTop) {
        // Older history arrived above: what was on screen stays on screen.
        m_tableView->setContentOffset({ 0, offset + m_tableView->rectForRow({ 0, count }).top() });
        return;
    }
    const ZIQMessageCellDataPtr last = m_messageList->cellData(first + count - 1);
    const bool own = last && last->direction() == ZIQMessageDirection::Outgoing;
    if (m_needScrollToBottom || atBottom || own) {
        m_needScrollToBottom = false;
        scrollToBottom();
    }
}

void ZIQBaseChatViewController::reloadRow(int row)
{
    if (!m_tableView)
        return;
    const IndexPath path { 0, row };
    const bool atBottom = isAtBottom();
    const qreal offset = m_tableView->contentOffset().y();
    const QRectF before = m_tableView->rectForRow(path);
    m_tableView->reloadRows({ path });
    if (atBottom) {
        scrollToBottom();
    } else if (before.bottom() <= offset) {
        // A row above the screen grew or shrank: move by as much, so the content on screen stays.
        m_tableView->setContentOffset({ 0, offset + m_tableView->rectForRow(path).height() - before.height() });
    }
}

bool ZIQBaseChatViewController::isAtBottom() const
{
    if (!m_tableView)
        return true;
    const qreal maxOffset = m_tableView->contentSize().height() - m_tableView->viewport()->height();
    return m_tableView->contentOffset().y() >= maxOffset - BottomSlack;
}

void ZIQBaseChatViewController::scrollToBottom()
{
    if (m_tableView)
        m_tableView->setContentOffset({ 0, m_tableView->contentSize().height() });
}

void ZIQBaseChatViewController::sendText(const QString &text)
{
    m_needScrollToBottom = true;
    m_messageList->sendTextMessage(text);
}

void ZIQBaseChatViewController::showReactionMenu(const QString &msgID, const QRect &anchorInWindow)
{
    const QPoint topLeft = view()->mapFrom(view()->window(), anchorInWindow.topLeft());
    m_reactionMenu->showFor(msgID, QRect(topLeft, anchorInWindow.size()));
}

void ZIQBaseChatViewController::react(const QString &msgID, const QString &emoji)
{
    m_messageList->setReaction(msgID, emoji);
}

void ZIQBaseChatViewController::toggleReaction(const QString &msgID, const QString &emoji)
{
    const ZIQMessageCellDataPtr data = m_messageList->cellData(m_messageList->rowOfMessage(msgID));
    if (!data || !m_client)
        return;
    const bool mine = data->reactions().emojiOf(m_client->getLoginUser()) == emoji;
    m_messageList->setReaction(msgID, mine ? QString() : emoji);
}

void ZIQBaseChatViewController::resend(const QString &msgID)
{
    const ZIQMessageCellDataPtr data = m_messageList->cellData(m_messageList->rowOfMessage(msgID));
    const V2VORMessagePtr failed = data ? data->innerMessage() : nullptr;
    if (!failed || !m_client || data->status() != ZIQMessageStatus::Failed)
        return;
    // A failed message goes again as a new message at the bottom; the failed row stays.
    if (failed->elemType() == V2VOR_ELEM_TYPE_TEXT)
        m_messageList->sendTextMessage(failed->text());
    else if (failed->customElem())
        m_messageList->sendMessage(m_client->createCustomMessage(failed->customElem()->data), {});
}

void ZIQBaseChatViewController::fillMorePanel()
{
    const ZIQChatInputMoreItemQuery query = moreItemQuery();
    m_inputController->morePanel()->setItems(
        ZIQChatInputMoreItems::getItems(query), ZIQChatInputMoreItems::parameters(query));
}

void ZIQBaseChatViewController::keyboardChanged(const platform::Notification &notification, bool showing)
{
    const QRectF end = notification.userInfo.value(platform::KeyboardFrameEndUserInfoKey).toRectF();
    m_keyboardHeight = showing ? end.height() : 0;
    if (showing)
        m_inputController->setMorePanelVisible(false);
    if (!isViewLoaded())
        return;
    const bool atBottom = isAtBottom();
    viewDidLayoutSubviews();
    if (atBottom)
        scrollToBottom();
}

void ZIQBaseChatViewController::loadTitle()
{
    if (!m_client)
        return;
    QPointer<ZIQBaseChatViewController> self(this);
    if (m_conversation.isGroup()) {
        setTitle(m_conversation.groupID);
        m_client->getGroupsInfo({ m_conversation.groupID }, [self](const QList<V2VORGroupInfo> &groups) {
            if (self && !groups.isEmpty() && !groups.first().groupName.isEmpty())
                self->setTitle(groups.first().groupName);
        }, {});
        return;
    }
    setTitle(m_conversation.userID);
    m_client->getUsersInfo({ m_conversation.userID }, [self](const QList<V2VORUserFullInfo> &users) {
        if (self && !users.isEmpty() && !users.first().nickName.isEmpty())
            self->setTitle(users.first().nickName);
    }, {});
}
