// A modal wheel picker for a date and/or a time, shown in the bottom sheet of ZIQBRBaseView. Its
// columns, their ranges and the selection live in a ZIQBRDatePickerModel; the view shows them on
// wheels, turns the model when the user turns a wheel, and reports the chosen date and its text
// through callbacks and signals. Modes 0 … 3 show Qt's own date and time editor instead of wheels.
#pragma once

#include "plugin/picker/ZIQBRBaseView.h"
#include "plugin/picker/ZIQBRDatePickerMode.h"
#include "plugin/picker/ZIQBRDatePickerModel.h"

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QStringList>

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
    using Field = ZIQBRDatePickerModel::Field;
    using enum ZIQBRDatePickerModel::Field;

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

    ZIQBRDatePickerMode pickerMode() const { return m_model.pickerMode(); }
    void setPickerMode(ZIQBRDatePickerMode mode);
    QDateTime selectDate() const { return m_model.selectDate(); }
    void setSelectDate(const QDateTime &date) { m_model.setSelectDate(date); }
    QString selectValue() const { return m_model.selectValue(); }
    void setSelectValue(const QString &value) { m_model.setSelectValue(value); }
    QDateTime minDate() const { return m_model.minDate(); }
    void setMinDate(const QDateTime &date) { m_model.setMinDate(date); }
    QDateTime maxDate() const { return m_model.maxDate(); }
    void setMaxDate(const QDateTime &date) { m_model.setMaxDate(date); }
    ZIQBRDateResultBlock resultBlock() const { return m_resultBlock; }
    void setResultBlock(ZIQBRDateResultBlock block) { m_resultBlock = std::move(block); }
    ZIQBRDateResultBlock changeBlock() const { return m_changeBlock; }
    void setChangeBlock(ZIQBRDateResultBlock block) { m_changeBlock = std::move(block); }
    /// 0: the unit follows each row's text; 1: one unit label per column; other values: no unit.
    int showUnitType() const { return m_model.showUnitType(); }
    void setShowUnitType(int type) { m_model.setShowUnitType(type); }
    bool isShowWeek() const { return m_model.isShowWeek(); }
    void setIsShowWeek(bool show) { m_model.setIsShowWeek(show); }
    bool isShowToday() const { return m_model.isShowToday(); }
    void setIsShowToday(bool show) { m_model.setIsShowToday(show); }
    /// The range ends now, and the first column's last row reads "now".
    bool addToNow() const { return m_model.addToNow(); }
    void setAddToNow(bool addToNow) { m_model.setAddToNow(addToNow); }
    QString firstRowContent() const { return m_model.firstRowContent(); }
    void setFirstRowContent(const QString &content) { m_model.setFirstRowContent(content); }
    QString lastRowContent() const { return m_model.lastRowContent(); }
    void setLastRowContent(const QString &content) { m_model.setLastRowContent(content); }
    bool isDescending() const { return m_model.isDescending(); }
    void setIsDescending(bool descending) { m_model.setIsDescending(descending); }
    bool isNumberFullName() const { return m_model.isNumberFullName(); }
    void setIsNumberFullName(bool fullName) { m_model.setIsNumberFullName(fullName); }
    int minuteInterval() const { return m_model.minuteInterval(); }
    void setMinuteInterval(int interval) { m_model.setMinuteInterval(interval); }
    int secondInterval() const { return m_model.secondInterval(); }
    void setSecondInterval(int interval) { m_model.setSecondInterval(interval); }
    QStringList monthNames() const { return m_model.monthNames(); }
    void setMonthNames(const QStringList &names) { m_model.setMonthNames(names); }
    bool isShortMonthName() const { return m_model.isShortMonthName(); }
    void setIsShortMonthName(bool shortName) { m_model.setIsShortMonthName(shortName); }
    /// Unit texts by "year", "month", "day", "hour", "minute" and "second".
    std::optional<QMap<QString, QString>> customUnit() const { return m_model.customUnit(); }
    void setCustomUnit(const QMap<QString, QString> &units) { m_model.setCustomUnit(units); }
    bool isShowAMAndPM() const { return m_model.isShowAMAndPM(); }
    void setIsShowAMAndPM(bool show) { m_model.setIsShowAMAndPM(show); }
    std::shared_ptr<const icu::TimeZone> timeZone() const { return m_model.timeZone(); }
    void setTimeZone(std::shared_ptr<const icu::TimeZone> zone) { m_model.setTimeZone(std::move(zone)); }
    QList<QDateTime> nonSelectableDates() const { return m_model.nonSelectableDates(); }
    void setNonSelectableDates(const QList<QDateTime> &dates) { m_model.setNonSelectableDates(dates); }
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

    /// The columns, ranges and selection behind the wheels.
    const ZIQBRDatePickerModel &model() const { return m_model; }

    // Working state
    QStringList yearArr() const { return m_model.arr(Year); }
    QStringList monthArr() const { return m_model.arr(Month); }
    QStringList dayArr() const { return m_model.arr(Day); }
    QStringList hourArr() const { return m_model.arr(Hour); }
    QStringList minuteArr() const { return m_model.arr(Minute); }
    QStringList secondArr() const { return m_model.arr(Second); }
    int yearIndex() const { return m_model.index(Year); }
    int monthIndex() const { return m_model.index(Month); }
    int dayIndex() const { return m_model.index(Day); }
    int hourIndex() const { return m_model.index(Hour); }
    int minuteIndex() const { return m_model.index(Minute); }
    int secondIndex() const { return m_model.index(Second); }
    QDateTime mSelectDate() const { return m_model.mSelectDate(); }
    QString mSelectValue() const { return m_model.mSelectValue(); }
    /// The mode's date pattern.
    QString dateFormatter() const { return m_model.dateFormatter(); }
    /// 0: Qt's date editor; 1: wheels.
    int style() const { return m_model.style(); }
    /// The columns in the order they are shown.
    QList<Field> columns() const { return m_model.columns(); }
    QStringList unitArr() const { return m_model.unitArr(); }
    QList<QLabel *> unitLabelArr() const { return m_unitLabelArr; }
    bool isAdjustSelectRow() const { return m_model.isAdjustSelectRow(); }
    /// The text a column's wheel shows in `row` (clamped to the list).
    QString rowText(Field field, int row) const { return m_model.rowText(field, row); }

    /// Turns each column to the field of `date` (row 0 where the field is not listed).
    void scrollToSelectDate(const QDateTime &date, bool animated);

Q_SIGNALS:
    /// The selection changed (every change, beside changeBlock).
    void dateChanged(const QDateTime &selectDate, const QString &selectValue);
    /// The result: on Confirm, and on every change with auto-select (beside resultBlock).
    void dateSelected(const QDateTime &selectDate, const QString &selectValue);

protected:
    QWidget *pickerContentView() override;
    void reloadPicker() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Views and selection changes (ZIQBRDatePickerView.cpp)
    void syncLanguage();
    void reloadViews();
    platform::WheelColumn *makeWheel(int component);
    void reloadWheel(Field field, bool animated = false);
    void syncWheels(bool animated);
    void layoutUnitLabels();
    void pickerViewDidSelectRow(int row, int component);
    void report();
    void reportResult();
    bool rollBackIfNotSelectable(const QDateTime &previousDate, const QString &previousValue);
    // Qt's own editors (ZIQBRDatePickerView_Platform.cpp)
    void reloadPlatformPicker();
    void onPlatformDateChanged(const QDateTime &local);

    ZIQBRDatePickerModel m_model;
    ZIQBRDateResultBlock m_resultBlock;
    ZIQBRDateResultBlock m_changeBlock;
    ZIQBRDateResultBlock m_nonSelectableBlock;
    double m_countDownDuration = 0;
    std::shared_ptr<const icu::Calendar> m_calendar;

    QWidget *m_content = nullptr;
    QList<platform::WheelColumn *> m_wheels;
    QList<QLabel *> m_unitLabelArr;
    QDateTimeEdit *m_platformPicker = nullptr;
};
