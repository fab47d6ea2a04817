#include "platform/MainQueue.h"

#include "platform/SystemClock.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace platform {

namespace {

SystemClock &systemClock()
{
    static SystemClock clock;
    return clock;
}

Clock *&installedClock()
{
    static Clock *clock = nullptr;
    return clock;
}

} // namespace

double MainQueue::now()
{
    return clock()->now();
}

void MainQueue::async(Task task)
{
    // Without an application there is no event loop to run the task on.
    if (QCoreApplication *app = QCoreApplication::instance())
        QMetaObject::invokeMethod(app, std::move(task), Qt::QueuedConnection);
}

void MainQueue::async(QObject *context, Task task)
{
    if (!context)
        return;
    // A queued call to a destroyed object is discarded with the object's posted events.
    QMetaObject::invokeMethod(context, std::move(task), Qt::QueuedConnection);
}

void MainQueue::after(int delayMs, Task task)
{
    clock()->schedule(delayMs, nullptr, false, std::move(task));
}

void MainQueue::after(int delayMs, QObject *context, Task task)
{
    clock()->schedule(delayMs, context, true, std::move(task));
}

Clock *MainQueue::clock()
{
    Clock *installed = installedClock();
    return installed ? installed : &systemClock();
}

void MainQueue::setClock(Clock *clock)
{
    installedClock() = clock;
}

} // namespace platform
