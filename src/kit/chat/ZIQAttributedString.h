// Text with colours and fonts over ranges of it, as a system row shows it; a label draws it
// through toHtml().
#pragma once

#include <QColor>
#include <QFont>
#include <QList>
#include <QString>
#include <QTextLayout>

class ZIQAttributedString
{
public:
    ZIQAttributedString() = default;
    explicit ZIQAttributedString(const QString &string);

    QString string() const { return m_string; }
    /// Ranges in UTF-16 units, in the order they were set; later ranges win where they overlap.
    QList<QTextLayout::FormatRange> formats() const { return m_formats; }
    bool isEmpty() const { return m_string.isEmpty(); }

    /// Appends text drawn with `format`.
    void append(const QString &text, const QTextCharFormat &format = {});
    void setForegroundColor(int start, int length, const QColor &color);
    void setFont(int start, int length, const QFont &font);
    /// The format in effect at `position`.
    QTextCharFormat formatAt(int position) const;

    /// Rich text for a label: every character escaped, each run of one format in its own span.
    QString toHtml() const;

    friend bool operator==(const ZIQAttributedString &a, const ZIQAttributedString &b)
    {
        return a.m_string == b.m_string && a.m_formats == b.m_formats;
    }

private:
    void addFormat(int start, int length, const QTextCharFormat &format);

    QString m_string;
    QList<QTextLayout::FormatRange> m_formats;
};
