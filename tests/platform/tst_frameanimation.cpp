// Animations on the main queue's clock: a frame reaches its end exactly when its time is up,
// ahead of the straight line in between (ease-out), after its delay; a newer animation of the
// same property takes over; completions run once; fades go through an opacity effect.
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
    void curvesKeepTheirEndsAndShape_data()
    {
        QTest::addColumn<Curve>("curve");
        QTest::addColumn<int>("halfWaySign"); // of eased(0.5) - 0.5
        QTest::newRow("linear") << Curve::Linear << 0;
        QTest::newRow("ease in") << Curve::EaseIn << -1;
        QTest::newRow("ease out") << Curve::EaseOut << 1;
        QTest::newRow("ease in and out") << Curve::EaseInOut << 0;
    }

    void curvesKeepTheirEndsAndShape()
    {
        QFETCH(Curve, curve);
        QFETCH(int, halfWaySign);
        QCOMPARE(FrameAnimation::eased(curve, 0), 0.0);
        QCOMPARE(FrameAnimation::eased(curve, 1), 1.0);
        const qreal half = FrameAnimation::eased(curve, 0.5) - 0.5;
        QCOMPARE(qAbs(half) < 0.01 ? 0 : (half > 0 ? 1 : -1), halfWaySign);
        qreal previous = 0;
        for (int i = 1; i <= 20; ++i) {
            const qreal value = FrameAnimation::eased(curve, i / 20.0);
            QVERIFY(value >= previous);
            previous = value;
        }
    }

    void interpolatesEachValueType_data()
    {
        QTest::addColumn<QVariant>("from");
        QTest::addColumn<QVariant>("to");
        QTest::addColumn<QVariant>("quarter");
        QTest::newRow("real") << QVariant(0.0) << QVariant(1.0) << QVariant(0.25);
        QTest::newRow("rect") << QVariant(QRect(0, 0, 100, 40)) << QVariant(QRect(100, 40, 200, 80))
                              << QVariant(QRect(25, 10, 125, 50));
        QTest::newRow("rectf") << QVariant(QRectF(0, 0, 1, 1)) << QVariant(QRectF(4, 8, 5, 9))
                               << QVariant(QRectF(1, 2, 2, 3));
        QTest::newRow("point") << QVariant(QPoint(0, 100)) << QVariant(QPoint(100, 0)) << QVariant(QPoint(25, 75));
        QTest::newRow("sizef") << QVariant(QSizeF(0, 4)) << QVariant(QSizeF(4, 0)) << QVariant(QSizeF(1, 3));
    }

    void interpolatesEachValueType()
    {
        QFETCH(QVariant, from);
        QFETCH(QVariant, to);
        QFETCH(QVariant, quarter);
        QCOMPARE(FrameAnimation::interpolated(from, to, 0.25), quarter);
        QCOMPARE(FrameAnimation::interpolated(from, to, 1), to);
    }

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

    void stopAndFinishEndAtOnce()
    {
        ManualClock clock;
        QObject target;
        target.setProperty("level", 0.0);
        FrameAnimation animation(&target, "level");
        animation.setEndValue(1.0);
        animation.setTiming({ 100, 0, Curve::Linear });
        QList<bool> ends;
        animation.setCompletion([&](bool done) { ends << done; });
        animation.start();
        clock.advance(40);
        animation.stop();
        QCOMPARE(target.property("level").toDouble(), 0.4);
        clock.advance(100);
        QCOMPARE(target.property("level").toDouble(), 0.4);

        animation.setCompletion([&](bool done) { ends << done; });
        animation.start();
        animation.finish();
        animation.finish();
        QCOMPARE(target.property("level").toDouble(), 1.0);
        QCOMPARE(ends, (QList<bool> { false, true }));
        QVERIFY(!animation.isRunning());
    }

    void noTimeAppliesTheEndAtOnce()
    {
        ManualClock clock;
        QWidget widget;
        bool finished = false;
        FrameAnimation::animateFrame(
            &widget, QRect(1, 2, 3, 4), { 0, 0, Curve::EaseOut }, [&](bool done) { finished = done; });
        QCOMPARE(widget.geometry(), QRect(1, 2, 3, 4));
        QVERIFY(finished);
    }

    void fadesThroughAnOpacityEffect()
    {
        ManualClock clock;
        QWidget widget;
        QCOMPARE(FrameAnimation::opacityOf(&widget), 1.0);
        FrameAnimation::animateOpacity(&widget, 0, { 200, 0, Curve::Linear });
        // Fades are drawn frame by frame: four frames into a fade of 200 ms.
        clock.advance(4 * FrameAnimation::FrameIntervalMs);
        QCOMPARE(FrameAnimation::opacityOf(&widget), 1 - 4 * FrameAnimation::FrameIntervalMs / 200.0);
        clock.advance(200);
        QCOMPARE(FrameAnimation::opacityOf(&widget), 0.0);
        FrameAnimation::animateOpacity(&widget, 1, { 200, 0, Curve::Linear });
        clock.advance(200);
        QCOMPARE(FrameAnimation::opacityOf(&widget), 1.0);
    }
};

QTEST_MAIN(FrameAnimationTest)
#include "tst_frameanimation.moc"
