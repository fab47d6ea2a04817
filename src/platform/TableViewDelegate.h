// What a table asks of whoever decides its geometry and hears its taps. Every answer has a
// default, so a delegate overrides only what it cares about.
#pragma once

#include "platform/IndexPath.h"

#include <QtGlobal>

namespace platform {

class TableView;

class TableViewDelegate
{
public:
    virtual ~TableViewDelegate() = default;

    /// Height of one row in points; a negative answer means the table's rowHeight().
    virtual qreal heightForRow(TableView *table, const IndexPath &path)
    {
        Q_UNUSED(table)
        Q_UNUSED(path)
        return -1;
    }

    /// Blank space above a section's first row; 0 by default.
    virtual qreal heightForHeader(TableView *table, int section)
    {
        Q_UNUSED(table)
        Q_UNUSED(section)
        return 0;
    }

    /// A tap that landed on a row and was not taken by a control inside it.
    virtual void didSelectRow(TableView *table, const IndexPath &path)
    {
        Q_UNUSED(table)
        Q_UNUSED(path)
    }
};

} // namespace platform
