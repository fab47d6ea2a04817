// What the editor's views share to draw themselves: colours of the plug-in's theme, the kit's
// texts and the way a label or button is given a text colour.
#pragma once

#include <QColor>
#include <QString>

class QWidget;

namespace platform {
class TextField;
} // namespace platform

class ZIQGroupNoteEditorStyle
{
public:
    /// The longest text, in UTF-16 units, a field of the editor hands on to the note.
    static constexpr int MaxTextLength = 50;

    /// Shows the kit's text for `key` as a centred toast for three seconds.
    static void toast(const char *key);
    /// Whether `text` fits the editor's limit; when it does not, says so in a toast.
    static bool acceptsText(const QString &text);
    /// The plug-in theme's colour for `key`, else `defaultHex`.
    static QColor color(const char *key, const char *defaultHex);
    /// The kit's text for `key` in the current language.
    static QString localized(const char *key);
    /// Draws `widget`'s text (a label's or a button's title) in `color`.
    static void setTextColor(QWidget *widget, const QColor &color);
    /// Fills `widget` with `color` (a rule, an underline, a plain block).
    static void setBackgroundColor(QWidget *widget, const QColor &color);
    /// A field of the page in the regular system font of `pointSize`, with the kit's text for
    /// `placeholderKey` as its placeholder.
    static platform::TextField *textField(
        const QString &name, int pointSize, const char *placeholderKey, QWidget *parent);
    /// Right-aligned when the kit runs right to left, else left-aligned; always with `vertical`.
    static Qt::Alignment textAlignment(Qt::Alignment vertical);
};
