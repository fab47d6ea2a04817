#include "plugin/chat/ZIQGroupNotePreviewCell.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"
#include "plugin/service/ZIQGroupNoteColors.h"

#include <QLabel>
#include <cmath>

namespace {

constexpr int FontSize = 14;
constexpr int LabelLeading = 18;
constexpr int LabelSpacing = 11;
constexpr int LabelTop = 12;
constexpr int LabelHeight = 21;
constexpr int TrailingMargin = 12;
constexpr int LineInset = 12;
constexpr int LineTop = 37;

} // namespace

ZIQGroupNotePreviewCell::ZIQGroupNotePreviewCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQCommonTextCell(reuseIdentifier, parent)
    , m_indexLabel(new QLabel(contentView()))
    , m_contentLabel(new QLabel(contentView()))
    , m_bottomLine(new QWidget(contentView()))
{
    // The row draws its own labels; the text cell's key and value stay unused.
    keyLabel()->hide();
    valueLabel()->hide();
    setBackgroundThemeColor({}, 0, {});
    setSelectionStyle(SelectionStyle::None);
    m_indexLabel->setObjectName(QStringLiteral("indexLabel"));
    m_indexLabel->setFont(platform::SystemFont::bold(FontSize));
    m_contentLabel->setObjectName(QStringLiteral("contentLabel"));
    m_contentLabel->setFont(platform::SystemFont::regular(FontSize));
    m_bottomLine->setObjectName(QStringLiteral("bottomLine"));
    connect(this, &TableViewCell::tapped, this, &ZIQGroupNotePreviewCell::onSelectMessage);
    ZIQTheme::bind(this, [this] { applyColors(); });
}

void ZIQGroupNotePreviewCell::fillWithData(const ZIQCommonCellDataPtr &data)
{
    ZIQCommonTextCell::fillWithData(data);
    m_cellData = std::dynamic_pointer_cast<ZIQGroupNotePreviewCellData>(data);
    const ZIQGroupNoteItemPtr item = m_cellData ? m_cellData->item() : nullptr;
    if (!item)
        return;
    const bool expand = isExpandCell();
    m_indexLabel->setVisible(!expand);
    if (item->content().isEmpty()) {
        m_indexLabel->clear();
        m_contentLabel->clear();
    } else {
        m_indexLabel->setText(item->index() == -1 ? QString() : QString::number(item->index()));
        m_contentLabel->setText(item->content());
    }
    applyColors();
    layoutLabels();
}

bool ZIQGroupNotePreviewCell::isExpandCell() const
{
    return m_cellData && m_cellData->item()
        && m_cellData->item()->content()
        == ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteExpand"));
}

void ZIQGroupNotePreviewCell::onSelectMessage()
{
    if (m_pluginMsgSelectCallback)
        m_pluginMsgSelectCallback();
}

void ZIQGroupNotePreviewCell::resizeEvent(QResizeEvent *event)
{
    ZIQCommonTextCell::resizeEvent(event);
    layoutLabels();
}

void ZIQGroupNotePreviewCell::layoutLabels()
{
    const int width = contentView()->width();
    const int indexWidth
        = int(std::ceil(platform::TextMeasure::singleLineSize(m_indexLabel->text(), m_indexLabel->font()).width()));
    m_indexLabel->setGeometry(LabelLeading, LabelTop, indexWidth, LabelHeight);
    const int contentLeft = isExpandCell() ? LabelLeading : LabelLeading + indexWidth + LabelSpacing;
    m_contentLabel->setGeometry(contentLeft, LabelTop, std::max(0, width - TrailingMargin - contentLeft), LabelHeight);
    m_bottomLine->setGeometry(LineInset, LineTop, std::max(0, width - 2 * LineInset), 1);
}

void ZIQGroupNotePreviewCell::applyColors()
{
    using namespace ZIQGroupNoteColors;
    setTextColor(m_indexLabel, color("group_note_cell_index_color", "#000000"));
    // The entry text's default is written without its "#"; the theme reads it all the same.
    setTextColor(m_contentLabel,
        isExpandCell() ? color("primary_theme_color", "#147AFF", ZIQThemeModuleCommon)
                       : color("group_note_cell_desc_color", "666666"));
    fillBackground(m_bottomLine, color("group_note_cell_seperator_color", "#DDDDDD"));
}
