// Moving the editor screen out of the keyboard's way.
#include "plugin/editor/ZIQGroupNoteKeyboardAvoider.h"

#include "plugin/editor/ZIQGroupNoteContentView.h"

#include "platform/FrameAnimation.h"
#include "platform/Keyboard.h"
#include "platform/NotificationCenter.h"
#include "platform/TextField.h"

ZIQGroupNoteKeyboardAvoider::ZIQGroupNoteKeyboardAvoider(QWidget *screen, ZIQGroupNoteContentView *page, QObject *parent)
    : QObject(parent)
    , m_screen(screen)
    , m_page(page)
{
}

ZIQGroupNoteKeyboardAvoider::~ZIQGroupNoteKeyboardAvoider()
{
    stop();
}

void ZIQGroupNoteKeyboardAvoider::start()
{
    auto &center = platform::NotificationCenter::defaultCenter();
    center.addObserver(this, platform::KeyboardWillShowNotification,
        [this](const platform::Notification &notification) { keyboardWillShow(notification); });
    center.addObserver(this, platform::KeyboardDidShowNotification,
        [this](const platform::Notification &) { m_isKeyboardVisible = true; });
    center.addObserver(this, platform::KeyboardWillHideNotification,
        [this](const platform::Notification &) { keyboardWillHide(); });
    center.addObserver(this, platform::KeyboardDidHideNotification,
        [this](const platform::Notification &) { m_isKeyboardVisible = false; });
}

void ZIQGroupNoteKeyboardAvoider::stop()
{
    platform::NotificationCenter::defaultCenter().removeObserver(this);
}

bool ZIQGroupNoteKeyboardAvoider::respondsToFirstResponder() const
{
    auto *field = qobject_cast<platform::TextField *>(platform::Keyboard::firstResponder());
    return !field || !m_page || m_page->needRespondToKeyboardAnimation(field);
}

void ZIQGroupNoteKeyboardAvoider::keyboardWillShow(const platform::Notification &notification)
{
    if (!m_screen || !m_page || !respondsToFirstResponder())
        return;
    m_oldFrame = m_screen->geometry();
    const QRectF keyboard = notification.userInfo.value(platform::KeyboardFrameEndUserInfoKey).toRectF();
    const float blank = m_page->bottomBlankHeight();
    if (blank < keyboard.height() && !m_isKeyboardVisible) {
        const int rise = qRound(keyboard.height() - blank);
        platform::FrameAnimation::animateFrame(m_screen, m_oldFrame.translated(0, -rise),
            { AnimationMs, 0, platform::FrameAnimation::Curve::EaseOut });
    }
}

void ZIQGroupNoteKeyboardAvoider::keyboardWillHide()
{
    if (!m_screen || !respondsToFirstResponder())
        return;
    // Back to the origin rather than to the saved origin: the screen always rests at (0, 0).
    platform::FrameAnimation::animateFrame(m_screen, QRect(QPoint(0, 0), m_oldFrame.size()),
        { AnimationMs, 0, platform::FrameAnimation::Curve::EaseOut });
}
