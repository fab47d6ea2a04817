// The note page's numbers: margins, block heights and the measured texts.
#include "plugin/editor/ZIQGroupNotePageGeometry.h"

#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <algorithm>

namespace {

constexpr qreal SideMargin = 16;
constexpr qreal TitleInputTop = 20;
constexpr qreal TitleViewGap = 20;
constexpr qreal TitleDescGap = 8;
constexpr qreal DeadlineGap = 12;
constexpr qreal ExampleGap = 20;
constexpr qreal TableGap = 12;
constexpr qreal AddButtonGap = 6;
constexpr qreal BottomMargin = 20;
constexpr qreal TallPhoneInset = 34;

qreal measuredHeight(qreal pageWidth, const QString &text, const QFont &font)
{
    // The wrap width is taken from the title view's width as a single-precision number.
    const qreal wrapWidth = static_cast<float>(pageWidth - 2 * SideMargin) - 2 * SideMargin;
    const auto options = platform::TextMeasure::UsesLineFragmentOrigin | platform::TextMeasure::UsesFontLeading;
    return platform::TextMeasure::size(text, font, QSizeF(wrapWidth, platform::TextMeasure::Unbounded), options)
        .height();
}

} // namespace

qreal ZIQGroupNotePageGeometry::bottomInset()
{
    const bool tallPhone = platform::Screen::width() >= 375 && platform::Screen::height() >= 812;
    return tallPhone && platform::Screen::isPhone() ? TallPhoneInset : 0;
}

qreal ZIQGroupNotePageGeometry::titleTextHeight(qreal pageWidth, const QString &title)
{
    return measuredHeight(pageWidth, QLatin1Char('#') + title, platform::SystemFont::bold(18));
}

qreal ZIQGroupNotePageGeometry::descTextHeight(qreal pageWidth, const QString &desc)
{
    return measuredHeight(pageWidth, desc, platform::SystemFont::regular(12));
}

ZIQGroupNotePageGeometry::Blocks ZIQGroupNotePageGeometry::layout(const Face &face)
{
    const qreal width = face.pageSize.width();
    const qreal height = face.pageSize.height();
    const qreal innerWidth = width - 2 * SideMargin;
    Blocks blocks;

    blocks.titleInputView = QRectF(SideMargin, TitleInputTop, innerWidth, TitleInputHeight);
    blocks.infoView = QRectF(SideMargin, 0, innerWidth, InfoLineHeight);
    blocks.bottomLine = QRectF(SideMargin, InfoLineHeight, innerWidth, 1);
    const qreal titleHeight = titleTextHeight(width, face.title);
    const qreal descHeight = descTextHeight(width, face.desc);
    const qreal labelWidth = width - 4 * SideMargin;
    blocks.titleLabel = QRectF(0, 0, labelWidth, titleHeight);
    blocks.descLabel = QRectF(0, titleHeight + TitleDescGap, labelWidth, descHeight);
    blocks.titleView = QRectF(
        SideMargin, blocks.infoView.bottom() + TitleViewGap, innerWidth, titleHeight + descHeight + TitleDescGap);

    // Each block hangs under the lowest block above it that is shown.
    qreal anchor = face.isCreateNew ? blocks.titleInputView.bottom() : blocks.titleView.bottom();
    blocks.deadlineButton = QRectF(SideMargin, anchor + DeadlineGap, face.deadlineButtonWidth, DeadlineButtonHeight);
    if (face.deadlineShown)
        anchor = blocks.deadlineButton.bottom();
    blocks.exampleView = QRectF(0, anchor + ExampleGap, width, ExampleRowHeight);
    if (face.exampleShown)
        anchor = blocks.exampleView.bottom();

    const qreal tableTop = anchor + TableGap;
    const float rowsHeight = static_cast<float>(face.cellCount * ItemRowHeight);
    const float roomHeight
        = static_cast<float>(height - tableTop - AddButtonSize - AddButtonGap - bottomInset() - BottomMargin);
    blocks.itemTableViewHeight = std::min(rowsHeight, roomHeight);
    blocks.itemTableView = QRectF(0, tableTop, width, std::max(0.0f, blocks.itemTableViewHeight));
    blocks.addButton = QRectF(SideMargin, blocks.itemTableView.bottom() + AddButtonGap, AddButtonSize, AddButtonSize);
    blocks.bottomBlankHeight = static_cast<float>(height - blocks.addButton.bottom() - BottomMargin);
    return blocks;
}
