// The cells of a table that are off screen, kept by reuse identifier to be handed out again,
// and the factories that make a new cell when none of a kind is waiting.
#pragma once

#include <QHash>
#include <QString>

#include <functional>
#include <vector>

namespace platform {

class TableViewCell;

class TableCellPool
{
public:
    using Factory = std::function<TableViewCell *(const QString &reuseIdentifier)>;

    void registerFactory(const QString &reuseIdentifier, Factory factory);
    bool isRegistered(const QString &reuseIdentifier) const { return m_factories.contains(reuseIdentifier); }

    /// A waiting cell of that kind, prepared for reuse, or a new one; nullptr for an unknown kind.
    TableViewCell *take(const QString &reuseIdentifier);
    /// Hides `cell` until it is taken again. A cell without an identifier cannot be reused and
    /// is deleted once control returns to the event loop.
    void put(TableViewCell *cell);

    int waitingCount() const;

private:
    QHash<QString, Factory> m_factories;
    QHash<QString, std::vector<TableViewCell *>> m_waiting;
};

} // namespace platform
