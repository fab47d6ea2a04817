// The note card's size, computed from the note alone so that the chat can measure a note row
// without building its card. The card (ZIQGroupNotePreviewViewController) places its parts with
// the same constants.
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"

#include <algorithm>

namespace {

constexpr qreal CardWidthRatio = 0.7;
constexpr qreal TitleHorizontalMargins = 48;
constexpr int TitleFontSize = 14;
// Header, besides the title: the caption's line beside the icon, the info line, and the
// margins above, between and under the three.
constexpr float HeaderIconLine = 21;
constexpr float HeaderInfoLine = 21;
constexpr float HeaderMargins = 35;
constexpr qint64 EntryRowHeight = 38;
// 12 above the join button and 12 under it, then the button itself.
constexpr float ButtonMargins = 24;
constexpr float ButtonHeight = 36;

// Without a screen (an empty or unset size) every width is 0.
qreal cardWidth()
{
    return std::max<qreal>(platform::Screen::width(), 0) * CardWidthRatio;
}

} // namespace

qreal ZIQGroupNoteDataProvider::titleWidth()
{
    return cardWidth() - TitleHorizontalMargins;
}

QSizeF ZIQGroupNoteDataProvider::calcTitleSize(const ZIQGroupNoteInfoPtr &info)
{
    if (!info || info->title().isEmpty())
        return { 0, 0 };
    return platform::TextMeasure::size(info->title(), platform::SystemFont::bold(TitleFontSize),
        QSizeF(titleWidth(), platform::TextMeasure::Unbounded),
        platform::TextMeasure::UsesLineFragmentOrigin | platform::TextMeasure::UsesFontLeading);
}

QSizeF ZIQGroupNoteDataProvider::calcHeaderViewSize(const ZIQGroupNoteInfoPtr &info)
{
    float height = float(calcTitleSize(info).height());
    height += HeaderIconLine;
    height += HeaderInfoLine;
    height += HeaderMargins;
    return { cardWidth(), double(height) };
}

float ZIQGroupNoteDataProvider::calcTableViewHeight(qint64 count)
{
    return float(count * EntryRowHeight);
}

QSizeF ZIQGroupNoteDataProvider::calcSizeOfInfo(const ZIQGroupNoteInfoPtr &info, qint64 count)
{
    float height = calcTableViewHeight(count);
    height += float(calcHeaderViewSize(info).height());
    height += ButtonMargins;
    height += ButtonHeight;
    return { cardWidth(), double(height) };
}
