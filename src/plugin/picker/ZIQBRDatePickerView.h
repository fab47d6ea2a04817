// A modal wheel picker for a date and/or a time, shown in the bottom sheet of ZIQBRBaseView. For
// each visible column it keeps the selectable values between a minimum and a maximum date, keeps
// the lower columns consistent when a higher one changes, and reports the chosen date and its
// text. Modes 0 … 3 show Qt's own date and time editor instead of wheels.
#pragma once

#include "plugin/picker/ZIQBRBaseView.h"
#include "plugin/picker/ZIQBRDatePickerMode.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <optional>

#include <unicode/calendar.h>
#include <unicode/timezone.h>

class QDateTimeEdit;
class QLabel;
namespace platform {
class WheelColumn;
}

/// Receives the selected date (null for none) and its text.
using ZIQBRDateResultBlock = std::function<void(const QDateTime &selectDate, const QString &selectValue)>;

class ZIQBRDatePickerView : public ZIQBRBaseView
{
    Q_OBJECT

public:
    /// The fields a wheel column can show, from the largest to the smallest.
    enum Field { Year, Month, Day, Hour, Minute, Second };
    Q_ENUM(Field)

    explicit ZIQBRDatePickerView(QWidget *parent = nullptr);
    explicit ZIQBRDatePickerView(ZIQBRDatePickerMode pickerMode, QWidget *parent = nullptr);
    ~ZIQBRDatePickerView() override;

    /// Build, configure and show a picker over the active window; it deletes itself when dismissed.
    static ZIQBRDatePickerView *ZIQ_showDatePickerWithMode(
        ZIQBRDatePickerMode mode, const QString &title, const QString &selectValue, ZIQBRDateResultBlock resultBlock);
    static ZIQBRDatePickerView *ZIQ_showDatePickerWithMode(ZIQBRDatePickerMode mode, const QString &title,
        const QString &selectValue, bool isAutoSelect, ZIQBRDateResultBlock resultBlock);
    static ZIQBRDatePickerView *ZIQ_showDatePickerWithMode(ZIQBRDatePickerMode mode, const QString &title,
        const QString &selectValue, const QDateTime &minDate, const QDateTime &maxDate, bool isAutoSelect,
        ZIQBRDateResultBlock resultBlock);

    ZIQBRDatePickerMode pickerMode() const { return m_pickerMode; }
    void setPickerMode(ZIQBRDatePickerMode mode);
    QDateTime selectDate() const { return m_configuredSelectDate; }
    void setSelectDate(const QDateTime &date) { m_configuredSelectDate = date; }
    QString selectValue() const { return m_configuredSelectValue; }
    void setSelectValue(const QString &value) { m_configuredSelectValue = value; }
    QDateTime minDate() const { return m_configuredMinDate; }
    void setMinDate(const QDateTime &date) { m_configuredMinDate = date; }
    QDateTime maxDate() const { return m_configuredMaxDate; }
    void setMaxDate(const QDateTime &date) { m_configuredMaxDate = date; }
    ZIQBRDateResultBlock resultBlock() const { return m_resultBlock; }
    void setResultBlock(ZIQBRDateResultBlock block) { m_resultBlock = std::move(block); }
    ZIQBRDateResultBlock changeBlock() const { return m_changeBlock; }
    void setChangeBlock(ZIQBRDateResultBlock block) { m_changeBlock = std::move(block); }
    /// 0: the unit follows each row's text; 1: one unit label per column; other values: no unit.
    int showUnitType() const { return m_showUnitType; }
    void setShowUnitType(int type) { m_showUnitType = type; }
    bool isShowWeek() const { return m_isShowWeek; }
    void setIsShowWeek(bool show) { m_isShowWeek = show; }
    bool isShowToday() const { return m_isShowToday; }
    void setIsShowToday(bool show) { m_isShowToday = show; }
    /// The range ends now, and the first column's last row reads "now".
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
    int minuteInterval() const;
    void setMinuteInterval(int interval) { m_minuteInterval = interval; }
    int secondInterval() const;
    void setSecondInterval(int interval) { m_secondInterval = interval; }
    QStringList monthNames() const { return m_monthNames; }
    void setMonthNames(const QStringList &names) { m_monthNames = names; }
    bool isShortMonthName() const { return m_isShortMonthName; }
    void setIsShortMonthName(bool shortName) { m_isShortMonthName = shortName; }
    /// Unit texts by "year", "month", "day", "hour", "minute" and "second".
    std::optional<QMap<QString, QString>> customUnit() const { return m_customUnit; }
    void setCustomUnit(const QMap<QString, QString> &units) { m_customUnit = units; }
    bool isShowAMAndPM() const { return m_isShowAMAndPM; }
    void setIsShowAMAndPM(bool show) { m_isShowAMAndPM = show; }
    std::shared_ptr<const icu::TimeZone> timeZone() const { return m_timeZone; }
    void setTimeZone(std::shared_ptr<const icu::TimeZone> zone) { m_timeZone = std::move(zone); }
    QList<QDateTime> nonSelectableDates() const { return m_nonSelectableDates; }
    void setNonSelectableDates(const QList<QDateTime> &dates) { m_nonSelectableDates = dates; }
    ZIQBRDateResultBlock nonSelectableBlock() const { return m_nonSelectableBlock; }
    void setNonSelectableBlock(ZIQBRDateResultBlock block) { m_nonSelectableBlock = std::move(block); }
    /// Seconds; count-down mode only.
    double countDownDuration() const { return m_countDownDuration; }
    void setCountDownDuration(double seconds) { m_countDownDuration = seconds; }
    /// Qt's editors only (modes 0 … 3).
    std::shared_ptr<const icu::Calendar> calendar() const { return m_calendar; }
    void setCalendar(std::shared_ptr<const icu::Calendar> calendar) { m_calendar = std::move(calendar); }

    /// Re-derives the range, the selection and the columns from the configuration and reloads the wheels.
    void reloadData();

    // Working state
    QStringList yearArr() const { return m_arr[Year]; }
    QStringList monthArr() const { return m_arr[Month]; }
    QStringList dayArr() const { return m_arr[Day]; }
    QStringList hourArr() const { return m_arr[Hour]; }
    QStringList minuteArr() const { return m_arr[Minute]; }
    QStringList secondArr() const { return m_arr[Second]; }
    int yearIndex() const { return m_index[Year]; }
    int monthIndex() const { return m_index[Month]; }
    int dayIndex() const { return m_index[Day]; }
    int hourIndex() const { return m_index[Hour]; }
    int minuteIndex() const { return m_index[Minute]; }
    int secondIndex() const { return m_index[Second]; }
    QDateTime mSelectDate() const { return m_selectDate; }
    QString mSelectValue() const { return m_selectValue; }
    /// The mode's date pattern.
    QString dateFormatter() const { return m_dateFormatter; }
    /// 0: Qt's date editor; 1: wheels.
    int style() const { return m_style; }
    /// The columns in the order they are shown.
    QList<Field> columns() const { return m_columns; }
    QStringList unitArr() const;
    QList<QLabel *> unitLabelArr() const { return m_unitLabelArr; }
    bool isAdjustSelectRow() const { return m_isAdjustSelectRow; }
    /// The text a column's wheel shows in `row` (clamped to the list).
    QString rowText(Field field, int row) const;

    /// Turns each column to the field of `date` (row 0 where the field is not listed).
    void scrollToSelectDate(const QDateTime &date, bool animated);

protected:
    QWidget *pickerContentView() override;
    void reloadPicker() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Modes, range and initial selection (ZIQBRDatePickerView_BR.cpp)
    void setupDateFormatter(ZIQBRDatePickerMode mode);
    void handlerPickerData();
    QDateTime handlerMinDate(const QDateTime &minDate) const;
    QDateTime handlerMaxDate(const QDateTime &maxDate) const;
    QDateTime handlerSelectDate(const QDateTime &selectDate, const QString &dateFormat) const;
    QDateTime dateFromSelectValue(const QString &dateFormat) const;
    int br_compareDate(const QDateTime &date, const QDateTime &targetDate, const QString &dateFormat) const;
    // Column lists and row texts (ZIQBRDatePickerView_Columns.cpp)
    QStringList columnList(Field field) const;
    void buildColumns();
    int selectedValue(Field field) const;
    int fieldOf(const QDateTime &date, Field field) const;
    int rowOfValue(Field field, int value) const;
    QString numberText(Field field, int value) const;
    QString unit(Field field) const;
    QString dayRowText(int day) const;
    QString monthRowText(int month) const;
    QString amPmText(int hour) const;
    bool isCustomRowSelected() const;
    QString effectiveLastRowContent() const;
    bool isChinese() const;
    QList<Field> fieldsInMode() const;
    QString valueText() const;
    QDateTime dateFromSelection() const;
    // Views and selection changes (ZIQBRDatePickerView.cpp)
    bool isPlatformMode() const;
    void reloadViews();
    void reloadWheel(Field field, bool animated = false);
    void syncWheels();
    void layoutUnitLabels();
    void pickerViewDidSelectRow(int row, int component);
    void rebuildLowerColumns(Field changed, const QDateTime &previous);
    void report();
    bool rollBackIfNotSelectable(const QDateTime &previousDate, const QString &previousValue);
    // Qt's own editors (ZIQBRDatePickerView_Platform.cpp)
    void reloadPlatformPicker();
    void onPlatformDateChanged(const QDateTime &local);

    ZIQBRDatePickerMode m_pickerMode = ZIQBRDatePickerMode::Date;
    QDateTime m_configuredSelectDate;
    QString m_configuredSelectValue;
    QDateTime m_configuredMinDate;
    QDateTime m_configuredMaxDate;
    ZIQBRDateResultBlock m_resultBlock;
    ZIQBRDateResultBlock m_changeBlock;
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
    ZIQBRDateResultBlock m_nonSelectableBlock;
    double m_countDownDuration = 0;
    std::shared_ptr<const icu::Calendar> m_calendar;

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

    QWidget *m_content = nullptr;
    QList<platform::WheelColumn *> m_wheels;
    QList<QLabel *> m_unitLabelArr;
    QDateTimeEdit *m_platformPicker = nullptr;
};
