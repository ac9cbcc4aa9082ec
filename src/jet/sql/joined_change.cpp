#include "jet/errors.h"
#include "jet/sql/bind.h"
#include "jet/sql/change_steps.h"
#include "jet/sql/join.h"
#include "jet/sql/transaction.h"

#include <set>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

struct BoundAssignment {
    Scope::Place target;
    const Expression* value = nullptr;
};

struct RowChange {
    Table* table = nullptr;
    RowId row;
    std::vector<ColumnChange> columns;
};

Status BindFrom(FromNode& from, Expression* where, Scope& scope, Session& session) {
    RETURN_IF_ERROR(AddSources(from, scope, session));
    RETURN_IF_ERROR(BindJoins(from, scope, session));
    return where != nullptr ? Bind(*where, scope, session) : Status::Ok();
}

Result<std::vector<BoundAssignment>> BindAssignments(UpdateStatement& update, Scope& scope,
                                                     Session& session) {
    std::vector<BoundAssignment> bound;
    for (const Assignment& assignment : update.assignments) {
        const Expression& name = *assignment.target;
        ASSIGN_OR_RETURN(const Scope::Place place, scope.Find(name.qualifier, name.name));
        for (const BoundAssignment& other : bound)
            if (other.target.source == place.source && other.target.column == place.column)
                return JetError(3063, name.name);
        RETURN_IF_ERROR(CheckWritable(session, *scope.sources()[place.source].table));
        if (HasSubquery(*assignment.value)) return JetError(3073);
        RETURN_IF_ERROR(Bind(*assignment.value, scope, session));
        bound.push_back({place, assignment.value.get()});
    }
    return bound;
}

// Calls `take` with the combinations that satisfy the condition.
template <typename Take>
Status ForEachMatch(const FromNode& from, const Expression* where, const Scope& scope,
                    Session& session, Take take) {
    return ForEachCombinationOfRows(
        from, scope, where, session,
        [&](const SourceRows& rows, const CombinedRows& found) -> Status {
            EvalContext context{&session, &rows, nullptr};
            if (where != nullptr) {
                ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*where, context));
                if (truth != Truth::kTrue) return Status::Ok();
            }
            return take(context, found);
        });
}

// The changes of one combination, one for each source that has a row.
Status CollectChanges(const std::vector<BoundAssignment>& assignments, const Scope& scope,
                      EvalContext& context, const CombinedRows& found,
                      std::vector<RowChange>& changes) {
    std::vector<RowChange> by_source(found.size());
    for (const BoundAssignment& assignment : assignments) {
        const std::size_t source = assignment.target.source;
        if (!found[source]) continue;
        RowChange& change = by_source[source];
        change.table = scope.sources()[source].table;
        change.row = *found[source];
        const ColumnDesign& column = change.table->design().columns[assignment.target.column];
        ASSIGN_OR_RETURN(Value value, StoredValue(*assignment.value, context, column));
        change.columns.push_back({assignment.target.column, std::move(value)});
    }
    for (RowChange& change : by_source)
        if (change.table != nullptr) changes.push_back(std::move(change));
    return Status::Ok();
}

Result<std::size_t> FindTarget(const DeleteStatement& erase, const Scope& scope) {
    if (erase.target.empty()) return JetError(3128);
    for (std::size_t i = 0; i < scope.sources().size(); ++i)
        if (SameName(scope.sources()[i].name, erase.target)) return i;
    return JetError(3078, erase.target);
}

}  // namespace

Result<std::int64_t> UpdateJoined(UpdateStatement& update, Session& session) {
    Scope scope;
    RETURN_IF_ERROR(BindFrom(*update.from, update.where.get(), scope, session));
    ASSIGN_OR_RETURN(const auto assignments, BindAssignments(update, scope, session));
    std::vector<RowChange> changes;
    std::int64_t count = 0;
    RETURN_IF_ERROR(ForEachMatch(*update.from, update.where.get(), scope, session,
                                 [&](EvalContext& context, const CombinedRows& found) {
                                     ++count;
                                     return CollectChanges(assignments, scope, context, found,
                                                           changes);
                                 }));
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    for (const RowChange& change : changes)
        RETURN_IF_ERROR(change.table->Update(change.row, change.columns));
    RETURN_IF_ERROR(transaction.Commit());
    return count;
}

Result<std::int64_t> DeleteJoined(DeleteStatement& erase, Session& session) {
    Scope scope;
    RETURN_IF_ERROR(BindFrom(*erase.from, erase.where.get(), scope, session));
    ASSIGN_OR_RETURN(const std::size_t target, FindTarget(erase, scope));
    Table& table = *scope.sources()[target].table;
    RETURN_IF_ERROR(CheckWritable(session, table));
    std::set<RowId> rows;
    RETURN_IF_ERROR(ForEachMatch(*erase.from, erase.where.get(), scope, session,
                                 [&](EvalContext&, const CombinedRows& found) {
                                     if (found[target]) rows.insert(*found[target]);
                                     return Status::Ok();
                                 }));
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    for (const RowId row : rows)
        RETURN_IF_ERROR(table.Delete(row));
    RETURN_IF_ERROR(transaction.Commit());
    return static_cast<std::int64_t>(rows.size());
}

}  // namespace jet::sql
