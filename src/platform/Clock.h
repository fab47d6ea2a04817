// The source of "now" and of delayed main-queue work. One clock is installed at a time:
// the system clock in programs, a ManualClock in tests that drive time themselves.
#pragma once

#include <QPointer>
#include <functional>

namespace platform {

class Clock
{
public:
    using Task = std::function<void()>;

    virtual ~Clock();

    /// Milliseconds since 1970-01-01 UTC.
    virtual double now() const = 0;

    /// Runs `task` on the main thread after `delayMs`. A task given a `context` is skipped
    /// when the context has been destroyed by then.
    virtual void schedule(int delayMs, QObject *context, bool hasContext, Task task) = 0;
};

} // namespace platform
