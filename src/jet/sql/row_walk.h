// RowWalk: the rows of one table that satisfy a condition, one after the other.
#pragma once

#include "jet/database.h"
#include "jet/sql/access_path.h"
#include "jet/sql/bind.h"
#include "jet/sql/evaluate.h"

#include <memory>
#include <optional>

namespace jet::sql {

class RowWalk {
public:
    // `scope` has one source, to which `where` (nullptr: none) is bound; both must outlive the
    // walk, as must the session and the table.
    static base::Result<std::unique_ptr<RowWalk>> Open(const Scope& scope, const AccessPath& path,
                                                       const Expression* where, Session& session);

    // nullopt: the end.
    base::Result<std::optional<RowId>> Next();
    // Any columns of the row met last, as it was when it was met.
    base::Status Read(std::span<const std::size_t> columns, std::span<Value> values) {
        return cursor_->Read(columns, values);
    }
    // The columns in use of the row met last.
    const SourceRows& rows() const { return rows_; }

private:
    RowWalk(const Source& source, const Expression* where, Session& session);
    base::Result<bool> Keeps();
    base::Status ReadColumns(std::size_t from, std::size_t to);

    const Source& source_;
    const Expression* where_;
    std::size_t tested_;  // the first columns in use, which the condition needs
    std::unique_ptr<RowCursor> cursor_;
    SourceRows rows_;
    EvalContext context_;
};

}  // namespace jet::sql
