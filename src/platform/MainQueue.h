// The main queue: every callback, delay and "now" of the program goes through here, so that
// tests can replace the clock (ManualClock) and drive time without sleeping.
#pragma once

#include "platform/Clock.h"

namespace platform {

class MainQueue
{
public:
    using Task = Clock::Task;

    /// Milliseconds since 1970 from the installed clock.
    static double now();

    /// Runs `task` on a later turn of the event loop, never inside the call.
    static void async(Task task);
    /// As above; nothing runs if `context` is destroyed first.
    static void async(QObject *context, Task task);

    /// Runs `task` after `delayMs` of the installed clock's time.
    static void after(int delayMs, Task task);
    /// As above; nothing runs if `context` is destroyed first.
    static void after(int delayMs, QObject *context, Task task);

    static Clock *clock();
    /// Installs `clock`; nullptr restores the system clock.
    static void setClock(Clock *clock);
};

} // namespace platform
