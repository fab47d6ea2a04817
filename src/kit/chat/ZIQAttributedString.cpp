#include "kit/chat/ZIQAttributedString.h"

#include <algorithm>

ZIQAttributedString::ZIQAttributedString(const QString &string)
    : m_string(string)
{
}

void ZIQAttributedString::append(const QString &text, const QTextCharFormat &format)
{
    const int start = int(m_string.size());
    m_string += text;
    if (!format.properties().isEmpty())
        addFormat(start, int(text.size()), format);
}

void ZIQAttributedString::setForegroundColor(int start, int length, const QColor &color)
{
    QTextCharFormat format;
    format.setForeground(color);
    addFormat(start, length, format);
}

void ZIQAttributedString::setFont(int start, int length, const QFont &font)
{
    QTextCharFormat format;
    format.setFont(font);
    addFormat(start, length, format);
}

void ZIQAttributedString::addFormat(int start, int length, const QTextCharFormat &format)
{
    start = std::clamp(start, 0, int(m_string.size()));
    length = std::clamp(length, 0, int(m_string.size()) - start);
    if (length > 0)
        m_formats.append({ start, length, format });
}

QTextCharFormat ZIQAttributedString::formatAt(int position) const
{
    QTextCharFormat merged;
    for (const QTextLayout::FormatRange &range : m_formats) {
        if (position >= range.start && position < range.start + range.length)
            merged.merge(range.format);
    }
    return merged;
}

namespace {

QString spanStyle(const QTextCharFormat &format)
{
    QStringList style;
    if (format.hasProperty(QTextFormat::ForegroundBrush))
        style << QStringLiteral("color:%1").arg(format.foreground().color().name(QColor::HexArgb));
    if (format.hasProperty(QTextFormat::FontPixelSize))
        style << QStringLiteral("font-size:%1px").arg(format.intProperty(QTextFormat::FontPixelSize));
    if (format.hasProperty(QTextFormat::FontWeight))
        style << QStringLiteral("font-weight:%1").arg(format.fontWeight());
    if (format.hasProperty(QTextFormat::FontFamilies))
        style
            << QStringLiteral("font-family:'%1'").arg(format.fontFamilies().toStringList().join(QStringLiteral("','")));
    return style.join(QLatin1Char(';'));
}

} // namespace

QString ZIQAttributedString::toHtml() const
{
    QString html;
    int runStart = 0;
    for (int i = 1; i <= m_string.size(); ++i) {
        if (i < m_string.size() && formatAt(i) == formatAt(runStart))
            continue;
        const QString text = m_string.mid(runStart, i - runStart).toHtmlEscaped();
        const QString style = spanStyle(formatAt(runStart));
        html += style.isEmpty() ? text : QStringLiteral("<span style=\"%1\">%2</span>").arg(style, text);
        runStart = i;
    }
    return html;
}
