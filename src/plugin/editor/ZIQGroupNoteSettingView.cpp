#include "plugin/editor/ZIQGroupNoteSettingView.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTheme.h"
#include "platform/Screen.h"
#include "platform/TableView.h"
#include "plugin/editor/ZIQGroupNoteSwitchCell.h"
#include "plugin/editor/ZIQGroupNoteSwitchCellData.h"
#include "plugin/editor/ZIQGroupNoteTextCell.h"
#include "plugin/editor/ZIQGroupNoteTextCellData.h"
#include "plugin/picker/ZIQBRDateHelpers.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

namespace {

const QString TextCellIdentifier = QStringLiteral("textCell");
const QString SwitchCellIdentifier = QStringLiteral("switchCell");
// "YYYY" is the week-based year: the deadline row has always shown it, and members compare
// it with what earlier versions showed.
const QString DeadlinePattern = QStringLiteral("YYYY-MM-dd HH:mm");

QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

} // namespace

ZIQGroupNoteSettingView::ZIQGroupNoteSettingView(const ZIQGroupNoteSettingPtr &setting, QWidget *parent)
    : QWidget(parent)
    , m_tableView(new platform::TableView(this))
    , m_setting(setting)
{
    setObjectName(QStringLiteral("settingView"));
    setAutoFillBackground(true);
    ZIQTheme::bind(this, [this] {
        QPalette pal = palette();
        pal.setColor(QPalette::Window,
            ZIQTheme::dynamicColor(
                QStringLiteral("group_note_create_bg_color"), ZIQGroupNoteThemeModule, QStringLiteral("#FFFFFF")));
        setPalette(pal);
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
    const auto deadline = QDateTime::fromMSecsSinceEpoch(qint64(m_setting->deadlineTimestampInMS()), Qt::UTC);
    return ZIQ_br_stringFromDate(deadline, DeadlinePattern);
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
    row->setTitle(localized(titleKey));
    row->setCswitchSelector(action);
    row->setOn(on);
    return row;
}

ZIQCommonCellDataPtr ZIQGroupNoteSettingView::deadlineRow() const
{
    auto row = std::make_shared<ZIQGroupNoteTextCellData>();
    row->setKey(localized("ZIQGroupNoteDeadlineSettings"));
    row->setShowAccessory(true);
    row->setCselector(QByteArrayLiteral("onEditDeadline"));
    const bool hasDeadline = m_setting && m_setting->deadlineTimestampInMS() > 0;
    row->setValue(hasDeadline ? deadlineDateStr() : localized("ZIQGroupNoteDeadlineNotSet"));
    return row;
}
