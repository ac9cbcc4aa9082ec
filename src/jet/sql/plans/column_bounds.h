// ColumnBounds: what a condition says about the values of single columns, as ranges that an index
// can be asked for. The ranges hold every value that can satisfy the condition, and perhaps others.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/functions/session.h"
#include "jet/sql/syntax/ast.h"

#include <optional>
#include <vector>

namespace jet::sql {

struct IntervalEnd {
    Value value;          // of the column's type, or Null
    bool prefix = false;  // a text: all texts that begin with it belong to the interval
};

// Both ends belong to it. nullopt: no end; below lies Null then.
struct Interval {
    std::optional<IntervalEnd> low;
    std::optional<IntervalEnd> high;
};

struct ColumnBounds {
    std::size_t column = 0;           // position in the table's design
    std::vector<Interval> intervals;  // ascending, apart from each other; none: no value satisfies
    bool exact = false;               // one interval, in which all values are equal
    bool null = false;                // Null satisfies the condition
};

// Requires: `where` is bound to `source`, the only one. `outer_known`: the rows of the statement
// around this one are known (session.h), so that their columns are constants.
std::vector<ColumnBounds> FindBounds(const Expression& where, const Source& source,
                                     Session& session, bool outer_known);

}  // namespace jet::sql
