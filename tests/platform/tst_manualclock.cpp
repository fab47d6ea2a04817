// The manual clock and the main queue: delayed work runs inside advance() in the order it
// falls due, never for a destroyed context, and async work never inside the call.
#include "platform/MainQueue.h"
#include "platform/ManualClock.h"

#include <QTest>

using platform::MainQueue;
using platform::ManualClock;

class ManualClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsDueTasksInOrderAtTheirTime()
    {
        ManualClock clock(1000);
        QStringList ran;
        auto record
            = [&](const QString &name) { return [&ran, name] { ran << name + QString::number(MainQueue::now()); }; };
        MainQueue::after(300, record(QStringLiteral("c")));
        MainQueue::after(100, [&] {
            ran << QStringLiteral("a1100");
            // Work scheduled by a task runs in the same advance when it falls due.
            MainQueue::after(50, record(QStringLiteral("d")));
            MainQueue::after(500, record(QStringLiteral("e")));
        });
        MainQueue::after(100, record(QStringLiteral("b")));

        clock.advance(99);
        QVERIFY(ran.isEmpty());
        clock.advance(101);
        QCOMPARE(ran, QStringLiteral("a1100 b1100 d1150").split(QLatin1Char(' ')));
        QCOMPARE(MainQueue::now(), 1200.0);
    }

    void skipsTasksOfDestroyedContexts()
    {
        ManualClock clock;
        QObject kept;
        auto *gone = new QObject;
        auto *goneDuringAdvance = new QObject;
        QStringList ran;
        MainQueue::after(10, gone, [&] { ran << QStringLiteral("gone"); });
        MainQueue::after(10, goneDuringAdvance, [&] { ran << QStringLiteral("gone during advance"); });
        MainQueue::after(5, [&] { delete goneDuringAdvance; });
        MainQueue::async([&] { ran << QStringLiteral("async"); });
        MainQueue::async(&kept, [&] { ran << QStringLiteral("async kept"); });
        MainQueue::async(gone, [&] { ran << QStringLiteral("async gone"); });
        delete gone;
        clock.advance(10);
        // Async work never runs inside the call, only on a later turn of the event loop.
        QVERIFY(ran.isEmpty());
        QTRY_COMPARE(ran, (QStringList { QStringLiteral("async"), QStringLiteral("async kept") }));
    }
};

QTEST_GUILESS_MAIN(ManualClockTest)
#include "tst_manualclock.moc"
