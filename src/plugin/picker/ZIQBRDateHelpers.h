// Calendar helpers of the date-time picker: splitting instants into Gregorian fields, building
// instants from fields (leniently, so minute 60 is the next hour), counting the days of a month,
// formatting and parsing with a pattern, and naming weekdays. A date is a QDateTime holding a
// UTC instant; a null QDateTime stands for "no date".
#pragma once

#include <QDateTime>
#include <QString>

#include <memory>
#include <optional>

#include <unicode/calendar.h>
#include <unicode/timezone.h>

/// Gregorian fields of an instant; a field left empty takes its lowest value when a date is built.
struct ZIQBRDateComponents
{
    std::optional<int> year;
    std::optional<int> month; ///< 1 … 12
    std::optional<int> day;
    std::optional<int> hour;
    std::optional<int> minute;
    std::optional<int> second;
    std::optional<int> weekday; ///< 1 = Sunday … 7 = Saturday
    std::optional<int> weekdayOrdinal;
    std::optional<int> weekOfMonth;
};

int ZIQ_br_year(const QDateTime &date);
int ZIQ_br_month(const QDateTime &date);
int ZIQ_br_day(const QDateTime &date);
int ZIQ_br_hour(const QDateTime &date);
int ZIQ_br_minute(const QDateTime &date);
int ZIQ_br_second(const QDateTime &date);
int ZIQ_br_weekday(const QDateTime &date);
/// The localized weekday name; empty for a date without a weekday.
QString ZIQ_br_weekdayString(const QDateTime &date);
/// The date moved by `days` × 86400 elapsed seconds (not calendar days).
QDateTime ZIQ_br_getNewDateToDays(const QDateTime &date, double days);

/// The Gregorian calendar in the device's time zone shared by every helper (UI thread only).
icu::Calendar &ZIQ_br_calendar();
ZIQBRDateComponents ZIQ_br_componentsFromDate(const QDateTime &date);
QDateTime ZIQ_br_dateFromComponents(const ZIQBRDateComponents &components);
/// Builds with a fresh Gregorian calendar in `timeZone`, or in the device's zone when none is given.
QDateTime ZIQ_br_setDateFromComponents(const ZIQBRDateComponents &components, const icu::TimeZone *timeZone);

/// Builds a date from fields. A year above 0 starts from 1 January 00:00:00 of that year, any
/// other year from the current moment; then month and day are set when above 0, hour, minute
/// and second when 0 or above. Out-of-range fields roll over into the next larger one.
QDateTime ZIQ_br_setYear(int year, int month = 0, int day = 0, int hour = 0, int minute = 0, int second = 0);
/// In the current year.
QDateTime ZIQ_br_setMonth(int month, int day, int hour = 0, int minute = 0);
/// On the current day.
QDateTime ZIQ_br_setHour(int hour, int minute, int second = 0);
/// On the current day, in its hour 0.
QDateTime ZIQ_br_setMinute(int minute, int second);

/// Days of `month` in `year`; 0 for a month outside 1 … 12.
int ZIQ_br_getDaysInYear(int year, int month);

/// Formats in `timeZone` (the device's zone when none) with the locale of `language` (a BCP 47
/// tag; the preferred language when empty).
QString ZIQ_br_stringFromDate(const QDateTime &date, const QString &dateFormat, const icu::TimeZone *timeZone = nullptr,
    const QString &language = {});
/// Parses leniently in `timeZone`, or in currentTimeZone() when none is given; null when the text
/// does not parse as a whole (trailing blanks aside).
QDateTime ZIQ_br_dateFromString(const QString &text, const QString &dateFormat, const icu::TimeZone *timeZone = nullptr,
    const QString &language = {});

/// A zone fixed at the local zone's present offset from GMT, without daylight-saving rules.
std::unique_ptr<icu::TimeZone> currentTimeZone();
