#include "platform/SystemClock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QTimer>

namespace platform {

double SystemClock::now() const
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch());
}

void SystemClock::schedule(int delayMs, QObject *context, bool hasContext, Task task)
{
    if (hasContext && !context)
        return;
    // QTimer drops a single shot whose context object is gone.
    QObject *receiver = hasContext ? context : QCoreApplication::instance();
    QTimer::singleShot(delayMs, receiver, std::move(task));
}

} // namespace platform
