// Executing the statements that change rows or designs. Each is one transaction.
#pragma once

#include "base/status.h"
#include "jet/sql/functions/session.h"
#include "jet/sql/syntax/ast.h"

#include <cstdint>

namespace jet::sql {

// Each gives the number of rows that it touched. 3073: the database cannot be written.
base::Result<std::int64_t> Execute(InsertStatement& insert, Session& session);
base::Result<std::int64_t> Execute(UpdateStatement& update, Session& session);
base::Result<std::int64_t> Execute(DeleteStatement& erase, Session& session);
// Of a SELECT INTO; nothing is left of the statement. 3027 as below.
base::Result<std::int64_t> Execute(SelectStatement& select, Session& session);

// 3027: the database cannot be written.
base::Status Execute(const CreateTableStatement& create, Session& session);
base::Status Execute(const CreateIndexStatement& create, Session& session);
base::Status Execute(const AlterTableStatement& alter, Session& session);
base::Status Execute(const DropStatement& drop, Session& session);

// True for the statements that change a table's design.
bool ChangesDesign(const Statement& statement);

}  // namespace jet::sql
