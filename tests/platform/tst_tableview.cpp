// The table view: which rows live as widgets and where they stand, how cells come back for
// other rows, and how the table scrolls, is kept from scrolling, and follows row changes.
#include "platform/ManualClock.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TableViewCell.h"
#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"

#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QWheelEvent>

#include <numeric>

using platform::IndexPath;
using platform::TableView;
using platform::TableViewCell;

namespace {

constexpr int Width = 375;
constexpr int Height = 812;
constexpr qreal RowHeight = 50;

class LabelCell : public TableViewCell
{
public:
    using TableViewCell::TableViewCell;
    QLabel *label = new QLabel(contentView());
    int reuses = 0;
    void prepareForReuse() override
    {
        TableViewCell::prepareForReuse();
        ++reuses;
        label->clear();
    }
};

// One section of rows whose heights the test sets; counts what the table asks for.
class Rows : public platform::TableViewDataSource, public platform::TableViewDelegate
{
public:
    explicit Rows(int count, qreal height = RowHeight)
        : heights(count, height)
    {
    }
    QList<qreal> heights;
    int cellRequests = 0;
    QList<IndexPath> selected;

    int numberOfRows(TableView *, int) const override { return int(heights.size()); }
    TableViewCell *cellForRow(TableView *table, const IndexPath &path) override
    {
        ++cellRequests;
        auto *cell = static_cast<LabelCell *>(table->dequeueReusableCell(QStringLiteral("text")));
        cell->label->setText(QString::number(path.row));
        return cell;
    }
    qreal heightForRow(TableView *, const IndexPath &path) override { return heights.at(path.row); }
    void didSelectRow(TableView *, const IndexPath &path) override { selected.append(path); }
};

struct Table
{
    explicit Table(Rows &rows)
    {
        view.resize(Width, Height);
        view.registerCell<LabelCell>(QStringLiteral("text"));
        view.setDataSource(&rows);
        view.setDelegate(&rows);
        view.show();
    }
    TableView view;

    int top(int row) const { return view.cellForRow({ 0, row })->geometry().top(); }
};

} // namespace

class TestTableView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { platform::SystemFont::install(); }

    void onlyRowsOnScreenLive_data()
    {
        QTest::addColumn<qreal>("offset");
        QTest::addColumn<int>("firstRow");
        QTest::addColumn<int>("lastRow");
        // 812 points show 17 rows of 50 (16 whole and a sliver); one more lives on either side.
        QTest::newRow("top") << 0.0 << 0 << 17;
        QTest::newRow("middle, between rows") << 250025.0 << 4999 << 5017;
        QTest::newRow("past the end stops at the last row") << 1e9 << 9982 << 9999;
    }

    void onlyRowsOnScreenLive()
    {
        QFETCH(qreal, offset);
        QFETCH(int, firstRow);
        QFETCH(int, lastRow);
        Rows rows(10000);
        Table table(rows);
        table.view.setContentOffset({ 0, offset });
        QCOMPARE(table.view.indexPathsForVisibleRows().first().row, firstRow);
        const QList<TableViewCell *> cells = table.view.viewport()->findChildren<TableViewCell *>();
        QCOMPARE(
            std::count_if(cells.begin(), cells.end(), [](auto *c) { return !c->isHidden(); }), lastRow - firstRow + 1);
        QCOMPARE(
            static_cast<LabelCell *>(table.view.cellForRow({ 0, lastRow }))->label->text(), QString::number(lastRow));
        const qreal expectedOffset = std::min(offset, 10000 * RowHeight - Height);
        QCOMPARE(table.top(firstRow + 1), qRound((firstRow + 1) * RowHeight - expectedOffset));
    }

    void scrollingRecyclesCells()
    {
        Rows rows(10000);
        Table table(rows);
        // Frame by frame through every row: the widgets stay the ones made for the first screen.
        for (qreal y = 0; y < 10000 * RowHeight; y += 37)
            table.view.setContentOffset({ 0, y });
        // At most 18 rows of 50 meet 812 points, and one more lives on either side.
        QCOMPARE(table.view.viewport()->findChildren<TableViewCell *>().size(), 20);
        QVERIFY(static_cast<LabelCell *>(table.view.cellForRow({ 0, 9999 }))->reuses > 0);
        // A reload hands every visible row the cell it had.
        const QList<TableViewCell *> before = table.view.visibleCells();
        table.view.reloadData();
        QCOMPARE(table.view.visibleCells(), before);
    }

    void perRowHeightsAndContentSize()
    {
        Rows rows(1000);
        for (int row = 0; row < rows.heights.size(); ++row)
            rows.heights[row] = 20 + row % 7 * 10.5;
        Table table(rows);
        auto *footer = new QWidget;
        footer->setFixedHeight(40);
        table.view.setTableFooterView(footer);
        const qreal sum = std::accumulate(rows.heights.begin(), rows.heights.end(), 0.0);
        QCOMPARE(table.view.contentSize(), QSizeF(Width, sum + 40));
        table.view.setContentOffset({ 0, table.view.rectForRow({ 0, 600 }).top() + 1.25 });
        QCOMPARE(table.view.indexPathsForVisibleRows().at(1).row, 600);
        // Half-point heights at a fractional offset: neighbouring rows still meet, no gap, no overlap.
        const QList<TableViewCell *> cells = table.view.visibleCells();
        for (int i = 1; i < cells.size(); ++i)
            QCOMPARE(cells.at(i)->geometry().top(), cells.at(i - 1)->geometry().bottom() + 1);
        table.view.setContentOffset({ 0, 1e9 });
        QCOMPARE(footer->geometry(), QRect(0, Height - 40, Width, 40));
        // An empty footer exists but takes no room.
        table.view.setTableFooterView(new QWidget);
        QCOMPARE(table.view.contentSize().height(), sum);
    }

    void insertingAndReloadingRows()
    {
        Rows rows(5);
        Table table(rows);
        const QList<TableViewCell *> before = table.view.visibleCells();
        rows.heights.insert(2, 80);
        table.view.insertRows({ { 0, 2 } });
        QCOMPARE(table.view.cellForRow({ 0, 3 }), before.at(2));
        QCOMPARE(table.top(3), 2 * 50 + 80);
        QVERIFY(!before.contains(table.view.cellForRow({ 0, 2 })));
        // A reloaded row alone is asked for again; only the rows below it move, keeping their cells.
        const int requests = rows.cellRequests;
        rows.heights[2] = 95;
        table.view.reloadRows({ { 0, 2 } });
        QCOMPARE(rows.cellRequests, requests + 1);
        QCOMPARE(table.view.cellForRow({ 0, 3 }), before.at(2));
        QCOMPARE(table.top(3), 2 * 50 + 95);
        QCOMPARE(table.view.contentSize().height(), 5 * RowHeight + 95);
    }

    void scrollToRow_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<TableView::ScrollPosition>("position");
        QTest::addColumn<qreal>("offset");
        const qreal bottomOf30 = 31 * RowHeight - Height;
        QTest::newRow("bottom") << 30 << TableView::ScrollPosition::Bottom << bottomOf30;
        QTest::newRow("middle") << 30 << TableView::ScrollPosition::Middle << 30.5 * RowHeight - Height / 2;
        QTest::newRow("the middle of the last row is clamped")
            << 99 << TableView::ScrollPosition::Middle << 100 * RowHeight - Height;
    }

    void scrollToRow()
    {
        QFETCH(int, row);
        QFETCH(TableView::ScrollPosition, position);
        QFETCH(qreal, offset);
        platform::ManualClock clock;
        Rows rows(100);
        Table table(rows);
        table.view.scrollToRow({ 0, row }, position, true);
        clock.advance(TableView::ScrollAnimationMs / 2);
        const qreal halfway = table.view.contentOffset().y();
        QVERIFY(halfway > 0 && halfway < offset);
        clock.advance(TableView::ScrollAnimationMs / 2);
        QCOMPARE(table.view.contentOffset().y(), offset);
        QCOMPARE(clock.pendingTasks(), 0);
        if (position == TableView::ScrollPosition::Bottom)
            QCOMPARE(table.view.cellForRow({ 0, row })->geometry().bottom() + 1, Height);
    }

    void userScrolling_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::addRow("enabled") << true;
        QTest::addRow("disabled") << false;
    }

    void userScrolling()
    {
        QFETCH(bool, enabled);
        Rows rows(100);
        Table table(rows);
        TableView *view = &table.view;
        view->setScrollEnabled(enabled);
        // A wheel turn the table does not take goes on to its parent (the chat list a card sits in).
        QWheelEvent turn(
            { 10, 10 }, view->mapToGlobal(QPoint(10, 10)), {}, { 0, -240 }, Qt::NoButton, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(view->viewport(), &turn);
        QCOMPARE(view->contentOffset().y(), enabled ? 120.0 : 0.0);
        QCOMPARE(turn.isAccepted(), enabled);
        view->setContentOffset({});
        QLabel *label = static_cast<LabelCell *>(view->cellForRow({ 0, 2 }))->label;
        QTest::mousePress(label, Qt::LeftButton, {}, { 5, 5 });
        QTest::mouseMove(label, { 5, -95 });
        QTest::mouseRelease(label, Qt::LeftButton, {}, { 5, -95 });
        QCOMPARE(view->contentOffset().y(), enabled ? 100.0 : 0.0);
        // A drag is not a tap; a tap selects its row, whether or not the table scrolls.
        QCOMPARE(rows.selected.size(), enabled ? 0 : 1);
        QTest::mouseClick(view->cellForRow({ 0, 4 }), Qt::LeftButton);
        QCOMPARE(rows.selected.last(), (IndexPath { 0, 4 }));
    }
};

QTEST_MAIN(TestTableView)
#include "tst_tableview.moc"
