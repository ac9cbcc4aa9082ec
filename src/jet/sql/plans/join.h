// Joiner: the combined rows of a FROM clause with several tables.
//
// Conditions that are joined by And are tested as soon as the tables they name are there: those of
// one table while it is read (through an index, where one serves), those of several when the last
// of them is joined. Tables that are joined by INNER JOIN or commas are taken in the order that
// keeps the combinations few: the one with the fewest rows first, then those that an equality links
// to what is there. The combinations come in the order in which the tables are written all the
// same.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/syntax/ast.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace jet::sql {

// The row of each source; nullopt: it has none, Null stands for its columns.
using CombinedRows = std::vector<std::optional<RowId>>;

// What it gets is valid during the call. False: no more combinations are wanted.
using TakeCombination = std::function<base::Result<bool>(const SourceRows&, const CombinedRows&)>;

class Joiner {
public:
    // Requires: everything is bound to `scope` and outlives this, `where` (nullptr: none) included.
    // 3296: a condition names a table that is not among those it joins.
    static base::Result<std::unique_ptr<Joiner>> Make(const FromNode& from, const Scope& scope,
                                                      const Expression* where, Session& session);
    ~Joiner();

    // Calls `take` with each combination that satisfies the join conditions and `where`. The
    // columns in use of all rows that conditions on one table leave are held in memory, for later
    // runs of the same statement, too. 3360: there are too many combinations.
    base::Status Run(const TakeCombination& take);

private:
    class Impl;

    explicit Joiner(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> impl_;
};

}  // namespace jet::sql
