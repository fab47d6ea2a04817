// The date picker's columns without any widget, under a core application only: turning one
// column of the note editor's deadline configuration and what that does to the lower columns,
// the selection and what the view must redraw.
#include "PickerTestSupport.h"

#include "plugin/picker/ZIQBRDatePickerModel.h"

#include "platform/ManualClock.h"

#include <QTest>

using Model = ZIQBRDatePickerModel;
using Field = ZIQBRDatePickerModel::Field;

namespace {

/// The editor's deadline configuration opened at the clock's time, in English.
void configureForDeadline(Model &model)
{
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC);
    const QDateTime start = ZIQ_br_setYear(
        ZIQ_br_year(now), ZIQ_br_month(now), ZIQ_br_day(now), ZIQ_br_hour(now), ZIQ_br_minute(now) + 1);
    model.setSelectDate(start);
    model.setMinDate(start);
    model.setMaxDate(ZIQ_br_setYear(2100, 12, 31, 23, 59));
    model.setLanguage(QStringLiteral("en"));
    model.reload();
}

Field fieldNamed(const QString &name)
{
    static const QStringList names = { "year", "month", "day", "hour", "minute", "second" };
    return static_cast<Field>(names.indexOf(name));
}

} // namespace

class TestZIQBRDatePickerModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void turningAColumn_data()
    {
        QTest::addColumn<double>("now");
        QTest::addColumn<QStringList>("turns"); // "field row", in order
        QTest::addColumn<QString>("value");
        QTest::addColumn<QList<Field>>("rebuilt"); // by the last turn
        QTest::addColumn<bool>("scrollAll");
        QTest::addColumn<int>("lastMinuteRows");
        const double tenOSeven = localMs(2026, 3, 15, 10, 7, 23);
        const QList<Field> belowDay { Field::Hour, Field::Minute };
        const QList<Field> belowMonth { Field::Day, Field::Hour, Field::Minute };
        QTest::newRow("the next hour opens all minutes")
            << tenOSeven << QStringList { "hour 1" } << "2026-03-15 11:08" << QList<Field> { Field::Minute } << false
            << 60;
        QTest::newRow("the next day opens hours and minutes")
            << tenOSeven << QStringList { "day 1" } << "2026-03-16 10:08" << belowDay << false << 60;
        QTest::newRow("back to the earliest hour, a minute below it moves to the first row")
            << tenOSeven << QStringList { "hour 1", "minute 3", "hour 0" } << "2026-03-15 10:08"
            << QList<Field> { Field::Minute } << true << 52;
        QTest::newRow("back to the earliest hour, a minute in it stays")
            << tenOSeven << QStringList { "hour 1", "minute 40", "hour 0" } << "2026-03-15 10:40"
            << QList<Field> { Field::Minute } << false << 52;
        QTest::newRow("31 January to February goes to its last day")
            << localMs(2026, 1, 31, 9, 0) << QStringList { "month 1" } << "2026-02-28 09:01" << belowMonth << true
            << 60;
        QTest::newRow("the next year keeps month, day and time")
            << tenOSeven << QStringList { "year 1" } << "2027-03-15 10:08"
            << QList<Field> { Field::Month, Field::Day, Field::Hour, Field::Minute } << false << 60;
    }

    void turningAColumn()
    {
        QFETCH(double, now);
        QFETCH(QStringList, turns);
        QFETCH(QString, value);
        QFETCH(QList<Field>, rebuilt);
        QFETCH(bool, scrollAll);
        QFETCH(int, lastMinuteRows);
        platform::ManualClock clock(now);
        Model model(ZIQBRDatePickerMode::YMDHM);
        configureForDeadline(model);

        Model::Change change;
        for (const QString &turn : turns) {
            const QStringList parts = turn.split(QLatin1Char(' '));
            change = model.selectRow(fieldNamed(parts[0]), parts[1].toInt());
        }
        QVERIFY(change.complete);
        QCOMPARE(change.rebuilt, rebuilt);
        QCOMPARE(change.scrollAll, scrollAll);
        QCOMPARE(model.isAdjustSelectRow(), scrollAll);
        QCOMPARE(model.mSelectValue(), value);
        QCOMPARE(ZIQ_br_stringFromDate(model.mSelectDate(), QStringLiteral("yyyy-MM-dd HH:mm")), value);
        QCOMPARE(model.arr(Field::Minute).size(), lastMinuteRows);
        // The selected rows spell the selection.
        QStringList rows;
        for (Field field : model.columns())
            rows.append(model.arr(field).at(model.index(field)).rightJustified(2, QLatin1Char('0')));
        QCOMPARE(rows.join(QLatin1Char(' ')), QString(value).replace('-', ' ').replace(':', ' '));
    }

    void languageOrdersColumnsAndUnits()
    {
        platform::ManualClock clock(localMs(2026, 3, 15, 10, 7, 23));
        Model model(ZIQBRDatePickerMode::YMD);
        model.setLanguage(QStringLiteral("en"));
        model.reload();
        QCOMPARE(model.columns(), (QList<Field> { Field::Day, Field::Month, Field::Year }));
        QCOMPARE(model.rowText(Field::Day, 0), "1");
        model.setLanguage(QStringLiteral("zh-Hans"));
        model.reload();
        QCOMPARE(model.columns(), (QList<Field> { Field::Year, Field::Month, Field::Day }));
        QCOMPARE(model.rowText(Field::Day, 0), "1" + localized("ZIQGroupNoteNotDatePickerDay"));
    }
};

QTEST_GUILESS_MAIN(TestZIQBRDatePickerModel)
#include "tst_ziqbrdatepickermodel.moc"
