// Rows of the engine's own tables, whose columns are known by their numbers.
#pragma once

#include "jet/errors.h"
#include "jet/tables/stored_table.h"

#include <map>

namespace jet {

// A row of a system table, by column number.
inline std::vector<Value> InShownOrder(const StoredTable& table,
                                       const std::map<std::uint16_t, Value>& by_number) {
    std::vector<Value> values(table.design().columns.size());
    for (const auto& [number, value] : by_number)
        if (const std::size_t shown = table.ShownPosition(number); shown < values.size())
            values[shown] = value;
    return values;
}

// Calls `visit` with row and values of `columns` (numbers) for every row.
template <typename Visit>
base::Status ForEachRow(StoredTable& table, const std::vector<std::uint16_t>& columns,
                        Visit visit) {
    std::vector<std::size_t> shown;
    for (const std::uint16_t number : columns) {
        shown.push_back(table.ShownPosition(number));
        if (shown.back() >= table.design().columns.size())
            return DamagedPage(table.definition().page, "a column is missing");
    }
    std::vector<Value> values(columns.size());
    ASSIGN_OR_RETURN(const auto cursor, table.Scan());
    while (true) {
        ASSIGN_OR_RETURN(const auto row, cursor->Next());
        if (!row) return {};
        RETURN_IF_ERROR(cursor->Read(shown, values));
        visit(*row, values);
    }
}

}  // namespace jet
