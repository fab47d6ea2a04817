#include "platform/TableCellPool.h"

#include "platform/TableViewCell.h"

namespace platform {

void TableCellPool::registerFactory(const QString &reuseIdentifier, Factory factory)
{
    m_factories.insert(reuseIdentifier, std::move(factory));
}

TableViewCell *TableCellPool::take(const QString &reuseIdentifier)
{
    std::vector<TableViewCell *> &waiting = m_waiting[reuseIdentifier];
    if (!waiting.empty()) {
        TableViewCell *cell = waiting.back();
        waiting.pop_back();
        cell->prepareForReuse();
        return cell;
    }
    const auto factory = m_factories.constFind(reuseIdentifier);
    return factory == m_factories.cend() ? nullptr : (*factory)(reuseIdentifier);
}

void TableCellPool::put(TableViewCell *cell)
{
    cell->hide();
    if (cell->reuseIdentifier().isEmpty())
        cell->deleteLater();
    else
        m_waiting[cell->reuseIdentifier()].push_back(cell);
}

int TableCellPool::waitingCount() const
{
    int count = 0;
    for (const std::vector<TableViewCell *> &waiting : m_waiting)
        count += int(waiting.size());
    return count;
}

} // namespace platform
