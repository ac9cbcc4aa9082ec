#include "jet/sql/plans/filtered_cursor.h"

#include <algorithm>
#include <utility>

namespace jet::sql {

using base::Result;
using base::Status;

namespace {

// One more than the last slot that the expression reads.
std::size_t SlotsOf(const Expression& e) {
    std::size_t slots = e.kind == NodeKind::kColumn ? e.slot + 1 : 0;
    for (const ExpressionPtr& child : e.children)
        slots = std::max(slots, SlotsOf(*child));
    return slots;
}

}  // namespace

FilteredCursor::FilteredCursor(const Source& source, const Expression* where, Session& session)
    : source_(source), filter_(where), tested_(where != nullptr ? SlotsOf(*where) : 0), rows_(1) {
    rows_[0].resize(source.columns.size());
    context_ = {&session, &rows_, nullptr};
}

Result<std::unique_ptr<FilteredCursor>> FilteredCursor::Open(const Scope& scope,
                                                             const AccessPath& path,
                                                             const Expression* where,
                                                             Session& session) {
    const Source& source = scope.sources()[0];
    auto filtered = std::unique_ptr<FilteredCursor>(new FilteredCursor(source, where, session));
    ASSIGN_OR_RETURN(filtered->cursor_, OpenPath(*source.table, path));
    filtered->stored_fields_ = filtered->cursor_->stored_fields();
    return filtered;
}

Result<std::optional<RowId>> FilteredCursor::Next() {
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor_->Next());
        if (!row) return row;
        read_ = 0;
        const std::optional<bool> decided = filter_.Decides(stored_fields_, source_.columns);
        if (decided && !*decided) continue;
        if (decided) return row;
        RETURN_IF_ERROR(ReadColumns(0, tested_));
        read_ = tested_;
        ASSIGN_OR_RETURN(const bool keeps, filter_.Keeps(context_));
        if (keeps) return row;
    }
}

Status FilteredCursor::ReadInUse() {
    const std::size_t from = std::exchange(read_, source_.columns.size());
    return ReadColumns(from, source_.columns.size());
}

Status FilteredCursor::ReadColumns(std::size_t from, std::size_t to) {
    if (from == to) return Status::Ok();
    return cursor_->Read(std::span(source_.columns).subspan(from, to - from),
                         std::span(rows_[0]).subspan(from, to - from));
}

}  // namespace jet::sql
