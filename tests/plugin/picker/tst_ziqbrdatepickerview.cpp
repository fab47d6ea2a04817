// The date picker's model driven through its wheels: the note editor's deadline configuration
// opened at ordinary times and at the ends of hours, days, months, years and of its range;
// columns that follow a higher column; descending lists, intervals, inverted ranges, row texts,
// non-selectable dates and what is reported when.
#include "PickerTestSupport.h"

#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"

#include <QDateTimeEdit>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using platform::WheelColumn;
using Field = ZIQBRDatePickerView::Field;

namespace {

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

    /// A picker of another mode, not yet shown.
    ZIQBRDatePickerView *make(ZIQBRDatePickerMode mode, const QString &language = QStringLiteral("en"))
    {
        auto *picker = new ZIQBRDatePickerView(mode, &window);
        picker->pickerStyle().setLanguage(language);
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
        QTest::addColumn<QString>("lastRows");
        QTest::addColumn<QString>("firstRows");
        const QString ends = QStringLiteral("2100 12 31 23 59");
        QTest::newRow("ordinary") << localMs(2026, 3, 15, 10, 7, 23) << "2026-03-15 10:08" << ends << "2026 3 15 10 8";
        QTest::newRow("hour's end") << localMs(2026, 3, 15, 10, 59) << "2026-03-15 11:00" << ends << "2026 3 15 11 0";
        QTest::newRow("day's end") << localMs(2026, 3, 15, 23, 59) << "2026-03-16 00:00" << ends << "2026 3 16 0 0";
        QTest::newRow("30-day month's end")
            << localMs(2026, 4, 30, 23, 59) << "2026-05-01 00:00" << ends << "2026 5 1 0 0";
        QTest::newRow("leap February's end")
            << localMs(2024, 2, 29, 23, 59) << "2024-03-01 00:00" << ends << "2024 3 1 0 0";
        QTest::newRow("year's end") << localMs(2026, 12, 31, 23, 59) << "2027-01-01 00:00" << ends << "2027 1 1 0 0";
        QTest::newRow("range top") << localMs(2100, 12, 31, 23, 58) << "2100-12-31 23:59" << ends << ends;
        // One minute later the earliest deadline lies past the latest, and the range opens up fully.
        const QString full = QStringLiteral("4001 12 31 23 59");
        QTest::newRow("past the range top")
            << localMs(2100, 12, 31, 23, 59) << "2101-01-01 00:00" << full << "1 1 1 0 0";
    }

    void deadlinePickerOpens()
    {
        QFETCH(double, now);
        QFETCH(QString, value);
        QFETCH(QString, lastRows);
        QFETCH(QString, firstRows);
        Screen screen(now);
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
        QCOMPARE(picker->mSelectValue(), value);
        QCOMPARE(ZIQ_br_stringFromDate(picker->mSelectDate(), QStringLiteral("yyyy-MM-dd HH:mm")), value);
        QCOMPARE(selectedRows(picker), value);
        QCOMPARE(rowsAt(picker, At::First), firstRows);
        QCOMPARE(rowsAt(picker, At::Last), lastRows);
        QCOMPARE(screen.result.calls, 0);
    }

    void lowerColumnsFollowTheHour()
    {
        Screen screen;
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
        press(picker, "hour", Qt::Key_Down);
        QCOMPARE(picker->minuteArr().size(), 60);
        QCOMPARE(screen.result.value, "2026-03-15 11:08");
        QCOMPARE(screen.result.date, localTime(2026, 3, 15, 11, 8));

        // Back at 10 o'clock a minute below the earliest goes to the first row...
        press(picker, "minute", Qt::Key_Home);
        press(picker, "minute", Qt::Key_Down, 3);
        QCOMPARE(screen.result.value, "2026-03-15 11:03");
        press(picker, "hour", Qt::Key_Up);
        QVERIFY(picker->isAdjustSelectRow());
        QCOMPARE(selectedRows(picker), "2026-03-15 10:08");
        QCOMPARE(screen.result.value, "2026-03-15 10:08");

        // ...while one still in the list stays selected.
        press(picker, "hour", Qt::Key_Down);
        press(picker, "minute", Qt::Key_End);
        press(picker, "hour", Qt::Key_Up);
        QVERIFY(!picker->isAdjustSelectRow());
        QCOMPARE(selectedRows(picker), "2026-03-15 10:59");
        QCOMPARE(screen.result.value, "2026-03-15 10:59");
        QCOMPARE(screen.result.calls, 9);
    }

    void higherColumnKeepsTheLowerOnes_data()
    {
        QTest::addColumn<double>("now");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("adjusted"); // a day past the new month's end moves to its last row
        QTest::addColumn<int>("days");
        QTest::newRow("31 January to February")
            << localMs(2026, 1, 31, 9, 0) << "month" << "2026-02-28 09:01" << true << 28;
        QTest::newRow("31 January to a leap February")
            << localMs(2024, 1, 31, 9, 0) << "month" << "2024-02-29 09:01" << true << 29;
        QTest::newRow("31 March to April") << localMs(2026, 3, 31, 9, 0) << "month" << "2026-04-30 09:01" << true << 30;
        QTest::newRow("the next year") << localMs(2026, 3, 15, 10, 7) << "year" << "2027-03-15 10:08" << false << 31;
    }

    void higherColumnKeepsTheLowerOnes()
    {
        QFETCH(double, now);
        QFETCH(QString, field);
        QFETCH(QString, value);
        Screen screen(now);
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker();
        press(picker, field.toLatin1().constData(), Qt::Key_Down);
        QTEST(picker->isAdjustSelectRow(), "adjusted");
        QTEST(int(wheel(picker, "day")->rows().size()), "days");
        QCOMPARE(selectedRows(picker), value);
        QCOMPARE(screen.result.value, value);
        QCOMPARE(picker->minuteArr().size(), 60);
    }

    void descendingListsStartWithTheLargestValue()
    {
        Screen screen;
        ZIQBRDatePickerView *picker
            = screen.showDeadlinePicker(QStringLiteral("en"), [](auto *p) { p->setIsDescending(true); });
        QCOMPARE(rowsAt(picker, At::First), "2100 12 31 23 59");
        QCOMPARE(rowsAt(picker, At::Last), "2026 3 15 10 8");
        QCOMPARE(selectedRows(picker), "2026-03-15 10:08");
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
        QTest::newRow("every 5 minutes") << 5 << 11 << 12 << "2026-03-15 11:55";
        QTest::newRow("every 30 minutes") << 30 << 2 << 2 << "2026-03-15 11:30";
        QTest::newRow("0 reads as 1") << 0 << 52 << 60 << "2026-03-15 11:08";
        QTest::newRow("above 30 reads as 1") << 31 << 52 << 60 << "2026-03-15 11:08";
    }

    void minuteIntervalsStepFromTheLowerBound()
    {
        QFETCH(int, interval);
        QFETCH(int, minutesThisHour);
        QFETCH(int, minutesNextHour);
        QFETCH(QString, nextHour);
        Screen screen;
        ZIQBRDatePickerView *picker
            = screen.showDeadlinePicker(QStringLiteral("en"), [&](auto *p) { p->setMinuteInterval(interval); });
        QCOMPARE(picker->minuteArr().size(), minutesThisHour);
        QCOMPARE(picker->minuteArr().first(), "8");
        press(picker, "hour", Qt::Key_Down);
        QCOMPARE(picker->minuteArr().size(), minutesNextHour);
        QCOMPARE(screen.result.value, nextHour);
        QCOMPARE(selectedRows(picker), nextHour);
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
        QCOMPARE(changes.calls, 0);
        QTRY_COMPARE(rejected.calls, 1);
        QCOMPARE(rejected.value, "2026-03-15 11:08");
        QCOMPARE(rejected.date, localTime(2026, 3, 15, 11, 8));
        QCOMPARE(picker->mSelectValue(), "2026-03-15 10:08");
        screen.clock.advance(WheelColumn::ScrollDurationMs);
        QCOMPARE(selectedRows(picker), "2026-03-15 10:08");
        QCOMPARE(wheel(picker, "hour")->scrollPosition(), 0.0);

        // Another minute of the same hour is fine.
        press(picker, "minute", Qt::Key_Down);
        QCOMPARE(changes.calls, 1);
        QCOMPARE(screen.result.value, "2026-03-15 10:09");
    }

    void rowTexts_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<int>("showUnitType");
        QTest::addColumn<QString>("unitLabels");
        QTest::addColumn<bool>("customUnits");
        QTest::addColumn<QString>("yearAndMinute"); // the first rows of the two wheels
        const QString year = localized("ZIQGroupNoteNotDatePickerYear");
        const QString minute = localized("ZIQGroupNoteNotDatePickerMinute");
        const QString allUnits = year + localized("ZIQGroupNoteNotDatePickerMonth")
            + localized("ZIQGroupNoteNotDatePickerDay") + localized("ZIQGroupNoteNotDatePickerHour") + minute;
        QTest::newRow("English rows are bare numbers") << "en" << 0 << "" << false << "2026 8";
        QTest::newRow("Chinese rows carry units") << "zh-Hans" << 0 << "" << false << "2026" + year + " 8" + minute;
        QTest::newRow("one unit label per column") << "zh-Hans" << 1 << allUnits << false << "2026 8";
        QTest::newRow("custom units, missing ones empty") << "zh-Hans" << 0 << "" << true << "2026 yr 8";
    }

    void rowTexts()
    {
        QFETCH(QString, language);
        QFETCH(int, showUnitType);
        QFETCH(QString, unitLabels);
        QFETCH(bool, customUnits);
        QFETCH(QString, yearAndMinute);
        Screen screen;
        ZIQBRDatePickerView *picker = screen.showDeadlinePicker(language, [&](auto *p) {
            p->setShowUnitType(showUnitType);
            if (customUnits)
                p->setCustomUnit({ { QStringLiteral("year"), QStringLiteral(" yr") } });
        });
        QCOMPARE(wheel(picker, "year")->rows().first() + ' ' + wheel(picker, "minute")->rows().first(), yearAndMinute);
        QString labels;
        for (QLabel *label : picker->unitLabelArr())
            labels += label->text();
        QCOMPARE(labels, unitLabels);
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
        QFETCH(int, cancels);
        Screen screen;
        QPointer<ZIQBRDatePickerView> picker = screen.showDeadlinePicker();
        int cancelCalls = 0;
        picker->setCancelBlock([&cancelCalls] { ++cancelCalls; });
        QSignalSpy changed(picker, &ZIQBRDatePickerView::dateChanged);
        QSignalSpy selected(picker, &ZIQBRDatePickerView::dateSelected);
        QSignalSpy cancelled(picker, &ZIQBRDatePickerView::cancelled);
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
        QCOMPARE(cancelCalls, cancels);
        // The signals say what the callbacks say.
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.first(), (QVariantList { localTime(2026, 3, 16, 10, 8), "2026-03-16 10:08" }));
        QCOMPARE(selected.count(), results);
        QCOMPARE(selected.last(), changed.first());
        QCOMPARE(cancelled.count(), cancels);
        screen.clock.advance(ZIQBRBaseView::DismissDurationMs);
        QTRY_VERIFY(picker.isNull());
    }

    void otherModes()
    {
        Screen screen;
        ZIQBRDatePickerView *days = screen.make(ZIQBRDatePickerMode::YMD);
        days->setSelectDate(localTime(2025, 6, 15));
        days->show();
        QCOMPARE(days->columns(), (QList<Field> { Field::Day, Field::Month, Field::Year }));
        QCOMPARE(wheel(days, "month")->rows().first(), "January");
        days->pickerStyle().setLanguage(QStringLiteral("zh-Hans"));
        days->setIsShowWeek(true);
        days->reloadData();
        QCOMPARE(days->columns(), (QList<Field> { Field::Year, Field::Month, Field::Day }));
        QCOMPARE(wheel(days, "day")->rows().at(14),
            "15" + localized("ZIQGroupNoteNotDatePickerDay") + " " + localized("ZIQGroupNoteNotDatePickerSUN"));

        ZIQBRDatePickerView *time = screen.make(ZIQBRDatePickerMode::HM);
        time->setSelectValue(QStringLiteral("09:30"));
        time->reloadData();
        QCOMPARE(time->mSelectDate(), localTime(2026, 3, 15, 9, 30));

        // Minutes and seconds range over the day's first hour and start at its beginning.
        ZIQBRDatePickerView *minutes = screen.make(ZIQBRDatePickerMode::MS);
        minutes->reloadData();
        QCOMPARE(minutes->mSelectDate(), localTime(2026, 3, 15));

        const QString pm = localized("ZIQGroupNoteNotDatePickerPM");
        ZIQBRDatePickerView *halfDays = screen.make(ZIQBRDatePickerMode::YMDH);
        halfDays->setIsShowAMAndPM(true);
        halfDays->setSelectValue("2026-03-15 " + pm);
        halfDays->reloadData();
        QCOMPARE(halfDays->hourArr(), (QStringList { localized("ZIQGroupNoteNotDatePickerAM"), pm }));
        QCOMPARE(halfDays->mSelectDate(), localTime(2026, 3, 15, 12));
        QCOMPARE(halfDays->mSelectValue(), "2026-03-15 " + pm);

        ZIQBRDatePickerView *today = screen.make(ZIQBRDatePickerMode::MD);
        today->setIsShowToday(true);
        today->setSelectValue(QStringLiteral("not a date"));
        today->show();
        QCOMPARE(today->mSelectValue(), "03-15");
        QCOMPARE(wheel(today, "day")->rows().mid(13, 3),
            (QStringList { "14", localized("ZIQGroupNoteNotDatePickerToday"), "16" }));
    }

    void customFirstRow()
    {
        Screen screen;
        ZIQBRDatePickerView *picker = screen.make(ZIQBRDatePickerMode::YM, QStringLiteral("zh-Hans"));
        picker->setMinDate(localTime(2020, 1, 1));
        picker->setMaxDate(localTime(2030, 12, 31));
        picker->setFirstRowContent(QStringLiteral("Any"));
        picker->setSelectDate(localTime(2026, 3, 1));
        picker->setIsAutoSelect(true);
        picker->setResultBlock(screen.result.block());
        picker->show();
        QCOMPARE(picker->yearArr().first(), "Any");
        QCOMPARE(picker->yearArr().size(), 12);

        // The extra row empties the lower columns and reports nothing until a year is chosen again.
        press(picker, "year", Qt::Key_Home);
        QCOMPARE(picker->mSelectValue(), "Any");
        QVERIFY(!picker->mSelectDate().isValid());
        QVERIFY(picker->monthArr().isEmpty());
        QCOMPARE(screen.result.calls, 0);
        press(picker, "year", Qt::Key_Down);
        QCOMPARE(picker->monthArr().size(), 12);
        QCOMPARE(screen.result.calls, 1);
        QCOMPARE(screen.result.value, "2020-01");
    }

    void platformEditorClampsToTheRange()
    {
        Screen screen;
        ZIQBRDatePickerView *picker = screen.make(ZIQBRDatePickerMode::DateAndTime);
        picker->setMinDate(localTime(2026, 3, 1, 8, 0));
        picker->setMaxDate(localTime(2026, 12, 31, 20, 0));
        picker->setChangeBlock(screen.result.block());
        picker->show();
        auto *editor = picker->findChild<QDateTimeEdit *>(QStringLiteral("platformDatePicker"));
        QVERIFY(editor && !wheel(picker, "year"));
        QCOMPARE(picker->mSelectValue(), "2026-03-15 10:07");

        editor->setDateTime(QDateTime(QDate(2026, 6, 1), QTime(9, 30)));
        QCOMPARE(screen.result.calls, 1);
        QCOMPARE(screen.result.value, "2026-06-01 09:30");
        QCOMPARE(screen.result.date, localTime(2026, 6, 1, 9, 30));
        editor->setDateTime(QDateTime(QDate(2026, 2, 1), QTime(9, 30)));
        QCOMPARE(screen.result.value, "2026-03-01 08:00");

        picker->setPickerMode(ZIQBRDatePickerMode::YMDHM);
        QVERIFY(wheel(picker, "year"));
        QVERIFY(!editor->isVisible());
        picker->setPickerMode(static_cast<ZIQBRDatePickerMode>(15));
        QCOMPARE(picker->pickerMode(), ZIQBRDatePickerMode::Date);
    }
};

QTEST_MAIN(TestZIQBRDatePickerView)
#include "tst_ziqbrdatepickerview.moc"
