#include "plugin/picker/ZIQBRDateHelpers.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"
#include "plugin/picker/ZIQBRIcu.h"

#include <QtGlobal>

#include <array>

#include <unicode/gregocal.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>

using namespace ZIQBRIcu;

namespace {

int field(const QDateTime &date, UCalendarDateFields which)
{
    if (!date.isValid())
        return 0;
    icu::Calendar &calendar = ZIQ_br_calendar();
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(toUDate(date), status);
    const int value = calendar.get(which, status);
    return U_SUCCESS(status) ? value : 0;
}

QDateTime build(icu::Calendar &calendar, const ZIQBRDateComponents &c)
{
    calendar.clear();
    // Weekday fields go in first so that a day of the month, set later, wins ICU's field resolution.
    if (c.weekday)
        calendar.set(UCAL_DAY_OF_WEEK, *c.weekday);
    if (c.weekdayOrdinal)
        calendar.set(UCAL_DAY_OF_WEEK_IN_MONTH, *c.weekdayOrdinal);
    if (c.weekOfMonth)
        calendar.set(UCAL_WEEK_OF_MONTH, *c.weekOfMonth);
    if (c.year)
        calendar.set(UCAL_YEAR, *c.year);
    if (c.month)
        calendar.set(UCAL_MONTH, *c.month - 1);
    if (c.day)
        calendar.set(UCAL_DATE, *c.day);
    if (c.hour)
        calendar.set(UCAL_HOUR_OF_DAY, *c.hour);
    if (c.minute)
        calendar.set(UCAL_MINUTE, *c.minute);
    if (c.second)
        calendar.set(UCAL_SECOND, *c.second);
    UErrorCode status = U_ZERO_ERROR;
    const UDate date = calendar.getTime(status);
    return U_SUCCESS(status) ? fromUDate(date) : QDateTime();
}

std::unique_ptr<icu::SimpleDateFormat> formatter(const QString &pattern, const QString &language)
{
    const QString tag = language.isEmpty() ? ZIQGlobalization::getPreferredLanguage() : language;
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(toUnicode(pattern), localeForLanguage(tag), status);
    if (U_FAILURE(status))
        return nullptr;
    return format;
}

} // namespace

int ZIQ_br_year(const QDateTime &date)
{
    return field(date, UCAL_YEAR);
}

int ZIQ_br_month(const QDateTime &date)
{
    return date.isValid() ? field(date, UCAL_MONTH) + 1 : 0;
}

int ZIQ_br_day(const QDateTime &date)
{
    return field(date, UCAL_DATE);
}

int ZIQ_br_hour(const QDateTime &date)
{
    return field(date, UCAL_HOUR_OF_DAY);
}

int ZIQ_br_minute(const QDateTime &date)
{
    return field(date, UCAL_MINUTE);
}

int ZIQ_br_second(const QDateTime &date)
{
    return field(date, UCAL_SECOND);
}

int ZIQ_br_weekday(const QDateTime &date)
{
    return field(date, UCAL_DAY_OF_WEEK);
}

QString ZIQ_br_weekdayString(const QDateTime &date)
{
    // Thursday's key is "THR": the string tables carry it under that name.
    static const std::array<const char *, 7> keys = {
        "ZIQGroupNoteNotDatePickerSUN",
        "ZIQGroupNoteNotDatePickerMON",
        "ZIQGroupNoteNotDatePickerTUE",
        "ZIQGroupNoteNotDatePickerWED",
        "ZIQGroupNoteNotDatePickerTHR",
        "ZIQGroupNoteNotDatePickerFRI",
        "ZIQGroupNoteNotDatePickerSAT",
    };
    const int weekday = ZIQ_br_weekday(date);
    if (weekday < 1 || weekday > 7)
        return QString();
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(keys[weekday - 1]));
}

QDateTime ZIQ_br_getNewDateToDays(const QDateTime &date, double days)
{
    return date.addMSecs(qRound64(days * 86400.0 * 1000.0));
}

icu::Calendar &ZIQ_br_calendar()
{
    static icu::GregorianCalendar *calendar = [] {
        UErrorCode status = U_ZERO_ERROR;
        auto *created = new icu::GregorianCalendar(status);
        Q_ASSERT(U_SUCCESS(status));
        return created;
    }();
    return *calendar;
}

ZIQBRDateComponents ZIQ_br_componentsFromDate(const QDateTime &date)
{
    if (!date.isValid())
        return {};
    icu::Calendar &calendar = ZIQ_br_calendar();
    UErrorCode status = U_ZERO_ERROR;
    calendar.setTime(toUDate(date), status);
    ZIQBRDateComponents c;
    c.year = calendar.get(UCAL_YEAR, status);
    c.month = calendar.get(UCAL_MONTH, status) + 1;
    c.day = calendar.get(UCAL_DATE, status);
    c.hour = calendar.get(UCAL_HOUR_OF_DAY, status);
    c.minute = calendar.get(UCAL_MINUTE, status);
    c.second = calendar.get(UCAL_SECOND, status);
    c.weekday = calendar.get(UCAL_DAY_OF_WEEK, status);
    c.weekdayOrdinal = calendar.get(UCAL_DAY_OF_WEEK_IN_MONTH, status);
    c.weekOfMonth = calendar.get(UCAL_WEEK_OF_MONTH, status);
    return U_SUCCESS(status) ? c : ZIQBRDateComponents();
}

QDateTime ZIQ_br_dateFromComponents(const ZIQBRDateComponents &components)
{
    return build(ZIQ_br_calendar(), components);
}

QDateTime ZIQ_br_setDateFromComponents(const ZIQBRDateComponents &components, const icu::TimeZone *timeZone)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(status);
    if (U_FAILURE(status))
        return QDateTime();
    if (timeZone)
        calendar.setTimeZone(*timeZone);
    return build(calendar, components);
}

QDateTime ZIQ_br_setYear(int year, int month, int day, int hour, int minute, int second)
{
    ZIQBRDateComponents c;
    if (year > 0) {
        c.year = year;
    } else {
        const QDateTime now = QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC);
        c = ZIQ_br_componentsFromDate(now);
        // Only the date and time of day carry over; the week fields would fight the new day.
        c.weekday.reset();
        c.weekdayOrdinal.reset();
        c.weekOfMonth.reset();
    }
    if (month > 0)
        c.month = month;
    if (day > 0)
        c.day = day;
    if (hour >= 0)
        c.hour = hour;
    if (minute >= 0)
        c.minute = minute;
    if (second >= 0)
        c.second = second;
    return ZIQ_br_dateFromComponents(c);
}

QDateTime ZIQ_br_setMonth(int month, int day, int hour, int minute)
{
    return ZIQ_br_setYear(0, month, day, hour, minute, 0);
}

QDateTime ZIQ_br_setHour(int hour, int minute, int second)
{
    return ZIQ_br_setYear(0, 0, 0, hour, minute, second);
}

QDateTime ZIQ_br_setMinute(int minute, int second)
{
    return ZIQ_br_setYear(0, 0, 0, 0, minute, second);
}

int ZIQ_br_getDaysInYear(int year, int month)
{
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    switch (month) {
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12:
        return 31;
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    case 2:
        return leap ? 29 : 28;
    default:
        return 0;
    }
}

QString ZIQ_br_stringFromDate(
    const QDateTime &date, const QString &dateFormat, const icu::TimeZone *timeZone, const QString &language)
{
    if (!date.isValid())
        return QString();
    auto format = formatter(dateFormat, language);
    if (!format)
        return QString();
    if (timeZone)
        format->setTimeZone(*timeZone);
    icu::UnicodeString text;
    format->format(toUDate(date), text);
    return fromUnicode(text);
}

QDateTime ZIQ_br_dateFromString(
    const QString &text, const QString &dateFormat, const icu::TimeZone *timeZone, const QString &language)
{
    auto format = formatter(dateFormat, language);
    if (!format || text.isEmpty())
        return QDateTime();
    if (timeZone)
        format->setTimeZone(*timeZone);
    else
        format->adoptTimeZone(currentTimeZone().release());
    format->setLenient(true);
    icu::ParsePosition position(0);
    const UDate date = format->parse(toUnicode(text), position);
    if (position.getIndex() == 0 || position.getErrorIndex() >= 0)
        return QDateTime();
    // ICU stops at the first character the pattern does not take: a date followed by more words
    // ("2026-03-15 10:08 tomorrow") is no date; only blanks may follow.
    if (!QStringView(text).mid(position.getIndex()).trimmed().isEmpty())
        return QDateTime();
    return fromUDate(date);
}

std::unique_ptr<icu::TimeZone> currentTimeZone()
{
    std::unique_ptr<icu::TimeZone> local(icu::TimeZone::createDefault());
    int32_t rawOffset = 0;
    int32_t dstOffset = 0;
    UErrorCode status = U_ZERO_ERROR;
    local->getOffset(platform::MainQueue::now(), false, rawOffset, dstOffset, status);
    const int offset = U_SUCCESS(status) ? rawOffset + dstOffset : 0;
    const int minutes = std::abs(offset) / 60000;
    const QString id = QStringLiteral("GMT%1%2:%3")
                           .arg(offset < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                           .arg(minutes / 60, 2, 10, QLatin1Char('0'))
                           .arg(minutes % 60, 2, 10, QLatin1Char('0'));
    return std::make_unique<icu::SimpleTimeZone>(offset, toUnicode(id));
}
