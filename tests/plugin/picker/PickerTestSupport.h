// Shared by the picker tests: localized texts, instants from local wall-clock times (tests run in
// Asia/Shanghai), and the deadline picker exactly as the note editor configures it.
#pragma once

#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"
#include "plugin/picker/ZIQBRDateHelpers.h"
#include "plugin/picker/ZIQBRDatePickerView.h"

#include <QDateTime>

inline QString localized(const char *key)
{
    return ZIQGlobalization::getLocalizedStringForKey(QString::fromLatin1(key));
}

inline QDateTime localTime(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::LocalTime).toUTC();
}

inline double localMs(int year, int month, int day, int hour = 0, int minute = 0, int second = 0)
{
    return static_cast<double>(localTime(year, month, day, hour, minute, second).toMSecsSinceEpoch());
}

inline QString localText(const QDateTime &date)
{
    return date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

/// The deadline picker of the note editor: year to minute, from the next minute to the end of
/// 2100, reporting every change.
inline ZIQBRDatePickerView *makeDeadlinePicker(QWidget *window, const QString &language)
{
    const QDateTime now = QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC);
    const QDateTime start = ZIQ_br_setYear(
        ZIQ_br_year(now), ZIQ_br_month(now), ZIQ_br_day(now), ZIQ_br_hour(now), ZIQ_br_minute(now) + 1);
    auto *picker = new ZIQBRDatePickerView(ZIQBRDatePickerMode::YMDHM, window);
    picker->setSelectDate(start);
    picker->setMinDate(start);
    picker->setMaxDate(ZIQ_br_setYear(2100, 12, 31, 23, 59));
    picker->setIsAutoSelect(true);
    ZIQBRPickerStyle style;
    style.setPickerColor(QColor(QStringLiteral("#FFFFFF")));
    style.setPickerTextColor(QColor(QStringLiteral("#000000")));
    style.setSeparatorColor(QColor(QStringLiteral("#DDDDDD")));
    style.setLanguage(language);
    picker->setPickerStyle(style);
    return picker;
}
