// Joining: the combined rows of a FROM clause with several tables.
#pragma once

#include "base/status.h"
#include "jet/sql/ast.h"
#include "jet/sql/bind.h"
#include "jet/sql/evaluate.h"

#include <functional>
#include <optional>
#include <vector>

namespace jet::sql {

// Calls `take` with each combination that the join conditions let through; the sides without a
// partner of outer joins are Null. `where` (nullptr: none) serves to find partners sooner; it is to
// be tested still. A row that `take` gets is valid during the call. Requires: everything is bound
// to `scope`. The columns in use of all sources are held in memory.
base::Status ForEachCombination(const FromNode& from, const Scope& scope, const Expression* where,
                                Session& session,
                                const std::function<base::Status(const SourceRows&)>& take);

// The same with the row of each source; nullopt: it has none, Null stands for its columns.
using CombinedRows = std::vector<std::optional<RowId>>;
base::Status ForEachCombinationOfRows(
    const FromNode& from, const Scope& scope, const Expression* where, Session& session,
    const std::function<base::Status(const SourceRows&, const CombinedRows&)>& take);

}  // namespace jet::sql
