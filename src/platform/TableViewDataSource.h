// What a table asks of whoever owns its rows: how many there are and the widget that shows one.
#pragma once

#include "platform/IndexPath.h"

namespace platform {

class TableView;
class TableViewCell;

class TableViewDataSource
{
public:
    virtual ~TableViewDataSource() = default;

    virtual int numberOfSections(TableView *table) const
    {
        Q_UNUSED(table)
        return 1;
    }
    virtual int numberOfRows(TableView *table, int section) const = 0;

    /// The cell that shows `path`, normally from table->dequeueReusableCell(). The table takes
    /// it over; returning nullptr leaves the row blank.
    virtual TableViewCell *cellForRow(TableView *table, const IndexPath &path) = 0;
};

} // namespace platform
