// The wheel column: which row the user's drags, taps, wheel turns and keys land on, that only
// the user's changes are announced, and how row texts shrink to fit.
#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

using platform::WheelColumn;

constexpr int RowHeight = 40; // even, so that a drag can end exactly between two rows
constexpr int StartRow = 4;
const QStringList TenRows = { "0", "1", "2", "3", "4", "5", "6", "7", "8", "9" };

class TestWheelColumn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void programmaticSelectionIsSilent()
    {
        platform::ManualClock clock;
        WheelColumn wheel;
        QSignalSpy spy(&wheel, &WheelColumn::userSelectedRow);
        wheel.setRows(TenRows);
        wheel.setCurrentRow(99);
        QCOMPARE(wheel.currentRow(), 9);
        // A newer animated scroll supersedes a running one: only its end state counts.
        wheel.setCurrentRow(0, true);
        clock.advance(WheelColumn::ScrollDurationMs - 1);
        wheel.setCurrentRow(2, true);
        clock.advance(1);
        QVERIFY(wheel.scrollPosition() > 0);
        clock.advance(WheelColumn::ScrollDurationMs);
        QCOMPARE(wheel.scrollPosition(), 2.0);
        QCOMPARE(spy.count(), 0);
    }

    void userInput_data()
    {
        QTest::addColumn<char>("input"); // k: key, w: wheel turn, d: drag by pixels, t: tap below the centre
        QTest::addColumn<int>("amount");
        QTest::addColumn<int>("expectedRow");
        QTest::newRow("page down by the visible rows") << 'k' << int(Qt::Key_PageDown) << 7;
        QTest::newRow("wheel turned towards the user") << 'w' << -120 << 5;
        // A drag settles on the row nearest the centre line; exactly halfway it turns back.
        QTest::newRow("drag up just over half a row") << 'd' << -RowHeight / 2 - 1 << 5;
        QTest::newRow("drag up exactly half a row") << 'd' << -RowHeight / 2 << StartRow;
        QTest::newRow("drag down 1.6 rows") << 'd' << RowHeight * 8 / 5 << 2;
        QTest::newRow("drag past the end") << 'd' << -8 * RowHeight << 9;
        QTest::newRow("tiny drag is a tap on the centre") << 'd' << -3 << StartRow;
        QTest::newRow("tap the row below the centre") << 't' << RowHeight << 5;
    }

    void userInput()
    {
        QFETCH(char, input);
        QFETCH(int, amount);
        QFETCH(int, expectedRow);
        platform::ManualClock clock;
        WheelColumn wheel;
        wheel.resize(100, 3 * RowHeight);
        wheel.setRowHeight(RowHeight);
        wheel.setRows(TenRows);
        wheel.setCurrentRow(StartRow);
        wheel.show();
        QSignalSpy spy(&wheel, &WheelColumn::userSelectedRow);
        const QPoint centre(50, wheel.height() / 2);
        if (input == 'k') {
            QTest::keyClick(&wheel, Qt::Key(amount));
        } else if (input == 'w') {
            QWheelEvent turn(
                centre, wheel.mapToGlobal(centre), {}, { 0, amount }, Qt::NoButton, {}, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&wheel, &turn);
        } else if (input == 'd') {
            QTest::mousePress(&wheel, Qt::LeftButton, {}, centre);
            QTest::mouseMove(&wheel, centre + QPoint(0, amount));
            QTest::mouseRelease(&wheel, Qt::LeftButton, {}, centre + QPoint(0, amount));
        } else {
            QTest::mouseClick(&wheel, Qt::LeftButton, {}, centre + QPoint(0, amount));
        }
        QCOMPARE(wheel.currentRow(), expectedRow);
        QCOMPARE(spy.count(), expectedRow == StartRow ? 0 : 1);
        QCOMPARE(spy.value(0).value(0, StartRow).toInt(), expectedRow);
        clock.advance(WheelColumn::ScrollDurationMs);
        QCOMPARE(wheel.scrollPosition(), qreal(expectedRow));
        QCOMPARE(wheel.currentRow(), expectedRow);
        QCOMPARE(spy.count(), expectedRow == StartRow ? 0 : 1);
    }

    void rowsShrinkToFitDownToHalfSize()
    {
        QFont font;
        font.setPixelSize(18);
        const QString text = QStringLiteral("September 2026");
        const int fullWidth = QFontMetrics(font).horizontalAdvance(text);
        QCOMPARE(WheelColumn::fittedFont(font, QStringLiteral("12"), 100).pixelSize(), 18);
        const QFont shrunk = WheelColumn::fittedFont(font, text, fullWidth * 3 / 4);
        QVERIFY(shrunk.pixelSize() > 9 && shrunk.pixelSize() < 18);
        QVERIFY(QFontMetrics(shrunk).horizontalAdvance(text) <= fullWidth * 3 / 4);
        QCOMPARE(WheelColumn::fittedFont(font, text, 10).pixelSize(), 9);
    }
};

QTEST_MAIN(TestWheelColumn)
#include "tst_wheelcolumn.moc"
