// Rounded corners on chosen corners: which pixels a mask keeps, and that the mask follows the
// widget's size.
#include "platform/CornerMask.h"

#include <QTest>
#include <QWidget>

using platform::Corner;
using platform::CornerMask;
using platform::Corners;

class CornerMaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsSquareCornersAndCutsRoundedOnes_data()
    {
        QTest::addColumn<Corners>("corners");
        QTest::addColumn<QString>("kept"); // of the corner pixels TL TR BL BR, 1 = kept
        QTest::newRow("top-left and bottom-right") << Corners(Corner::TopLeft | Corner::BottomRight) << "0110";
        QTest::newRow("none") << Corners() << "1111";
        QTest::newRow("all") << Corners(Corner::All) << "0000";
    }

    void keepsSquareCornersAndCutsRoundedOnes()
    {
        QFETCH(Corners, corners);
        QFETCH(QString, kept);
        const QRegion region = CornerMask::roundedRectRegion(QRect(0, 0, 100, 60), corners, 10);
        const QPoint cornerPixels[] = { { 0, 0 }, { 99, 0 }, { 0, 59 }, { 99, 59 } };
        // Just inside each arc, on the diagonal towards its centre.
        const QPoint insideArcs[] = { { 4, 4 }, { 95, 4 }, { 4, 55 }, { 95, 55 } };
        for (int i = 0; i < 4; ++i) {
            QCOMPARE(region.contains(cornerPixels[i]), kept.at(i) == QLatin1Char('1'));
            QVERIFY(region.contains(insideArcs[i]));
        }
        // Edges run straight to the start of each arc.
        QVERIFY(region.contains(QPoint(10, 0)) && region.contains(QPoint(89, 59)) && region.contains(QPoint(0, 30)));
        QVERIFY(!region.contains(QPoint(100, 30)) && !region.contains(QPoint(50, 60)));
        // A radius larger than the shape allows is limited to half its shorter side.
        const QRegion pill = CornerMask::roundedRectRegion(QRect(0, 0, 100, 20), corners, 50);
        QVERIFY(pill.contains(QPoint(50, 0)) && pill.contains(QPoint(50, 19)));
        QCOMPARE(pill.contains(QPoint(1, 0)), kept.at(0) == QLatin1Char('1'));
    }

    void followsTheWidgetsSizeUntilRemoved()
    {
        QWidget widget;
        widget.resize(100, 60);
        widget.show();
        CornerMask::apply(&widget, Corner::TopLeft | Corner::BottomRight, 10);
        QVERIFY(!widget.mask().contains(QPoint(99, 59)));
        widget.resize(200, 100);
        QVERIFY(widget.mask().contains(QPoint(99, 59)));
        QVERIFY(!widget.mask().contains(QPoint(199, 99)) && widget.mask().contains(QPoint(199, 0)));

        CornerMask *mask = CornerMask::apply(&widget, Corner::TopRight, 8);
        QCOMPARE(CornerMask::of(&widget), mask);
        QCOMPARE(widget.findChildren<CornerMask *>().size(), 1);
        QVERIFY(!widget.mask().contains(QPoint(199, 0)) && widget.mask().contains(QPoint(0, 0)));

        CornerMask::remove(&widget);
        QVERIFY(widget.mask().isEmpty());
        QCOMPARE(CornerMask::of(&widget), nullptr);
        widget.resize(50, 50);
        QVERIFY(widget.mask().isEmpty());
    }
};

QTEST_MAIN(CornerMaskTest)
#include "tst_cornermask.moc"
