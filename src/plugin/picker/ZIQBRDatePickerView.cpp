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

/// Room beside a column's widest row, in points.
constexpr int ColumnPadding = 24;

} // namespace

ZIQBRDatePickerView::ZIQBRDatePickerView(QWidget *parent)
    : ZIQBRDatePickerView(ZIQBRDatePickerMode::Date, parent)
{
}

ZIQBRDatePickerView::ZIQBRDatePickerView(ZIQBRDatePickerMode pickerMode, QWidget *parent)
    : ZIQBRBaseView(parent)
    , m_model(pickerMode)
{
    setObjectName(QStringLiteral("datePickerView"));
    syncLanguage();
    setDoneBlock([this] { reportResult(); });
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
    m_model.setPickerMode(mode);
    if (m_content)
        reloadData();
}

void ZIQBRDatePickerView::reloadData()
{
    syncLanguage();
    m_model.reload();
    reloadViews();
}

void ZIQBRDatePickerView::syncLanguage()
{
    if (m_model.language() != pickerStyle().language())
        m_model.setLanguage(pickerStyle().language());
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
        m_platformPicker->setVisible(m_model.style() == 0);
    if (m_model.style() == 0)
        return reloadPlatformPicker();

    const QList<Field> columns = m_model.columns();
    for (int component = 0; component < columns.size(); ++component) {
        platform::WheelColumn *wheel = makeWheel(component);
        // Columns share the width as their widest rows need it, so that a year with its unit
        // is not squeezed while a minute has room to spare.
        const QFontMetrics metrics(pickerStyle().pickerTextFont());
        int widest = 0;
        for (const QString &row : m_model.rowTexts(columns.at(component)))
            widest = std::max(widest, metrics.horizontalAdvance(row));
        static_cast<QHBoxLayout *>(m_content->layout())->addWidget(wheel, widest + ColumnPadding);
        m_wheels.append(wheel);
        if (m_model.showUnitType() == 1) {
            const ZIQBRPickerStyle &style = pickerStyle();
            auto *label = new QLabel(m_model.unit(columns.at(component)), wheel);
            label->setFont(style.dateUnitTextFont());
            label->setStyleSheet(QStringLiteral("color: %1; background: transparent;")
                                     .arg(style.dateUnitTextColor().name(QColor::HexArgb)));
            m_unitLabelArr.append(label);
            wheel->installEventFilter(this);
        }
        reloadWheel(columns.at(component));
    }
}

platform::WheelColumn *ZIQBRDatePickerView::makeWheel(int component)
{
    const ZIQBRPickerStyle &style = pickerStyle();
    const Field field = m_model.columns().at(component);
    auto *wheel = new platform::WheelColumn(m_content);
    const QString name = QString::fromLatin1(QMetaEnum::fromType<Field>().valueToKey(field)).toLower();
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
    bandEdges.setFlag(Qt::RightEdge, component == m_model.columns().size() - 1);
    wheel->setBandEdges(bandEdges);
    connect(wheel, &platform::WheelColumn::userSelectedRow, this,
        [this, component](int row) { pickerViewDidSelectRow(row, component); });
    return wheel;
}

void ZIQBRDatePickerView::reloadWheel(Field field, bool animated)
{
    const int component = static_cast<int>(m_model.columns().indexOf(field));
    if (component < 0 || component >= m_wheels.size())
        return;
    m_wheels.at(component)->setRows(m_model.rowTexts(field));
    m_wheels.at(component)->setCurrentRow(m_model.index(field), animated);
}

void ZIQBRDatePickerView::syncWheels(bool animated)
{
    const QList<Field> columns = m_model.columns();
    for (int component = 0; component < columns.size() && component < m_wheels.size(); ++component)
        m_wheels.at(component)->setCurrentRow(m_model.index(columns.at(component)), animated);
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
    const QList<Field> columns = m_model.columns();
    if (component < 0 || component >= columns.size())
        return;
    const QDateTime previousDate = m_model.mSelectDate();
    const QString previousValue = m_model.mSelectValue();
    const ZIQBRDatePickerModel::Change change = m_model.selectRow(columns.at(component), row);
    for (Field field : change.rebuilt)
        reloadWheel(field);
    if (!change.complete)
        return;
    if (change.scrollAll)
        syncWheels(false);
    if (rollBackIfNotSelectable(previousDate, previousValue))
        return;
    report();
}

void ZIQBRDatePickerView::scrollToSelectDate(const QDateTime &date, bool animated)
{
    m_model.scrollToSelectDate(date);
    syncWheels(animated);
}

bool ZIQBRDatePickerView::rollBackIfNotSelectable(const QDateTime &previousDate, const QString &previousValue)
{
    if (!m_model.isNonSelectable(m_model.mSelectDate()))
        return false;
    const QDateTime rejectedDate = m_model.mSelectDate();
    const QString rejectedValue = m_model.mSelectValue();
    // The wheel that was turned is still settling: turn back once the current event is done.
    platform::MainQueue::async(this, [this, previousDate, previousValue, rejectedDate, rejectedValue] {
        m_model.restoreSelection(previousDate, previousValue);
        for (Field field : m_model.columns())
            reloadWheel(field, true);
        if (m_nonSelectableBlock)
            m_nonSelectableBlock(rejectedDate, rejectedValue);
    });
    return true;
}

void ZIQBRDatePickerView::report()
{
    const QDateTime date = m_model.mSelectDate();
    const QString value = m_model.mSelectValue();
    if (m_changeBlock)
        m_changeBlock(date, value);
    Q_EMIT dateChanged(date, value);
    if (isAutoSelect())
        reportResult();
}

void ZIQBRDatePickerView::reportResult()
{
    const QDateTime date = m_model.mSelectDate();
    const QString value = m_model.mSelectValue();
    if (m_resultBlock)
        m_resultBlock(date, value);
    Q_EMIT dateSelected(date, value);
}
