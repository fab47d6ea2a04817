#include "platform/TableRowGeometry.h"

#include <algorithm>
#include <bit>

namespace platform {

void TableRowGeometry::reset(
    const std::vector<qreal> &headerHeights, const std::vector<int> &rowCounts, const RowHeight &rowHeight)
{
    m_heights.clear();
    m_sectionStart.clear();
    for (size_t section = 0; section < rowCounts.size(); ++section) {
        m_sectionStart.push_back(itemCount());
        m_heights.push_back(std::max<qreal>(headerHeights[section], 0));
        for (int row = 0; row < rowCounts[section]; ++row)
            m_heights.push_back(std::max<qreal>(rowHeight({ int(section), row }), 0));
    }
    rebuild();
}

int TableRowGeometry::rowCount(int section) const
{
    if (section < 0 || section >= sectionCount())
        return 0;
    const int end = section + 1 < sectionCount() ? m_sectionStart[section + 1] : itemCount();
    return end - m_sectionStart[section] - 1;
}

int TableRowGeometry::totalRowCount() const
{
    return itemCount() - sectionCount();
}

bool TableRowGeometry::contains(const IndexPath &path) const
{
    return path.isValid() && path.row < rowCount(path.section);
}

std::vector<TableRowGeometry::RowSpan> TableRowGeometry::rowsBetween(qreal top, qreal bottom, int extra) const
{
    int item = itemAt(top);
    for (int before = 0; item > 0 && before < extra;) {
        if (pathOf(--item).isValid())
            ++before;
    }
    std::vector<RowSpan> spans;
    qreal y = prefix(item);
    for (int after = 0; item < itemCount(); y += m_heights[item++]) {
        const bool below = y >= bottom;
        if (below && after == extra)
            break;
        const IndexPath path = pathOf(item);
        if (!path.isValid())
            continue;
        spans.push_back({ path, y, m_heights[item] });
        after += below ? 1 : 0;
    }
    return spans;
}

void TableRowGeometry::setRowHeight(const IndexPath &path, qreal height)
{
    const int item = itemOf(path);
    add(item, std::max<qreal>(height, 0) - m_heights[item]);
}

void TableRowGeometry::insertRow(const IndexPath &path, qreal height)
{
    m_heights.insert(m_heights.begin() + itemOf(path), std::max<qreal>(height, 0));
    for (int section = path.section + 1; section < sectionCount(); ++section)
        ++m_sectionStart[section];
    rebuild();
}

void TableRowGeometry::removeRow(const IndexPath &path)
{
    m_heights.erase(m_heights.begin() + itemOf(path));
    for (int section = path.section + 1; section < sectionCount(); ++section)
        --m_sectionStart[section];
    rebuild();
}

IndexPath TableRowGeometry::pathOf(int item) const
{
    const auto next = std::upper_bound(m_sectionStart.begin(), m_sectionStart.end(), item);
    const int section = int(next - m_sectionStart.begin()) - 1;
    const int row = item - m_sectionStart[section] - 1;
    return row < 0 ? IndexPath {} : IndexPath { section, row };
}

qreal TableRowGeometry::prefix(int count) const
{
    qreal sum = 0;
    for (int i = count; i > 0; i &= i - 1)
        sum += m_tree[i];
    return sum;
}

int TableRowGeometry::itemAt(qreal y) const
{
    // Descends the tree to the last item whose bottom is at or above y; the next one covers y.
    int item = 0;
    qreal rest = y;
    for (int step = int(std::bit_floor(unsigned(itemCount()))); step > 0; step >>= 1) {
        if (item + step <= itemCount() && m_tree[item + step] <= rest) {
            item += step;
            rest -= m_tree[item];
        }
    }
    return item;
}

void TableRowGeometry::add(int item, qreal delta)
{
    m_heights[item] += delta;
    for (int i = item + 1; i <= itemCount(); i += i & -i)
        m_tree[i] += delta;
}

void TableRowGeometry::rebuild()
{
    // Linear construction: each node passes its sum on to its parent once.
    m_tree.assign(m_heights.size() + 1, 0);
    for (int i = 1; i <= itemCount(); ++i) {
        m_tree[i] += m_heights[i - 1];
        const int parent = i + (i & -i);
        if (parent <= itemCount())
            m_tree[parent] += m_tree[i];
    }
}

} // namespace platform
