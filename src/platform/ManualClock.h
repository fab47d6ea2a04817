// A clock that tests drive: "now" stands still until advance() moves it, and delayed
// tasks run inside advance() in the order they fall due. Installs itself for its lifetime.
#pragma once

#include "platform/Clock.h"

#include <vector>

namespace platform {

class ManualClock final : public Clock
{
public:
    explicit ManualClock(double startMs = 1700000000000.0);
    ~ManualClock() override;

    ManualClock(const ManualClock &) = delete;
    ManualClock &operator=(const ManualClock &) = delete;

    double now() const override;
    void schedule(int delayMs, QObject *context, bool hasContext, Task task) override;

    /// Moves time forward, running every task that falls due on the way, at its due time.
    void advance(double ms);
    void setNow(double ms);
    /// Tasks still waiting (skipped ones whose context is gone included).
    int pendingTasks() const;

private:
    struct Pending
    {
        double due;
        quint64 order;
        QPointer<QObject> context;
        bool hasContext;
        Task task;
    };

    double m_now;
    quint64 m_nextOrder = 0;
    std::vector<Pending> m_pending;
    Clock *m_previous = nullptr;
};

} // namespace platform
