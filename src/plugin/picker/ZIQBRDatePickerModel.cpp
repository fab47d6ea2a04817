// ZIQBRDatePickerModel: the modes, the range with its defaults, the initial selection, turning a
// column and the comparison of dates at the mode's precision.
#include "plugin/picker/ZIQBRDatePickerModel.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"
#include "plugin/picker/ZIQBRDateHelpers.h"

#include <algorithm>

using Mode = ZIQBRDatePickerMode;

namespace {

// The earliest and latest dates a picker without a range offers: 0001-01-01 and 4001-01-01, UTC.
QDateTime distantPast()
{
    return QDateTime::fromMSecsSinceEpoch(-62135596800000LL, Qt::UTC);
}

QDateTime distantFuture()
{
    return QDateTime::fromMSecsSinceEpoch(64092211200000LL, Qt::UTC);
}

QDateTime now()
{
    return QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC);
}

bool isTimeOfDayMode(Mode mode)
{
    return mode == Mode::Time || mode == Mode::CountDownTimer || mode == Mode::HMS || mode == Mode::HM
        || mode == Mode::MS;
}

// An integer outside the table of modes, cast to a mode, shows the default date picker.
ZIQBRDatePickerMode knownMode(ZIQBRDatePickerMode mode)
{
    const int value = static_cast<int>(mode);
    return value >= 0 && value <= static_cast<int>(Mode::MS) ? mode : Mode::Date;
}

} // namespace

ZIQBRDatePickerModel::ZIQBRDatePickerModel(ZIQBRDatePickerMode pickerMode)
    : m_pickerMode(knownMode(pickerMode))
    , m_language(ZIQGlobalization::getPreferredLanguage())
{
    setupDateFormatter(m_pickerMode);
}

void ZIQBRDatePickerModel::setPickerMode(ZIQBRDatePickerMode mode)
{
    m_pickerMode = knownMode(mode);
    setupDateFormatter(m_pickerMode);
}

void ZIQBRDatePickerModel::setLanguage(const QString &language)
{
    m_language = language;
    // The order of the columns depends on the language.
    setupDateFormatter(m_pickerMode);
}

void ZIQBRDatePickerModel::reload()
{
    setupDateFormatter(m_pickerMode);
    handlerPickerData();
}

void ZIQBRDatePickerModel::setupDateFormatter(ZIQBRDatePickerMode mode)
{
    static const QString patterns[] = {
        QStringLiteral("yyyy-MM-dd"),
        QStringLiteral("yyyy-MM-dd HH:mm"),
        QStringLiteral("HH:mm"),
        QStringLiteral("HH:mm"),
        QStringLiteral("yyyy-MM-dd HH:mm:ss"),
        QStringLiteral("yyyy-MM-dd HH:mm"),
        QStringLiteral("yyyy-MM-dd HH"),
        QStringLiteral("MM-dd HH:mm"),
        QStringLiteral("yyyy-MM-dd"),
        QStringLiteral("yyyy-MM"),
        QStringLiteral("yyyy"),
        QStringLiteral("MM-dd"),
        QStringLiteral("HH:mm:ss"),
        QStringLiteral("HH:mm"),
        QStringLiteral("mm:ss"),
    };
    m_dateFormatter = patterns[static_cast<int>(mode)];
    m_style = isPlatformMode() ? 0 : 1;
    m_columns = m_style == 1 ? fieldsInMode() : QList<Field>();
    // Outside Chinese, dates read day (or month) first.
    if ((mode == Mode::YMD || mode == Mode::YM) && !isChinese())
        std::reverse(m_columns.begin(), m_columns.end());
}

bool ZIQBRDatePickerModel::isPlatformMode() const
{
    return static_cast<int>(m_pickerMode) <= static_cast<int>(Mode::CountDownTimer);
}

QList<ZIQBRDatePickerModel::Field> ZIQBRDatePickerModel::fieldsInMode() const
{
    switch (m_pickerMode) {
    case Mode::Date:
    case Mode::YMD:
        return { Year, Month, Day };
    case Mode::DateAndTime:
    case Mode::YMDHM:
        return { Year, Month, Day, Hour, Minute };
    case Mode::Time:
    case Mode::CountDownTimer:
    case Mode::HM:
        return { Hour, Minute };
    case Mode::YMDHMS:
        return { Year, Month, Day, Hour, Minute, Second };
    case Mode::YMDH:
        return { Year, Month, Day, Hour };
    case Mode::MDHM:
        return { Month, Day, Hour, Minute };
    case Mode::YM:
        return { Year, Month };
    case Mode::Y:
        return { Year };
    case Mode::MD:
        return { Month, Day };
    case Mode::HMS:
        return { Hour, Minute, Second };
    case Mode::MS:
        return { Minute, Second };
    }
    return {};
}

void ZIQBRDatePickerModel::handlerPickerData()
{
    m_minDate = handlerMinDate(m_configuredMinDate);
    m_maxDate = handlerMaxDate(m_configuredMaxDate);
    if (br_compareDate(m_minDate, m_maxDate, m_dateFormatter) > 0) {
        m_minDate = distantPast();
        m_maxDate = distantFuture();
    }
    m_selectDate = handlerSelectDate(m_configuredSelectDate, m_dateFormatter);
    if (m_selectDate.isValid()) {
        if (br_compareDate(m_selectDate, m_minDate, m_dateFormatter) < 0)
            m_selectDate = m_minDate;
        else if (br_compareDate(m_selectDate, m_maxDate, m_dateFormatter) > 0)
            m_selectDate = m_maxDate;
    }
    m_arr = {};
    m_index = {};
    if (m_style == 1)
        buildColumns();
    if (!m_selectDate.isValid())
        m_selectValue = m_configuredSelectValue;
    else if (isAmPmHour(Hour))
        m_selectValue = valueText();
    else
        m_selectValue
            = ZIQ_br_stringFromDate(m_selectDate, m_dateFormatter, m_timeZone.get(), m_language);
}

QDateTime ZIQBRDatePickerModel::handlerMinDate(const QDateTime &minDate) const
{
    if (minDate.isValid())
        return minDate;
    switch (m_pickerMode) {
    case Mode::MDHM:
        return ZIQ_br_setMonth(1, 1, 0, 0);
    case Mode::MD:
        return ZIQ_br_setMonth(1, 1);
    case Mode::Time:
    case Mode::CountDownTimer:
    case Mode::HM:
        return ZIQ_br_setHour(0, 0);
    case Mode::HMS:
        return ZIQ_br_setHour(0, 0, 0);
    case Mode::MS:
        return ZIQ_br_setMinute(0, 0);
    default:
        return distantPast();
    }
}

QDateTime ZIQBRDatePickerModel::handlerMaxDate(const QDateTime &maxDate) const
{
    if (m_addToNow)
        return now();
    if (maxDate.isValid())
        return maxDate;
    switch (m_pickerMode) {
    case Mode::MDHM:
        return ZIQ_br_setMonth(12, 31, 23, 59);
    case Mode::MD:
        return ZIQ_br_setMonth(12, 31);
    case Mode::Time:
    case Mode::CountDownTimer:
    case Mode::HM:
        return ZIQ_br_setHour(23, 59);
    case Mode::HMS:
        return ZIQ_br_setHour(23, 59, 59);
    case Mode::MS:
        // The minute-and-second constructor puts the hour at 0, so the range is the day's first hour.
        return ZIQ_br_setMinute(59, 59);
    default:
        return distantFuture();
    }
}

QDateTime ZIQBRDatePickerModel::handlerSelectDate(const QDateTime &selectDate, const QString &dateFormat) const
{
    if (selectDate.isValid())
        return selectDate;
    if (!m_configuredSelectValue.isEmpty())
        return dateFromSelectValue(dateFormat);
    if (isTimeOfDayMode(m_pickerMode))
        return m_minDate;
    const QDateTime current = now();
    if (minuteInterval() == 1 && secondInterval() == 1)
        return current;
    const int minMinute = ZIQ_br_minute(m_minDate);
    const int minSecond = ZIQ_br_second(m_minDate);
    return ZIQ_br_setYear(ZIQ_br_year(current), ZIQ_br_month(current), ZIQ_br_day(current), ZIQ_br_hour(current),
        minMinute % minuteInterval() == 0 ? minMinute : 0, minSecond % secondInterval() == 0 ? minSecond : 0);
}

QDateTime ZIQBRDatePickerModel::dateFromSelectValue(const QString &dateFormat) const
{
    QString text = m_configuredSelectValue;
    const QString lastRow = effectiveLastRowContent();
    if ((!m_firstRowContent.isEmpty() && text == m_firstRowContent) || (!lastRow.isEmpty() && text == lastRow))
        return m_addToNow ? now() : QDateTime();
    if (isAmPmHour(Hour)) {
        const int blank = text.lastIndexOf(QLatin1Char(' '));
        const QString lastWord = text.mid(blank + 1);
        if (blank > 0 && (lastWord == amPmText(0) || lastWord == amPmText(12)))
            text = text.left(blank) + (lastWord == amPmText(0) ? QStringLiteral(" 00") : QStringLiteral(" 12"));
    }
    const QDateTime parsed = ZIQ_br_dateFromString(text, dateFormat, m_timeZone.get(), m_language);
    if (!parsed.isValid())
        return now();
    switch (m_pickerMode) {
    case Mode::Time:
    case Mode::CountDownTimer:
    case Mode::HM:
        return ZIQ_br_setHour(ZIQ_br_hour(parsed), ZIQ_br_minute(parsed));
    case Mode::HMS:
        return ZIQ_br_setHour(ZIQ_br_hour(parsed), ZIQ_br_minute(parsed), ZIQ_br_second(parsed));
    case Mode::MS:
        return ZIQ_br_setMinute(ZIQ_br_minute(parsed), ZIQ_br_second(parsed));
    case Mode::MDHM:
        return ZIQ_br_setMonth(ZIQ_br_month(parsed), ZIQ_br_day(parsed), ZIQ_br_hour(parsed), ZIQ_br_minute(parsed));
    case Mode::MD:
        return ZIQ_br_setMonth(ZIQ_br_month(parsed), ZIQ_br_day(parsed));
    default:
        return parsed;
    }
}

int ZIQBRDatePickerModel::br_compareDate(
    const QDateTime &date, const QDateTime &targetDate, const QString &dateFormat) const
{
    // Round-tripping through the mode's pattern compares only the fields the mode shows.
    const QString language = m_language;
    const auto atPrecision = [&](const QDateTime &d) {
        const QString text = ZIQ_br_stringFromDate(d, dateFormat, m_timeZone.get(), language);
        return ZIQ_br_dateFromString(text, dateFormat, m_timeZone.get(), language);
    };
    const QDateTime a = atPrecision(date);
    const QDateTime b = atPrecision(targetDate);
    if (!a.isValid() || !b.isValid())
        return 0;
    return a > b ? 1 : (a < b ? -1 : 0);
}

ZIQBRDatePickerModel::Change ZIQBRDatePickerModel::selectRow(Field field, int row)
{
    Change change;
    const QDateTime previousDate = m_selectDate;
    const bool wasCustomRow = isCustomRowSelected();
    m_index[field] = row;
    m_isAdjustSelectRow = false;
    change.rebuilt = rebuildLowerColumns(field, previousDate);

    const QList<Field> fields = fieldsInMode();
    if (isCustomRowSelected()) {
        m_selectDate = m_addToNow ? now() : QDateTime();
        m_selectValue = m_arr[fields.first()].at(m_index[fields.first()]);
        for (Field lower : fields.mid(1)) {
            m_arr[lower].clear();
            m_index[lower] = 0;
            if (!change.rebuilt.contains(lower))
                change.rebuilt.append(lower);
        }
    }
    if (std::any_of(fields.begin(), fields.end(), [this](Field f) { return m_arr[f].isEmpty(); }))
        return change;
    if (!isCustomRowSelected()) {
        m_selectDate = dateFromSelection();
        m_selectValue = valueText();
        change.scrollAll = m_isAdjustSelectRow || wasCustomRow;
        if (change.scrollAll)
            scrollToSelectDate(m_selectDate);
    }
    change.complete = true;
    return change;
}

QList<ZIQBRDatePickerModel::Field> ZIQBRDatePickerModel::rebuildLowerColumns(Field changed, const QDateTime &previous)
{
    QList<Field> rebuilt;
    for (Field lower : fieldsInMode()) {
        if (lower <= changed)
            continue;
        const int old = previous.isValid() ? fieldOf(previous, lower) : 0;
        m_arr[lower] = columnList(lower);
        const QStringList &list = m_arr[lower];
        const qsizetype found = isAmPmHour(lower) ? rowOfValue(lower, old) : list.indexOf(numberText(lower, old));
        if (found >= 0) {
            m_index[lower] = static_cast<int>(found);
        } else {
            // The old value fell out of the list: go to the end it fell past.
            const bool pastFirst = !list.isEmpty() && old >= list.first().toInt();
            m_index[lower] = pastFirst ? static_cast<int>(list.size()) - 1 : 0;
            m_isAdjustSelectRow = true;
        }
        rebuilt.append(lower);
    }
    return rebuilt;
}

void ZIQBRDatePickerModel::scrollToSelectDate(const QDateTime &date)
{
    if (!date.isValid())
        return;
    for (Field field : std::as_const(m_columns))
        m_index[field] = rowOfValue(field, fieldOf(date, field));
}

bool ZIQBRDatePickerModel::isNonSelectable(const QDateTime &date) const
{
    return date.isValid()
        && std::any_of(m_nonSelectableDates.begin(), m_nonSelectableDates.end(),
            [&](const QDateTime &d) { return br_compareDate(date, d, m_dateFormatter) == 0; });
}

void ZIQBRDatePickerModel::restoreSelection(const QDateTime &date, const QString &value)
{
    m_selectDate = date;
    m_selectValue = value;
    buildColumns();
}

void ZIQBRDatePickerModel::setSelectionFromEditor(const QDateTime &date)
{
    // A count-down is a duration, not a date: the range does not hold it back.
    if (m_pickerMode == Mode::CountDownTimer)
        m_selectDate = date;
    else if (br_compareDate(date, m_minDate, m_dateFormatter) < 0)
        m_selectDate = m_minDate;
    else if (br_compareDate(date, m_maxDate, m_dateFormatter) > 0)
        m_selectDate = m_maxDate;
    else
        m_selectDate = date;
    m_selectValue = ZIQ_br_stringFromDate(m_selectDate, m_dateFormatter, m_timeZone.get(), m_language);
}
