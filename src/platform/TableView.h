// A vertically scrolling table whose rows are real widgets (TableViewCell). Only the rows on
// screen, and one more on either side, exist as live cells; a row that scrolls away returns
// its cell to a pool from which the data source takes cells for the rows that come into view.
// Row heights may be fixed or per row; their positions are kept in a prefix structure, so
// tables of tens of thousands of rows scroll as cheaply as short ones. Scrolling follows the
// mouse wheel and drags, with no inertia; animated scrolls run on the main queue's clock.
#pragma once

#include "platform/IndexPath.h"
#include "platform/TableCellPool.h"
#include "platform/TableLiveCells.h"
#include "platform/TableRowGeometry.h"

#include <QAbstractScrollArea>
#include <QColor>
#include <QList>
#include <QPointer>

namespace platform {

class TableViewCell;
class TableViewDataSource;
class TableViewDelegate;

class TableView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// Where scrollToRow() brings a row: to the top, middle or bottom of the visible area, or
    /// (None) only as far as needed to show it whole.
    enum class ScrollPosition { None, Top, Middle, Bottom };
    enum class SeparatorStyle { None, SingleLine };

    static constexpr int ScrollAnimationMs = 300;
    static constexpr int AnimationFrameMs = 16;
    static constexpr qreal DefaultRowHeight = 44;

    explicit TableView(QWidget *parent = nullptr);
    ~TableView() override;

    /// Neither is owned; both must outlive the table or be unset first.
    TableViewDataSource *dataSource() const { return m_dataSource; }
    void setDataSource(TableViewDataSource *dataSource);
    TableViewDelegate *delegate() const { return m_delegate; }
    void setDelegate(TableViewDelegate *delegate);

    /// Height of every row the delegate does not size itself.
    qreal rowHeight() const { return m_rowHeight; }
    void setRowHeight(qreal height);

    /// How cells of a kind are made when the pool has none waiting.
    void registerCell(const QString &reuseIdentifier, TableCellPool::Factory factory);
    template<class Cell> void registerCell(const QString &reuseIdentifier)
    {
        registerCell(reuseIdentifier, [](const QString &identifier) { return new Cell(identifier); });
    }
    /// A cell of that kind from the pool, or a new one; nullptr for a kind never registered.
    TableViewCell *dequeueReusableCell(const QString &reuseIdentifier);

    /// Asks the data source and delegate for everything again and refills the visible rows.
    void reloadData();
    /// Re-measures the rows and asks for their cells again; rows below them move, others stay.
    void reloadRows(const QList<IndexPath> &paths);
    /// Rows the data source has just added (at their new positions), without animation.
    void insertRows(const QList<IndexPath> &paths);
    /// Rows the data source has just removed (at their old positions), without animation.
    void deleteRows(const QList<IndexPath> &paths);

    /// The table's own account, as of the last reload, insertion or deletion.
    int numberOfSections() const;
    int numberOfRows(int section) const;

    /// The live cell of a row, or nullptr when the row is off screen.
    TableViewCell *cellForRow(const IndexPath &path) const;
    IndexPath indexPathForCell(const TableViewCell *cell) const;
    /// Live cells, top to bottom.
    QList<TableViewCell *> visibleCells() const;
    QList<IndexPath> indexPathsForVisibleRows() const;
    /// A row's place in content coordinates (y = 0 is the top of the first section).
    QRectF rectForRow(const IndexPath &path) const;

    void scrollToRow(const IndexPath &path, ScrollPosition position, bool animated);
    /// How far the content is scrolled; always within the content.
    QPointF contentOffset() const { return { 0, m_offsetY }; }
    /// Moves to `offset` (kept within the content), stopping any animated scroll first.
    void setContentOffset(const QPointF &offset, bool animated = false);
    /// Width of the visible area by the height of every section and the footer.
    QSizeF contentSize() const;

    /// Off: neither wheel nor drag scrolls, and wheel turns go on to the table's parent.
    bool isScrollEnabled() const { return m_scrollEnabled; }
    void setScrollEnabled(bool enabled);

    /// Shown under the last row and owned by the table. Its height is the larger of its
    /// minimum height and its size hint, so an empty widget takes no room.
    QWidget *tableFooterView() const { return m_footer; }
    void setTableFooterView(QWidget *footer);

    SeparatorStyle separatorStyle() const { return m_separatorStyle; }
    void setSeparatorStyle(SeparatorStyle style);
    QColor separatorColor() const { return m_separatorColor; }
    void setSeparatorColor(const QColor &color);

    QColor backgroundColor() const { return m_backgroundColor; }
    void setBackgroundColor(const QColor &color);

Q_SIGNALS:
    void contentOffsetChanged(const QPointF &offset);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    struct Press
    {
        bool active = false;
        bool dragging = false;
        qreal startY = 0;
        qreal startOffset = 0;
        QPointer<TableViewCell> cell;
    };

    qreal heightOfRow(const IndexPath &path);
    qreal footerHeight() const;
    qreal maxOffset() const;
    void ensureLoaded();
    /// Moves to `y`, kept within the content, and lays out the rows when that is a move.
    void applyOffset(qreal y);
    /// Lays out the rows again after a change of content, keeping the offset within it.
    void relayout();
    void animateOffset(quint64 generation, qreal from, qreal to, double startMs);
    void layoutRows();
    TableViewCell *adoptCell(const IndexPath &path);
    void placeCell(TableViewCell *cell, const TableRowGeometry::RowSpan &span);
    void syncScrollBar();
    bool handlePointer(TableViewCell *cell, QMouseEvent *event);

    TableViewDataSource *m_dataSource = nullptr;
    TableViewDelegate *m_delegate = nullptr;
    TableRowGeometry m_geometry;
    TableLiveCells m_cells;
    QPointer<QWidget> m_footer;
    qreal m_rowHeight = DefaultRowHeight;
    qreal m_offsetY = 0;
    quint64 m_scrollGeneration = 0;
    bool m_needsReload = true;
    bool m_inLayout = false;
    bool m_syncingScrollBar = false;
    bool m_scrollEnabled = true;
    SeparatorStyle m_separatorStyle = SeparatorStyle::None;
    QColor m_separatorColor = QColor(0xC6, 0xC6, 0xC8);
    QColor m_backgroundColor = Qt::white;
    Press m_press;
};

} // namespace platform
