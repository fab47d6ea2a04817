#include "plugin/picker/ZIQBRDatePickerView.h"

#include "platform/MainQueue.h"
#include "platform/WheelColumn.h"
#include "plugin/picker/ZIQBRDateHelpers.h"

#include <QDateTimeEdit>
#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QMetaEnum>

#include <algorithm>

namespace {

// An integer outside the table of modes, cast to a mode, shows the default date picker.
ZIQBRDatePickerMode knownMode(ZIQBRDatePickerMode mode)
{
    const int value = static_cast<int>(mode);
    return value >= 0 && value <= static_cast<int>(ZIQBRDatePickerMode::MS) ? mode : ZIQBRDatePickerMode::Date;
}

} // namespace

ZIQBRDatePickerView::ZIQBRDatePickerView(QWidget *parent)
    : ZIQBRDatePickerView(ZIQBRDatePickerMode::Date, parent)
{
}

ZIQBRDatePickerView::ZIQBRDatePickerView(ZIQBRDatePickerMode pickerMode, QWidget *parent)
    : ZIQBRBaseView(parent)
    , m_pickerMode(knownMode(pickerMode))
{
    setObjectName(QStringLiteral("datePickerView"));
    setupDateFormatter(m_pickerMode);
    setDoneBlock([this] {
        if (m_resultBlock)
            m_resultBlock(m_selectDate, m_selectValue);
    });
}

ZIQBRDatePickerView::~ZIQBRDatePickerView() = default;

ZIQBRDatePickerView *ZIQBRDatePickerView::ZIQ_showDatePickerWithMode(
    ZIQBRDatePickerMode mode, const QString &title, const QString &selectValue, ZIQBRDateResultBlock resultBlock)
{
    return ZIQ_showDatePickerWithMode(
        mode, title, selectValue, QDateTime(), QDateTime(), false, std::move(resultBlock));
}

ZIQBRDatePickerView *ZIQBRDatePickerView::ZIQ_showDatePickerWithMode(ZIQBRDatePickerMode mode, const QString &title,
    const QString &selectValue, bool isAutoSelect, ZIQBRDateResultBlock resultBlock)
{
    return ZIQ_showDatePickerWithMode(
        mode, title, selectValue, QDateTime(), QDateTime(), isAutoSelect, std::move(resultBlock));
}

ZIQBRDatePickerView *ZIQBRDatePickerView::ZIQ_showDatePickerWithMode(ZIQBRDatePickerMode mode, const QString &title,
    const QString &selectValue, const QDateTime &minDate, const QDateTime &maxDate, bool isAutoSelect,
    ZIQBRDateResultBlock resultBlock)
{
    auto *picker = new ZIQBRDatePickerView(mode);
    picker->setTitle(title);
    picker->setSelectValue(selectValue);
    picker->setMinDate(minDate);
    picker->setMaxDate(maxDate);
    picker->setIsAutoSelect(isAutoSelect);
    picker->setResultBlock(std::move(resultBlock));
    picker->show();
    if (!picker->parentWidget()) {
        // Nowhere to show it: nothing owns it.
        picker->deleteLater();
        return nullptr;
    }
    return picker;
}

void ZIQBRDatePickerView::setPickerMode(ZIQBRDatePickerMode mode)
{
    m_pickerMode = knownMode(mode);
    setupDateFormatter(m_pickerMode);
    if (m_content)
        reloadData();
}

void ZIQBRDatePickerView::reloadData()
{
    setupDateFormatter(m_pickerMode);
    handlerPickerData();
    reloadViews();
}

QWidget *ZIQBRDatePickerView::pickerContentView()
{
    if (!m_content) {
        m_content = new QWidget(this);
        m_content->setObjectName(QStringLiteral("pickerContent"));
        auto *layout = new QHBoxLayout(m_content);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
    }
    return m_content;
}

void ZIQBRDatePickerView::reloadPicker()
{
    reloadData();
    if (!m_wheels.isEmpty())
        m_wheels.first()->setFocus();
}

void ZIQBRDatePickerView::reloadViews()
{
    if (!m_content)
        return;
    qDeleteAll(m_wheels);
    m_wheels.clear();
    m_unitLabelArr.clear();
    if (m_platformPicker)
        m_platformPicker->setVisible(m_style == 0);
    if (m_style == 0)
        return reloadPlatformPicker();

    const ZIQBRPickerStyle &style = pickerStyle();
    const QMetaEnum fieldNames = QMetaEnum::fromType<Field>();
    for (int component = 0; component < m_columns.size(); ++component) {
        const Field field = m_columns.at(component);
        auto *wheel = new platform::WheelColumn(m_content);
        const QString name = QString::fromLatin1(fieldNames.valueToKey(field)).toLower();
        wheel->setObjectName(name + QStringLiteral("Wheel"));
        wheel->setAccessibleName(name);
        wheel->setRowHeight(qRound(style.rowHeight()));
        wheel->setTextFont(style.pickerTextFont());
        wheel->setTextColor(style.pickerTextColor());
        wheel->setSelectedRowColor(style.selectRowColor());
        wheel->setSelectedTextColor(style.selectRowTextColor());
        if (style.selectRowTextFont())
            wheel->setSelectedTextFont(*style.selectRowTextFont());
        wheel->setSeparator(style.separatorColor(), style.separatorHeight());
        Qt::Edges bandEdges;
        bandEdges.setFlag(Qt::LeftEdge, component == 0);
        bandEdges.setFlag(Qt::RightEdge, component == m_columns.size() - 1);
        wheel->setBandEdges(bandEdges);
        m_content->layout()->addWidget(wheel);
        m_wheels.append(wheel);
        connect(wheel, &platform::WheelColumn::userSelectedRow, this,
            [this, component](int row) { pickerViewDidSelectRow(row, component); });
        if (m_showUnitType == 1) {
            auto *label = new QLabel(unit(field), wheel);
            label->setFont(style.dateUnitTextFont());
            label->setStyleSheet(QStringLiteral("color: %1; background: transparent;")
                                     .arg(style.dateUnitTextColor().name(QColor::HexArgb)));
            m_unitLabelArr.append(label);
            wheel->installEventFilter(this);
        }
        reloadWheel(field);
    }
}

void ZIQBRDatePickerView::reloadWheel(Field field, bool animated)
{
    const int component = static_cast<int>(m_columns.indexOf(field));
    if (component < 0 || component >= m_wheels.size())
        return;
    QStringList rows;
    for (int row = 0; row < m_arr[field].size(); ++row)
        rows.append(rowText(field, row));
    m_wheels.at(component)->setRows(rows);
    m_wheels.at(component)->setCurrentRow(m_index[field], animated);
}

bool ZIQBRDatePickerView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && m_wheels.contains(watched))
        layoutUnitLabels();
    return ZIQBRBaseView::eventFilter(watched, event);
}

void ZIQBRDatePickerView::layoutUnitLabels()
{
    const ZIQBRPickerStyle &style = pickerStyle();
    const QFontMetrics metrics(style.pickerTextFont());
    for (int i = 0; i < m_unitLabelArr.size() && i < m_wheels.size(); ++i) {
        platform::WheelColumn *wheel = m_wheels.at(i);
        QLabel *label = m_unitLabelArr.at(i);
        int textWidth = 0;
        for (const QString &row : wheel->rows())
            textWidth = std::max(textWidth, metrics.horizontalAdvance(row));
        label->adjustSize();
        // Just right of the widest row, on the selection line.
        const int x = wheel->width() / 2 + textWidth / 2 + 2 + qRound(style.dateUnitOffsetX());
        const int y = (wheel->height() - label->height()) / 2 + qRound(style.dateUnitOffsetY());
        label->move(std::min(x, wheel->width() - label->width()), y);
    }
}

void ZIQBRDatePickerView::pickerViewDidSelectRow(int row, int component)
{
    if (component < 0 || component >= m_columns.size())
        return;
    const Field field = m_columns.at(component);
    const QDateTime previousDate = m_selectDate;
    const QString previousValue = m_selectValue;
    const bool wasCustomRow = isCustomRowSelected();
    m_index[field] = row;
    m_isAdjustSelectRow = false;
    rebuildLowerColumns(field, previousDate);

    const QList<Field> fields = fieldsInMode();
    if (isCustomRowSelected()) {
        m_selectDate
            = m_addToNow ? QDateTime::fromMSecsSinceEpoch(qint64(platform::MainQueue::now()), Qt::UTC) : QDateTime();
        m_selectValue = m_arr[fields.first()].at(m_index[fields.first()]);
        for (Field lower : fields.mid(1)) {
            m_arr[lower].clear();
            m_index[lower] = 0;
            reloadWheel(lower);
        }
    }
    if (std::any_of(fields.begin(), fields.end(), [this](Field f) { return m_arr[f].isEmpty(); }))
        return;
    if (!isCustomRowSelected()) {
        m_selectDate = dateFromSelection();
        m_selectValue = valueText();
        if (m_isAdjustSelectRow || wasCustomRow)
            scrollToSelectDate(m_selectDate, false);
    }
    if (rollBackIfNotSelectable(previousDate, previousValue))
        return;
    report();
}

void ZIQBRDatePickerView::rebuildLowerColumns(Field changed, const QDateTime &previous)
{
    for (Field lower : fieldsInMode()) {
        if (lower <= changed)
            continue;
        const int old = previous.isValid() ? fieldOf(previous, lower) : 0;
        m_arr[lower] = columnList(lower);
        const QStringList &list = m_arr[lower];
        const bool amPm = lower == Hour && m_pickerMode == ZIQBRDatePickerMode::YMDH && m_isShowAMAndPM;
        const qsizetype found = amPm ? rowOfValue(lower, old) : list.indexOf(numberText(lower, old));
        if (found >= 0) {
            m_index[lower] = static_cast<int>(found);
        } else {
            // The old value fell out of the list: go to the end it fell past.
            const bool pastFirst = !list.isEmpty() && old >= list.first().toInt();
            m_index[lower] = pastFirst ? static_cast<int>(list.size()) - 1 : 0;
            m_isAdjustSelectRow = true;
        }
        reloadWheel(lower);
    }
}

void ZIQBRDatePickerView::scrollToSelectDate(const QDateTime &date, bool animated)
{
    if (!date.isValid())
        return;
    for (int component = 0; component < m_columns.size(); ++component) {
        const Field field = m_columns.at(component);
        m_index[field] = rowOfValue(field, fieldOf(date, field));
        if (component < m_wheels.size())
            m_wheels.at(component)->setCurrentRow(m_index[field], animated);
    }
}

bool ZIQBRDatePickerView::rollBackIfNotSelectable(const QDateTime &previousDate, const QString &previousValue)
{
    if (!m_selectDate.isValid())
        return false;
    const bool hit = std::any_of(m_nonSelectableDates.begin(), m_nonSelectableDates.end(),
        [this](const QDateTime &d) { return br_compareDate(m_selectDate, d, m_dateFormatter) == 0; });
    if (!hit)
        return false;
    const QDateTime rejectedDate = m_selectDate;
    const QString rejectedValue = m_selectValue;
    platform::MainQueue::async(this, [this, previousDate, previousValue, rejectedDate, rejectedValue] {
        m_selectDate = previousDate;
        m_selectValue = previousValue;
        buildColumns();
        for (Field field : std::as_const(m_columns))
            reloadWheel(field, true);
        if (m_nonSelectableBlock)
            m_nonSelectableBlock(rejectedDate, rejectedValue);
    });
    return true;
}

void ZIQBRDatePickerView::report()
{
    if (m_changeBlock)
        m_changeBlock(m_selectDate, m_selectValue);
    if (isAutoSelect() && m_resultBlock)
        m_resultBlock(m_selectDate, m_selectValue);
}
