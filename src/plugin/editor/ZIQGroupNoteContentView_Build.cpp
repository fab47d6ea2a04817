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

#include <QLabel>
#include <QPushButton>

#include <memory>

using Style = ZIQGroupNoteEditorStyle;

namespace {

constexpr qreal ExampleFieldOpacity = 0.9;
constexpr int FieldCornerRadius = 8;
constexpr QSize PaddingViewSize(16, 20);

QLabel *makeLabel(const QString &name, const QFont &font, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(name);
    label->setFont(font);
    label->setTextFormat(Qt::PlainText);
    return label;
}

} // namespace

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

void ZIQGroupNoteContentView::buildExampleRow()
{
    m_exampleView = new QWidget(this);
    m_exampleView->setObjectName(QStringLiteral("exampleView"));
    m_tipsLabel = makeLabel(QStringLiteral("tipsLabel"), platform::SystemFont::bold(14), m_exampleView);
    m_tipsLabel->setText(Style::localized("ZIQGroupNoteFormatExample"));
    m_tipsLabel->setGeometry(16, 12, 22, 21);
    m_hintTextField = Style::textField(QStringLiteral("hintTextField"), 14, "ZIQGroupNoteFormatHint", m_exampleView);
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
    m_addButton = new QPushButton(this);
    m_addButton->setObjectName(QStringLiteral("addButton"));
    // A tap on a phone's button leaves the focus (and the keyboard) where it was; the keyboard's
    // Tab still reaches it.
    m_addButton->setFocusPolicy(Qt::TabFocus);
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
    Style::setTextColor(m_infoLabel, Style::color("group_note_detail_info_text_color", "#666666"));
    Style::setBackgroundColor(m_bottomLine, Style::color("group_note_create_tab_bottom_line_color", "#EEEEEE"));
    Style::setTextColor(m_titleLabel, Style::color("group_note_detail_title_text_color", "#000000"));
    Style::setTextColor(m_descLabel, Style::color("group_note_detail_desc_text_color", "#666666"));
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
