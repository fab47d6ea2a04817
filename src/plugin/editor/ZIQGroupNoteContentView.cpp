// The note page's behaviour: which face shows what, the refreshes the controller asks for, the
// reports of user actions and the growth of the entries table.
#include "plugin/editor/ZIQGroupNoteContentView.h"

#include "plugin/editor/ZIQGroupNoteDeadlineButton.h"
#include "plugin/editor/ZIQGroupNoteEditorStyle.h"
#include "plugin/editor/ZIQGroupNotePageGeometry.h"
#include "plugin/editor/ZIQGroupNoteTitleInputView.h"
#include "plugin/service/ZIQGroupNoteBundle.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include "kit/common/ZIQConfig.h"
#include "kit/common/ZIQRTL.h"
#include "kit/common/ZIQTheme.h"
#include "platform/ImageView.h"
#include "platform/Keyboard.h"
#include "platform/MainQueue.h"
#include "platform/TableView.h"
#include "platform/TableViewCell.h"
#include "platform/TextField.h"
#include "platform/ViewController.h"

#include <QLabel>
#include <QPushButton>
#include <QUrl>

using Style = ZIQGroupNoteEditorStyle;

namespace {

constexpr int InfoLabelHeight = 22;
constexpr int InfoLabelLeading = 26;
constexpr int ExampleFieldLeading = 46;
constexpr int ExampleFieldTrailing = 8;

void setTextIfChanged(platform::TextField *field, const QString &text)
{
    // Keeps the cursor of a field being typed in when a refresh brings back its own text.
    if (field->text() != text)
        field->setText(text);
}

} // namespace

ZIQGroupNoteContentView::ZIQGroupNoteContentView(const ZIQGroupNoteInfoPtr &info, bool isCreateNew, QWidget *parent)
    : QWidget(parent)
    , m_info(info ? info : std::make_shared<ZIQGroupNoteInfo>())
    , m_isCreateNew(isCreateNew)
{
    setObjectName(QStringLiteral("groupNoteContentView"));
    m_titleInputView = new ZIQGroupNoteTitleInputView(this);
    m_titleTextField = m_titleInputView->titleTextField();
    m_descTextField = m_titleInputView->descTextField();
    buildInfoLine();
    buildTitleView();
    m_deadlineButton = new ZIQGroupNoteDeadlineButton(this);
    connect(m_deadlineButton, &QPushButton::clicked, this, &ZIQGroupNoteContentView::onDeadlineButtonClicked);
    buildExampleRow();
    buildItemTable();
    buildAddButton();

    m_infoTextFields = { m_titleTextField, m_descTextField, m_hintTextField };
    for (platform::TextField *field : std::as_const(m_infoTextFields))
        connect(field, &platform::TextField::editingChanged, this, [this, field] { textFieldEditChanged(field); });
    setTabOrder(m_titleTextField, m_descTextField);
    setTabOrder(m_descTextField, m_hintTextField);

    applyAlignment();
    ZIQTheme::bind(this, [this] { applyTheme(); });
    fillTexts();
    refreshInfoView();
    refreshDeadlineButton();
    m_hintTextField->setEnabled(m_isCreateNew);
    setupViews();
}

void ZIQGroupNoteContentView::setupViews()
{
    m_titleInputView->setHidden(!m_isCreateNew);
    m_titleView->setHidden(m_isCreateNew);
    m_infoView->setHidden(m_isCreateNew);
    m_bottomLine->setHidden(m_isCreateNew);
    if (m_isCreateNew) {
        // The chip keeps its visibility: while composing it is where the deadline is chosen.
        m_exampleView->setHidden(false);
        return;
    }
    m_exampleView->setHidden(m_info->example().isEmpty());
    m_deadlineButton->setHidden(m_info->setting()->deadlineTimestampInMS() <= 0);
}

void ZIQGroupNoteContentView::fillTexts()
{
    setTextIfChanged(m_titleTextField, m_info->title());
    setTextIfChanged(m_descTextField, m_info->desc());
    setTextIfChanged(m_hintTextField, m_info->example());
    m_titleLabel->setText(QLatin1Char('#') + m_info->title());
    m_descLabel->setText(m_info->desc());
}

void ZIQGroupNoteContentView::refreshWithCreateNew(bool isCreateNew)
{
    m_isCreateNew = isCreateNew;
    setupViews();
    fillTexts();
    refreshInfoView();
    refreshAddButton();
    refreshDeadlineButton();
    m_hintTextField->setEnabled(isCreateNew);
    reloadTableView();
    layoutPage();
}

void ZIQGroupNoteContentView::refreshInfoView()
{
    const QString name = m_info->creatorUserName().isEmpty() ? m_info->creatorUserID() : m_info->creatorUserName();
    m_infoText = rtlString(
        Style::localized("ZIQGroupNoteMessageTitleInfo").arg(name, QString::number(m_info->paticipantCount())));
    showInfoText();
    const QImage placeholder = ZIQConfig::defaultConfig().defaultAvatarImage().pixmap(QSize(40, 40)).toImage();
    m_creatorAvatarView->setImageWithURL(QUrl(m_info->creatorUserAvatar()), placeholder);
}

void ZIQGroupNoteContentView::showInfoText()
{
    m_infoLabel->setText(m_infoLabel->fontMetrics().elidedText(m_infoText, Qt::ElideMiddle, m_infoLabel->width()));
}

void ZIQGroupNoteContentView::refreshAddButton()
{
    setAddButtonEnabledImage(m_info->canSubmit());
}

void ZIQGroupNoteContentView::setAddButtonEnabledImage(bool enabled)
{
    const QString file = getZIQGetBundlePath()
        + (enabled ? QStringLiteral("/group_note_add") : QStringLiteral("/group_note_add_disable"));
    const QString key = enabled ? QStringLiteral("group_note_add_img") : QStringLiteral("group_note_add_disable_img");
    m_addButton->setIcon(ZIQTheme::dynamicImage(key, ZIQGroupNoteThemeModule, ZIQTheme::imageWithContentsOfFile(file)));
}

void ZIQGroupNoteContentView::refreshDeadlineButton()
{
    m_deadlineButton->refreshWithInfo(*m_info);
}

void ZIQGroupNoteContentView::reloadTableView()
{
    m_itemTableView->reloadData();
}

void ZIQGroupNoteContentView::reloadTableViewWithCellCount(qint64 count, bool updateByAddNew)
{
    if (count <= 0)
        return;
    m_localCellCount = count;
    const platform::IndexPath last { 0, static_cast<int>(count - 1) };
    if (updateByAddNew) {
        if (m_itemTableView->numberOfRows(0) != count - 1)
            return;
        m_itemTableView->insertRows({ last });
    } else {
        m_itemTableView->reloadData();
    }
    platform::MainQueue::after(ScrollDelayMs, this, [this, last, updateByAddNew] {
        m_itemTableView->scrollToRow(last, platform::TableView::ScrollPosition::Bottom, true);
        if (updateByAddNew)
            platform::MainQueue::async(this, [this, last] { focusRow(last.row, true); });
    });
    layoutPage();
}

void ZIQGroupNoteContentView::focusRow(int row, bool retryAfterScroll)
{
    platform::TableViewCell *cell = m_itemTableView->cellForRow({ 0, row });
    if (!cell) {
        // A row far below the visible ones gets its cell only once the scroll has brought it in.
        if (retryAfterScroll)
            platform::MainQueue::after(platform::TableView::ScrollAnimationMs + platform::TableView::AnimationFrameMs,
                this, [this, row] { focusRow(row, false); });
        return;
    }
    if (auto *field = cell->findChild<platform::TextField *>())
        field->becomeFirstResponder();
}

bool ZIQGroupNoteContentView::needRespondToKeyboardAnimation(const QWidget *textField) const
{
    return std::none_of(m_infoTextFields.cbegin(), m_infoTextFields.cend(),
        [textField](const platform::TextField *field) { return field == textField; });
}

void ZIQGroupNoteContentView::textFieldEditChanged(platform::TextField *field)
{
    QByteArray action;
    if (field == m_titleTextField)
        action = m_onEndEditTitleSelector;
    else if (field == m_descTextField)
        action = m_onEndEditDescSelector;
    else if (field == m_hintTextField)
        action = m_onAddExampleSelector;
    else
        return;
    // Over-long text stays in the field for the user to shorten; the note keeps its last value.
    if (Style::acceptsText(field->text()))
        performSelectorOnVC(action, field);
}

void ZIQGroupNoteContentView::onAddButtonClicked()
{
    performSelectorOnVC(m_onAddItemSelector, m_addButton);
    // A member who may add one entry only has just used it.
    if (!m_info->setting()->allowMultiSubmit())
        setAddButtonEnabledImage(false);
}

void ZIQGroupNoteContentView::onDeadlineButtonClicked()
{
    platform::Keyboard::endEditing(this);
    performSelectorOnVC(m_onEndEditDeadlineSelector, m_deadlineButton);
}

void ZIQGroupNoteContentView::performSelectorOnVC(const QByteArray &action, QObject *object)
{
    if (!action.isEmpty())
        platform::ViewController::performAction(this, action.constData(), object);
}

ZIQGroupNotePageGeometry::Face ZIQGroupNoteContentView::face() const
{
    ZIQGroupNotePageGeometry::Face face;
    face.pageSize = size();
    face.isCreateNew = m_isCreateNew;
    face.deadlineShown = !m_deadlineButton->isHidden();
    face.exampleShown = !m_exampleView->isHidden();
    face.title = m_info->title();
    face.desc = m_info->desc();
    face.deadlineButtonWidth = m_deadlineButton->buttonWidth();
    face.cellCount = m_localCellCount;
    return face;
}

float ZIQGroupNoteContentView::itemTableViewHeight() const
{
    return ZIQGroupNotePageGeometry::layout(face()).itemTableViewHeight;
}

float ZIQGroupNoteContentView::bottomBlankHeight() const
{
    return ZIQGroupNotePageGeometry::layout(face()).bottomBlankHeight;
}

void ZIQGroupNoteContentView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutPage();
}

void ZIQGroupNoteContentView::layoutPage()
{
    const ZIQGroupNotePageGeometry::Blocks blocks = ZIQGroupNotePageGeometry::layout(face());
    m_titleInputView->setGeometry(blocks.titleInputView.toRect());

    m_infoView->setGeometry(blocks.infoView.toRect());
    m_infoLabel->setGeometry(InfoLabelLeading, 12, m_infoView->width() - InfoLabelLeading, InfoLabelHeight);
    showInfoText();
    m_bottomLine->setGeometry(blocks.bottomLine.toRect());

    m_titleView->setGeometry(blocks.titleView.toRect());
    m_titleLabel->setGeometry(blocks.titleLabel.toRect());
    m_descLabel->setGeometry(blocks.descLabel.toRect());
    m_deadlineButton->setGeometry(blocks.deadlineButton.toRect());

    m_exampleView->setGeometry(blocks.exampleView.toRect());
    m_hintTextField->setGeometry(ExampleFieldLeading, 0,
        m_exampleView->width() - ExampleFieldLeading - ExampleFieldTrailing, m_exampleView->height());

    m_itemTableView->setGeometry(blocks.itemTableView.toRect());
    m_addButton->setGeometry(blocks.addButton.toRect());
}
