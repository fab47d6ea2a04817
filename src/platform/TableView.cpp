#include "platform/TableView.h"

#include "platform/MainQueue.h"
#include "platform/TableViewCell.h"
#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"

#include <QEasingCurve>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace platform {

namespace {

// Rows kept alive beyond each edge of the visible area, so a small scroll shows no gap.
constexpr int ExtraRows = 1;
// Points a finger (or mouse) moves before a press turns from a tap into a drag.
constexpr qreal DragThreshold = 6;
// Points scrolled per notch of a mouse wheel.
constexpr qreal WheelNotchPoints = 60;

} // namespace

TableView::TableView(QWidget *parent)
    : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(true);
    setBackgroundColor(m_backgroundColor);
}

TableView::~TableView()
{
    // Cells die with the viewport; nothing may reach the data source while they do.
    m_dataSource = nullptr;
    m_delegate = nullptr;
}

void TableView::setDataSource(TableViewDataSource *dataSource)
{
    m_dataSource = dataSource;
    m_needsReload = true;
    if (isVisible())
        reloadData();
}

void TableView::setDelegate(TableViewDelegate *delegate)
{
    m_delegate = delegate;
    m_needsReload = true;
    if (isVisible())
        reloadData();
}

void TableView::setRowHeight(qreal height)
{
    m_rowHeight = std::max<qreal>(height, 0);
    m_needsReload = true;
    if (isVisible())
        reloadData();
}

void TableView::registerCell(const QString &reuseIdentifier, TableCellPool::Factory factory)
{
    m_cells.pool().registerFactory(reuseIdentifier, std::move(factory));
}

TableViewCell *TableView::dequeueReusableCell(const QString &reuseIdentifier)
{
    return m_cells.pool().take(reuseIdentifier);
}

void TableView::reloadData()
{
    m_needsReload = false;
    m_cells.recycleAll();
    std::vector<qreal> headers;
    std::vector<int> counts;
    const int sections = m_dataSource ? std::max(m_dataSource->numberOfSections(this), 0) : 0;
    for (int section = 0; section < sections; ++section) {
        headers.push_back(m_delegate ? m_delegate->heightForHeader(this, section) : 0);
        counts.push_back(std::max(m_dataSource->numberOfRows(this, section), 0));
    }
    m_geometry.reset(headers, counts, [this](const IndexPath &path) { return heightOfRow(path); });
    relayout();
}

void TableView::reloadRows(const QList<IndexPath> &paths)
{
    if (m_needsReload)
        return reloadData();
    for (const IndexPath &path : paths) {
        if (!m_geometry.contains(path))
            continue;
        m_geometry.setRowHeight(path, heightOfRow(path));
        m_cells.recycle(path);
    }
    relayout();
}

void TableView::insertRows(const QList<IndexPath> &paths)
{
    if (m_needsReload)
        return reloadData();
    QList<IndexPath> sorted = paths;
    std::sort(sorted.begin(), sorted.end());
    for (const IndexPath &path : std::as_const(sorted)) {
        if (!path.isValid() || path.section >= numberOfSections() || path.row > numberOfRows(path.section))
            continue;
        m_cells.shift(path, 1);
        m_geometry.insertRow(path, heightOfRow(path));
    }
    relayout();
}

void TableView::deleteRows(const QList<IndexPath> &paths)
{
    if (m_needsReload)
        return reloadData();
    QList<IndexPath> sorted = paths;
    std::sort(sorted.begin(), sorted.end(), std::greater<>());
    for (const IndexPath &path : std::as_const(sorted)) {
        if (!m_geometry.contains(path))
            continue;
        m_cells.recycle(path);
        m_cells.shift({ path.section, path.row + 1 }, -1);
        m_geometry.removeRow(path);
    }
    relayout();
}

int TableView::numberOfSections() const
{
    return m_geometry.sectionCount();
}

int TableView::numberOfRows(int section) const
{
    return m_geometry.rowCount(section);
}

TableViewCell *TableView::cellForRow(const IndexPath &path) const
{
    return m_cells.cell(path);
}

IndexPath TableView::indexPathForCell(const TableViewCell *cell) const
{
    return m_cells.pathOf(cell);
}

QList<TableViewCell *> TableView::visibleCells() const
{
    return m_cells.cells();
}

QList<IndexPath> TableView::indexPathsForVisibleRows() const
{
    return m_cells.paths();
}

QRectF TableView::rectForRow(const IndexPath &path) const
{
    if (!m_geometry.contains(path))
        return {};
    return { 0, m_geometry.rowTop(path), qreal(viewport()->width()), m_geometry.rowHeight(path) };
}

void TableView::scrollToRow(const IndexPath &path, ScrollPosition position, bool animated)
{
    ensureLoaded();
    if (!m_geometry.contains(path))
        return;
    const qreal top = m_geometry.rowTop(path);
    const qreal bottom = top + m_geometry.rowHeight(path);
    const qreal visible = viewport()->height();
    qreal target = m_offsetY;
    if (position == ScrollPosition::None)
        position = top < m_offsetY ? ScrollPosition::Top
                                   : (bottom > m_offsetY + visible ? ScrollPosition::Bottom : ScrollPosition::None);
    if (position == ScrollPosition::Top)
        target = top;
    else if (position == ScrollPosition::Middle)
        target = (top + bottom - visible) / 2;
    else if (position == ScrollPosition::Bottom)
        target = bottom - visible;
    setContentOffset({ 0, target }, animated);
}

void TableView::setContentOffset(const QPointF &offset, bool animated)
{
    ensureLoaded();
    const quint64 generation = ++m_scrollGeneration;
    const qreal target = std::clamp(offset.y(), 0.0, maxOffset());
    if (animated && target != m_offsetY)
        animateOffset(generation, m_offsetY, target, MainQueue::now());
    else
        applyOffset(target);
}

QSizeF TableView::contentSize() const
{
    return { qreal(viewport()->width()), m_geometry.totalHeight() + footerHeight() };
}

void TableView::setScrollEnabled(bool enabled)
{
    m_scrollEnabled = enabled;
    if (!enabled)
        m_press.dragging = false;
}

void TableView::setTableFooterView(QWidget *footer)
{
    if (m_footer == footer)
        return;
    delete m_footer;
    m_footer = footer;
    if (footer) {
        footer->setParent(viewport());
        footer->show();
    }
    relayout();
}

void TableView::setSeparatorStyle(SeparatorStyle style)
{
    m_separatorStyle = style;
    layoutRows();
}

void TableView::setSeparatorColor(const QColor &color)
{
    m_separatorColor = color;
    layoutRows();
}

void TableView::setBackgroundColor(const QColor &color)
{
    m_backgroundColor = color;
    QPalette palette = viewport()->palette();
    palette.setColor(QPalette::Base, color);
    palette.setColor(QPalette::Window, color);
    viewport()->setPalette(palette);
}

bool TableView::eventFilter(QObject *watched, QEvent *event)
{
    auto *cell = qobject_cast<TableViewCell *>(watched);
    if (cell && cell->parentWidget() == viewport()) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseMove:
        case QEvent::MouseButtonRelease:
            return handlePointer(cell, static_cast<QMouseEvent *>(event));
        default:
            break;
        }
    }
    return QAbstractScrollArea::eventFilter(watched, event);
}

bool TableView::viewportEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return handlePointer(nullptr, static_cast<QMouseEvent *>(event));
    case QEvent::Show:
        ensureLoaded();
        break;
    default:
        break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void TableView::resizeEvent(QResizeEvent *event)
{
    QAbstractScrollArea::resizeEvent(event);
    if (m_needsReload) {
        reloadData();
        return;
    }
    relayout();
}

void TableView::wheelEvent(QWheelEvent *event)
{
    if (!m_scrollEnabled) {
        event->ignore();
        return;
    }
    const qreal delta = event->pixelDelta().isNull() ? event->angleDelta().y() / 120.0 * WheelNotchPoints
                                                     : qreal(event->pixelDelta().y());
    setContentOffset({ 0, m_offsetY - delta });
    event->accept();
}

void TableView::scrollContentsBy(int, int)
{
    // The scroll bar (shown on request, or moved by keys) only follows the offset; a move of
    // its own becomes a scroll unless scrolling is off.
    if (m_syncingScrollBar)
        return;
    if (m_scrollEnabled)
        setContentOffset({ 0, qreal(verticalScrollBar()->value()) });
    else
        syncScrollBar();
}

qreal TableView::heightOfRow(const IndexPath &path)
{
    const qreal asked = m_delegate ? m_delegate->heightForRow(this, path) : -1;
    return asked < 0 ? m_rowHeight : asked;
}

qreal TableView::footerHeight() const
{
    if (!m_footer)
        return 0;
    return std::max({ m_footer->minimumHeight(), m_footer->sizeHint().height(), 0 });
}

qreal TableView::maxOffset() const
{
    return std::max<qreal>(contentSize().height() - viewport()->height(), 0);
}

void TableView::ensureLoaded()
{
    if (m_needsReload)
        reloadData();
}

void TableView::applyOffset(qreal y)
{
    y = std::clamp(y, 0.0, maxOffset());
    if (y == m_offsetY)
        return;
    m_offsetY = y;
    layoutRows();
    syncScrollBar();
    Q_EMIT contentOffsetChanged(contentOffset());
}

void TableView::relayout()
{
    const qreal y = std::clamp(m_offsetY, 0.0, maxOffset());
    if (y != m_offsetY)
        return applyOffset(y);
    layoutRows();
    syncScrollBar();
}

void TableView::animateOffset(quint64 generation, qreal from, qreal to, double startMs)
{
    if (generation != m_scrollGeneration)
        return;
    const double progress = std::clamp((MainQueue::now() - startMs) / ScrollAnimationMs, 0.0, 1.0);
    applyOffset(from + (to - from) * QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(progress));
    if (progress == 1)
        return;
    // The last frame falls on the animation's end, so it ends exactly on time.
    const double remaining = startMs + ScrollAnimationMs - MainQueue::now();
    const int delay = std::min(AnimationFrameMs, int(std::ceil(remaining)));
    MainQueue::after(delay, this, [=, this] { animateOffset(generation, from, to, startMs); });
}

void TableView::layoutRows()
{
    if (m_inLayout)
        return;
    m_inLayout = true;
    const std::vector<TableRowGeometry::RowSpan> spans
        = m_geometry.rowsBetween(m_offsetY, m_offsetY + viewport()->height(), ExtraRows);
    std::vector<IndexPath> paths;
    for (const TableRowGeometry::RowSpan &span : spans)
        paths.push_back(span.path);
    m_cells.keepOnly(paths);
    for (const TableRowGeometry::RowSpan &span : spans) {
        TableViewCell *cell = cellForRow(span.path);
        if (!cell)
            cell = adoptCell(span.path);
        if (cell)
            placeCell(cell, span);
    }
    if (m_footer)
        m_footer->setGeometry(
            0, qRound(m_geometry.totalHeight() - m_offsetY), viewport()->width(), qRound(footerHeight()));
    m_inLayout = false;
}

TableViewCell *TableView::adoptCell(const IndexPath &path)
{
    TableViewCell *cell = m_dataSource ? m_dataSource->cellForRow(this, path) : nullptr;
    if (!cell)
        return nullptr;
    if (cell->parentWidget() != viewport()) {
        cell->setParent(viewport());
        cell->installEventFilter(this);
    }
    m_cells.insert(path, cell);
    return cell;
}

void TableView::placeCell(TableViewCell *cell, const TableRowGeometry::RowSpan &span)
{
    // Both edges are rounded, so neighbouring rows meet without a gap at any offset.
    const int top = qRound(span.top - m_offsetY);
    const int bottom = qRound(span.top + span.height - m_offsetY);
    cell->setGeometry(0, top, viewport()->width(), bottom - top);
    cell->setSeparatorColor(m_separatorStyle == SeparatorStyle::SingleLine ? m_separatorColor : QColor());
    if (cell->isHidden())
        cell->show();
}

void TableView::syncScrollBar()
{
    m_syncingScrollBar = true;
    QScrollBar *bar = verticalScrollBar();
    bar->setRange(0, int(std::ceil(maxOffset())));
    bar->setPageStep(viewport()->height());
    bar->setValue(qRound(m_offsetY));
    m_syncingScrollBar = false;
}

bool TableView::handlePointer(TableViewCell *cell, QMouseEvent *event)
{
    const qreal y = event->globalPosition().y();
    if (event->type() == QEvent::MouseButtonPress) {
        if (event->button() != Qt::LeftButton)
            return false;
        m_press = { true, false, y, m_offsetY, cell };
        if (cell)
            cell->setHighlighted(true);
    } else if (!m_press.active) {
        return false;
    } else if (event->type() == QEvent::MouseMove) {
        if (!m_press.dragging && m_scrollEnabled && std::abs(y - m_press.startY) > DragThreshold) {
            m_press.dragging = true;
            if (m_press.cell)
                m_press.cell->setHighlighted(false);
        }
        if (m_press.dragging)
            setContentOffset({ 0, m_press.startOffset - (y - m_press.startY) });
    } else {
        const Press press = std::exchange(m_press, {});
        if (press.cell)
            press.cell->setHighlighted(false);
        const IndexPath path = indexPathForCell(press.cell);
        if (!press.dragging && press.cell == cell && path.isValid()) {
            Q_EMIT cell->tapped();
            if (m_delegate)
                m_delegate->didSelectRow(this, path);
        }
    }
    event->accept();
    return true;
}

} // namespace platform
