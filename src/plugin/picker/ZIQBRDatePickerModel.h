// The date picker without its widgets: for each column of a mode (year, month, day, hour, minute,
// second) the values selectable between a minimum and a maximum date for the current selection,
// the rebuilding of the lower columns when a higher one turns, the selection as a date and as a
// text, and the texts the rows show. The view turns its wheels from this state; the editor and
// tests can use it on its own.
#pragma once

#include "plugin/picker/ZIQBRDatePickerMode.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>

#include <array>
#include <memory>
#include <optional>

#include <unicode/timezone.h>

class ZIQBRDatePickerModel
{
    Q_GADGET

public:
    /// The fields a column can show, from the largest to the smallest.
    enum Field { Year, Month, Day, Hour, Minute, Second };
    Q_ENUM(Field)

    /// What turning one column to a row led to.
    struct Change
    {
        /// Lower columns whose rows were rebuilt (or emptied under a first or last row of their own).
        QList<Field> rebuilt;
        /// Every column must be turned to the selection: a column could not keep its value, or a
        /// first or last row of their own was left.
        bool scrollAll = false;
        /// Every column has rows, so the selection is worth reporting.
        bool complete = false;
    };

    explicit ZIQBRDatePickerModel(ZIQBRDatePickerMode pickerMode = ZIQBRDatePickerMode::Date);

    // Configuration
    ZIQBRDatePickerMode pickerMode() const { return m_pickerMode; }
    /// A value outside the table of modes reads as the default date mode.
    void setPickerMode(ZIQBRDatePickerMode mode);
    QDateTime selectDate() const { return m_configuredSelectDate; }
    void setSelectDate(const QDateTime &date) { m_configuredSelectDate = date; }
    QString selectValue() const { return m_configuredSelectValue; }
    void setSelectValue(const QString &value) { m_configuredSelectValue = value; }
    QDateTime minDate() const { return m_configuredMinDate; }
    void setMinDate(const QDateTime &date) { m_configuredMinDate = date; }
    QDateTime maxDate() const { return m_configuredMaxDate; }
    void setMaxDate(const QDateTime &date) { m_configuredMaxDate = date; }
    int showUnitType() const { return m_showUnitType; }
    void setShowUnitType(int type) { m_showUnitType = type; }
    bool isShowWeek() const { return m_isShowWeek; }
    void setIsShowWeek(bool show) { m_isShowWeek = show; }
    bool isShowToday() const { return m_isShowToday; }
    void setIsShowToday(bool show) { m_isShowToday = show; }
    bool addToNow() const { return m_addToNow; }
    void setAddToNow(bool addToNow) { m_addToNow = addToNow; }
    QString firstRowContent() const { return m_firstRowContent; }
    void setFirstRowContent(const QString &content) { m_firstRowContent = content; }
    QString lastRowContent() const { return m_lastRowContent; }
    void setLastRowContent(const QString &content) { m_lastRowContent = content; }
    bool isDescending() const { return m_isDescending; }
    void setIsDescending(bool descending) { m_isDescending = descending; }
    bool isNumberFullName() const { return m_isNumberFullName; }
    void setIsNumberFullName(bool fullName) { m_isNumberFullName = fullName; }
    /// Steps of the minute and second columns; 0 or above 30 reads as 1.
    int minuteInterval() const;
    void setMinuteInterval(int interval) { m_minuteInterval = interval; }
    int secondInterval() const;
    void setSecondInterval(int interval) { m_secondInterval = interval; }
    QStringList monthNames() const { return m_monthNames; }
    void setMonthNames(const QStringList &names) { m_monthNames = names; }
    bool isShortMonthName() const { return m_isShortMonthName; }
    void setIsShortMonthName(bool shortName) { m_isShortMonthName = shortName; }
    std::optional<QMap<QString, QString>> customUnit() const { return m_customUnit; }
    void setCustomUnit(const QMap<QString, QString> &units) { m_customUnit = units; }
    bool isShowAMAndPM() const { return m_isShowAMAndPM; }
    void setIsShowAMAndPM(bool show) { m_isShowAMAndPM = show; }
    std::shared_ptr<const icu::TimeZone> timeZone() const { return m_timeZone; }
    void setTimeZone(std::shared_ptr<const icu::TimeZone> zone) { m_timeZone = std::move(zone); }
    QList<QDateTime> nonSelectableDates() const { return m_nonSelectableDates; }
    void setNonSelectableDates(const QList<QDateTime> &dates) { m_nonSelectableDates = dates; }
    /// A BCP 47 tag; Chinese ("zh…") puts units after the numbers and keeps years first.
    QString language() const { return m_language; }
    void setLanguage(const QString &language);

    /// Re-derives the range, the selection and the column lists from the configuration.
    void reload();
    /// Turns `field`'s column to `row` and brings the lower columns and the selection along.
    Change selectRow(Field field, int row);
    /// Turns each column to the field of `date` (row 0 where the field is not listed).
    void scrollToSelectDate(const QDateTime &date);
    /// Whether `date` is one of the non-selectable dates at the mode's precision.
    bool isNonSelectable(const QDateTime &date) const;
    /// Puts back an earlier selection and the columns that go with it.
    void restoreSelection(const QDateTime &date, const QString &value);
    /// Takes a date chosen elsewhere (Qt's own editor): clamped to the range (a count-down is not),
    /// it becomes the selection.
    void setSelectionFromEditor(const QDateTime &date);

    // Working state
    QStringList arr(Field field) const { return m_arr[field]; }
    int index(Field field) const { return m_index[field]; }
    QDateTime mSelectDate() const { return m_selectDate; }
    QString mSelectValue() const { return m_selectValue; }
    /// The range in force: the configured one, or the mode's default where none was given.
    QDateTime rangeMinDate() const { return m_minDate; }
    QDateTime rangeMaxDate() const { return m_maxDate; }
    /// The mode's date pattern.
    QString dateFormatter() const { return m_dateFormatter; }
    /// 0: Qt's date editor; 1: wheels.
    int style() const { return m_style; }
    /// The columns in the order they are shown.
    QList<Field> columns() const { return m_columns; }
    QStringList unitArr() const;
    QString unit(Field field) const;
    bool isAdjustSelectRow() const { return m_isAdjustSelectRow; }
    /// The text a column shows in `row` (clamped to the list).
    QString rowText(Field field, int row) const;
    /// Every row text of a column.
    QStringList rowTexts(Field field) const;

    /// `date` against `targetDate` at the precision of `dateFormat`: 1 later, -1 earlier, 0 equal.
    int br_compareDate(const QDateTime &date, const QDateTime &targetDate, const QString &dateFormat) const;

private:
    // Modes, range and initial selection (ZIQBRDatePickerModel.cpp)
    void setupDateFormatter(ZIQBRDatePickerMode mode);
    bool isPlatformMode() const;
    void handlerPickerData();
    QDateTime handlerMinDate(const QDateTime &minDate) const;
    QDateTime handlerMaxDate(const QDateTime &maxDate) const;
    QDateTime handlerSelectDate(const QDateTime &selectDate, const QString &dateFormat) const;
    QDateTime dateFromSelectValue(const QString &dateFormat) const;
    QList<Field> rebuildLowerColumns(Field changed, const QDateTime &previous);
    // Column lists and row texts (ZIQBRDatePickerModel_Columns.cpp)
    QStringList columnList(Field field) const;
    void buildColumns();
    int selectedValue(Field field) const;
    int fieldOf(const QDateTime &date, Field field) const;
    int rowOfValue(Field field, int value) const;
    QString numberText(Field field, int value) const;
    QString dayRowText(int day) const;
    QString monthRowText(int month) const;
    QString amPmText(int hour) const;
    bool isAmPmHour(Field field) const;
    bool isCustomRowSelected() const;
    QString effectiveLastRowContent() const;
    bool isChinese() const;
    QList<Field> fieldsInMode() const;
    QString valueText() const;
    QDateTime dateFromSelection() const;

    ZIQBRDatePickerMode m_pickerMode = ZIQBRDatePickerMode::Date;
    QDateTime m_configuredSelectDate;
    QString m_configuredSelectValue;
    QDateTime m_configuredMinDate;
    QDateTime m_configuredMaxDate;
    int m_showUnitType = 0;
    bool m_isShowWeek = false;
    bool m_isShowToday = false;
    bool m_addToNow = false;
    QString m_firstRowContent;
    QString m_lastRowContent;
    bool m_isDescending = false;
    bool m_isNumberFullName = false;
    int m_minuteInterval = 1;
    int m_secondInterval = 1;
    QStringList m_monthNames;
    bool m_isShortMonthName = false;
    std::optional<QMap<QString, QString>> m_customUnit;
    bool m_isShowAMAndPM = false;
    std::shared_ptr<const icu::TimeZone> m_timeZone;
    QList<QDateTime> m_nonSelectableDates;
    QString m_language;

    std::array<QStringList, 6> m_arr;
    std::array<int, 6> m_index = {};
    QDateTime m_minDate;
    QDateTime m_maxDate;
    QDateTime m_selectDate;
    QString m_selectValue;
    QString m_dateFormatter;
    int m_style = 0;
    QList<Field> m_columns;
    bool m_isAdjustSelectRow = false;
};
