// A one-line text field as a phone draws it: a rounded, tinted background, a placeholder in
// its own colour and font, padding views that always stand at either end, and a return key
// that ends editing. Editing by the user is reported on every change.
#pragma once

#include <QColor>
#include <QFont>
#include <QLineEdit>
#include <QPointer>

#include <optional>

namespace platform {

class TextField : public QLineEdit
{
    Q_OBJECT

public:
    /// Where the text stands across the field. Left and Right are absolute (a right-to-left
    /// interface asks for Right); Natural follows the direction of the text itself.
    enum class Alignment { Natural, Left, Center, Right };

    explicit TextField(QWidget *parent = nullptr);

    /// The placeholder is QLineEdit's placeholderText(), drawn in this colour and font
    /// whenever the field is empty, focused or not.
    QColor placeholderColor() const { return m_placeholderColor; }
    void setPlaceholderColor(const QColor &color);
    /// The field's own font until another is set.
    QFont placeholderFont() const { return m_placeholderFont.value_or(font()); }
    void setPlaceholderFont(const QFont &font);

    QColor textColor() const;
    void setTextColor(const QColor &color);

    /// Filled behind the text, alpha included; transparent by default.
    QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor &color);
    qreal cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(qreal radius);

    /// Views at the left and right end, always shown, vertically centred; their widths (as
    /// sized when set) are the text's margins. The field takes ownership, and deletes a view
    /// that a new one replaces. One view may fill both slots: it then stands at the right end
    /// and its width pads both sides.
    QWidget *leftView() const { return m_leftView; }
    void setLeftView(QWidget *view);
    QWidget *rightView() const { return m_rightView; }
    void setRightView(QWidget *view);

    /// Always vertically centred.
    Alignment textAlignment() const { return m_textAlignment; }
    void setTextAlignment(Alignment alignment);

    /// Takes the focus (and so brings up the keyboard). False when the field cannot edit.
    bool becomeFirstResponder();
    /// Gives up the focus (and so lets the keyboard go).
    void resignFirstResponder();
    bool isFirstResponder() const { return hasFocus(); }

Q_SIGNALS:
    /// The user changed the text: typed, deleted, pasted or cut. Not emitted for setText().
    /// (Return emits QLineEdit::returnPressed() first, then the field resigns.)
    void editingChanged(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void replaceView(QPointer<QWidget> &slot, QWidget *view);
    void updateMargins();
    void placeViews();
    void paintPlaceholder(QPainter &painter) const;

    QColor m_placeholderColor;
    std::optional<QFont> m_placeholderFont;
    QColor m_backgroundColor = Qt::transparent;
    qreal m_cornerRadius = 0;
    Alignment m_textAlignment = Alignment::Natural;
    QPointer<QWidget> m_leftView;
    QPointer<QWidget> m_rightView;
};

} // namespace platform
