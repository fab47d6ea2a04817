#include "kit/chat/ZIQConversationListViewController.h"

#include "kit/chat/ZIQConversationCell.h"
#include "kit/chat/ZIQConversationList.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/NavigationController.h"
#include "platform/TableView.h"

namespace {

const QString CellIdentifier = QStringLiteral("ZIQConversationCell");

} // namespace

ZIQConversationListViewController::ZIQConversationListViewController(V2VORManager *client, QObject *parent)
    : ViewController(parent)
    , m_list(new ZIQConversationList(client, this))
{
    setExtendsUnderNavigationBar(false);
}

platform::TableView *ZIQConversationListViewController::tableView() const
{
    return m_tableView;
}

ZIQConversationListViewController::~ZIQConversationListViewController()
{
    // The table must not ask a half-destroyed data source for rows. When a navigation stack
    // goes, its views (this table among them) are deleted before its child controllers, so the
    // table is held weakly.
    if (m_tableView) {
        m_tableView->setDataSource(nullptr);
        m_tableView->setDelegate(nullptr);
    }
}

platform::ViewController *ZIQConversationListViewController::openRow(int row)
{
    const ZIQChatConversation conversation = m_list->openConversation(row);
    if (!conversation.isValid() || !m_chatFactory)
        return nullptr;
    platform::ViewController *screen = m_chatFactory(conversation);
    if (screen && navigationController())
        navigationController()->pushViewController(screen, true);
    return screen;
}

int ZIQConversationListViewController::numberOfRows(platform::TableView *, int) const
{
    return m_list->count();
}

platform::TableViewCell *ZIQConversationListViewController::cellForRow(
    platform::TableView *tableView, const platform::IndexPath &path)
{
    auto *cell = static_cast<ZIQConversationCell *>(tableView->dequeueReusableCell(CellIdentifier));
    cell->fill(m_list->at(path.row));
    return cell;
}

void ZIQConversationListViewController::didSelectRow(platform::TableView *, const platform::IndexPath &path)
{
    openRow(path.row);
}

QWidget *ZIQConversationListViewController::loadView()
{
    m_tableView = new platform::TableView;
    m_tableView->setObjectName(QStringLiteral("conversationListTable"));
    m_tableView->setRowHeight(ZIQConversationCell::RowHeight);
    m_tableView->registerCell<ZIQConversationCell>(CellIdentifier);
    m_tableView->setDataSource(this);
    m_tableView->setDelegate(this);
    return m_tableView;
}

void ZIQConversationListViewController::viewDidLoad()
{
    ZIQTheme::bind(m_tableView, [this] { applyTheme(); });
    // Rows move as conversations gain messages, so the whole (short) list is read again.
    connect(m_list, &ZIQConversationList::listChanged, m_tableView, [this] { m_tableView->reloadData(); });
    m_list->load();
}

void ZIQConversationListViewController::applyTheme()
{
    m_tableView->setBackgroundColor(
        ZIQTheme::dynamicColor(QStringLiteral("conversation_list_bg_color"), ZIQThemeModuleCommon, "#FFFFFF"));
    m_tableView->reloadData();
}
