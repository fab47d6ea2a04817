// How much room a text takes in a font, computed without any view: the card and the editor
// size their rows from these numbers before anything is laid out, so they must equal what a
// word-wrapping QLabel with the same font and width draws.
#pragma once

#include <QFlags>
#include <QFont>
#include <QSizeF>
#include <QString>

#include <limits>

namespace platform {

class TextMeasure
{
public:
    enum Option {
        /// Lay the text out in lines that wrap at the limit's width, stacked from the top-left
        /// corner. Without it the text is measured on one line per paragraph, never wrapped.
        UsesLineFragmentOrigin = 0x1,
        /// Count the font's leading (the gap a font asks for between lines) under each line.
        UsesFontLeading = 0x2,
    };
    Q_DECLARE_FLAGS(Options, Option)

    /// A limit that does not limit, for the width or the height.
    static constexpr qreal Unbounded = std::numeric_limits<qreal>::max();

    /// The size of `text` in `font` within `limit`: the widest line's width and the height of
    /// the lines that fit under the limit's height (the first line always counts). Lines break
    /// between words, as a label breaks them; a word wider than the limit overflows it. An
    /// empty text measures 0 x 0.
    ///
    /// The last few thousand results are remembered per thread: a list measures the same rows
    /// again on every reload, and shaping a text (emoji above all, whose glyphs are pictures)
    /// costs far more than looking the answer up.
    static QSizeF size(
        const QString &text, const QFont &font, const QSizeF &limit, Options options = UsesLineFragmentOrigin);

    /// Forgets every remembered result; for measuring the cost of a first measurement.
    static void clearCache();

    /// The size of `text` on one line, as a label that does not wrap shows it.
    static QSizeF singleLineSize(const QString &text, const QFont &font)
    {
        return size(text, font, QSizeF(Unbounded, Unbounded), {});
    }
};

} // namespace platform

Q_DECLARE_OPERATORS_FOR_FLAGS(platform::TextMeasure::Options)
