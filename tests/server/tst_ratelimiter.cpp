// The request budget of a connection on a clock the test drives.
#include "platform/ManualClock.h"
#include "server/RateLimiter.h"

#include <QTest>

using Verdict = RateLimiter::Verdict;

class TestRateLimiter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void burstThenRefusalThenRefill()
    {
        platform::ManualClock clock;
        RateLimiter limiter({ 10, 3, 100 });
        for (int i = 0; i < 3; ++i)
            QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        clock.advance(99); // 0.99 of a token
        QCOMPARE(limiter.take(), Verdict::Refuse);
        clock.advance(1);
        QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        // A long pause fills the bucket to its burst, no further.
        clock.advance(60000);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
    }

    void keepsSendingWhileRefusedIsClosed()
    {
        platform::ManualClock clock;
        RateLimiter limiter({ 10, 1, 2 });
        QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        QCOMPARE(limiter.take(), Verdict::Close);
    }

    void anAdmittedRequestForgivesEarlierRefusals()
    {
        platform::ManualClock clock;
        RateLimiter limiter({ 10, 1, 2 });
        QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        clock.advance(100);
        QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
        QCOMPARE(limiter.take(), Verdict::Refuse);
    }

    void aClockSetBackDrainsNothing()
    {
        platform::ManualClock clock;
        RateLimiter limiter({ 10, 2, 100 });
        QCOMPARE(limiter.take(), Verdict::Admit);
        clock.setNow(clock.now() - 60000);
        QCOMPARE(limiter.take(), Verdict::Admit);
        QCOMPARE(limiter.take(), Verdict::Refuse);
    }

    void aMemberAddingEntriesIsNeverRefusedByDefault()
    {
        platform::ManualClock clock;
        RateLimiter limiter({});
        // A busy client: 40 requests every 100 ms for a minute.
        for (int tick = 0; tick < 600; ++tick) {
            for (int i = 0; i < 40; ++i)
                QCOMPARE(limiter.take(), Verdict::Admit);
            clock.advance(100);
        }
    }
};

QTEST_GUILESS_MAIN(TestRateLimiter)
#include "tst_ratelimiter.moc"
