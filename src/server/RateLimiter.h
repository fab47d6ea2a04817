// How many requests one connection may make: a bucket of `burst` tokens refilled at `rate`
// tokens a second on the main queue's clock, one token a request. A connection that keeps
// sending while refused is told to go.
#pragma once

class RateLimiter
{
public:
    enum class Verdict { Admit, Refuse, Close };

    struct Limits
    {
        double rate = 500;
        double burst = 1000;
        /// Requests refused in a row after which the connection is closed.
        int strikes = 100;
    };

    explicit RateLimiter(const Limits &limits);

    /// Takes a token for one request.
    Verdict take();

private:
    void refill();

    Limits m_limits;
    double m_tokens;
    double m_lastMs;
    int m_refusedInRow = 0;
};
