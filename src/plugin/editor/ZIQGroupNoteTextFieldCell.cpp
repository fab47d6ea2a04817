#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"

#include "plugin/editor/ZIQGroupNoteEditorStyle.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQRTL.h"
#include "kit/common/ZIQTheme.h"
#include "platform/MainQueue.h"
#include "platform/SystemFont.h"
#include "platform/TextField.h"
#include "platform/ViewController.h"
#include "plugin/service/ZIQGroupNoteBundle.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QLabel>
#include <QToolButton>

namespace {

constexpr int Margin = 16;
constexpr QRect IndexLabelFrame { Margin, 12, 22, 21 };
constexpr int IndexToFieldSpacing = 8;
constexpr int FieldHeight = 46;
constexpr int FontSize = 14;
constexpr QSize LeftPadding { 16, 20 };
// The right padding keeps the text clear of the repeat button that stands over the field.
constexpr QSize RightPadding { 36, 20 };
constexpr int RepeatButtonSide = 20;
constexpr int RepeatButtonTrailing = 26;
constexpr qreal FieldBackgroundAlpha = 0.9;

QColor themeColor(const char *key, const char *defaultColor)
{
    return ZIQTheme::dynamicColor(QString::fromLatin1(key), ZIQGroupNoteThemeModule, QString::fromLatin1(defaultColor));
}

QWidget *paddingView(QSize size)
{
    auto *view = new QWidget;
    view->resize(size);
    return view;
}

} // namespace

ZIQGroupNoteTextFieldCell::ZIQGroupNoteTextFieldCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQCommonTableViewCell(reuseIdentifier, parent)
    , m_indexLabel(new QLabel(contentView()))
    , m_textField(new platform::TextField(contentView()))
    , m_repeatButton(new QToolButton(contentView()))
{
    setSelectionStyle(SelectionStyle::None);
    setBackgroundThemeColor(
        QStringLiteral("group_note_create_bg_color"), ZIQGroupNoteThemeModule, QStringLiteral("#FFFFFF"));

    m_indexLabel->setObjectName(QStringLiteral("indexLabel"));
    m_indexLabel->setFont(platform::SystemFont::bold(FontSize));
    m_indexLabel->setAlignment((getRTLOption() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);

    m_textField->setObjectName(QStringLiteral("textField"));
    m_textField->setCornerRadius(8);
    m_textField->setPlaceholderText(ZIQGroupNoteEditorStyle::localized("ZIQGroupNoteFillIn"));
    m_textField->setPlaceholderFont(platform::SystemFont::regular(FontSize));
    m_textField->setTextAlignment(
        getRTLOption() ? platform::TextField::Alignment::Right : platform::TextField::Alignment::Left);
    m_textField->setLeftView(paddingView(LeftPadding));
    m_textField->setRightView(paddingView(RightPadding));
    connect(m_textField, &platform::TextField::editingChanged, this, &ZIQGroupNoteTextFieldCell::textEdited);

    m_repeatButton->setObjectName(QStringLiteral("repeatButton"));
    m_repeatButton->setAccessibleName(tr("Repeat entry"));
    m_repeatButton->setFocusPolicy(Qt::TabFocus);
    m_repeatButton->setIconSize(QSize(RepeatButtonSide, RepeatButtonSide));
    m_repeatButton->setStyleSheet(QStringLiteral("QToolButton { border: none; background: transparent; padding: 0; }"));
    connect(m_repeatButton, &QToolButton::clicked, this,
        [this] { reportWithData(m_cellData ? m_cellData->onRepeatButtonClickedSelector() : QByteArray()); });

    ZIQTheme::bind(
        this, [this] { applyTheme(); }, ZIQTheme::Rebind::OnThemeAndPaletteChange);
    layoutSubviews();
}

void ZIQGroupNoteTextFieldCell::fillWithData(const ZIQCommonCellDataPtr &data)
{
    ZIQCommonTableViewCell::fillWithData(data);
    m_cellData = std::dynamic_pointer_cast<ZIQGroupNoteTextFieldCellData>(data);
    if (!m_cellData)
        return;
    const ZIQGroupNoteItemPtr item = m_cellData->item();
    m_indexLabel->setText(item ? QString::number(item->index()) : QString());
    m_textField->setText(item ? item->content() : QString());
    m_textField->setEnabled(isEditable());
    // A line too long for a read-only field shows its beginning, as it reads; an editable one
    // keeps the cursor at the end, where a new line's author types after their name.
    if (!m_textField->isEnabled())
        m_textField->setCursorPosition(0);
    layoutSubviews();
}

void ZIQGroupNoteTextFieldCell::resizeEvent(QResizeEvent *event)
{
    ZIQCommonTableViewCell::resizeEvent(event);
    layoutSubviews();
}

void ZIQGroupNoteTextFieldCell::applyTheme()
{
    setTextColor(m_indexLabel, themeColor("group_note_cell_index_color", "#000000"));
    // A read-only entry keeps its text colour: only the field's reaction to input changes.
    m_textField->setTextColor(themeColor("group_note_cell_text_color", "#000000"));
    m_textField->setPlaceholderColor(themeColor("group_note_create_textfield_text_color", "#000000"));
    QColor background = themeColor("group_note_create_textfield_bg_color", "#F9F9F9");
    background.setAlphaF(background.alphaF() * FieldBackgroundAlpha);
    m_textField->setBackgroundColor(background);
    const QIcon bundled
        = ZIQTheme::imageWithContentsOfFile(getZIQGetBundlePath() + QStringLiteral("/group_note_repeat"));
    m_repeatButton->setIcon(
        ZIQTheme::dynamicImage(QStringLiteral("group_note_repeat_img"), ZIQGroupNoteThemeModule, bundled));
}

void ZIQGroupNoteTextFieldCell::layoutSubviews()
{
    const int width = contentView()->width();
    m_indexLabel->setGeometry(IndexLabelFrame);
    const int fieldLeft = IndexLabelFrame.right() + 1 + IndexToFieldSpacing;
    m_textField->setGeometry(fieldLeft, 0, width - Margin - fieldLeft, FieldHeight);
    const int buttonTop = m_textField->y() + (FieldHeight - RepeatButtonSide) / 2;
    m_repeatButton->setGeometry(
        width - RepeatButtonTrailing - RepeatButtonSide, buttonTop, RepeatButtonSide, RepeatButtonSide);
}

bool ZIQGroupNoteTextFieldCell::isEditable() const
{
    const ZIQGroupNoteItemPtr item = m_cellData ? m_cellData->item() : nullptr;
    if (!item || item->userID() != ZIQLogin::getUserID())
        return false;
    const double deadline = m_cellData->deadlineTimestampInMS();
    return deadline <= 0 || platform::MainQueue::now() < deadline;
}

void ZIQGroupNoteTextFieldCell::textEdited(const QString &text)
{
    if (!m_cellData || !m_cellData->item())
        return;
    // The field keeps showing a longer text, but the entry only ever holds the last text that
    // fitted, so nothing over the limit can be submitted.
    if (!ZIQGroupNoteEditorStyle::acceptsText(text))
        return;
    m_cellData->item()->setContent(text);
    reportWithData(m_cellData->onEditItemSelector());
}

void ZIQGroupNoteTextFieldCell::reportWithData(const QByteArray &action)
{
    if (!action.isEmpty() && m_cellData)
        platform::ViewController::performAction(this, action.constData(), m_cellData.get());
}
