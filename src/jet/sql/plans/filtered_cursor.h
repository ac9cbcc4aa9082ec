// FilteredCursor: the rows of one table that satisfy a condition, one by one.
#pragma once

#include "jet/sql/expressions/bind.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/plans/access_path.h"
#include "jet/sql/plans/row_filter.h"
#include "jet/tables/database.h"

#include <memory>
#include <optional>

namespace jet::sql {

class FilteredCursor {
public:
    // `scope` has one source, to which `where` (nullptr: none) is bound; both must outlive the
    // cursor, as must the session and the table.
    static base::Result<std::unique_ptr<FilteredCursor>>
    Open(const Scope& scope, const AccessPath& path, const Expression* where, Session& session);

    // nullopt: the end.
    base::Result<std::optional<RowId>> Next();
    // Any columns of the row met last, as it was when it was met.
    base::Status Read(std::span<const std::size_t> columns, std::span<Value> values) {
        return cursor_->Read(columns, values);
    }
    // Of the row met last; nullptr: the table's rows have no stored form.
    StoredFields* stored_fields() { return stored_fields_; }
    // The columns in use of the row met last. Requires: ReadInUse.
    const SourceRows& rows() const { return rows_; }
    // Reads those columns in use that the condition did not need; once is enough for a row.
    base::Status ReadInUse();

private:
    FilteredCursor(const Source& source, const Expression* where, Session& session);
    base::Status ReadColumns(std::size_t from, std::size_t to);

    const Source& source_;
    RowFilter filter_;
    std::size_t tested_;    // the first columns in use, which the condition needs
    std::size_t read_ = 0;  // so many of the columns in use have been read from the row met last
    std::unique_ptr<RowCursor> cursor_;
    StoredFields* stored_fields_ = nullptr;  // of cursor_
    SourceRows rows_;
    EvalContext context_;
};

}  // namespace jet::sql
