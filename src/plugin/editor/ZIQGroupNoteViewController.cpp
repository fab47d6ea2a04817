// The note's editor screen: builds the pages, turns their actions into provider calls, and sends.
#include "plugin/editor/ZIQGroupNoteViewController.h"

#include "plugin/editor/ZIQGroupNoteContentView.h"
#include "plugin/editor/ZIQGroupNoteEditorStyle.h"
#include "plugin/editor/ZIQGroupNoteKeyboardAvoider.h"
#include "plugin/editor/ZIQGroupNoteMenuView.h"
#include "plugin/editor/ZIQGroupNoteSettingView.h"
#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"
#include "plugin/picker/ZIQBRDateHelpers.h"
#include "plugin/picker/ZIQBRDatePickerView.h"

#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTheme.h"
#include "platform/Keyboard.h"
#include "platform/MainQueue.h"
#include "platform/NavigationController.h"
#include "platform/NavigationItem.h"
#include "platform/NotificationCenter.h"
#include "platform/Switch.h"
#include "platform/TableView.h"
#include "platform/TextField.h"

#include <QPushButton>

using Style = ZIQGroupNoteEditorStyle;

namespace {

const QString ItemCellIdentifier = QStringLiteral("itemCell");
constexpr int MenuHeight = 50;
constexpr int SettingHeight = 150;
constexpr qreal EntryRowHeight = 58;

/// A tap on the screen beside its fields ends editing.
class EndEditingOnTap : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonPress)
            platform::Keyboard::endEditing(static_cast<QWidget *>(watched));
        return false;
    }
};

} // namespace

ZIQGroupNoteViewController::ZIQGroupNoteViewController(
    const QString &groupID, const V2VORMessagePtr &message, bool isCreateNew, QObject *parent)
    : platform::ViewController(parent)
    , m_groupID(groupID)
    , m_isCreateNew(isCreateNew)
    , m_dataProvider(new ZIQGroupNoteDataProvider(message, this))
{
}

ZIQGroupNoteViewController::~ZIQGroupNoteViewController() = default;

bool ZIQGroupNoteViewController::isKeyboardVisible() const
{
    return m_keyboardAvoider && m_keyboardAvoider->isKeyboardVisible();
}

ZIQGroupNoteMenuView *ZIQGroupNoteViewController::menuView()
{
    if (!m_menuView) {
        m_menuView = new ZIQGroupNoteMenuView(view());
        m_menuView->setNoteClickedBlock([this] { switchViewsToHidden(false); });
        m_menuView->setSettingClickedBlock([this] { switchViewsToHidden(true); });
    }
    return m_menuView;
}

ZIQGroupNoteSettingView *ZIQGroupNoteViewController::settingView()
{
    if (!m_settingView) {
        m_settingView = new ZIQGroupNoteSettingView(m_dataProvider->info()->setting(), view());
        m_settingView->setHidden(true);
    }
    return m_settingView;
}

ZIQGroupNoteContentView *ZIQGroupNoteViewController::contentView()
{
    if (!m_contentView) {
        m_contentView = new ZIQGroupNoteContentView(m_dataProvider->info(), m_isCreateNew, view());
        m_contentView->setOnEndEditTitleSelector("onEndEditTitle");
        m_contentView->setOnEndEditDescSelector("onEndEditDesc");
        m_contentView->setOnEndEditDeadlineSelector("onEndEditDeadlineSelector");
        m_contentView->setOnAddItemSelector("onAddItem");
        m_contentView->setOnAddExampleSelector("onAddExample");
    }
    return m_contentView;
}

QString ZIQGroupNoteViewController::applicationLanguage()
{
    const QString language = ZIQGlobalization::tk_localizableLanguageKey();
    if (language == QLatin1String("zh-Hans") || language == QLatin1String("zh-Hant"))
        return language;
    return QStringLiteral("en");
}

void ZIQGroupNoteViewController::viewDidLoad()
{
    view()->installEventFilter(new EndEditingOnTap(view()));
    setUpNavigationBar();
    setUpViews();
    if (!m_isCreateNew)
        refreshByNewestStatistics();
}

void ZIQGroupNoteViewController::setUpNavigationBar()
{
    setTitle(Style::localized("ZIQKitMoreGroupNote"));
    auto *holder = new QWidget;
    m_submitButton = new QPushButton(Style::localized("ZIQGroupNoteSend"), holder);
    m_submitButton->setObjectName(QStringLiteral("sendButton"));
    m_submitButton->setGeometry(0, 0, 56, 28);
    m_submitButton->setCursor(Qt::PointingHandCursor);
    holder->setFixedSize(56, 28);
    ZIQTheme::bind(m_submitButton, [button = m_submitButton.data()] {
        const QColor text = Style::color("group_note_detail_send_text_color", "#FFFFFF");
        const QColor background = Style::color("group_note_detail_send_bg_color", "#147AFF");
        button->setStyleSheet(QStringLiteral("QPushButton { border: none; border-radius: 8px; color: %1; background: %2; }"
                                             "QPushButton:disabled { color: %3; }")
                .arg(text.name(QColor::HexArgb), background.name(QColor::HexArgb),
                    QColor(text.red(), text.green(), text.blue(), 128).name(QColor::HexArgb)));
    });
    connect(m_submitButton, &QPushButton::clicked, this, [this] { onRightButtonClicked(m_submitButton); });
    navigationItem()->setRightItemWidget(holder);
}

void ZIQGroupNoteViewController::setUpViews()
{
    ZIQTheme::bind(view(), [root = view()] {
        Style::setBackgroundColor(root, Style::color("group_note_create_bg_color", "#FFFFFF"));
    });
    menuView();
    settingView();
    contentView();
    if (!m_isCreateNew && !m_dataProvider->info()->isCreatedByMyself()) {
        // A member who did not create the note sees only the note page, without tabs.
        m_menuView->hide();
        m_settingView->hide();
    }
    platform::TableView *table = m_contentView->itemTableView();
    table->registerCell<ZIQGroupNoteTextFieldCell>(ItemCellIdentifier);
    table->setDataSource(this);
    table->setDelegate(this);
    m_keyboardAvoider = new ZIQGroupNoteKeyboardAvoider(view(), m_contentView, this);
    // A fresh read of the note (another screen of this note sent) rebuilds the provider's rows;
    // the pages show them at once rather than a table that no longer matches its rows.
    connect(m_dataProvider, &ZIQGroupNoteDataProvider::noteUpdated, this, &ZIQGroupNoteViewController::refreshPages);
    updateViews();
}

void ZIQGroupNoteViewController::refreshPages()
{
    updateViews();
    m_contentView->refreshWithCreateNew(m_isCreateNew);
    m_settingView->refreshWithSettings(m_dataProvider->info()->setting());
}

void ZIQGroupNoteViewController::updateViews()
{
    m_contentView->reloadTableViewWithCellCount(m_dataProvider->dataList().size(), false);
}

void ZIQGroupNoteViewController::switchViewsToHidden(bool hidden)
{
    m_contentView->setHidden(hidden);
    m_settingView->setHidden(!hidden);
}

void ZIQGroupNoteViewController::refreshByNewestStatistics()
{
    QPointer<ZIQGroupNoteViewController> self(this);
    m_dataProvider->getNoteStatistics([self](int code, const QString &, const ZIQGroupNoteInfoPtr &) {
        if (self && code == 0)
            self->refreshPages();
    });
    m_dataProvider->refreshCreatorInfoWithCompletion([self](int code, const QString &) {
        if (self && code == 0)
            self->m_contentView->refreshInfoView();
    });
}

void ZIQGroupNoteViewController::viewWillAppear(bool animated)
{
    platform::ViewController::viewWillAppear(animated);
    if (m_keyboardAvoider)
        m_keyboardAvoider->start();
}

void ZIQGroupNoteViewController::viewDidAppear(bool animated)
{
    platform::ViewController::viewDidAppear(animated);
    m_dataProvider->setNeedUpdateDataListSynchronously(false);
}

void ZIQGroupNoteViewController::viewDidDisappear(bool animated)
{
    platform::ViewController::viewDidDisappear(animated);
    if (m_keyboardAvoider)
        m_keyboardAvoider->stop();
    m_dataProvider->setNeedUpdateDataListSynchronously(true);
}

void ZIQGroupNoteViewController::viewDidLayoutSubviews()
{
    const QRect bounds = view()->rect();
    float top = 0;
    platform::NavigationController *navigation = navigationController();
    // A screen laid out under the navigation bar starts its pages below the bar.
    if (navigation && bounds.height() == navigation->view()->height())
        top = float(navigation->navigationBarBottom());
    const int menuTop = qRound(top);
    m_menuView->setGeometry(0, menuTop, bounds.width(), MenuHeight);
    const int contentTop = m_menuView->isHidden() ? menuTop : m_menuView->geometry().bottom() + 1;
    m_contentView->setGeometry(0, contentTop, bounds.width(), bounds.height() - contentTop);
    m_settingView->setGeometry(0, m_menuView->geometry().bottom() + 1, bounds.width(), SettingHeight);
}

void ZIQGroupNoteViewController::onEndEditTitle(platform::TextField *field)
{
    m_dataProvider->editTitle(field->text());
}

void ZIQGroupNoteViewController::onEndEditDesc(platform::TextField *field)
{
    m_dataProvider->editDesc(field->text());
}

void ZIQGroupNoteViewController::onAddExample(platform::TextField *field)
{
    m_dataProvider->addExample(field->text());
}

void ZIQGroupNoteViewController::onEditItem(ZIQGroupNoteTextFieldCellData *data)
{
    m_dataProvider->editItem(data->item());
}

bool ZIQGroupNoteViewController::refusesAnotherEntry() const
{
    const ZIQGroupNoteInfoPtr info = m_dataProvider->info();
    return !info->setting()->allowMultiSubmit() && (info->isMyselfSubmitted() || info->isMyselfCreated());
}

void ZIQGroupNoteViewController::onAddItem(QObject *)
{
    if (refusesAnotherEntry())
        return Style::toast("ZIQGroupNoteSubmitOnce");
    // An entry added after the deadline is refused by the submission, not here.
    m_dataProvider->addNewItem();
    m_contentView->reloadTableViewWithCellCount(m_dataProvider->dataList().size(), true);
}

void ZIQGroupNoteViewController::onRepeatItem(ZIQGroupNoteTextFieldCellData *data)
{
    if (refusesAnotherEntry())
        return Style::toast("ZIQGroupNoteSubmitOnce");
    if (m_dataProvider->info()->isExceedDeadline())
        return Style::toast("ZIQGroupNoteExceedDeadline");
    m_dataProvider->repeatItem(data->item());
    m_contentView->reloadTableViewWithCellCount(m_dataProvider->dataList().size(), true);
}

bool ZIQGroupNoteViewController::switchState(QObject *switchCell)
{
    auto *cell = qobject_cast<ZIQCommonSwitchCell *>(switchCell);
    return cell && cell->switcher()->isOn();
}

void ZIQGroupNoteViewController::onSwitchMultiSubmit(QObject *switchCell)
{
    m_dataProvider->switchMultiSubmit(switchState(switchCell));
    m_contentView->refreshAddButton();
}

void ZIQGroupNoteViewController::onSwitchAllowNotify(QObject *switchCell)
{
    m_dataProvider->switchNotify(switchState(switchCell));
}

void ZIQGroupNoteViewController::onEditDeadline(QObject *)
{
    showDeadlinePicker();
}

void ZIQGroupNoteViewController::onEndEditDeadlineSelector(QObject *)
{
    showDeadlinePicker();
}

int ZIQGroupNoteViewController::numberOfRows(platform::TableView *, int) const
{
    return int(m_dataProvider->dataList().size());
}

platform::TableViewCell *ZIQGroupNoteViewController::cellForRow(platform::TableView *table, const platform::IndexPath &path)
{
    const auto &rows = m_dataProvider->dataList();
    if (path.row < 0 || path.row >= rows.size())
        return nullptr;
    const ZIQGroupNoteTextFieldCellDataPtr &data = rows.at(path.row);
    data->setOnEditItemSelector("onEditItem");
    data->setOnRepeatButtonClickedSelector("onRepeatItem");
    data->setDeadlineTimestampInMS(m_dataProvider->info()->setting()->deadlineTimestampInMS());
    auto *cell = static_cast<ZIQGroupNoteTextFieldCell *>(table->dequeueReusableCell(ItemCellIdentifier));
    cell->fillWithData(data);
    return cell;
}

qreal ZIQGroupNoteViewController::heightForRow(platform::TableView *, const platform::IndexPath &)
{
    return EntryRowHeight;
}

void ZIQGroupNoteViewController::showDeadlinePicker()
{
    if (!m_isCreateNew && !m_dataProvider->info()->isCreatedByMyself())
        return;
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC);
    // The calendar rolls minute 60 into the next hour.
    const QDateTime start = ZIQ_br_setYear(
        ZIQ_br_year(now), ZIQ_br_month(now), ZIQ_br_day(now), ZIQ_br_hour(now), ZIQ_br_minute(now) + 1);
    auto *picker = new ZIQBRDatePickerView(ZIQBRDatePickerMode::YMDHM);
    picker->setObjectName(QStringLiteral("deadlinePicker"));
    picker->setSelectDate(start);
    picker->setMinDate(start);
    picker->setMaxDate(ZIQ_br_setYear(2100, 12, 31, 23, 59));
    picker->setIsAutoSelect(true);
    QPointer<ZIQGroupNoteViewController> self(this);
    picker->setResultBlock([self](const QDateTime &date, const QString &) {
        if (self)
            self->deadlinePicked(date);
    });
    ZIQBRPickerStyle &style = picker->pickerStyle();
    style.setPickerColor(Style::color("group_note_date_picker_bg_color", "#FFFFFF"));
    style.setPickerTextColor(Style::color("group_note_date_picker_text_color", "#000000"));
    style.setSeparatorColor(Style::color("group_note_date_picker_seperator_color", "DDDDDD"));
    style.setLanguage(applicationLanguage());
    picker->show();
}

void ZIQGroupNoteViewController::deadlinePicked(const QDateTime &date)
{
    m_dataProvider->setDeadline(double(date.toSecsSinceEpoch()) * 1000);
    m_settingView->refreshWithSettings(m_dataProvider->info()->setting());
    m_contentView->refreshWithCreateNew(m_isCreateNew);
}

void ZIQGroupNoteViewController::onRightButtonClicked(QObject *)
{
    if (m_submitButton) {
        m_submitButton->setEnabled(false);
        // Re-enabled whatever the outcome: the only guard against sending twice.
        platform::MainQueue::after(SendGuardMs, m_submitButton, [button = m_submitButton] {
            if (button)
                button->setEnabled(true);
        });
    }
    QPointer<ZIQGroupNoteViewController> self(this);
    m_dataProvider->submitInGroup(submissionGroupID(), m_isCreateNew, [self](int code, const QString &desc) {
        if (self)
            self->submitFinished(code, desc);
    });
}

QString ZIQGroupNoteViewController::submissionGroupID() const
{
    // Opened from a tips row, the screen was handed that row's message ID for a group; the
    // message itself knows its group.
    const V2VORMessagePtr message = m_dataProvider->message();
    return message && !message->groupID().isEmpty() ? message->groupID() : m_groupID;
}

void ZIQGroupNoteViewController::submitFinished(int code, const QString &desc)
{
    // The note message went out and only its entries failed to be written: that counts as sent.
    if (code != 0 && desc != QLatin1String("ZIQGroupNote_Set_Message_Extension_Fail_Desc"))
        return Style::toast("ZIQGroupNoteSendFail");
    Style::toast("ZIQGroupNoteSendSucceed");
    const QString msgID = m_dataProvider->originMessageID();
    if (platform::NavigationController *navigation = navigationController())
        navigation->popViewControllerAnimated(true);
    platform::NotificationCenter::defaultCenter().post(GroupNoteUpdatedNotification, { { QStringLiteral("msgID"), msgID } });
}
