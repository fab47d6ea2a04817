// The process's toasts: shows one at a time over the active window and tells observers
// (tests among them) what was shown. Without a widget application toasts are only recorded.
#pragma once

#include "platform/ToastPosition.h"

#include <QObject>
#include <QPointer>

namespace platform {

class Toast;

class ToastCenter : public QObject
{
    Q_OBJECT

public:
    static ToastCenter *instance();

    /// Shows `text` for `durationMs`, replacing a toast still on screen. Empty text shows nothing.
    void show(const QString &text, int durationMs, ToastPosition position = ToastPosition::Center);

    QString lastText() const { return m_lastText; }
    /// The toast on screen, or null.
    Toast *currentToast() const;

Q_SIGNALS:
    void toastShown(const QString &text, int durationMs, int position);

private:
    ToastCenter() = default;

    QString m_lastText;
    QPointer<Toast> m_current;
};

} // namespace platform
