// ZIQBRDatePickerView: modes 0 … 3, shown on Qt's own date and time editor.
#include "plugin/picker/ZIQBRDatePickerView.h"

#include "plugin/picker/ZIQBRDateHelpers.h"
#include "plugin/picker/ZIQBRIcu.h"

#include <QCalendar>
#include <QDateTimeEdit>
#include <QLayout>
#include <QLocale>
#include <QSignalBlocker>
#include <QTimeZone>

using Mode = ZIQBRDatePickerMode;

namespace {

QCalendar qtCalendar(const icu::Calendar *calendar)
{
    if (!calendar)
        return QCalendar();
    const QString type = QString::fromLatin1(calendar->getType());
    if (type == QLatin1String("persian"))
        return QCalendar(QCalendar::System::Jalali);
    if (type == QLatin1String("islamic-civil"))
        return QCalendar(QCalendar::System::IslamicCivil);
    if (type == QLatin1String("julian"))
        return QCalendar(QCalendar::System::Julian);
    return QCalendar(QCalendar::System::Gregorian);
}

QTimeZone qtTimeZone(const icu::TimeZone *zone)
{
    if (!zone)
        return QTimeZone::systemTimeZone();
    icu::UnicodeString id;
    zone->getID(id);
    const QTimeZone named(ZIQBRIcu::fromUnicode(id).toUtf8());
    return named.isValid() ? named : QTimeZone(zone->getRawOffset() / 1000);
}

} // namespace

void ZIQBRDatePickerView::reloadPlatformPicker()
{
    if (!m_platformPicker) {
        m_platformPicker = new QDateTimeEdit(m_content);
        m_platformPicker->setObjectName(QStringLiteral("platformDatePicker"));
        m_platformPicker->setAlignment(Qt::AlignCenter);
        m_content->layout()->addWidget(m_platformPicker);
        connect(m_platformPicker, &QDateTimeEdit::dateTimeChanged, this, &ZIQBRDatePickerView::onPlatformDateChanged);
    }
    const QSignalBlocker blocker(m_platformPicker);
    const QTimeZone zone = qtTimeZone(m_model.timeZone().get());
    m_platformPicker->setLocale(QLocale(pickerStyle().language()));
    m_platformPicker->setCalendar(qtCalendar(m_calendar.get()));
    m_platformPicker->setFont(pickerStyle().pickerTextFont());
    m_platformPicker->setDisplayFormat(m_model.dateFormatter());
    if (m_model.pickerMode() == Mode::CountDownTimer) {
        m_platformPicker->setDateTimeRange(
            QDateTime(QDate(2000, 1, 1), QTime(0, 0)), QDateTime(QDate(2000, 1, 1), QTime(23, 59)));
        m_platformPicker->setTime(QTime(0, 0).addSecs(qRound(m_countDownDuration)));
        return;
    }
    m_platformPicker->setDateTimeRange(m_model.rangeMinDate().toTimeZone(zone), m_model.rangeMaxDate().toTimeZone(zone));
    if (m_model.mSelectDate().isValid())
        m_platformPicker->setDateTime(m_model.mSelectDate().toTimeZone(zone));
}

void ZIQBRDatePickerView::onPlatformDateChanged(const QDateTime &shown)
{
    const QTimeZone zone = qtTimeZone(m_model.timeZone().get());
    const QDateTime date = QDateTime(shown.date(), shown.time(), zone).toUTC();
    if (m_model.pickerMode() == Mode::CountDownTimer)
        m_countDownDuration = QTime(0, 0).secsTo(shown.time());
    m_model.setSelectionFromEditor(date);
    if (m_model.mSelectDate() != date) {
        const QSignalBlocker blocker(m_platformPicker);
        m_platformPicker->setDateTime(m_model.mSelectDate().toTimeZone(zone));
    }
    report();
}
