// The block in which a new note's title and description are typed: two borderless fields, one
// under the other, in a rounded frame.
#pragma once

#include <QWidget>

namespace platform {
class TextField;
} // namespace platform

class ZIQGroupNoteTitleInputView : public QWidget
{
    Q_OBJECT

public:
    explicit ZIQGroupNoteTitleInputView(QWidget *parent = nullptr);

    platform::TextField *titleTextField() const { return m_titleTextField; }
    platform::TextField *descTextField() const { return m_descTextField; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyTheme();

    platform::TextField *m_titleTextField;
    platform::TextField *m_descTextField;
};
