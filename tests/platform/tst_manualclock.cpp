// The manual clock and the main queue: delayed work runs inside advance() in the order it
// falls due, never for a destroyed context, and async work never inside the call.
#include "platform/MainQueue.h"
#include "platform/ManualClock.h"

#include <QObject>
#include <QTest>

using platform::MainQueue;
using platform::ManualClock;

class ManualClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsDueTasksInOrderAtTheirTime();
    void runsTasksScheduledByTasks();
    void neverMovesBackwards();
    void skipsTasksOfDestroyedContexts();
    void restoresThePreviousClock();
    void asyncRunsOnALaterTurn();
};

void ManualClockTest::runsDueTasksInOrderAtTheirTime()
{
    ManualClock clock(1000);
    QList<QPair<QString, double>> ran;
    auto record = [&](const QString &name) { return [&ran, name] { ran.append({ name, MainQueue::now() }); }; };
    MainQueue::after(300, record(QStringLiteral("c")));
    MainQueue::after(100, record(QStringLiteral("a")));
    MainQueue::after(200, record(QStringLiteral("b")));
    MainQueue::after(100, record(QStringLiteral("a2")));

    clock.advance(99);
    QVERIFY(ran.isEmpty());
    clock.advance(101);
    const QList<QPair<QString, double>> expected { { QStringLiteral("a"), 1100 }, { QStringLiteral("a2"), 1100 },
        { QStringLiteral("b"), 1200 } };
    QCOMPARE(ran, expected);
    QCOMPARE(MainQueue::now(), 1200.0);
    QCOMPARE(clock.pendingTasks(), 1);
    clock.advance(100);
    QCOMPARE(ran.size(), 4);
    QCOMPARE(clock.pendingTasks(), 0);
}

void ManualClockTest::runsTasksScheduledByTasks()
{
    ManualClock clock(0);
    QList<double> ran;
    MainQueue::after(100, [&] {
        MainQueue::after(0, [&] { ran.append(MainQueue::now()); });
        MainQueue::after(50, [&] { ran.append(MainQueue::now()); });
        MainQueue::after(500, [&] { ran.append(MainQueue::now()); });
    });
    clock.advance(200);
    QCOMPARE(ran, (QList<double> { 100, 150 }));
    QCOMPARE(clock.pendingTasks(), 1);
}

void ManualClockTest::neverMovesBackwards()
{
    ManualClock clock(5000);
    clock.advance(-100);
    QCOMPARE(clock.now(), 5000.0);

    // A task that drives the clock further itself keeps the later time.
    MainQueue::after(10, [&] { clock.advance(1000); });
    clock.advance(20);
    QCOMPARE(clock.now(), 6010.0);
}

void ManualClockTest::skipsTasksOfDestroyedContexts()
{
    ManualClock clock;
    auto *context = new QObject;
    auto *kept = new QObject;
    int ran = 0;
    MainQueue::after(10, context, [&] { ran += 1; });
    MainQueue::after(10, kept, [&] { ran += 10; });
    // A context destroyed by an earlier task of the same advance.
    MainQueue::after(5, [&] { delete kept; });
    delete context;
    clock.advance(10);
    QCOMPARE(ran, 0);
}

void ManualClockTest::restoresThePreviousClock()
{
    platform::Clock *system = MainQueue::clock();
    {
        ManualClock outer(100);
        {
            ManualClock inner(200);
            QCOMPARE(MainQueue::now(), 200.0);
        }
        QCOMPARE(MainQueue::clock(), &outer);
        QCOMPARE(MainQueue::now(), 100.0);
    }
    QCOMPARE(MainQueue::clock(), system);
}

void ManualClockTest::asyncRunsOnALaterTurn()
{
    bool ran = false;
    bool ranForContext = false;
    bool ranForGone = false;
    QObject context;
    auto *gone = new QObject;
    MainQueue::async([&] { ran = true; });
    MainQueue::async(&context, [&] { ranForContext = true; });
    MainQueue::async(gone, [&] { ranForGone = true; });
    QVERIFY(!ran);
    QVERIFY(!ranForContext);
    delete gone;
    QTRY_VERIFY(ran && ranForContext);
    QVERIFY(!ranForGone);
}

QTEST_GUILESS_MAIN(ManualClockTest)
#include "tst_manualclock.moc"
