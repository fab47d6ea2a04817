// ZIQBRDatePickerModel: the value lists of the columns, their bounds, and the texts of their rows.
#include "plugin/picker/ZIQBRDatePickerModel.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"
#include "plugin/picker/ZIQBRDateHelpers.h"
#include "plugin/picker/ZIQBRIcu.h"

#include <algorithm>

#include <unicode/dtfmtsym.h>

using Mode = ZIQBRDatePickerMode;

namespace {

QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

QDateTime now()
{
    return QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC);
}

} // namespace

bool ZIQBRDatePickerModel::isAmPmHour(Field field) const
{
    return field == Hour && m_pickerMode == Mode::YMDH && m_isShowAMAndPM;
}

QStringList ZIQBRDatePickerModel::rowTexts(Field field) const
{
    QStringList rows;
    for (int row = 0; row < m_arr[field].size(); ++row)
        rows.append(rowText(field, row));
    return rows;
}

QString ZIQBRDatePickerModel::effectiveLastRowContent() const
{
    return m_addToNow ? localized("ZIQGroupNoteNotDatePickerNow") : m_lastRowContent;
}

int ZIQBRDatePickerModel::minuteInterval() const
{
    return m_minuteInterval <= 0 || m_minuteInterval > 30 ? 1 : m_minuteInterval;
}

int ZIQBRDatePickerModel::secondInterval() const
{
    return m_secondInterval <= 0 || m_secondInterval > 30 ? 1 : m_secondInterval;
}

bool ZIQBRDatePickerModel::isChinese() const
{
    return m_language.startsWith(QLatin1String("zh"));
}

int ZIQBRDatePickerModel::fieldOf(const QDateTime &date, Field field) const
{
    switch (field) {
    case Year:
        return ZIQ_br_year(date);
    case Month:
        return ZIQ_br_month(date);
    case Day:
        return ZIQ_br_day(date);
    case Hour:
        return ZIQ_br_hour(date);
    case Minute:
        return ZIQ_br_minute(date);
    case Second:
        return ZIQ_br_second(date);
    }
    return 0;
}

int ZIQBRDatePickerModel::selectedValue(Field field) const
{
    const QStringList &list = m_arr[field];
    if (fieldsInMode().contains(field) && !list.isEmpty()) {
        const int row = std::clamp(m_index[field], 0, static_cast<int>(list.size()) - 1);
        if (isAmPmHour(field))
            return row == 0 ? 0 : 12;
        bool isNumber = false;
        const int value = list.at(row).toInt(&isNumber);
        if (isNumber)
            return value;
    }
    // A field the mode does not show (the year of a month-and-day picker) comes from the selection.
    return fieldOf(m_selectDate.isValid() ? m_selectDate : now(), field);
}

QString ZIQBRDatePickerModel::numberText(Field field, int value) const
{
    if (!m_isNumberFullName)
        return QString::number(value);
    return QString::asprintf(field == Year ? "%04d" : "%02d", value);
}

int ZIQBRDatePickerModel::rowOfValue(Field field, int value) const
{
    if (isAmPmHour(field))
        return value < 12 ? 0 : 1;
    return std::max(0, static_cast<int>(m_arr[field].indexOf(numberText(field, value))));
}

QStringList ZIQBRDatePickerModel::columnList(Field field) const
{
    if (isAmPmHour(field))
        return { amPmText(0), amPmText(12) };
    const QList<Field> fields = fieldsInMode();
    int lower = field == Year ? ZIQ_br_year(m_minDate) : (field == Month || field == Day ? 1 : 0);
    int upper = 59;
    if (field == Year)
        upper = ZIQ_br_year(m_maxDate);
    else if (field == Month)
        upper = 12;
    else if (field == Day)
        upper = ZIQ_br_getDaysInYear(selectedValue(Year), selectedValue(Month));
    else if (field == Hour)
        upper = 23;
    // The range's ends bound a column only while every column above it stands on that end.
    bool atMin = true;
    bool atMax = true;
    for (Field higher : fields) {
        if (higher >= field)
            break;
        atMin = atMin && selectedValue(higher) == fieldOf(m_minDate, higher);
        atMax = atMax && selectedValue(higher) == fieldOf(m_maxDate, higher);
    }
    if (atMin)
        lower = fieldOf(m_minDate, field);
    if (atMax)
        upper = fieldOf(m_maxDate, field);
    const int step = field == Minute ? minuteInterval() : (field == Second ? secondInterval() : 1);

    QStringList list;
    for (int value = lower; value <= upper; value += step)
        list.append(numberText(field, value));
    if (m_isDescending)
        std::reverse(list.begin(), list.end());
    if (!fields.isEmpty() && field == fields.first()) {
        if (!m_firstRowContent.isEmpty())
            list.prepend(m_firstRowContent);
        if (const QString last = effectiveLastRowContent(); !last.isEmpty())
            list.append(last);
    }
    return list;
}

void ZIQBRDatePickerModel::buildColumns()
{
    const QList<Field> fields = fieldsInMode();
    for (int i = 0; i < fields.size(); ++i) {
        const Field field = fields.at(i);
        m_arr[field] = columnList(field);
        if (m_selectDate.isValid())
            m_index[field] = rowOfValue(field, fieldOf(m_selectDate, field));
        else if (i == 0 && m_configuredSelectValue == effectiveLastRowContent())
            m_index[field] = static_cast<int>(m_arr[field].size()) - 1;
        // Under a first or last row of their own the lower columns stay empty.
        if (i == 0 && isCustomRowSelected())
            break;
    }
}

bool ZIQBRDatePickerModel::isCustomRowSelected() const
{
    const QList<Field> fields = fieldsInMode();
    if (fields.isEmpty())
        return false;
    const QStringList &list = m_arr[fields.first()];
    const int row = m_index[fields.first()];
    if (row < 0 || row >= list.size())
        return false;
    const QString last = effectiveLastRowContent();
    return (row == 0 && !m_firstRowContent.isEmpty() && list.at(row) == m_firstRowContent)
        || (row == list.size() - 1 && !last.isEmpty() && list.at(row) == last);
}

QString ZIQBRDatePickerModel::unit(Field field) const
{
    static const char *const names[] = { "year", "month", "day", "hour", "minute", "second" };
    static const char *const keys[] = {
        "ZIQGroupNoteNotDatePickerYear",
        "ZIQGroupNoteNotDatePickerMonth",
        "ZIQGroupNoteNotDatePickerDay",
        "ZIQGroupNoteNotDatePickerHour",
        "ZIQGroupNoteNotDatePickerMinute",
        "ZIQGroupNoteNotDatePickerSecond",
    };
    if (m_customUnit)
        return m_customUnit->value(QString::fromLatin1(names[field]));
    return isChinese() ? localized(keys[field]) : QString();
}

QStringList ZIQBRDatePickerModel::unitArr() const
{
    QStringList units;
    for (Field field : m_columns)
        units.append(unit(field));
    return units;
}

QString ZIQBRDatePickerModel::amPmText(int hour) const
{
    return localized(hour < 12 ? "ZIQGroupNoteNotDatePickerAM" : "ZIQGroupNoteNotDatePickerPM");
}

QString ZIQBRDatePickerModel::monthRowText(int month) const
{
    if (m_pickerMode != Mode::YMD && m_pickerMode != Mode::YM)
        return QString();
    if (!m_monthNames.isEmpty())
        return m_monthNames.value(month - 1);
    if (isChinese())
        return QString();
    UErrorCode status = U_ZERO_ERROR;
    icu::DateFormatSymbols symbols(ZIQBRIcu::localeForLanguage(m_language), status);
    int32_t count = 0;
    const icu::UnicodeString *names = symbols.getMonths(count, icu::DateFormatSymbols::FORMAT,
        m_isShortMonthName ? icu::DateFormatSymbols::ABBREVIATED : icu::DateFormatSymbols::WIDE);
    if (U_FAILURE(status) || month < 1 || month > count)
        return QString();
    return ZIQBRIcu::fromUnicode(names[month - 1]);
}

QString ZIQBRDatePickerModel::dayRowText(int day) const
{
    const int year = selectedValue(Year);
    const int month = selectedValue(Month);
    const QDateTime today = now();
    const bool isToday
        = m_isShowToday && year == ZIQ_br_year(today) && month == ZIQ_br_month(today) && day == ZIQ_br_day(today);
    QString text = isToday ? localized("ZIQGroupNoteNotDatePickerToday")
                           : numberText(Day, day) + (m_showUnitType == 0 ? unit(Day) : QString());
    if (m_isShowWeek)
        text += QLatin1Char(' ') + ZIQ_br_weekdayString(ZIQ_br_setYear(year, month, day));
    return text;
}

QString ZIQBRDatePickerModel::rowText(Field field, int row) const
{
    const QStringList &list = m_arr[field];
    if (list.isEmpty())
        return QString();
    row = std::clamp(row, 0, static_cast<int>(list.size()) - 1);
    const QString &text = list.at(row);
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    // First and last rows of their own, and AM/PM, read as they are.
    if (!isNumber)
        return text;
    if (field == Day)
        return dayRowText(value);
    if (field == Month) {
        if (const QString name = monthRowText(value); !name.isEmpty())
            return name;
    }
    return m_showUnitType == 0 ? text + unit(field) : text;
}

QString ZIQBRDatePickerModel::valueText() const
{
    const QList<Field> fields = fieldsInMode();
    QStringList datePart;
    QStringList timePart;
    for (Field field : fields) {
        const int value = selectedValue(field);
        if (isAmPmHour(field))
            timePart.append(amPmText(value));
        else if (field <= Day)
            datePart.append(QString::asprintf(field == Year ? "%04d" : "%02d", value));
        else
            timePart.append(QString::asprintf("%02d", value));
    }
    const QString date = datePart.join(QLatin1Char('-'));
    const QString time = timePart.join(QLatin1Char(':'));
    return date.isEmpty() || time.isEmpty() ? date + time : date + QLatin1Char(' ') + time;
}

QDateTime ZIQBRDatePickerModel::dateFromSelection() const
{
    const auto v = [this](Field field) { return selectedValue(field); };
    switch (m_pickerMode) {
    case Mode::YMDHMS:
        return ZIQ_br_setYear(v(Year), v(Month), v(Day), v(Hour), v(Minute), v(Second));
    case Mode::YMDHM:
    case Mode::DateAndTime:
        return ZIQ_br_setYear(v(Year), v(Month), v(Day), v(Hour), v(Minute));
    case Mode::YMDH:
        return ZIQ_br_setYear(v(Year), v(Month), v(Day), v(Hour));
    case Mode::MDHM:
        return ZIQ_br_setMonth(v(Month), v(Day), v(Hour), v(Minute));
    case Mode::YMD:
    case Mode::Date:
        return ZIQ_br_setYear(v(Year), v(Month), v(Day));
    case Mode::YM:
        return ZIQ_br_setYear(v(Year), v(Month));
    case Mode::Y:
        return ZIQ_br_setYear(v(Year));
    case Mode::MD:
        return ZIQ_br_setMonth(v(Month), v(Day));
    case Mode::HMS:
        return ZIQ_br_setHour(v(Hour), v(Minute), v(Second));
    case Mode::HM:
    case Mode::Time:
    case Mode::CountDownTimer:
        return ZIQ_br_setHour(v(Hour), v(Minute));
    case Mode::MS:
        return ZIQ_br_setMinute(v(Minute), v(Second));
    }
    return QDateTime();
}
