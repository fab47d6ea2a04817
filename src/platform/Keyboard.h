// The phone's soft keyboard, simulated: when a widget that takes text input gets the focus in
// a window, a keyboard panel slides up over the bottom of that window on the main queue's
// clock, and slides away again when the focus leaves text input. Screens learn of it the way
// they do on a phone, through the keyboard notifications below in the default notification
// centre, each carrying the keyboard's frames in screen points, the duration and the curve.
#pragma once

#include "platform/KeyboardView.h"

#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QString>

namespace platform {

inline const QString KeyboardWillShowNotification = QStringLiteral("UIKeyboardWillShowNotification");
inline const QString KeyboardDidShowNotification = QStringLiteral("UIKeyboardDidShowNotification");
inline const QString KeyboardWillHideNotification = QStringLiteral("UIKeyboardWillHideNotification");
inline const QString KeyboardDidHideNotification = QStringLiteral("UIKeyboardDidHideNotification");

/// QRectF: where the keyboard stands when the change starts, in screen points.
inline const QString KeyboardFrameBeginUserInfoKey = QStringLiteral("UIKeyboardFrameBeginUserInfoKey");
/// QRectF: where the keyboard will stand once the change is over, in screen points.
inline const QString KeyboardFrameEndUserInfoKey = QStringLiteral("UIKeyboardFrameEndUserInfoKey");
/// double: seconds the change takes.
inline const QString KeyboardAnimationDurationUserInfoKey = QStringLiteral("UIKeyboardAnimationDurationUserInfoKey");
/// QEasingCurve: how the keyboard moves.
inline const QString KeyboardAnimationCurveUserInfoKey = QStringLiteral("UIKeyboardAnimationCurveUserInfoKey");

class Keyboard : public QObject
{
    Q_OBJECT

public:
    static constexpr int AnimationDurationMs = 250;

    /// The keyboard, created on first use; from then on it follows the application's focus.
    /// Every TextField makes sure it exists.
    static Keyboard *instance();

    /// The widget that has the focus in the active window, if any.
    static QWidget *firstResponder();
    /// Takes the focus from the first responder when it is `view` or inside it; true if one
    /// was found. Tapping beside the fields of a screen ends editing this way.
    static bool endEditing(QWidget *view);

    /// The keyboard's height on the main screen: 336 points on a phone at least 812 tall (its
    /// 34-point home area included), 260 on a smaller phone, 313 on a pad; 0, and no
    /// keyboard at all, on a desktop or without a screen.
    static qreal height();

    /// True from the moment the keyboard starts to appear until it starts to hide.
    bool isVisible() const { return m_target > 0; }
    /// Where the keyboard stands now, in screen points (below the screen when hidden).
    QRectF frame() const { return frameAt(m_progress); }
    /// The panel drawn over the window being edited; null until the keyboard first shows.
    KeyboardView *view() const { return m_view; }

private:
    explicit Keyboard(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;
    void focusChanged(QWidget *now);
    void show(QWidget *window);
    void hide();
    void animateTo(qreal target);
    void step(quint64 generation);
    void placeView();
    void windowGone();
    void post(const QString &name, const QRectF &begin, const QRectF &end) const;
    static QRectF frameAt(qreal progress);

    QPointer<KeyboardView> m_view;
    QRectF m_beginFrame; // where the running change started
    qreal m_progress = 0; // 0 hidden, 1 fully up
    qreal m_from = 0;
    qreal m_target = 0;
    double m_startMs = 0;
    quint64 m_generation = 0;
    bool m_animating = false;
};

} // namespace platform
