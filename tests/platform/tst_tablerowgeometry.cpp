// Row positions of a table: the prefix tree must agree with plain sums after any mix of
// re-measured, inserted and removed rows, and windows must pick the rows they meet.
#include "platform/TableRowGeometry.h"

#include <QTest>

#include <random>

using platform::IndexPath;
using platform::TableRowGeometry;

namespace {

// The same sections kept the slow way: header heights and lists of row heights.
struct PlainRows
{
    std::vector<qreal> headers;
    std::vector<std::vector<qreal>> rows;

    TableRowGeometry geometry() const
    {
        TableRowGeometry geometry;
        std::vector<int> counts;
        for (const auto &section : rows)
            counts.push_back(int(section.size()));
        geometry.reset(headers, counts, [this](const IndexPath &p) { return rows[p.section][p.row]; });
        return geometry;
    }

    // Every row with its top, in order.
    std::vector<TableRowGeometry::RowSpan> spans() const
    {
        std::vector<TableRowGeometry::RowSpan> all;
        qreal y = 0;
        for (size_t s = 0; s < rows.size(); ++s) {
            y += headers[s];
            for (size_t r = 0; r < rows[s].size(); y += rows[s][r++])
                all.push_back({ { int(s), int(r) }, y, rows[s][r] });
        }
        return all;
    }
};

QList<IndexPath> paths(const std::vector<TableRowGeometry::RowSpan> &spans)
{
    QList<IndexPath> list;
    for (const auto &span : spans)
        list.append(span.path);
    return list;
}

} // namespace

class TestTableRowGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windows_data()
    {
        QTest::addColumn<qreal>("top");
        QTest::addColumn<qreal>("bottom");
        QTest::addColumn<int>("extra");
        QTest::addColumn<QList<IndexPath>>("expected");
        // Section 0: header 0, rows 10, 20; section 1: header 5, no rows; section 2: header 0, rows 0, 30.
        QTest::newRow("edge to edge") << 10.0 << 30.0 << 0 << QList<IndexPath> { { 0, 1 } };
        QTest::newRow("inside the header of an empty section")
            << 31.0 << 34.0 << 1 << QList<IndexPath> { { 0, 1 }, { 2, 0 } };
        QTest::newRow("a zero-height row is passed over") << 35.0 << 40.0 << 0 << QList<IndexPath> { { 2, 1 } };
        QTest::newRow("widened across sections")
            << 12.0 << 13.0 << 2 << QList<IndexPath> { { 0, 0 }, { 0, 1 }, { 2, 0 }, { 2, 1 } };
        QTest::newRow("past the end") << 100.0 << 200.0 << 1 << QList<IndexPath> { { 2, 1 } };
    }

    void windows()
    {
        QFETCH(qreal, top);
        QFETCH(qreal, bottom);
        QFETCH(int, extra);
        QFETCH(QList<IndexPath>, expected);
        const PlainRows plain { { 0, 5, 0 }, { { 10, 20 }, {}, { 0, 30 } } };
        const TableRowGeometry geometry = plain.geometry();
        QCOMPARE(geometry.totalHeight(), 65.0);
        QCOMPARE(paths(geometry.rowsBetween(top, bottom, extra)), expected);
    }

    void agreesWithPlainSumsThroughEdits()
    {
        std::mt19937 random(7);
        auto height = [&] { return std::uniform_int_distribution(0, 400)(random) / 4.0; };
        PlainRows plain;
        for (int section = 0; section < 4; ++section) {
            plain.headers.push_back(section % 2 ? 0 : height());
            plain.rows.emplace_back(std::uniform_int_distribution(0, 300)(random));
            std::generate(plain.rows.back().begin(), plain.rows.back().end(), height);
        }
        TableRowGeometry geometry = plain.geometry();
        for (int step = 0; step < 300; ++step) {
            const int s = std::uniform_int_distribution(0, 3)(random);
            std::vector<qreal> &rows = plain.rows[s];
            const int r = std::uniform_int_distribution(0, int(rows.size()))(random);
            const int edit = std::uniform_int_distribution(0, 2)(random);
            if (edit == 0 || rows.empty() || r == int(rows.size())) {
                rows.insert(rows.begin() + r, height());
                geometry.insertRow({ s, r }, rows[r]);
            } else if (edit == 1) {
                rows[r] = height();
                geometry.setRowHeight({ s, r }, rows[r]);
            } else {
                rows.erase(rows.begin() + r);
                geometry.removeRow({ s, r });
            }
        }
        // Every row stands where the plain sums put it, and a window over it finds it alone.
        const auto spans = plain.spans();
        for (const auto &span : spans) {
            QCOMPARE(geometry.rowTop(span.path), span.top);
            QCOMPARE(geometry.rowHeight(span.path), span.height);
            if (span.height > 0)
                QCOMPARE(
                    paths(geometry.rowsBetween(span.top, span.top + span.height, 0)), QList<IndexPath> { span.path });
        }
        QCOMPARE(geometry.totalHeight(), spans.back().top + spans.back().height);
    }
};

QTEST_MAIN(TestTableRowGeometry)
#include "tst_tablerowgeometry.moc"
