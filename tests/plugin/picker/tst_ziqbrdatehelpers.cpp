// The calendar helpers: days per month, lenient building from fields, fields and weekday names,
// formatting with week-based years, locales and zones, and lenient parsing in a fixed-offset zone.
#include "PickerTestSupport.h"

#include "platform/ManualClock.h"

#include <QScopeGuard>
#include <QTest>

#include <memory>

#include <unicode/timezone.h>

namespace {

std::unique_ptr<icu::TimeZone> utcOrDefault(bool inUtc)
{
    return std::unique_ptr<icu::TimeZone>(inUtc ? icu::TimeZone::createTimeZone("UTC") : nullptr);
}

} // namespace

class TestZIQBRDateHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buildingFromFields_data()
    {
        QTest::addColumn<QDateTime>("built");
        QTest::addColumn<QString>("expected");
        QTest::newRow("minute 60 at the year's end") << ZIQ_br_setYear(2026, 12, 31, 23, 60) << "2027-01-01 00:00:00";
        QTest::newRow("day 31 of a 30-day month") << ZIQ_br_setYear(2026, 4, 31) << "2026-05-01 00:00:00";
        QTest::newRow("year and month: the 1st at midnight") << ZIQ_br_setYear(2026, 7) << "2026-07-01 00:00:00";
        QTest::newRow("month and day keep the year") << ZIQ_br_setMonth(7, 4) << "2026-07-04 00:00:00";
        QTest::newRow("hour to second") << ZIQ_br_setHour(18, 45, 12) << "2026-03-15 18:45:12";
        QTest::newRow("minute and second are in hour 0") << ZIQ_br_setMinute(59, 59) << "2026-03-15 00:59:59";
        QTest::newRow("negative time fields keep now") << ZIQ_br_setYear(0, 0, 0, -1, -1, -1) << "2026-03-15 10:07:23";
    }

    void buildingFromFields()
    {
        QFETCH(QDateTime, built);
        QTEST(localText(built), "expected");
    }

    void fieldsAndWeekdayNames()
    {
        // Leap years: every fourth, but not centuries unless divisible by 400; no month 13.
        QCOMPARE((QList<int> { ZIQ_br_getDaysInYear(2000, 2), ZIQ_br_getDaysInYear(1900, 2),
                     ZIQ_br_getDaysInYear(2024, 2), ZIQ_br_getDaysInYear(2026, 13) }),
            (QList<int> { 29, 28, 29, 0 }));
        const QDateTime thursday = localTime(2026, 3, 19, 21, 4, 5);
        const ZIQBRDateComponents c = ZIQ_br_componentsFromDate(thursday);
        const QList<int> fields
            = { *c.year, *c.month, *c.day, *c.hour, *c.minute, *c.second, *c.weekday, *c.weekdayOrdinal };
        QCOMPARE(fields, (QList<int> { 2026, 3, 19, 21, 4, 5, 5, 3 }));
        QCOMPARE(ZIQ_br_dateFromComponents(c), thursday);
        QCOMPARE(ZIQ_br_weekdayString(thursday), localized("ZIQGroupNoteNotDatePickerTHR"));
        QCOMPARE(ZIQ_br_weekdayString(QDateTime()), QString());
        // Elapsed days, not calendar days.
        QCOMPARE(ZIQ_br_getNewDateToDays(thursday, -1.5), localTime(2026, 3, 18, 9, 4, 5));

        // A fresh calendar in another zone reads the same fields as a different instant.
        const ZIQBRDateComponents noon { 2026, 3, 19, 12 };
        QCOMPARE(localText(ZIQ_br_setDateFromComponents(noon, utcOrDefault(true).get())), "2026-03-19 20:00:00");
        QCOMPARE(localText(ZIQ_br_setDateFromComponents(noon, nullptr)), "2026-03-19 12:00:00");
    }

    void formatting_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QDateTime>("date");
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("inUtc");
        QTest::addColumn<QString>("expected");
        const QDateTime dec30 = localTime(2024, 12, 30, 9, 5);
        QTest::newRow("week-based year runs ahead in late December")
            << "YYYY-MM-dd HH:mm" << dec30 << "en" << false << "2025-12-30 09:05";
        QTest::newRow("calendar year in late December") << "yyyy-MM-dd" << dec30 << "en" << false << "2024-12-30";
        // Where weeks need four days of the new year, Friday 1 January 2021 is still in 2020's last week.
        QTest::newRow("week-based year lags in early January (ISO weeks)")
            << "YYYY-MM-dd" << localTime(2021, 1, 1) << "de" << false << "2020-01-01";
        QTest::newRow("Chinese month name") << "MMMM" << dec30 << "zh-Hans" << false << "十二月";
        QTest::newRow("in a given zone") << "dd HH:mm" << dec30 << "en" << true << "30 01:05";
    }

    void formatting()
    {
        QFETCH(QString, pattern);
        QFETCH(QDateTime, date);
        QFETCH(QString, language);
        QFETCH(bool, inUtc);
        QTEST(ZIQ_br_stringFromDate(date, pattern, utcOrDefault(inUtc).get(), language), "expected");
    }

    void parsing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("inUtc");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QDateTime>("expected");
        QTest::newRow("editor pattern") << "2026-03-15 10:08" << false << "yyyy-MM-dd HH:mm"
                                        << localTime(2026, 3, 15, 10, 8);
        QTest::newRow("lenient day overflow")
            << "2026-02-30 10:00" << false << "yyyy-MM-dd HH:mm" << localTime(2026, 3, 2, 10);
        QTest::newRow("in a given zone") << "2026-03-15 10:08" << true << "yyyy-MM-dd HH:mm"
                                         << localTime(2026, 3, 15, 18, 8);
        QTest::newRow("time only is on 1 January 1970") << "07:30" << false << "HH:mm" << localTime(1970, 1, 1, 7, 30);
        QTest::newRow("trailing blanks") << "2026-03-15 10:08 \t" << false << "yyyy-MM-dd HH:mm"
                                         << localTime(2026, 3, 15, 10, 8);
        QTest::newRow("trailing word") << "2026-03-15 10:08 tomorrow" << false << "yyyy-MM-dd HH:mm" << QDateTime();
        QTest::newRow("trailing seconds") << "2026-03-15 10:08:30" << false << "yyyy-MM-dd HH:mm" << QDateTime();
    }

    void parsing()
    {
        QFETCH(QString, text);
        QFETCH(bool, inUtc);
        QFETCH(QString, pattern);
        QTEST(ZIQ_br_dateFromString(text, pattern, utcOrDefault(inUtc).get(), QStringLiteral("en")), "expected");
    }

    void parsingUsesTheOffsetOfTheMoment()
    {
        // In a zone with summer time, parsing takes the offset in force now even for a winter date,
        // while formatting follows the zone's rules.
        const std::unique_ptr<icu::TimeZone> previous(icu::TimeZone::createDefault());
        const auto restore = qScopeGuard([&] { icu::TimeZone::setDefault(*previous); });
        icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("America/New_York"));
        platform::ManualClock summer(QDateTime(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC).toMSecsSinceEpoch());

        QCOMPARE(currentTimeZone()->getRawOffset(), -4 * 3600 * 1000);
        const QDateTime parsed = ZIQ_br_dateFromString(
            QStringLiteral("2026-01-15 12:00"), QStringLiteral("yyyy-MM-dd HH:mm"), nullptr, QStringLiteral("en"));
        QCOMPARE(parsed, QDateTime(QDate(2026, 1, 15), QTime(16, 0), Qt::UTC));
        QCOMPARE(ZIQ_br_stringFromDate(parsed, QStringLiteral("HH:mm"), nullptr, QStringLiteral("en")), "11:00");
    }

private:
    // "Now" for every test: Sunday 2026-03-15 10:07:23 local time.
    platform::ManualClock m_clock { localMs(2026, 3, 15, 10, 7, 23) };
};

QTEST_MAIN(TestZIQBRDateHelpers)
#include "tst_ziqbrdatehelpers.moc"
