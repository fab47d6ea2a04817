#include "platform/TableLiveCells.h"

namespace platform {

TableViewCell *TableLiveCells::cell(const IndexPath &path) const
{
    const auto live = m_live.find(path);
    return live == m_live.end() ? nullptr : live->second;
}

IndexPath TableLiveCells::pathOf(const TableViewCell *cell) const
{
    for (const auto &[path, live] : m_live) {
        if (live == cell)
            return path;
    }
    return {};
}

QList<TableViewCell *> TableLiveCells::cells() const
{
    QList<TableViewCell *> cells;
    for (const auto &[path, cell] : m_live)
        cells.append(cell);
    return cells;
}

QList<IndexPath> TableLiveCells::paths() const
{
    QList<IndexPath> paths;
    for (const auto &[path, cell] : m_live)
        paths.append(path);
    return paths;
}

void TableLiveCells::keepOnly(const std::vector<IndexPath> &paths)
{
    std::map<IndexPath, TableViewCell *> kept;
    for (const IndexPath &path : paths) {
        if (const auto live = m_live.find(path); live != m_live.end()) {
            kept.insert(*live);
            m_live.erase(live);
        }
    }
    recycleAll();
    m_live = std::move(kept);
}

void TableLiveCells::recycle(const IndexPath &path)
{
    if (const auto live = m_live.find(path); live != m_live.end()) {
        m_pool.put(live->second);
        m_live.erase(live);
    }
}

void TableLiveCells::recycleAll()
{
    // Bottom rows first: the pool hands out the last cell it took, so after a reload the top
    // rows get back the cells they had.
    for (auto live = m_live.rbegin(); live != m_live.rend(); ++live)
        m_pool.put(live->second);
    m_live.clear();
}

void TableLiveCells::shift(const IndexPath &from, int by)
{
    std::map<IndexPath, TableViewCell *> shifted;
    for (const auto &[path, cell] : m_live) {
        const bool moves = path.section == from.section && path.row >= from.row;
        shifted[moves ? IndexPath { path.section, path.row + by } : path] = cell;
    }
    m_live = std::move(shifted);
}

} // namespace platform
