#include "plugin/editor/ZIQGroupNoteSettingView.h"

#include "kit/common/ZIQTheme.h"
#include "platform/Screen.h"
#include "platform/TableView.h"
#include "plugin/editor/ZIQGroupNoteDeadlineButton.h"
#include "plugin/editor/ZIQGroupNoteEditorStyle.h"
#include "plugin/editor/ZIQGroupNoteSwitchCell.h"
#include "plugin/editor/ZIQGroupNoteSwitchCellData.h"
#include "plugin/editor/ZIQGroupNoteTextCell.h"
#include "plugin/editor/ZIQGroupNoteTextCellData.h"

namespace {

const QString TextCellIdentifier = QStringLiteral("textCell");
const QString SwitchCellIdentifier = QStringLiteral("switchCell");

} // namespace

ZIQGroupNoteSettingView::ZIQGroupNoteSettingView(const ZIQGroupNoteSettingPtr &setting, QWidget *parent)
    : QWidget(parent)
    , m_tableView(new platform::TableView(this))
    , m_setting(setting)
{
    setObjectName(QStringLiteral("settingView"));
    ZIQTheme::bind(this, [this] {
        ZIQGroupNoteEditorStyle::setBackgroundColor(
            this, ZIQGroupNoteEditorStyle::color("group_note_create_bg_color", "#FFFFFF"));
    });

    m_tableView->setObjectName(QStringLiteral("settingTableView"));
    m_tableView->setGeometry(0, int(platform::Screen::navigationBarHeight()), width(), InitialTableHeight);
    m_tableView->setTableFooterView(new QWidget);
    m_tableView->setBackgroundColor(Qt::transparent);
    m_tableView->setRowHeight(RowHeight);
    m_tableView->setSeparatorStyle(platform::TableView::SeparatorStyle::None);
    m_tableView->registerCell<ZIQGroupNoteTextCell>(TextCellIdentifier);
    m_tableView->registerCell<ZIQGroupNoteSwitchCell>(SwitchCellIdentifier);
    m_tableView->setDataSource(this);
    m_tableView->setDelegate(this);

    setupDataList();
    m_tableView->reloadData();
}

ZIQGroupNoteSettingView::~ZIQGroupNoteSettingView()
{
    m_tableView->setDataSource(nullptr);
    m_tableView->setDelegate(nullptr);
}

void ZIQGroupNoteSettingView::refreshWithSettings(const ZIQGroupNoteSettingPtr &setting)
{
    m_setting = setting;
    setupDataList();
    m_tableView->reloadData();
}

void ZIQGroupNoteSettingView::setupDataList()
{
    m_dataList.clear();
    m_dataList.append(switchRow("ZIQGroupNoteMultipleSettings", QByteArrayLiteral("onSwitchMultiSubmit"),
        !m_setting || m_setting->allowMultiSubmit()));
    m_dataList.append(deadlineRow());
    m_dataList.append(switchRow("ZIQGroupNoteNotifySettings", QByteArrayLiteral("onSwitchAllowNotify"),
        !m_setting || m_setting->allowNotify()));
}

QString ZIQGroupNoteSettingView::deadlineDateStr() const
{
    if (!m_setting)
        return QString();
    // The chip on the note page shows the same text.
    return ZIQGroupNoteDeadlineButton::dateStringFromTimestamp(m_setting->deadlineTimestampInMS());
}

int ZIQGroupNoteSettingView::numberOfRows(platform::TableView *, int) const
{
    return int(m_dataList.size());
}

platform::TableViewCell *ZIQGroupNoteSettingView::cellForRow(
    platform::TableView *tableView, const platform::IndexPath &path)
{
    if (path.row < 0 || path.row >= m_dataList.size())
        return nullptr;
    const ZIQCommonCellDataPtr &row = m_dataList.at(path.row);
    const bool isText = std::dynamic_pointer_cast<ZIQGroupNoteTextCellData>(row) != nullptr;
    auto *cell = static_cast<ZIQCommonTableViewCell *>(
        tableView->dequeueReusableCell(isText ? TextCellIdentifier : SwitchCellIdentifier));
    cell->fillWithData(row);
    return cell;
}

qreal ZIQGroupNoteSettingView::heightForRow(platform::TableView *tableView, const platform::IndexPath &path)
{
    if (path.row < 0 || path.row >= m_dataList.size())
        return -1;
    return m_dataList.at(path.row)->heightOfWidth(tableView->viewport()->width());
}

void ZIQGroupNoteSettingView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_tableView->setGeometry(rect());
}

ZIQCommonCellDataPtr ZIQGroupNoteSettingView::switchRow(const char *titleKey, const QByteArray &action, bool on) const
{
    auto row = std::make_shared<ZIQGroupNoteSwitchCellData>();
    row->setTitle(ZIQGroupNoteEditorStyle::localized(titleKey));
    row->setCswitchSelector(action);
    row->setOn(on);
    return row;
}

ZIQCommonCellDataPtr ZIQGroupNoteSettingView::deadlineRow() const
{
    auto row = std::make_shared<ZIQGroupNoteTextCellData>();
    row->setKey(ZIQGroupNoteEditorStyle::localized("ZIQGroupNoteDeadlineSettings"));
    row->setShowAccessory(true);
    row->setCselector(QByteArrayLiteral("onEditDeadline"));
    const bool hasDeadline = m_setting && m_setting->deadlineTimestampInMS() > 0;
    row->setValue(hasDeadline ? deadlineDateStr() : ZIQGroupNoteEditorStyle::localized("ZIQGroupNoteDeadlineNotSet"));
    return row;
}
