// The calendar helpers: days per month, lenient building from fields, fields and weekday names,
// formatting with week-based years, locales and zones, and lenient parsing in a fixed-offset zone.
#include "PickerTestSupport.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/ManualClock.h"
#include "plugin/picker/ZIQBRDateHelpers.h"

#include <QTest>

#include <memory>

#include <unicode/timezone.h>

class TestZIQBRDateHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void daysInMonth_data();
    void daysInMonth();
    void buildingFromFields_data();
    void buildingFromFields();
    void fieldsAndWeekdayNames();
    void shiftingByElapsedDays();
    void formatting_data();
    void formatting();
    void parsing_data();
    void parsing();
    void parsingUsesTheOffsetOfTheMoment();

private:
    std::unique_ptr<platform::ManualClock> m_clock;
};

void TestZIQBRDateHelpers::initTestCase()
{
    m_clock = std::make_unique<platform::ManualClock>(localMs(2026, 3, 15, 10, 7, 23));
}

void TestZIQBRDateHelpers::cleanupTestCase()
{
    m_clock.reset();
}

void TestZIQBRDateHelpers::daysInMonth_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<int>("days");
    QTest::newRow("2000-02, divisible by 400") << 2000 << 2 << 29;
    QTest::newRow("1900-02, century") << 1900 << 2 << 28;
    QTest::newRow("2100-02, century") << 2100 << 2 << 28;
    QTest::newRow("2024-02, leap") << 2024 << 2 << 29;
    QTest::newRow("2026-02") << 2026 << 2 << 28;
    QTest::newRow("2026-01") << 2026 << 1 << 31;
    QTest::newRow("2026-04") << 2026 << 4 << 30;
    QTest::newRow("2026-08") << 2026 << 8 << 31;
    QTest::newRow("2026-11") << 2026 << 11 << 30;
    QTest::newRow("2026-12") << 2026 << 12 << 31;
    QTest::newRow("month 0") << 2026 << 0 << 0;
    QTest::newRow("month 13") << 2026 << 13 << 0;
    QTest::newRow("negative month") << 2026 << -2 << 0;
}

void TestZIQBRDateHelpers::daysInMonth()
{
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(int, days);
    QCOMPARE(ZIQ_br_getDaysInYear(year, month), days);
}

void TestZIQBRDateHelpers::buildingFromFields_data()
{
    // "Now" is 2026-03-15 10:07:23 local time.
    QTest::addColumn<QDateTime>("built");
    QTest::addColumn<QString>("expected");
    QTest::newRow("minute 60 is the next hour") << ZIQ_br_setYear(2026, 3, 15, 10, 60) << "2026-03-15 11:00:00";
    QTest::newRow("minute 60 at the year's end") << ZIQ_br_setYear(2026, 12, 31, 23, 60) << "2027-01-01 00:00:00";
    QTest::newRow("day 31 of a 30-day month") << ZIQ_br_setYear(2026, 4, 31) << "2026-05-01 00:00:00";
    QTest::newRow("year and month: the 1st at midnight") << ZIQ_br_setYear(2026, 7) << "2026-07-01 00:00:00";
    QTest::newRow("year only") << ZIQ_br_setYear(2024) << "2024-01-01 00:00:00";
    QTest::newRow("month and day keep the year") << ZIQ_br_setMonth(7, 4) << "2026-07-04 00:00:00";
    QTest::newRow("month to minute") << ZIQ_br_setMonth(12, 31, 23, 59) << "2026-12-31 23:59:00";
    QTest::newRow("hour and minute keep today") << ZIQ_br_setHour(18, 45) << "2026-03-15 18:45:00";
    QTest::newRow("hour to second") << ZIQ_br_setHour(18, 45, 12) << "2026-03-15 18:45:12";
    QTest::newRow("minute and second are in hour 0") << ZIQ_br_setMinute(59, 59) << "2026-03-15 00:59:59";
    QTest::newRow("negative time fields keep now") << ZIQ_br_setYear(0, 0, 0, -1, -1, -1) << "2026-03-15 10:07:23";
    QTest::newRow("year with negative time fields") << ZIQ_br_setYear(2030, 6, 1, -1, -1, -1) << "2030-06-01 00:00:00";
}

void TestZIQBRDateHelpers::buildingFromFields()
{
    QFETCH(QDateTime, built);
    QFETCH(QString, expected);
    QCOMPARE(localText(built), expected);
}

void TestZIQBRDateHelpers::fieldsAndWeekdayNames()
{
    const QDateTime thursday = localTime(2026, 3, 19, 21, 4, 5);
    const ZIQBRDateComponents c = ZIQ_br_componentsFromDate(thursday);
    QCOMPARE(c.year, 2026);
    QCOMPARE(c.month, 3);
    QCOMPARE(c.day, 19);
    QCOMPARE(c.hour, 21);
    QCOMPARE(c.minute, 4);
    QCOMPARE(c.second, 5);
    QCOMPARE(c.weekday, 5);
    QCOMPARE(c.weekdayOrdinal, 3);
    QCOMPARE(ZIQ_br_dateFromComponents(c), thursday);

    QCOMPARE(ZIQ_br_weekday(thursday), 5);
    const QString thrKey = QStringLiteral("ZIQGroupNoteNotDatePickerTHR");
    QCOMPARE(ZIQ_br_weekdayString(thursday), ZIQGlobalization::getLocalizedStringForKey(thrKey));
    QCOMPARE(ZIQ_br_weekdayString(localTime(2026, 3, 15)),
        ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerSUN")));
    QCOMPARE(ZIQ_br_weekdayString(QDateTime()), QString());

    // A fresh calendar in another zone reads the same fields as a different instant.
    std::unique_ptr<icu::TimeZone> utc(icu::TimeZone::createTimeZone("UTC"));
    ZIQBRDateComponents noon;
    noon.year = 2026;
    noon.month = 3;
    noon.day = 19;
    noon.hour = 12;
    QCOMPARE(localText(ZIQ_br_setDateFromComponents(noon, utc.get())), QStringLiteral("2026-03-19 20:00:00"));
    QCOMPARE(localText(ZIQ_br_setDateFromComponents(noon, nullptr)), QStringLiteral("2026-03-19 12:00:00"));
}

void TestZIQBRDateHelpers::shiftingByElapsedDays()
{
    const QDateTime start = localTime(2026, 3, 15, 10, 0);
    QCOMPARE(ZIQ_br_getNewDateToDays(start, 1.5), localTime(2026, 3, 16, 22, 0));
    QCOMPARE(ZIQ_br_getNewDateToDays(start, -2), localTime(2026, 3, 13, 10, 0));
}

void TestZIQBRDateHelpers::formatting_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("expected");
    const QDateTime dec30 = localTime(2024, 12, 30, 9, 5);
    QTest::newRow("week-based year runs ahead in late December") << dec30 << "YYYY-MM-dd HH:mm"
                                                                 << ""
                                                                 << "en"
                                                                 << "2025-12-30 09:05";
    QTest::newRow("calendar year in late December") << dec30 << "yyyy-MM-dd HH:mm"
                                                    << ""
                                                    << "en"
                                                    << "2024-12-30 09:05";
    // Where weeks need four days of the new year, 1 January 2021 (a Friday) is still in 2020's last week.
    QTest::newRow("week-based year lags in early January (ISO weeks)") << localTime(2021, 1, 1) << "YYYY-MM-dd"
                                                                       << ""
                                                                       << "de"
                                                                       << "2020-01-01";
    QTest::newRow("US weeks start the year with 1 January") << localTime(2021, 1, 1) << "YYYY"
                                                            << ""
                                                            << "en"
                                                            << "2021";
    QTest::newRow("mid-year both agree") << localTime(2026, 6, 1) << "YYYY"
                                         << ""
                                         << "en"
                                         << "2026";
    QTest::newRow("English month name") << dec30 << "MMMM"
                                        << ""
                                        << "en"
                                        << "December";
    QTest::newRow("Chinese month name") << dec30 << "MMMM"
                                        << ""
                                        << "zh-Hans"
                                        << "十二月";
    QTest::newRow("in a given zone") << dec30 << "dd HH:mm"
                                     << "UTC"
                                     << "en"
                                     << "30 01:05";
}

void TestZIQBRDateHelpers::formatting()
{
    QFETCH(QDateTime, date);
    QFETCH(QString, pattern);
    QFETCH(QString, zone);
    QFETCH(QString, language);
    QFETCH(QString, expected);
    std::unique_ptr<icu::TimeZone> timeZone(zone.isEmpty() ? nullptr : icu::TimeZone::createTimeZone("UTC"));
    QCOMPARE(ZIQ_br_stringFromDate(date, pattern, timeZone.get(), language), expected);
}

void TestZIQBRDateHelpers::parsing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("inUtc");
    QTest::addColumn<QDateTime>("expected");
    QTest::newRow("editor pattern") << "2026-03-15 10:08"
                                    << "yyyy-MM-dd HH:mm" << false << localTime(2026, 3, 15, 10, 8);
    QTest::newRow("lenient day overflow") << "2026-02-30 10:00"
                                          << "yyyy-MM-dd HH:mm" << false << localTime(2026, 3, 2, 10, 0);
    QTest::newRow("in a given zone") << "2026-03-15 10:08"
                                     << "yyyy-MM-dd HH:mm" << true << localTime(2026, 3, 15, 18, 8);
    QTest::newRow("time only is on 1 January 1970") << "07:30"
                                                    << "HH:mm" << false << localTime(1970, 1, 1, 7, 30);
    QTest::newRow("not a date") << "tomorrow"
                                << "yyyy-MM-dd" << false << QDateTime();
    QTest::newRow("empty") << ""
                           << "yyyy-MM-dd" << false << QDateTime();
}

void TestZIQBRDateHelpers::parsing()
{
    QFETCH(QString, text);
    QFETCH(QString, pattern);
    QFETCH(bool, inUtc);
    QFETCH(QDateTime, expected);
    std::unique_ptr<icu::TimeZone> utc(inUtc ? icu::TimeZone::createTimeZone("UTC") : nullptr);
    QCOMPARE(ZIQ_br_dateFromString(text, pattern, utc.get(), QStringLiteral("en")), expected);
}

void TestZIQBRDateHelpers::parsingUsesTheOffsetOfTheMoment()
{
    // In a zone with summer time, parsing takes the offset in force now even for a winter date,
    // while formatting follows the zone's rules.
    std::unique_ptr<icu::TimeZone> previous(icu::TimeZone::createDefault());
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("America/New_York"));
    platform::ManualClock summer(QDateTime(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC).toMSecsSinceEpoch());

    QCOMPARE(currentTimeZone()->getRawOffset(), -4 * 3600 * 1000);
    const QDateTime parsed = ZIQ_br_dateFromString(
        QStringLiteral("2026-01-15 12:00"), QStringLiteral("yyyy-MM-dd HH:mm"), nullptr, QStringLiteral("en"));
    QCOMPARE(parsed, QDateTime(QDate(2026, 1, 15), QTime(16, 0), Qt::UTC));
    QCOMPARE(
        ZIQ_br_stringFromDate(parsed, QStringLiteral("HH:mm"), nullptr, QStringLiteral("en")), QStringLiteral("11:00"));

    icu::TimeZone::adoptDefault(previous.release());
}

QTEST_MAIN(TestZIQBRDateHelpers)
#include "tst_ziqbrdatehelpers.moc"
