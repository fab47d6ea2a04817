// Keeps the entry being edited above the keyboard: when the keyboard comes up over an entry
// field and covers more than the free room under the note page's content, the whole screen
// moves up by the difference; when the keyboard goes, the screen returns to the origin. The
// page's own title, description and example fields sit high enough and never move it.
#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>

class QWidget;
class ZIQGroupNoteContentView;
namespace platform {
struct Notification;
}

class ZIQGroupNoteKeyboardAvoider : public QObject
{
    Q_OBJECT

public:
    static constexpr int AnimationMs = 250;

    ZIQGroupNoteKeyboardAvoider(QWidget *screen, ZIQGroupNoteContentView *page, QObject *parent = nullptr);
    ~ZIQGroupNoteKeyboardAvoider() override;

    /// Observes the keyboard's notifications while the screen is on view.
    void start();
    void stop();

    /// Set once the keyboard has finished appearing, cleared once it has finished hiding.
    bool isKeyboardVisible() const { return m_isKeyboardVisible; }
    /// The screen's frame as it stood when the keyboard last started to appear.
    QRect oldFrame() const { return m_oldFrame; }

private:
    /// False when the focused widget is one of the page's own fields.
    bool respondsToFirstResponder() const;
    void keyboardWillShow(const platform::Notification &notification);
    void keyboardWillHide();

    QPointer<QWidget> m_screen;
    QPointer<ZIQGroupNoteContentView> m_page;
    bool m_isKeyboardVisible = false;
    QRect m_oldFrame;
};
