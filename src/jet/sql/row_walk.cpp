#include "jet/sql/row_walk.h"

namespace jet::sql {

using base::Result;

RowWalk::RowWalk(const Source& source, const Expression* where, Session& session)
    : source_(source), where_(where), rows_(1) {
    rows_[0].resize(source.columns.size());
    context_ = {&session, &rows_, nullptr};
}

Result<std::unique_ptr<RowWalk>> RowWalk::Open(const Scope& scope, const AccessPath& path,
                                               const Expression* where, Session& session) {
    const Source& source = scope.sources()[0];
    auto walk = std::unique_ptr<RowWalk>(new RowWalk(source, where, session));
    auto cursor = path.index ? source.table->Range(*path.index, path.from, path.to, path.backwards)
                             : source.table->Scan();
    if (!cursor.ok()) return cursor.status();
    walk->cursor_ = std::move(cursor).value();
    return walk;
}

Result<std::optional<RowId>> RowWalk::Next() {
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor_->Next());
        if (!row) return row;
        if (!source_.columns.empty()) RETURN_IF_ERROR(cursor_->Read(source_.columns, rows_[0]));
        ASSIGN_OR_RETURN(const bool keeps, Keeps());
        if (keeps) return row;
    }
}

Result<bool> RowWalk::Keeps() {
    if (where_ == nullptr) return true;
    ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*where_, context_));
    return truth == Truth::kTrue;
}

}  // namespace jet::sql
