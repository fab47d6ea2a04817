// The wheel column: which row the user's drags, taps, wheel turns and keys land on, that only
// the user's changes are announced, and how row texts shrink to fit.
#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

using platform::WheelColumn;

class TestWheelColumn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void programmaticSelectionIsSilentAndClamped();
    void userInput_data();
    void userInput();
    void animatedScrollSettlesOnTheMainQueue();
    void rowsShrinkToFitDownToHalfSize();
};

namespace {

constexpr int RowHeight = 35;

QStringList numbers(int count)
{
    QStringList rows;
    for (int i = 0; i < count; ++i)
        rows.append(QString::number(i));
    return rows;
}

} // namespace

void TestWheelColumn::programmaticSelectionIsSilentAndClamped()
{
    WheelColumn wheel;
    QSignalSpy spy(&wheel, &WheelColumn::userSelectedRow);
    wheel.setRows(numbers(10));
    wheel.setCurrentRow(3);
    QCOMPARE(wheel.currentRow(), 3);
    QCOMPARE(wheel.scrollPosition(), 3.0);
    wheel.setCurrentRow(99);
    QCOMPARE(wheel.currentRow(), 9);
    wheel.setCurrentRow(-4);
    QCOMPARE(wheel.currentRow(), 0);
    wheel.setCurrentRow(8);
    wheel.setRows(numbers(5));
    QCOMPARE(wheel.currentRow(), 4);
    wheel.setRows({});
    QCOMPARE(wheel.currentRow(), 0);
    QCOMPARE(spy.count(), 0);
}

void TestWheelColumn::userInput_data()
{
    QTest::addColumn<int>("startRow");
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("expectedRow");

    QTest::newRow("key down") << 4 << "down" << 5;
    QTest::newRow("key up at the top stays") << 0 << "up" << 0;
    QTest::newRow("key down at the bottom stays") << 9 << "down" << 9;
    QTest::newRow("end") << 2 << "end" << 9;
    QTest::newRow("home") << 7 << "home" << 0;
    QTest::newRow("page down by the visible rows") << 1 << "pagedown" << 6;
    QTest::newRow("wheel turned towards the user") << 4 << "wheel-down" << 5;
    QTest::newRow("wheel turned away") << 4 << "wheel-up" << 3;
    QTest::newRow("drag up two rows") << 4 << "drag-up-2" << 6;
    QTest::newRow("drag past the end") << 8 << "drag-up-5" << 9;
    QTest::newRow("tiny drag is a tap on the centre") << 4 << "nudge" << 4;
    QTest::newRow("tap the row below the centre") << 4 << "tap-below" << 5;
}

void TestWheelColumn::userInput()
{
    QFETCH(int, startRow);
    QFETCH(QString, action);
    QFETCH(int, expectedRow);

    platform::ManualClock clock;
    WheelColumn wheel;
    wheel.setRowHeight(RowHeight);
    wheel.resize(100, 5 * RowHeight);
    wheel.setRows(numbers(10));
    wheel.setCurrentRow(startRow);
    wheel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&wheel));
    QSignalSpy spy(&wheel, &WheelColumn::userSelectedRow);

    const QPoint centre(50, wheel.height() / 2);
    const auto wheelTurn = [&](int delta) {
        QWheelEvent event(centre, wheel.mapToGlobal(centre), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QApplication::sendEvent(&wheel, &event);
    };
    const auto drag = [&](int dy) {
        QTest::mousePress(&wheel, Qt::LeftButton, {}, centre);
        QTest::mouseMove(&wheel, centre + QPoint(0, dy / 2));
        QTest::mouseMove(&wheel, centre + QPoint(0, dy));
        QTest::mouseRelease(&wheel, Qt::LeftButton, {}, centre + QPoint(0, dy));
    };
    if (action == "down")
        QTest::keyClick(&wheel, Qt::Key_Down);
    else if (action == "up")
        QTest::keyClick(&wheel, Qt::Key_Up);
    else if (action == "end")
        QTest::keyClick(&wheel, Qt::Key_End);
    else if (action == "home")
        QTest::keyClick(&wheel, Qt::Key_Home);
    else if (action == "pagedown")
        QTest::keyClick(&wheel, Qt::Key_PageDown);
    else if (action == "wheel-down")
        wheelTurn(-120);
    else if (action == "wheel-up")
        wheelTurn(120);
    else if (action == "drag-up-2")
        drag(-2 * RowHeight);
    else if (action == "drag-up-5")
        drag(-5 * RowHeight);
    else if (action == "nudge")
        drag(-3);
    else if (action == "tap-below")
        QTest::mouseClick(&wheel, Qt::LeftButton, {}, centre + QPoint(0, RowHeight));

    QCOMPARE(wheel.currentRow(), expectedRow);
    QCOMPARE(spy.count(), expectedRow == startRow ? 0 : 1);
    if (expectedRow != startRow)
        QCOMPARE(spy.first().first().toInt(), expectedRow);
    clock.advance(WheelColumn::ScrollDurationMs);
    QCOMPARE(wheel.scrollPosition(), qreal(expectedRow));
}

void TestWheelColumn::animatedScrollSettlesOnTheMainQueue()
{
    platform::ManualClock clock;
    WheelColumn wheel;
    wheel.setRows(numbers(10));
    wheel.setCurrentRow(6, true);
    QCOMPARE(wheel.currentRow(), 6);
    QVERIFY(wheel.scrollPosition() < 6);
    clock.advance(WheelColumn::ScrollDurationMs - 1);
    QVERIFY(wheel.scrollPosition() < 6);
    // A newer scroll supersedes the first: only its end state counts.
    wheel.setCurrentRow(2, true);
    clock.advance(1);
    QVERIFY(wheel.scrollPosition() != 6);
    clock.advance(WheelColumn::ScrollDurationMs);
    QCOMPARE(wheel.scrollPosition(), 2.0);
}

void TestWheelColumn::rowsShrinkToFitDownToHalfSize()
{
    QFont font;
    font.setPixelSize(18);
    QCOMPARE(WheelColumn::fittedFont(font, QStringLiteral("12"), 100).pixelSize(), 18);

    const QString longer = QStringLiteral("September 2026");
    const int fullWidth = QFontMetrics(font).horizontalAdvance(longer);
    const QFont shrunk = WheelColumn::fittedFont(font, longer, fullWidth * 3 / 4);
    QVERIFY(shrunk.pixelSize() < 18);
    QVERIFY(shrunk.pixelSize() > 9);
    QVERIFY(QFontMetrics(shrunk).horizontalAdvance(longer) <= fullWidth * 3 / 4);

    QCOMPARE(WheelColumn::fittedFont(font, longer, 10).pixelSize(), 9);
}

QTEST_MAIN(TestWheelColumn)
#include "tst_wheelcolumn.moc"
