// Animations on the main queue's clock: a frame reaches its end exactly when its time is up,
// ahead of the straight line in between (ease-out), after its delay; a newer animation of the
// same property takes over from where the old one stands; completions run once; fades go
// through an opacity effect.
#include "platform/FrameAnimation.h"
#include "platform/ManualClock.h"

#include <QPointer>
#include <QTest>
#include <QWidget>

using platform::FrameAnimation;
using platform::ManualClock;
using Curve = platform::FrameAnimation::Curve;

class FrameAnimationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFrameReachesItsEndOnTheClock()
    {
        ManualClock clock;
        QWidget widget;
        widget.setGeometry(0, 100, 375, 300);
        const QRect end(0, -50, 375, 300);
        int completions = 0;
        bool finished = false;
        QPointer<FrameAnimation> animation
            = FrameAnimation::animateFrame(&widget, end, { 250, 100, Curve::EaseOut }, [&](bool done) {
                  ++completions;
                  finished = done;
              });

        clock.advance(100);
        QCOMPARE(widget.y(), 100);
        clock.advance(125);
        // Half of the time has moved the frame well over half of the way.
        QVERIFY2(widget.y() < 25 && widget.y() > -50, qPrintable(QString::number(widget.y())));
        clock.advance(124);
        QVERIFY(animation->isRunning());
        QCOMPARE(completions, 0);
        clock.advance(1);
        QCOMPARE(widget.geometry(), end);
        QCOMPARE(completions, 1);
        QVERIFY(finished);
        QCOMPARE(clock.pendingTasks(), 0);
        QTRY_VERIFY(animation.isNull());
    }

    void aNewerAnimationTakesOverFromWhereTheOldOneStands()
    {
        ManualClock clock;
        QWidget widget;
        widget.setGeometry(0, 0, 100, 100);
        QList<bool> ends;
        FrameAnimation::animateFrame(
            &widget, QRect(200, 0, 100, 100), { 200, 0, Curve::Linear }, [&](bool done) { ends << done; });
        clock.advance(100);
        FrameAnimation::animateFrame(
            &widget, QRect(0, 0, 100, 100), { 100, 0, Curve::Linear }, [&](bool done) { ends << done; });
        QCOMPARE(ends, QList<bool> { false });
        QCOMPARE(widget.x(), 100);
        clock.advance(3 * FrameAnimation::FrameIntervalMs);
        QCOMPARE(widget.x(), 100 - 3 * FrameAnimation::FrameIntervalMs);
        clock.advance(200);
        QCOMPARE(widget.x(), 0);
        QCOMPARE(ends, (QList<bool> { false, true }));
    }
};

QTEST_MAIN(FrameAnimationTest)
#include "tst_frameanimation.moc"
