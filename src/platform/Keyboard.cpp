#include "platform/Keyboard.h"

#include "platform/KeyboardView.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "platform/Screen.h"

#include <QApplication>
#include <QEasingCurve>
#include <QEvent>

#include <algorithm>
#include <cmath>

namespace platform {

namespace {

// One step of the slide per frame of a 60 Hz display.
constexpr int FrameMs = 16;

QEasingCurve slideCurve()
{
    return QEasingCurve(QEasingCurve::OutCubic);
}

bool takesText(const QWidget *widget)
{
    // Qt sets this on editable text widgets only; a read-only field does not type.
    return widget && widget->isEnabled() && widget->testAttribute(Qt::WA_InputMethodEnabled);
}

} // namespace

Keyboard *Keyboard::instance()
{
    static QPointer<Keyboard> keyboard;
    if (!keyboard && qobject_cast<QApplication *>(QCoreApplication::instance()))
        keyboard = new Keyboard(QCoreApplication::instance());
    return keyboard;
}

Keyboard::Keyboard(QObject *parent)
    : QObject(parent)
{
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) { focusChanged(now); });
}

QWidget *Keyboard::firstResponder()
{
    QWidget *window = QApplication::activeWindow();
    return window ? window->focusWidget() : nullptr;
}

bool Keyboard::endEditing(QWidget *view)
{
    QWidget *responder = view ? view->window()->focusWidget() : nullptr;
    if (!responder || !(responder == view || view->isAncestorOf(responder)))
        return false;
    responder->clearFocus();
    return true;
}

qreal Keyboard::height()
{
    if (Screen::bounds().isEmpty())
        return 0;
    switch (Screen::idiom()) {
    case DeviceIdiom::Phone:
        return Screen::height() >= 812 ? 336 : 260;
    case DeviceIdiom::Pad:
        return 313;
    case DeviceIdiom::Desktop:
        break;
    }
    return 0;
}

QRectF Keyboard::frameAt(qreal progress)
{
    const qreal keyboardHeight = height();
    return QRectF(0, Screen::height() - keyboardHeight * progress, Screen::width(), keyboardHeight);
}

bool Keyboard::eventFilter(QObject *watched, QEvent *event)
{
    if (m_view && watched == m_view->parentWidget() && event->type() == QEvent::Resize)
        placeView();
    return QObject::eventFilter(watched, event);
}

void Keyboard::focusChanged(QWidget *now)
{
    if (takesText(now) && height() > 0)
        show(now->window());
    else
        hide();
}

void Keyboard::show(QWidget *window)
{
    if (!m_view) {
        m_view = new KeyboardView(window);
        connect(m_view, &QObject::destroyed, this, &Keyboard::windowGone);
    } else if (m_view->parentWidget() != window) {
        m_view->parentWidget()->removeEventFilter(this);
        m_view->setParent(window);
    }
    window->installEventFilter(this);
    const QRectF begin = frame();
    post(KeyboardWillShowNotification, begin, frameAt(1));
    if (m_target < 1) {
        animateTo(1);
    } else if (!m_animating) {
        // The focus moved from one field to another: a phone tells the screen again, so that
        // it can make room for the new field.
        placeView();
        post(KeyboardDidShowNotification, begin, frameAt(1));
    }
}

void Keyboard::hide()
{
    if (m_target <= 0)
        return;
    post(KeyboardWillHideNotification, frame(), frameAt(0));
    animateTo(0);
}

void Keyboard::animateTo(qreal target)
{
    m_beginFrame = frame();
    m_from = m_progress;
    m_target = target;
    m_startMs = MainQueue::now();
    m_animating = true;
    step(++m_generation);
}

void Keyboard::step(quint64 generation)
{
    if (generation != m_generation)
        return; // a newer change took over
    const double elapsed = MainQueue::now() - m_startMs;
    const qreal t = std::clamp(elapsed / AnimationDurationMs, 0.0, 1.0);
    m_progress = m_from + (m_target - m_from) * slideCurve().valueForProgress(t);
    placeView();
    if (t < 1) {
        const int remaining = int(std::ceil(AnimationDurationMs - elapsed));
        MainQueue::after(std::min(FrameMs, remaining), this, [this, generation] { step(generation); });
        return;
    }
    m_animating = false;
    const bool shown = m_target > 0;
    post(shown ? KeyboardDidShowNotification : KeyboardDidHideNotification, m_beginFrame, frameAt(m_target));
}

void Keyboard::placeView()
{
    QWidget *window = m_view ? m_view->parentWidget() : nullptr;
    if (!window)
        return;
    const qreal keyboardHeight = height();
    const int top = qRound(window->height() - keyboardHeight * m_progress);
    m_view->setGeometry(0, top, window->width(), qRound(keyboardHeight));
    m_view->setVisible(m_progress > 0);
    m_view->raise();
}

void Keyboard::windowGone()
{
    // The window being edited closed under the keyboard: nothing is left to slide.
    ++m_generation;
    m_progress = m_from = m_target = 0;
    m_animating = false;
}

void Keyboard::post(const QString &name, const QRectF &begin, const QRectF &end) const
{
    const QVariantMap userInfo {
        { KeyboardFrameBeginUserInfoKey, begin },
        { KeyboardFrameEndUserInfoKey, end },
        { KeyboardAnimationDurationUserInfoKey, AnimationDurationMs / 1000.0 },
        { KeyboardAnimationCurveUserInfoKey, QVariant::fromValue(slideCurve()) },
    };
    NotificationCenter::defaultCenter().post(name, userInfo);
}

} // namespace platform
