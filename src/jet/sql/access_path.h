// AccessPath: how the rows of one table are found for a condition and an order: through an index,
// or all of them.
#pragma once

#include "base/status.h"
#include "jet/database.h"
#include "jet/sql/ast.h"
#include "jet/sql/bind.h"
#include "jet/sql/evaluate.h"

#include <optional>
#include <vector>

namespace jet::sql {

struct AccessPath {
    std::optional<std::size_t> index;  // nullopt: the whole table in physical order
    KeyBound from;
    KeyBound to;
    bool backwards = false;
    bool in_order = false;  // the rows come in the order that was asked for
};

// The range holds every row that satisfies `where` (nullptr: none is given), and perhaps others:
// the condition is to be tested still. Requires: `where` and `order` are bound to `scope`, which
// has one source.
base::Result<AccessPath> ChoosePath(const Scope& scope, const Expression* where,
                                    const std::vector<OrderItem>& order, Session& session);

}  // namespace jet::sql
