// Where a row stands in a table: its section and its row within that section.
#pragma once

#include <QHashFunctions>
#include <QMetaType>

#include <compare>

namespace platform {

struct IndexPath
{
    int section = -1;
    int row = -1;

    /// True for a path that names some row; says nothing of whether a table has it.
    bool isValid() const { return section >= 0 && row >= 0; }

    friend auto operator<=>(const IndexPath &, const IndexPath &) = default;
};

inline size_t qHash(const IndexPath &path, size_t seed = 0)
{
    return qHashMulti(seed, path.section, path.row);
}

} // namespace platform

Q_DECLARE_METATYPE(platform::IndexPath)
