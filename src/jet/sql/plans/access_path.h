// AccessPath: how the rows of one table are found for a condition and an order: through an index,
// or all of them.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/syntax/ast.h"
#include "jet/tables/database.h"

#include <memory>
#include <optional>
#include <vector>

namespace jet::sql {

struct IndexRange {
    KeyBound from;
    KeyBound to;
};

struct AccessPath {
    std::optional<std::size_t> index;  // nullopt: the whole table in physical order
    std::vector<IndexRange> ranges;    // of the index, in its order, apart from each other
    bool backwards = false;            // from the last range's end to the first one's beginning
    bool in_order = false;             // the rows come in the order that was asked for
};

// The ranges hold every row that satisfies `where` (nullptr: none is given), and perhaps others:
// the condition is to be tested still. Requires: `where` and `order` are bound to `scope`, which
// has one source. `outer_known`: see FindBounds.
base::Result<AccessPath> ChoosePath(const Scope& scope, const Expression* where,
                                    const std::vector<OrderItem>& order, Session& session,
                                    bool outer_known = false);

// The rows of the path. `table` is the scope's and must outlive the cursor.
base::Result<std::unique_ptr<RowCursor>> OpenPath(Table& table, const AccessPath& path);

}  // namespace jet::sql
