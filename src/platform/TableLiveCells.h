// The cells a table shows at the moment, by row, and their way back to the pool when their
// rows scroll away, change or go. Rows moved by an insertion or deletion keep their cells.
#pragma once

#include "platform/IndexPath.h"
#include "platform/TableCellPool.h"

#include <QList>

#include <map>
#include <vector>

namespace platform {

class TableViewCell;

class TableLiveCells
{
public:
    TableCellPool &pool() { return m_pool; }

    /// The live cell of a row, or nullptr.
    TableViewCell *cell(const IndexPath &path) const;
    IndexPath pathOf(const TableViewCell *cell) const;
    /// Top to bottom.
    QList<TableViewCell *> cells() const;
    QList<IndexPath> paths() const;

    void insert(const IndexPath &path, TableViewCell *cell) { m_live[path] = cell; }
    /// Returns every live cell but those of `paths` to the pool.
    void keepOnly(const std::vector<IndexPath> &paths);
    void recycle(const IndexPath &path);
    void recycleAll();
    /// Moves the live rows at and after `from` in its section by `by` rows.
    void shift(const IndexPath &from, int by);

private:
    TableCellPool m_pool;
    std::map<IndexPath, TableViewCell *> m_live;
};

} // namespace platform
