// A short message drawn as a rounded dark label over a window (or over the screen when no
// window is open), centred horizontally at the top, the middle or the bottom.
#pragma once

#include "platform/ToastPosition.h"

#include <QLabel>

namespace platform {

class Toast : public QLabel
{
    Q_OBJECT

public:
    /// A toast over `host`; with no host it is a window of its own over the primary screen.
    Toast(const QString &text, ToastPosition position, QWidget *host);

    ToastPosition position() const { return m_position; }

    /// Shows the toast and removes it `durationMs` later on the main queue.
    void showFor(int durationMs);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void place();

    ToastPosition m_position;
};

} // namespace platform
