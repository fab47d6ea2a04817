// Parses arbitrary texts as dates: with the deadline patterns the editor uses (the week-based
// "YYYY" variant included) or with a pattern from the bytes, in no zone (the device's present
// offset), UTC or a zone with daylight saving, and in several locales. Parsing must never fail
// badly; with the editor's patterns a parsed date formatted again must parse back to itself, and
// a deadline formatted as text must parse back to the same minute.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzSession.h"
#include "plugin/picker/ZIQBRDateHelpers.h"

#include <array>
#include <memory>

namespace {

struct Pattern
{
    const char *text;
    /// Names the calendar year, so a parsed date's text names that date again. Without a year
    /// the text means a day of 1970, which lenient rollover ("15" as a month) can leave; a
    /// week-based year ("YYYY") names another year than the calendar's around New Year.
    bool namesYear;
    /// Names every field down to the minute, so text and instant determine each other.
    bool toTheMinute;
};

constexpr std::array<Pattern, 7> patterns { {
    { "yyyy-MM-dd HH:mm", true, true },
    { "yyyy年MM月dd日 HH:mm", true, true },
    { "yyyy/M/d H:mm", true, true },
    { "yyyy-MM-dd", true, false },
    { "MM-dd HH:mm", false, false },
    { "YYYY-MM-dd HH:mm", false, false },
    { "YYYY-MM-dd", false, false },
} };

constexpr std::array<const char *, 4> languages { "", "en", "zh-Hans", "ar-EG" };

struct Zone
{
    std::unique_ptr<icu::TimeZone> zone;
    /// Wall-clock text names one instant only: no daylight-saving overlaps in the deadline range.
    bool unambiguous;
};

Zone zone(unsigned choice)
{
    switch (choice) {
    case 0:
        return { nullptr, true };
    case 1:
        return { std::unique_ptr<icu::TimeZone>(icu::TimeZone::getGMT()->clone()), true };
    case 2:
        return { std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone("Asia/Shanghai")), true };
    default:
        return { std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone("America/New_York")), false };
    }
}

bool isCommonEra(const QDateTime &date)
{
    static const QDateTime first(QDate(2, 1, 1), QTime(0, 0), Qt::UTC);
    static const QDateTime last(QDate(9999, 1, 1), QTime(0, 0), Qt::UTC);
    return date >= first && date < last;
}

// Parsing without a zone uses the device's present offset; formatting then has to use it too.
QString format(const QDateTime &date, const QString &pattern, const icu::TimeZone *zone, const QString &language)
{
    if (zone)
        return ZIQ_br_stringFromDate(date, pattern, zone, language);
    return ZIQ_br_stringFromDate(date, pattern, currentTimeZone().get(), language);
}

void checkParsedRoundTrip(
    const QDateTime &parsed, const QString &pattern, const icu::TimeZone *zone, const QString &language)
{
    if (!isCommonEra(parsed))
        return;
    const QString text = format(parsed, pattern, zone, language);
    const QDateTime again = ZIQ_br_dateFromString(text, pattern, zone, language);
    FUZZ_CHECK(again == parsed, pattern << language << text << parsed << again);
}

// A deadline between 2000 and 2200, to the minute, survives being shown as text and read back.
void checkDeadlineRoundTrip(quint64 seed, const QString &pattern, const icu::TimeZone *zone, const QString &language)
{
    constexpr qint64 from = 946684800000; // 2000-01-01
    constexpr qint64 span = 6311433600000; // two hundred years
    const qint64 minute = 60000;
    const qint64 ms = (from + qint64(seed % quint64(span))) / minute * minute;
    const QDateTime deadline = QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC);
    const QString text = format(deadline, pattern, zone, language);
    const QDateTime parsed = ZIQ_br_dateFromString(text, pattern, zone, language);
    FUZZ_CHECK(parsed == deadline, pattern << language << text << deadline << parsed);
}

// Every field read and every formatting of a parsed date is well defined.
void touch(const QDateTime &date, const QString &pattern, const icu::TimeZone *zone, const QString &language)
{
    FUZZ_CHECK(date.isValid(), "a parse answered an invalid date");
    const int month = ZIQ_br_month(date);
    FUZZ_CHECK(month >= 1 && month <= 12, month);
    const int weekday = ZIQ_br_weekday(date);
    FUZZ_CHECK(weekday >= 1 && weekday <= 7, weekday);
    FUZZ_CHECK(ZIQ_br_day(date) <= ZIQ_br_getDaysInYear(ZIQ_br_year(date), month) || ZIQ_br_year(date) < 1583, date);
    ZIQ_br_stringFromDate(date, pattern, zone, language);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzSession::startApplication(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    FuzzInput in(bytes, size);
    const unsigned patternChoice = in.pick(patterns.size() + 1);
    const bool fixedPattern = patternChoice < patterns.size();
    const QString pattern = fixedPattern ? QString::fromUtf8(patterns[patternChoice].text) : in.text();
    const Zone parseZone = zone(in.pick(4));
    const unsigned languageChoice = in.pick(languages.size() + 1);
    const QString language
        = languageChoice < languages.size() ? QString::fromUtf8(languages[languageChoice]) : in.text();
    const quint64 seed = in.integer();
    const QString text = QString::fromUtf8(in.rest());

    const QDateTime parsed = ZIQ_br_dateFromString(text, pattern, parseZone.zone.get(), language);
    if (parsed.isValid())
        touch(parsed, pattern, parseZone.zone.get(), language);
    if (!fixedPattern || languageChoice >= languages.size())
        return 0;
    const Pattern &fixed = patterns[patternChoice];
    if (parsed.isValid() && fixed.namesYear)
        checkParsedRoundTrip(parsed, pattern, parseZone.zone.get(), language);
    if (fixed.toTheMinute && parseZone.unambiguous)
        checkDeadlineRoundTrip(seed, pattern, parseZone.zone.get(), language);
    return 0;
}
