// The date picker's model driven through its wheels: the note editor's deadline configuration
// opened at ordinary times and at the ends of hours, days, months, years and of its range;
// columns that follow a higher column; descending lists, intervals, inverted ranges, row texts,
// non-selectable dates and what is reported when.
#include "PickerTestSupport.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"

#include <QDateTimeEdit>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>

#include <memory>

using platform::WheelColumn;
using Field = ZIQBRDatePickerView::Field;

namespace {

QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

struct Report
{
    int calls = 0;
    QDateTime date;
    QString value;

    ZIQBRDateResultBlock block()
    {
        return [this](const QDateTime &d, const QString &v) {
            ++calls;
            date = d;
            value = v;
        };
    }
};

/// A phone-sized window with the clock standing at a given local time.
struct Screen
{
    explicit Screen(double nowMs)
        : clock(nowMs)
    {
        window.resize(375, 812);
        window.show();
    }

    ZIQBRDatePickerView *showDeadlinePicker(const QString &language = QStringLiteral("en"))
    {
        ZIQBRDatePickerView *picker = makeDeadlinePicker(&window, language);
        picker->setResultBlock(result.block());
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

/// The value the selected rows of the five editor columns spell.
QString selectedRows(ZIQBRDatePickerView *p)
{
    return QString::asprintf("%04d-%02d-%02d %02d:%02d", p->yearArr().value(p->yearIndex()).toInt(),
        p->monthArr().value(p->monthIndex()).toInt(), p->dayArr().value(p->dayIndex()).toInt(),
        p->hourArr().value(p->hourIndex()).toInt(), p->minuteArr().value(p->minuteIndex()).toInt());
}

void press(WheelColumn *column, Qt::Key key, int times = 1)
{
    for (int i = 0; i < times; ++i)
        QTest::keyClick(column, key);
}

} // namespace

class TestZIQBRDatePickerView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void deadlinePickerOpens_data();
    void deadlinePickerOpens();
    void lowerColumnsFollowTheHour();
    void monthChangeMovesTheDayToTheLastRow_data();
    void monthChangeMovesTheDayToTheLastRow();
    void descendingListsStartWithTheLargestValue();
    void minuteIntervalsStepFromTheLowerBound_data();
    void minuteIntervalsStepFromTheLowerBound();
    void nonSelectableDateRollsBack();
    void rowTexts_data();
    void rowTexts();
    void whatIsReported_data();
    void whatIsReported();
    void otherModes();
    void customFirstRow();
    void platformEditorClampsToTheRange();
};

void TestZIQBRDatePickerView::deadlinePickerOpens_data()
{
    QTest::addColumn<double>("now");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QStringList>("firstRows"); // first row of year, month, day, hour, minute
    QTest::addColumn<QStringList>("lastRows");

    const QStringList ends = { "2100", "12", "31", "23", "59" };
    QTest::newRow("ordinary time") << localMs(2026, 3, 15, 10, 7, 23) << "2026-03-15 10:08"
                                   << QStringList { "2026", "3", "15", "10", "8" } << ends;
    QTest::newRow("end of an hour") << localMs(2026, 3, 15, 10, 59, 30) << "2026-03-15 11:00"
                                    << QStringList { "2026", "3", "15", "11", "0" } << ends;
    QTest::newRow("end of a day") << localMs(2026, 3, 15, 23, 59) << "2026-03-16 00:00"
                                  << QStringList { "2026", "3", "16", "0", "0" } << ends;
    QTest::newRow("end of a 30-day month")
        << localMs(2026, 4, 30, 23, 59, 59) << "2026-05-01 00:00" << QStringList { "2026", "5", "1", "0", "0" } << ends;
    QTest::newRow("end of a leap February")
        << localMs(2024, 2, 29, 23, 59) << "2024-03-01 00:00" << QStringList { "2024", "3", "1", "0", "0" } << ends;
    QTest::newRow("end of a year") << localMs(2026, 12, 31, 23, 59) << "2027-01-01 00:00"
                                   << QStringList { "2027", "1", "1", "0", "0" } << ends;
    QTest::newRow("top of the range") << localMs(2100, 12, 31, 23, 58) << "2100-12-31 23:59" << ends << ends;
    // One minute later the earliest deadline lies past the latest, and the range opens up fully.
    QTest::newRow("past the top of the range")
        << localMs(2100, 12, 31, 23, 59) << "2101-01-01 00:00" << QStringList { "1", "1", "1", "0", "0" }
        << QStringList { "4001", "12", "31", "23", "59" };
}

void TestZIQBRDatePickerView::deadlinePickerOpens()
{
    QFETCH(double, now);
    QFETCH(QString, value);
    QFETCH(QStringList, firstRows);
    QFETCH(QStringList, lastRows);

    Screen screen(now);
    ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
    QCOMPARE(picker->mSelectValue(), value);
    QCOMPARE(ZIQ_br_stringFromDate(picker->mSelectDate(), QStringLiteral("yyyy-MM-dd HH:mm")), value);
    QCOMPARE(selectedRows(picker), value);

    const std::array<QStringList, 5> lists
        = { picker->yearArr(), picker->monthArr(), picker->dayArr(), picker->hourArr(), picker->minuteArr() };
    const char *names[] = { "year", "month", "day", "hour", "minute" };
    const std::array<int, 5> indexes
        = { picker->yearIndex(), picker->monthIndex(), picker->dayIndex(), picker->hourIndex(), picker->minuteIndex() };
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(lists[i].first(), firstRows.at(i));
        QCOMPARE(lists[i].last(), lastRows.at(i));
        // The wheels show the model: bare numbers in English, the selection on the centre line.
        QCOMPARE(wheel(picker, names[i])->rows(), lists[i]);
        QCOMPARE(wheel(picker, names[i])->currentRow(), indexes[i]);
    }
    QCOMPARE(screen.result.calls, 0);
}

void TestZIQBRDatePickerView::lowerColumnsFollowTheHour()
{
    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
    QCOMPARE(picker->minuteArr().first(), QStringLiteral("8"));

    press(wheel(picker, "hour"), Qt::Key_Down);
    QCOMPARE(picker->minuteArr().size(), 60);
    QCOMPARE(picker->minuteArr().first(), QStringLiteral("0"));
    QCOMPARE(picker->mSelectValue(), QStringLiteral("2026-03-15 11:08"));
    QCOMPARE(screen.result.calls, 1);
    QCOMPARE(screen.result.value, QStringLiteral("2026-03-15 11:08"));
    QCOMPARE(screen.result.date, localTime(2026, 3, 15, 11, 8));

    // Back at 10 o'clock a minute below the earliest goes to the first row...
    press(wheel(picker, "minute"), Qt::Key_Home);
    press(wheel(picker, "minute"), Qt::Key_Down, 3);
    QCOMPARE(screen.result.value, QStringLiteral("2026-03-15 11:03"));
    press(wheel(picker, "hour"), Qt::Key_Up);
    QCOMPARE(picker->minuteArr().first(), QStringLiteral("8"));
    QCOMPARE(picker->minuteIndex(), 0);
    QVERIFY(picker->isAdjustSelectRow());
    QCOMPARE(wheel(picker, "minute")->currentRow(), 0);
    QCOMPARE(screen.result.value, QStringLiteral("2026-03-15 10:08"));

    // ...while one still in the list stays selected.
    press(wheel(picker, "hour"), Qt::Key_Down);
    press(wheel(picker, "minute"), Qt::Key_End);
    press(wheel(picker, "hour"), Qt::Key_Up);
    QVERIFY(!picker->isAdjustSelectRow());
    QCOMPARE(picker->minuteArr().value(picker->minuteIndex()), QStringLiteral("59"));
    QCOMPARE(screen.result.value, QStringLiteral("2026-03-15 10:59"));
    QCOMPARE(screen.result.calls, 9);
}

void TestZIQBRDatePickerView::monthChangeMovesTheDayToTheLastRow_data()
{
    QTest::addColumn<double>("now");
    QTest::addColumn<int>("daysInNextMonth");
    QTest::addColumn<QString>("value");
    QTest::newRow("31 January to February") << localMs(2026, 1, 31, 9, 0) << 28 << "2026-02-28 09:01";
    QTest::newRow("31 January to a leap February") << localMs(2024, 1, 31, 9, 0) << 29 << "2024-02-29 09:01";
    QTest::newRow("31 March to April") << localMs(2026, 3, 31, 9, 0) << 30 << "2026-04-30 09:01";
}

void TestZIQBRDatePickerView::monthChangeMovesTheDayToTheLastRow()
{
    QFETCH(double, now);
    QFETCH(int, daysInNextMonth);
    QFETCH(QString, value);

    Screen screen(now);
    ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
    press(wheel(picker, "month"), Qt::Key_Down);
    QCOMPARE(picker->dayArr().size(), daysInNextMonth);
    QCOMPARE(picker->dayIndex(), daysInNextMonth - 1);
    QCOMPARE(wheel(picker, "day")->currentRow(), daysInNextMonth - 1);
    QVERIFY(picker->isAdjustSelectRow());
    QCOMPARE(picker->mSelectValue(), value);
    QCOMPARE(screen.result.value, value);
}

void TestZIQBRDatePickerView::descendingListsStartWithTheLargestValue()
{
    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    ZIQBRDatePickerView *picker = makeDeadlinePicker(&screen.window, QStringLiteral("en"));
    picker->setIsDescending(true);
    picker->show();
    QCOMPARE(picker->yearArr().first(), QStringLiteral("2100"));
    QCOMPARE(picker->yearArr().last(), QStringLiteral("2026"));
    QCOMPARE(picker->monthArr().first(), QStringLiteral("12"));
    QCOMPARE(picker->monthArr().last(), QStringLiteral("3"));
    QCOMPARE(picker->dayArr().first(), QStringLiteral("31"));
    QCOMPARE(picker->hourArr().first(), QStringLiteral("23"));
    QCOMPARE(picker->minuteArr().first(), QStringLiteral("59"));
    QCOMPARE(picker->minuteArr().last(), QStringLiteral("8"));
    QCOMPARE(picker->yearIndex(), picker->yearArr().size() - 1);
    QCOMPARE(selectedRows(picker), QStringLiteral("2026-03-15 10:08"));

    // Down in a descending wheel is an earlier value.
    press(wheel(picker, "hour"), Qt::Key_Up);
    QCOMPARE(picker->mSelectValue(), QStringLiteral("2026-03-15 11:08"));
}

void TestZIQBRDatePickerView::minuteIntervalsStepFromTheLowerBound_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QStringList>("firstHourMinutes");
    QTest::addColumn<int>("nextHourCount");
    QTest::addColumn<QString>("nextHourSecondRow");
    QTest::newRow("every 5 minutes") << 5
                                     << QStringList { "8", "13", "18", "23", "28", "33", "38", "43", "48", "53", "58" }
                                     << 12 << "5";
    QTest::newRow("every 30 minutes") << 30 << QStringList { "8", "38" } << 2 << "30";
    QTest::newRow("0 reads as 1") << 0 << QStringList() << 60 << "1";
    QTest::newRow("above 30 reads as 1") << 31 << QStringList() << 60 << "1";
}

void TestZIQBRDatePickerView::minuteIntervalsStepFromTheLowerBound()
{
    QFETCH(int, interval);
    QFETCH(QStringList, firstHourMinutes);
    QFETCH(int, nextHourCount);
    QFETCH(QString, nextHourSecondRow);

    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    ZIQBRDatePickerView *picker = makeDeadlinePicker(&screen.window, QStringLiteral("en"));
    picker->setMinuteInterval(interval);
    picker->setResultBlock(screen.result.block());
    picker->show();
    if (!firstHourMinutes.isEmpty())
        QCOMPARE(picker->minuteArr(), firstHourMinutes);
    else
        QCOMPARE(picker->minuteArr().size(), 52);
    press(wheel(picker, "hour"), Qt::Key_Down);
    QCOMPARE(picker->minuteArr().size(), nextHourCount);
    QCOMPARE(picker->minuteArr().value(1), nextHourSecondRow);
    // 8 is off the grid of the next hour: the selection moves to an end of the list.
    QCOMPARE(selectedRows(picker), screen.result.value);
}

void TestZIQBRDatePickerView::nonSelectableDateRollsBack()
{
    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
    picker->setNonSelectableDates({ localTime(2026, 3, 15, 11, 8, 42) });
    Report changes;
    Report rejected;
    picker->setChangeBlock(changes.block());
    picker->setNonSelectableBlock(rejected.block());

    press(wheel(picker, "hour"), Qt::Key_Down);
    QCOMPARE(changes.calls, 0);
    QCOMPARE(screen.result.calls, 0);
    QTRY_COMPARE(rejected.calls, 1);
    QCOMPARE(rejected.value, QStringLiteral("2026-03-15 11:08"));
    QCOMPARE(rejected.date, localTime(2026, 3, 15, 11, 8));
    QCOMPARE(picker->mSelectValue(), QStringLiteral("2026-03-15 10:08"));
    QCOMPARE(picker->hourIndex(), 0);
    QCOMPARE(picker->minuteArr().first(), QStringLiteral("8"));
    screen.clock.advance(WheelColumn::ScrollDurationMs);
    QCOMPARE(wheel(picker, "hour")->scrollPosition(), 0.0);

    // Another minute of the same hour is fine.
    press(wheel(picker, "hour"), Qt::Key_Down);
    QTRY_COMPARE(rejected.calls, 2);
    press(wheel(picker, "minute"), Qt::Key_Down);
    QCOMPARE(changes.calls, 1);
    QCOMPARE(screen.result.value, QStringLiteral("2026-03-15 10:09"));
}

void TestZIQBRDatePickerView::rowTexts_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("showUnitType");
    QTest::addColumn<bool>("customUnits");
    QTest::addColumn<QString>("yearRow");
    QTest::addColumn<QString>("minuteRow");
    QTest::addColumn<QStringList>("unitLabels");

    QTest::newRow("English rows are bare numbers") << "en" << 0 << false << "2026"
                                                   << "8" << QStringList();
    QTest::newRow("Chinese rows carry units")
        << "zh-Hans" << 0 << false << "2026" + localized("ZIQGroupNoteNotDatePickerYear")
        << "8" + localized("ZIQGroupNoteNotDatePickerMinute") << QStringList();
    QTest::newRow("one unit label per column")
        << "zh-Hans" << 1 << false << "2026"
        << "8"
        << QStringList { localized("ZIQGroupNoteNotDatePickerYear"), localized("ZIQGroupNoteNotDatePickerMonth"),
               localized("ZIQGroupNoteNotDatePickerDay"), localized("ZIQGroupNoteNotDatePickerHour"),
               localized("ZIQGroupNoteNotDatePickerMinute") };
    QTest::newRow("no units") << "zh-Hans" << 2 << false << "2026"
                              << "8" << QStringList();
    QTest::newRow("custom units, missing ones empty") << "en" << 0 << true << "2026 yr"
                                                      << "8" << QStringList();
}

void TestZIQBRDatePickerView::rowTexts()
{
    QFETCH(QString, language);
    QFETCH(int, showUnitType);
    QFETCH(bool, customUnits);
    QFETCH(QString, yearRow);
    QFETCH(QString, minuteRow);
    QFETCH(QStringList, unitLabels);

    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    ZIQBRDatePickerView *picker = makeDeadlinePicker(&screen.window, language);
    picker->setShowUnitType(showUnitType);
    if (customUnits)
        picker->setCustomUnit({ { QStringLiteral("year"), QStringLiteral(" yr") } });
    picker->show();
    QCOMPARE(wheel(picker, "year")->rows().first(), yearRow);
    QCOMPARE(wheel(picker, "minute")->rows().first(), minuteRow);
    QStringList labels;
    for (QLabel *label : picker->unitLabelArr())
        labels.append(label->text());
    QCOMPARE(labels, unitLabels);
}

void TestZIQBRDatePickerView::whatIsReported_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("results");
    QTest::addColumn<int>("cancels");
    QTest::newRow("confirm") << "confirm" << 2 << 0;
    QTest::newRow("cancel") << "cancel" << 1 << 1;
    QTest::newRow("tap on the mask") << "mask" << 1 << 1;
}

void TestZIQBRDatePickerView::whatIsReported()
{
    QFETCH(QString, action);
    QFETCH(int, results);
    QFETCH(int, cancels);

    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    QPointer<ZIQBRDatePickerView> picker = screen.showDeadlinePicker();
    int cancelCalls = 0;
    picker->setCancelBlock([&cancelCalls] { ++cancelCalls; });
    screen.clock.advance(ZIQBRBaseView::ShowDurationMs);
    press(wheel(picker, "day"), Qt::Key_Down);
    QCOMPARE(screen.result.calls, 1);

    if (action == "confirm")
        QTest::mouseClick(picker->doneBtn(), Qt::LeftButton);
    else if (action == "cancel")
        QTest::mouseClick(picker->cancelBtn(), Qt::LeftButton);
    else
        QTest::mouseClick(picker->maskView(), Qt::LeftButton, {}, QPoint(100, 100));
    QCOMPARE(screen.result.calls, results);
    QCOMPARE(screen.result.value, QStringLiteral("2026-03-16 10:08"));
    QCOMPARE(cancelCalls, cancels);
    screen.clock.advance(ZIQBRBaseView::DismissDurationMs);
    QTRY_VERIFY(picker.isNull());
}

void TestZIQBRDatePickerView::otherModes()
{
    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    const auto make = [&](ZIQBRDatePickerMode mode, const QString &language) {
        auto *picker = new ZIQBRDatePickerView(mode, &screen.window);
        picker->pickerStyle().setLanguage(language);
        return picker;
    };

    ZIQBRDatePickerView *days = make(ZIQBRDatePickerMode::YMD, QStringLiteral("en"));
    days->setSelectDate(localTime(2025, 6, 15));
    days->show();
    QCOMPARE(days->columns(), (QList<Field> { Field::Day, Field::Month, Field::Year }));
    QCOMPARE(wheel(days, "month")->rows().first(), QStringLiteral("January"));
    QCOMPARE(days->mSelectValue(), QStringLiteral("2025-06-15"));
    days->pickerStyle().setLanguage(QStringLiteral("zh-Hans"));
    days->setIsShowWeek(true);
    days->reloadData();
    QCOMPARE(days->columns(), (QList<Field> { Field::Year, Field::Month, Field::Day }));
    QCOMPARE(wheel(days, "day")->rows().at(14),
        "15" + localized("ZIQGroupNoteNotDatePickerDay") + " " + localized("ZIQGroupNoteNotDatePickerSUN"));

    ZIQBRDatePickerView *time = make(ZIQBRDatePickerMode::HM, QStringLiteral("en"));
    time->setSelectValue(QStringLiteral("09:30"));
    time->reloadData();
    QCOMPARE(time->hourArr().size(), 24);
    QCOMPARE(time->mSelectValue(), QStringLiteral("09:30"));
    QCOMPARE(time->mSelectDate(), localTime(2026, 3, 15, 9, 30));

    ZIQBRDatePickerView *minutes = make(ZIQBRDatePickerMode::MS, QStringLiteral("en"));
    minutes->reloadData();
    QCOMPARE(minutes->minuteArr().size(), 60);
    QCOMPARE(minutes->secondArr().size(), 60);
    QCOMPARE(minutes->mSelectValue(), QStringLiteral("00:00"));

    ZIQBRDatePickerView *halfDays = make(ZIQBRDatePickerMode::YMDH, QStringLiteral("en"));
    halfDays->setIsShowAMAndPM(true);
    halfDays->setSelectValue("2026-03-15 " + localized("ZIQGroupNoteNotDatePickerPM"));
    halfDays->reloadData();
    QCOMPARE(halfDays->hourArr(),
        (QStringList { localized("ZIQGroupNoteNotDatePickerAM"), localized("ZIQGroupNoteNotDatePickerPM") }));
    QCOMPARE(halfDays->hourIndex(), 1);
    QCOMPARE(halfDays->mSelectDate(), localTime(2026, 3, 15, 12));
    QCOMPARE(halfDays->mSelectValue(), "2026-03-15 " + localized("ZIQGroupNoteNotDatePickerPM"));

    ZIQBRDatePickerView *today = make(ZIQBRDatePickerMode::MD, QStringLiteral("en"));
    today->setIsShowToday(true);
    today->setSelectValue(QStringLiteral("not a date"));
    today->show();
    QCOMPARE(today->mSelectValue(), QStringLiteral("03-15"));
    QCOMPARE(wheel(today, "day")->rows().at(14), localized("ZIQGroupNoteNotDatePickerToday"));
    QCOMPARE(wheel(today, "day")->rows().at(15), QStringLiteral("16"));
}

void TestZIQBRDatePickerView::customFirstRow()
{
    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    auto *picker = new ZIQBRDatePickerView(ZIQBRDatePickerMode::YM, &screen.window);
    picker->pickerStyle().setLanguage(QStringLiteral("zh-Hans"));
    picker->setMinDate(localTime(2020, 1, 1));
    picker->setMaxDate(localTime(2030, 12, 31));
    picker->setFirstRowContent(QStringLiteral("Any"));
    picker->setSelectDate(localTime(2026, 3, 1));
    picker->setIsAutoSelect(true);
    Report result;
    picker->setResultBlock(result.block());
    picker->show();
    QCOMPARE(picker->yearArr().first(), QStringLiteral("Any"));
    QCOMPARE(picker->yearArr().size(), 12);

    // The extra row empties the lower columns and reports nothing until a year is chosen again.
    press(wheel(picker, "year"), Qt::Key_Home);
    QCOMPARE(picker->mSelectValue(), QStringLiteral("Any"));
    QVERIFY(!picker->mSelectDate().isValid());
    QVERIFY(picker->monthArr().isEmpty());
    QCOMPARE(result.calls, 0);
    press(wheel(picker, "year"), Qt::Key_Down);
    QCOMPARE(picker->monthArr().size(), 12);
    QCOMPARE(result.calls, 1);
    QCOMPARE(result.value, QStringLiteral("2020-01"));
}

void TestZIQBRDatePickerView::platformEditorClampsToTheRange()
{
    Screen screen(localMs(2026, 3, 15, 10, 7, 23));
    auto *picker = new ZIQBRDatePickerView(ZIQBRDatePickerMode::DateAndTime, &screen.window);
    picker->pickerStyle().setLanguage(QStringLiteral("en"));
    picker->setMinDate(localTime(2026, 3, 1, 8, 0));
    picker->setMaxDate(localTime(2026, 12, 31, 20, 0));
    Report changes;
    picker->setChangeBlock(changes.block());
    picker->show();
    QCOMPARE(picker->style(), 0);
    QVERIFY(!wheel(picker, "year"));
    auto *editor = picker->findChild<QDateTimeEdit *>(QStringLiteral("platformDatePicker"));
    QVERIFY(editor);
    QCOMPARE(picker->mSelectValue(), QStringLiteral("2026-03-15 10:07"));

    editor->setDateTime(QDateTime(QDate(2026, 6, 1), QTime(9, 30)));
    QCOMPARE(changes.calls, 1);
    QCOMPARE(changes.value, QStringLiteral("2026-06-01 09:30"));
    QCOMPARE(changes.date, localTime(2026, 6, 1, 9, 30));
    editor->setDateTime(QDateTime(QDate(2026, 2, 1), QTime(9, 30)));
    QCOMPARE(changes.value, QStringLiteral("2026-03-01 08:00"));
    QCOMPARE(picker->mSelectDate(), localTime(2026, 3, 1, 8, 0));

    picker->setPickerMode(ZIQBRDatePickerMode::YMDHM);
    QCOMPARE(picker->style(), 1);
    QVERIFY(wheel(picker, "year"));
    QVERIFY(!editor->isVisible());
}

QTEST_MAIN(TestZIQBRDatePickerView)
#include "tst_ziqbrdatepickerview.moc"
