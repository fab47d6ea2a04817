#include "platform/ManualClock.h"

#include "platform/MainQueue.h"

#include <algorithm>

namespace platform {

ManualClock::ManualClock(double startMs)
    : m_now(startMs)
    , m_previous(MainQueue::clock())
{
    MainQueue::setClock(this);
}

ManualClock::~ManualClock()
{
    MainQueue::setClock(m_previous);
}

double ManualClock::now() const
{
    return m_now;
}

void ManualClock::schedule(int delayMs, QObject *context, bool hasContext, Task task)
{
    m_pending.push_back({m_now + std::max(delayMs, 0), m_nextOrder++, context, hasContext, std::move(task)});
}

void ManualClock::advance(double ms)
{
    // Time only moves forward; a task that advances the clock itself must not be undone.
    const double target = m_now + std::max(ms, 0.0);
    for (;;) {
        auto next = std::min_element(m_pending.begin(), m_pending.end(), [](const Pending &a, const Pending &b) {
            return a.due < b.due || (a.due == b.due && a.order < b.order);
        });
        if (next == m_pending.end() || next->due > target)
            break;
        Pending due = std::move(*next);
        m_pending.erase(next);
        m_now = std::max(m_now, due.due);
        if (!due.hasContext || due.context)
            due.task();
    }
    m_now = std::max(m_now, target);
}

void ManualClock::setNow(double ms)
{
    m_now = ms;
}

int ManualClock::pendingTasks() const
{
    return static_cast<int>(m_pending.size());
}

} // namespace platform
