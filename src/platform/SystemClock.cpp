#include "platform/SystemClock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTimer>

#include <algorithm>

namespace platform {

double SystemClock::now() const
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch());
}

void SystemClock::schedule(int delayMs, QObject *context, bool hasContext, Task task)
{
    if (hasContext && !context)
        return;
    QCoreApplication *app = QCoreApplication::instance();
    if (!hasContext && !app)
        return;
    // QTimer drops a single shot whose context object is gone.
    QObject *receiver = hasContext ? context : app;
    QTimer::singleShot(std::max(delayMs, 0), receiver, std::move(task));
}

} // namespace platform
