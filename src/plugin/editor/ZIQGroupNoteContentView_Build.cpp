// The note page's widgets: how each block is made, coloured from the plug-in's theme and aligned
// for the kit's reading direction.
#include "plugin/editor/ZIQGroupNoteContentView.h"

#include "plugin/editor/ZIQGroupNoteEditorStyle.h"
#include "plugin/editor/ZIQGroupNotePageGeometry.h"

#include "kit/common/ZIQRTL.h"
#include "platform/ImageView.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TextField.h"

#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <memory>

using Style = ZIQGroupNoteEditorStyle;

namespace {

constexpr qreal ExampleFieldOpacity = 0.9;
constexpr int FieldCornerRadius = 8;
constexpr QSize PaddingViewSize(16, 20);

platform::TextField *makeField(const QString &name, int pointSize, const char *placeholderKey, QWidget *parent)
{
    auto *field = new platform::TextField(parent);
    field->setObjectName(name);
    field->setFont(platform::SystemFont::regular(pointSize));
    field->setPlaceholderText(Style::localized(placeholderKey));
    return field;
}

QLabel *makeLabel(const QString &name, const QFont &font, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    return label;
}

QPushButton *makeButton(const QString &name, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setObjectName(name);
    // A tap on a phone's button leaves the focus (and the keyboard) where it was.
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

} // namespace

void ZIQGroupNoteContentView::buildTitleInput()
{
    m_titleInputView = new QWidget(this);
    m_titleInputView->setObjectName(QStringLiteral("titleInputView"));
    // Its rounded border is drawn by eventFilter(); a style sheet here would restyle the fields too.
    m_titleInputView->installEventFilter(this);
    m_titleTextField = makeField(QStringLiteral("titleTextField"), 18, "ZIQGroupNoteTitleHint", m_titleInputView);
    m_descTextField = makeField(QStringLiteral("descTextField"), 12, "ZIQGroupNoteDescriptionHint", m_titleInputView);
}

void ZIQGroupNoteContentView::buildInfoLine()
{
    m_infoView = new QWidget(this);
    m_infoView->setObjectName(QStringLiteral("infoView"));
    m_creatorAvatarView = new platform::ImageView(m_infoView);
    m_creatorAvatarView->setObjectName(QStringLiteral("creatorAvatarView"));
    m_creatorAvatarView->setContentMode(platform::ImageView::ContentMode::ScaleAspectFill);
    m_creatorAvatarView->setGeometry(0, 12, 20, 20);
    m_infoLabel = makeLabel(QStringLiteral("infoLabel"), platform::SystemFont::regular(12), m_infoView);
    // The rule sits just under the 49-point line; as a sibling it is not clipped by the line.
    m_bottomLine = new QWidget(this);
    m_bottomLine->setObjectName(QStringLiteral("bottomLine"));
}

void ZIQGroupNoteContentView::buildTitleView()
{
    m_titleView = new QWidget(this);
    m_titleView->setObjectName(QStringLiteral("titleView"));
    m_titleLabel = makeLabel(QStringLiteral("titleLabel"), platform::SystemFont::bold(18), m_titleView);
    m_titleLabel->setWordWrap(true);
    m_descLabel = makeLabel(QStringLiteral("descLabel"), platform::SystemFont::bold(12), m_titleView);
    m_descLabel->setWordWrap(true);
}

void ZIQGroupNoteContentView::buildDeadlineButton()
{
    m_deadlineButton = makeButton(QStringLiteral("deadlineButton"), this);
    m_deadlineButton->setFont(platform::SystemFont::regular(12));
    connect(m_deadlineButton, &QPushButton::clicked, this, &ZIQGroupNoteContentView::onDeadlineButtonClicked);
}

void ZIQGroupNoteContentView::buildExampleRow()
{
    m_exampleView = new QWidget(this);
    m_exampleView->setObjectName(QStringLiteral("exampleView"));
    m_tipsLabel = makeLabel(QStringLiteral("tipsLabel"), platform::SystemFont::bold(14), m_exampleView);
    m_tipsLabel->setText(Style::localized("ZIQGroupNoteFormatExample"));
    m_tipsLabel->setGeometry(16, 12, 22, 21);
    m_hintTextField = makeField(QStringLiteral("hintTextField"), 14, "ZIQGroupNoteFormatHint", m_exampleView);
    m_hintTextField->setPlaceholderFont(platform::SystemFont::regular(14));
    m_hintTextField->setCornerRadius(FieldCornerRadius);

    // One padding view fills both ends of the field; the one made for the right end is never
    // used. The field pads both sides with the shared view's width.
    auto *padding = new QWidget;
    padding->resize(PaddingViewSize);
    m_hintTextField->setLeftView(padding);
    auto unusedRightPadding = std::make_unique<QWidget>();
    unusedRightPadding->resize(PaddingViewSize);
    m_hintTextField->setRightView(padding);
}

void ZIQGroupNoteContentView::buildItemTable()
{
    m_itemTableView = new platform::TableView(this);
    m_itemTableView->setObjectName(QStringLiteral("itemTableView"));
    m_itemTableView->setSeparatorStyle(platform::TableView::SeparatorStyle::None);
    m_itemTableView->setScrollEnabled(true);
    m_itemTableView->setRowHeight(ZIQGroupNotePageGeometry::ItemRowHeight);
    m_itemTableView->setTableFooterView(new QWidget);
}

void ZIQGroupNoteContentView::buildAddButton()
{
    m_addButton = makeButton(QStringLiteral("addButton"), this);
    m_addButton->setAccessibleName(Style::localized("ZIQGroupNoteFillIn"));
    m_addButton->setIconSize(QSize(34, 34));
    m_addButton->setStyleSheet(QStringLiteral("QPushButton { border: none; background: transparent; }"));
    connect(m_addButton, &QPushButton::clicked, this, &ZIQGroupNoteContentView::onAddButtonClicked);
}

void ZIQGroupNoteContentView::applyTheme()
{
    const QColor background = Style::color("group_note_create_bg_color", "#FFFFFF");
    Style::setBackgroundColor(this, background);
    Style::setBackgroundColor(m_titleView, background);
    m_itemTableView->setBackgroundColor(background);
    m_titleInputView->update();
    m_titleTextField->setTextColor(Style::color("group_note_create_title_text_color", "#333333"));
    m_descTextField->setTextColor(Style::color("group_note_create_desc_text_color", "#999999"));
    Style::setTextColor(m_infoLabel, Style::color("group_note_detail_info_text_color", "#666666"));
    Style::setBackgroundColor(m_bottomLine, Style::color("group_note_create_tab_bottom_line_color", "#EEEEEE"));
    Style::setTextColor(m_titleLabel, Style::color("group_note_detail_title_text_color", "#000000"));
    Style::setTextColor(m_descLabel, Style::color("group_note_detail_desc_text_color", "#666666"));
    Style::setTextColor(m_deadlineButton, Style::color("group_note_create_deadline_text_color", "#000000"));
    m_deadlineButton->setStyleSheet(
        QStringLiteral("QPushButton { background-color: %1; border: none; border-radius: 12px; padding: 0px; }")
            .arg(Style::color("group_note_create_deadline_bg_color", "#F2F7FF").name(QColor::HexArgb)));
    const QColor exampleHint = Style::color("group_note_create_eg_placeholder_text_color", "#999999");
    Style::setTextColor(m_tipsLabel, exampleHint);
    m_hintTextField->setPlaceholderColor(exampleHint);
    m_hintTextField->setTextColor(Style::color("group_note_create_eg_text_color", "#999999"));
    QColor fieldBackground = Style::color("group_note_create_textfield_bg_color", "#F9F9F9");
    fieldBackground.setAlphaF(fieldBackground.alphaF() * ExampleFieldOpacity);
    m_hintTextField->setBackgroundColor(fieldBackground);
    refreshAddButton();
}

void ZIQGroupNoteContentView::applyAlignment()
{
    const auto fieldAlignment
        = getRTLOption() ? platform::TextField::Alignment::Right : platform::TextField::Alignment::Natural;
    for (platform::TextField *field : std::as_const(m_infoTextFields))
        field->setTextAlignment(fieldAlignment);
    for (QLabel *label : { m_titleLabel, m_descLabel })
        label->setAlignment(Style::textAlignment(Qt::AlignTop));
    for (QLabel *label : { m_infoLabel, m_tipsLabel })
        label->setAlignment(Style::textAlignment(Qt::AlignVCenter));
}

bool ZIQGroupNoteContentView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_titleInputView && event->type() == QEvent::Paint) {
        QPainter painter(m_titleInputView);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Style::color("group_note_create_title_border_color", "#EEEEEE"), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(
            QRectF(m_titleInputView->rect()).adjusted(0.5, 0.5, -0.5, -0.5), FieldCornerRadius, FieldCornerRadius);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
