#include "platform/ToastCenter.h"

#include "platform/Toast.h"

#include <QApplication>

#include <algorithm>

namespace platform {

namespace {

// The window the user is looking at: the active one, else the topmost visible ordinary window.
QWidget *hostWindow()
{
    if (QWidget *active = QApplication::activeWindow())
        return active;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        QWidget *window = *it;
        const Qt::WindowType type = window->windowType();
        if (window->isVisible() && !qobject_cast<Toast *>(window) && (type == Qt::Window || type == Qt::Dialog))
            return window;
    }
    return nullptr;
}

} // namespace

ToastCenter *ToastCenter::instance()
{
    // Never destroyed: toasts may still be asked for while the process shuts down.
    static ToastCenter *center = new ToastCenter;
    return center;
}

Toast *ToastCenter::currentToast() const
{
    return m_current;
}

void ToastCenter::show(const QString &text, int durationMs, ToastPosition position)
{
    if (text.isEmpty())
        return;
    durationMs = std::max(durationMs, 0);
    m_lastText = text;
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        if (m_current) {
            m_current->hide();
            m_current->deleteLater();
        }
        m_current = new Toast(text, position, hostWindow());
        m_current->showFor(durationMs);
    }
    Q_EMIT toastShown(text, durationMs, static_cast<int>(position));
}

} // namespace platform
