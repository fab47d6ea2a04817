#include "platform/TextMeasure.h"

#include <QCache>
#include <QFontMetricsF>
#include <QTextLayout>

#include <algorithm>

namespace platform {

namespace {

// The width a label gives a line that must not wrap; wider than any text, yet within the
// fixed-point range of the text engine.
constexpr qreal NoWrapWidth = 0x01000000;

struct Extent
{
    qreal width = 0;
    qreal height = 0;
    bool full = false; // a line no longer fitted under the height limit
};

// Lays out one paragraph below `extent`, as a label does: QTextLayout lines whose height is
// the tallest ascent plus the deepest descent of the fonts used in them, so a line holding
// Chinese or emoji from a fallback font grows with that font.
void layOutParagraph(
    const QString &paragraph, const QFont &font, qreal lineWidth, qreal leading, qreal heightLimit, Extent &extent)
{
    QTextLayout layout(paragraph, font);
    const bool wraps = lineWidth < NoWrapWidth;
    QTextOption option;
    option.setWrapMode(wraps ? QTextOption::WordWrap : QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(wraps ? lineWidth : NoWrapWidth);
        const qreal bottom = extent.height + line.height() + leading;
        if (bottom > heightLimit && extent.height > 0) {
            extent.full = true;
            break;
        }
        extent.height = bottom;
        extent.width = std::max(extent.width, line.naturalTextWidth());
    }
    layout.endLayout();
}

constexpr int RememberedResults = 4096;

QCache<QString, QSizeF> &results()
{
    thread_local QCache<QString, QSizeF> cache(RememberedResults);
    return cache;
}

QString keyOf(const QString &text, const QFont &font, const QSizeF &limit, TextMeasure::Options options)
{
    return QStringLiteral("%1|%2|%3|%4|%5|").arg(font.key(), font.families().join(QLatin1Char(',')),
               QString::number(limit.width(), 'g', 17),
               QString::number(limit.height(), 'g', 17), QString::number(int(options)))
        + text;
}

QSizeF measure(const QString &text, const QFont &font, const QSizeF &limit, TextMeasure::Options options)
{
    using enum TextMeasure::Option;
    const qreal lineWidth
        = options.testFlag(UsesLineFragmentOrigin) ? std::clamp<qreal>(limit.width(), 0, NoWrapWidth) : NoWrapWidth;
    const qreal leading = options.testFlag(UsesFontLeading) ? std::max<qreal>(QFontMetricsF(font).leading(), 0) : 0;
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    plain.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    plain.replace(QChar::LineSeparator, QLatin1Char('\n'));
    plain.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));

    Extent extent;
    const QStringList paragraphs = plain.split(QLatin1Char('\n'));
    for (const QString &paragraph : paragraphs) {
        layOutParagraph(paragraph, font, lineWidth, leading, limit.height(), extent);
        if (extent.full)
            break;
    }
    return { extent.width, extent.height };
}

} // namespace

QSizeF TextMeasure::size(const QString &text, const QFont &font, const QSizeF &limit, Options options)
{
    if (text.isEmpty())
        return { 0, 0 };
    const QString key = keyOf(text, font, limit, options);
    if (const QSizeF *known = results().object(key))
        return *known;
    const QSizeF measured = measure(text, font, limit, options);
    results().insert(key, new QSizeF(measured));
    return measured;
}

void TextMeasure::clearCache()
{
    results().clear();
}

} // namespace platform
