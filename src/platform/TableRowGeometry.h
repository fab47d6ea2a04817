// Where every row of a table lies, for tables of many thousands of rows of varied heights.
// Section headers and rows form one run of items whose heights sit in a Fenwick tree, so the
// top of a row, the row under a point and a change of one height each cost O(log n);
// inserting or removing a row rebuilds the tree in O(n).
#pragma once

#include "platform/IndexPath.h"

#include <functional>
#include <vector>

namespace platform {

class TableRowGeometry
{
public:
    using RowHeight = std::function<qreal(const IndexPath &)>;

    struct RowSpan
    {
        IndexPath path;
        qreal top = 0;
        qreal height = 0;
    };

    /// Replaces every section: header heights (one per section), row counts and row heights.
    void reset(const std::vector<qreal> &headerHeights, const std::vector<int> &rowCounts, const RowHeight &rowHeight);

    int sectionCount() const { return static_cast<int>(m_sectionStart.size()); }
    int rowCount(int section) const;
    int totalRowCount() const;
    bool contains(const IndexPath &path) const;

    /// Height of every header and row together.
    qreal totalHeight() const { return prefix(itemCount()); }
    qreal rowTop(const IndexPath &path) const { return prefix(itemOf(path)); }
    qreal rowHeight(const IndexPath &path) const { return m_heights[itemOf(path)]; }
    qreal headerTop(int section) const { return prefix(m_sectionStart[section]); }

    /// The rows that meet [top, bottom), with `extra` more rows on either side.
    std::vector<RowSpan> rowsBetween(qreal top, qreal bottom, int extra = 0) const;

    void setRowHeight(const IndexPath &path, qreal height);
    void insertRow(const IndexPath &path, qreal height);
    void removeRow(const IndexPath &path);

private:
    int itemCount() const { return static_cast<int>(m_heights.size()); }
    int itemOf(const IndexPath &path) const { return m_sectionStart[path.section] + 1 + path.row; }
    /// The row shown by an item, or an invalid path for a section header.
    IndexPath pathOf(int item) const;
    /// Sum of the heights of the first `count` items.
    qreal prefix(int count) const;
    /// The item that covers `y`; itemCount() past the end.
    int itemAt(qreal y) const;
    void add(int item, qreal delta);
    void rebuild();

    std::vector<qreal> m_heights;
    std::vector<qreal> m_tree; // 1-based Fenwick tree over m_heights
    std::vector<int> m_sectionStart; // item of each section's header
};

} // namespace platform
