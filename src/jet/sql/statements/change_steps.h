// What the statements that change rows have in common.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/syntax/ast.h"
#include "jet/tables/database.h"

namespace jet::sql {

// 3073: the database cannot be written; or why the table cannot.
base::Status CheckWritable(Session& session, const Table& table);

// The value of an expression as the column stores it.
base::Result<Value> StoredValue(const Expression& e, EvalContext& context,
                                const ColumnDesign& column);

// UPDATE and DELETE over joined tables. The rows are found before the first of them is changed.
// Requires: the FROM clause joins. An UPDATE sets nothing where a source has no row; it counts
// combinations, a DELETE counts rows. 3128: the DELETE does not say whose rows.
base::Result<std::int64_t> UpdateJoined(UpdateStatement& update, Session& session);
base::Result<std::int64_t> DeleteJoined(DeleteStatement& erase, Session& session);

}  // namespace jet::sql
