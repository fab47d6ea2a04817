#include "server/RateLimiter.h"

#include "platform/MainQueue.h"

#include <algorithm>

RateLimiter::RateLimiter(const Limits &limits)
    : m_limits(limits)
    , m_tokens(limits.burst)
    , m_lastMs(platform::MainQueue::now())
{
}

RateLimiter::Verdict RateLimiter::take()
{
    refill();
    if (m_tokens >= 1) {
        m_tokens -= 1;
        m_refusedInRow = 0;
        return Verdict::Admit;
    }
    ++m_refusedInRow;
    return m_refusedInRow > m_limits.strikes ? Verdict::Close : Verdict::Refuse;
}

void RateLimiter::refill()
{
    const double now = platform::MainQueue::now();
    // A clock set back refills nothing rather than draining the bucket.
    const double elapsedMs = std::max(0.0, now - m_lastMs);
    m_lastMs = now;
    m_tokens = std::min(m_limits.burst, m_tokens + elapsedMs * m_limits.rate / 1000.0);
}
