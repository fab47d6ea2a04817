// The date picker's model driven through its wheels in the note editor's deadline configuration:
// opened at the ends of its range, columns that follow a higher column, descending lists, minute
// intervals, non-selectable dates, row texts, and what is reported when.
#include "PickerTestSupport.h"

#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"

#include <QPointer>
#include <QPushButton>
#include <QTest>

using platform::WheelColumn;

namespace {

/// Every call of a result block: the last date and value, and how many.
struct Report
{
    int calls = 0;
    QDateTime date;
    QString value;
    ZIQBRDateResultBlock block()
    {
        return [this](const QDateTime &d, const QString &v) { *this = { calls + 1, d, v }; };
    }
};

/// A phone-sized window with the clock standing at a given local time.
struct Screen
{
    explicit Screen(double nowMs = localMs(2026, 3, 15, 10, 7, 23))
        : clock(nowMs)
    {
        window.resize(375, 812);
        window.show();
    }

    /// The editor's deadline picker, shown after `configure` has had its say.
    ZIQBRDatePickerView *showDeadlinePicker(const QString &language = QStringLiteral("en"),
        const std::function<void(ZIQBRDatePickerView *)> &configure = {})
    {
        ZIQBRDatePickerView *picker = makeDeadlinePicker(&window, language);
        picker->setResultBlock(result.block());
        if (configure)
            configure(picker);
        picker->show();
        return picker;
    }

    platform::ManualClock clock;
    QWidget window;
    Report result;
};

WheelColumn *wheel(ZIQBRDatePickerView *picker, const char *field)
{
    return picker->findChild<WheelColumn *>(QString::fromLatin1(field) + QStringLiteral("Wheel"));
}

enum class At { First, Last, Centre };

/// The editor wheels' (year to minute) first rows, last rows, or rows on the centre line, joined by blanks.
QString rowsAt(ZIQBRDatePickerView *picker, At at)
{
    QStringList texts;
    for (const char *name : { "year", "month", "day", "hour", "minute" }) {
        const WheelColumn *column = wheel(picker, name);
        const int last = static_cast<int>(column->rows().size()) - 1;
        texts.append(column->rows().value(at == At::First ? 0 : (at == At::Last ? last : column->currentRow())));
    }
    return texts.join(QLatin1Char(' '));
}

/// The value the centre lines of the editor's wheels spell.
QString selectedRows(ZIQBRDatePickerView *picker)
{
    const QStringList r = rowsAt(picker, At::Centre).split(QLatin1Char(' '));
    return QString::asprintf(
        "%04d-%02d-%02d %02d:%02d", r[0].toInt(), r[1].toInt(), r[2].toInt(), r[3].toInt(), r[4].toInt());
}

void press(ZIQBRDatePickerView *picker, const char *field, Qt::Key key, int times = 1)
{
    for (int i = 0; i < times; ++i)
        QTest::keyClick(wheel(picker, field), key);
}

} // namespace

class TestZIQBRDatePickerView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deadlinePickerOpens_data()
    {
        QTest::addColumn<double>("now");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("firstRows");
        QTest::addColumn<QString>("lastRows");
        const QString ends = QStringLiteral("2100 12 31 23 59");
        QTest::newRow("ordinary") << localMs(2026, 3, 15, 10, 7, 23) << "2026-03-15 10:08"
                                  << "2026 3 15 10 8" << ends;
        QTest::newRow("range top") << localMs(2100, 12, 31, 23, 58) << "2100-12-31 23:59" << ends << ends;
        // One minute later the earliest deadline lies past the latest, and the range opens up fully.
        QTest::newRow("past the range top") << localMs(2100, 12, 31, 23, 59) << "2101-01-01 00:00"
                                            << "1 1 1 0 0"
                                            << "4001 12 31 23 59";
    }
    void deadlinePickerOpens()
    {
        QFETCH(double, now);
        Screen screen(now);
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
        QTEST(picker->mSelectValue(), "value");
        QTEST(selectedRows(picker), "value");
        QTEST(rowsAt(picker, At::First), "firstRows");
        QTEST(rowsAt(picker, At::Last), "lastRows");
        QCOMPARE(screen.result.calls, 0);
    }

    void lowerColumnsFollowTheHigherOnes()
    {
        Screen screen;
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
        press(picker, "hour", Qt::Key_Down);
        QCOMPARE(picker->minuteArr().size(), 60);
        QCOMPARE(screen.result.date, localTime(2026, 3, 15, 11, 8));

        // Back at 10 o'clock a minute below the earliest goes to the first row...
        press(picker, "minute", Qt::Key_Home);
        press(picker, "minute", Qt::Key_Down, 3);
        press(picker, "hour", Qt::Key_Up);
        QVERIFY(picker->isAdjustSelectRow());
        QCOMPARE(selectedRows(picker), "2026-03-15 10:08");
        QCOMPARE(screen.result.value, "2026-03-15 10:08");

        // ...while one still in the list stays selected.
        press(picker, "hour", Qt::Key_Down);
        press(picker, "minute", Qt::Key_End);
        press(picker, "hour", Qt::Key_Up);
        QVERIFY(!picker->isAdjustSelectRow());
        QCOMPARE(screen.result.value, "2026-03-15 10:59");
        QCOMPARE(screen.result.calls, 9);

        // A day past the new month's end moves to its last row.
        Screen january(localMs(2026, 1, 31, 9, 0));
        picker = january.showDeadlinePicker();
        press(picker, "month", Qt::Key_Down);
        QVERIFY(picker->isAdjustSelectRow());
        QCOMPARE(wheel(picker, "day")->rows().size(), 28);
        QCOMPARE(selectedRows(picker), "2026-02-28 09:01");
        QCOMPARE(january.result.value, "2026-02-28 09:01");
    }

    void descendingListsStartWithTheLargestValue()
    {
        Screen screen;
        ZIQBRDatePickerView *picker
            = screen.showDeadlinePicker(QStringLiteral("en"), [](auto *p) { p->setIsDescending(true); });
        QCOMPARE(rowsAt(picker, At::First), "2100 12 31 23 59");
        QCOMPARE(rowsAt(picker, At::Last), "2026 3 15 10 8");
        // Up in a descending wheel is a later value.
        press(picker, "hour", Qt::Key_Up);
        QCOMPARE(screen.result.value, "2026-03-15 11:08");
    }

    void minuteIntervalsStepFromTheLowerBound_data()
    {
        QTest::addColumn<int>("interval");
        QTest::addColumn<int>("minutesThisHour"); // from 10:08
        QTest::addColumn<int>("minutesNextHour");
        QTest::addColumn<QString>("nextHour"); // 8 is off the next hour's grid: the selection goes to its end
        QTest::newRow("every 30 minutes") << 30 << 2 << 2 << "2026-03-15 11:30";
        QTest::newRow("above 30 reads as 1") << 31 << 52 << 60 << "2026-03-15 11:08";
    }
    void minuteIntervalsStepFromTheLowerBound()
    {
        QFETCH(int, interval);
        Screen screen;
        ZIQBRDatePickerView *picker
            = screen.showDeadlinePicker(QStringLiteral("en"), [&](auto *p) { p->setMinuteInterval(interval); });
        QTEST(int(picker->minuteArr().size()), "minutesThisHour");
        QCOMPARE(picker->minuteArr().first(), "8");
        press(picker, "hour", Qt::Key_Down);
        QTEST(int(picker->minuteArr().size()), "minutesNextHour");
        QTEST(selectedRows(picker), "nextHour");
    }

    void nonSelectableDateRollsBack()
    {
        Screen screen;
        Report changes;
        Report rejected;
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker(QStringLiteral("en"), [&](auto *p) {
            p->setNonSelectableDates({ localTime(2026, 3, 15, 11, 8, 42) });
            p->setChangeBlock(changes.block());
            p->setNonSelectableBlock(rejected.block());
        });
        press(picker, "hour", Qt::Key_Down);
        QTRY_COMPARE(rejected.calls, 1);
        QCOMPARE(rejected.date, localTime(2026, 3, 15, 11, 8));
        screen.clock.advance(WheelColumn::ScrollDurationMs);
        QCOMPARE(changes.calls, 0);
        QCOMPARE(picker->mSelectValue(), "2026-03-15 10:08");
        QCOMPARE(selectedRows(picker), "2026-03-15 10:08");
        // Another minute of the same hour is fine.
        press(picker, "minute", Qt::Key_Down);
        QCOMPARE(changes.calls, 1);
    }

    void rowTexts_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<int>("showUnitType");
        QTest::addColumn<QString>("yearAndMinute"); // the first rows of the two wheels
        const QString year = localized("ZIQGroupNoteNotDatePickerYear");
        const QString minute = localized("ZIQGroupNoteNotDatePickerMinute");
        QTest::newRow("English rows are bare numbers") << "en" << 0 << "2026 8";
        QTest::newRow("Chinese rows carry units") << "zh-Hans" << 0 << "2026" + year + " 8" + minute;
        // Units above the columns instead: one label each, and bare rows.
        QTest::newRow("one unit label per column") << "zh-Hans" << 1 << "2026 8";
    }
    void rowTexts()
    {
        QFETCH(QString, language);
        QFETCH(int, showUnitType);
        Screen screen;
        ZIQBRDatePickerView *picker
            = screen.showDeadlinePicker(language, [&](auto *p) { p->setShowUnitType(showUnitType); });
        QCOMPARE(picker->unitLabelArr().size(), showUnitType ? 5 : 0);
        QTEST(wheel(picker, "year")->rows().first() + ' ' + wheel(picker, "minute")->rows().first(), "yearAndMinute");
    }

    void whatIsReported_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("results");
        QTest::addColumn<int>("cancels");
        QTest::newRow("confirm") << "confirm" << 2 << 0;
        QTest::newRow("cancel") << "cancel" << 1 << 1;
        QTest::newRow("tap on the mask") << "mask" << 1 << 1;
    }
    void whatIsReported()
    {
        QFETCH(QString, action);
        QFETCH(int, results);
        Screen screen;
        QPointer<ZIQBRDatePickerView> picker = screen.showDeadlinePicker();
        int cancelCalls = 0;
        picker->setCancelBlock([&cancelCalls] { ++cancelCalls; });
        screen.clock.advance(ZIQBRBaseView::ShowDurationMs);
        press(picker, "day", Qt::Key_Down);
        QCOMPARE(rowsAt(picker, At::First), "2026 3 15 0 0"); // off the earliest day, hours and minutes open up

        if (action == "confirm")
            QTest::mouseClick(picker->doneBtn(), Qt::LeftButton);
        else if (action == "cancel")
            QTest::mouseClick(picker->cancelBtn(), Qt::LeftButton);
        else
            QTest::mouseClick(picker->maskView(), Qt::LeftButton, {}, QPoint(100, 100));
        QCOMPARE(screen.result.calls, results);
        QCOMPARE(screen.result.value, "2026-03-16 10:08");
        QTEST(cancelCalls, "cancels");
        screen.clock.advance(ZIQBRBaseView::DismissDurationMs);
        QTRY_VERIFY(picker.isNull());
    }
};

QTEST_MAIN(TestZIQBRDatePickerView)
#include "tst_ziqbrdatepickerview.moc"
