#include "jet/errors.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/plans/join.h"
#include "jet/sql/statements/change_steps.h"
#include "jet/sql/statements/transaction.h"

#include <map>
#include <set>
#include <span>
#include <utility>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

struct JoinedAssignment {
    Scope::Place target;
    std::size_t slot = 0;  // of the target in its source's row
    const Expression* value = nullptr;
};

struct NewValue {
    Value before;  // when the row was found
    Value value;
};

// The new values of the rows, each row once: of several for one column the last one stays.
class RowChanges {
public:
    using Columns = std::map<std::size_t, NewValue>;

    void Set(Table& table, RowId row, std::size_t column, NewValue value) {
        const auto [known, is_new] = numbers_.try_emplace({&table, row}, rows_.size());
        if (is_new) rows_.push_back({&table, row, {}});
        rows_[known->second].columns.insert_or_assign(column, std::move(value));
    }

    Status Write() const {
        for (const Row& row : rows_) {
            ASSIGN_OR_RETURN(const std::vector<ColumnChange> changes, StillMeant(row));
            if (!changes.empty()) RETURN_IF_ERROR(row.table->Update(row.id, changes));
        }
        return Status::Ok();
    }

private:
    struct Row {
        Table* table = nullptr;
        RowId id;
        Columns columns;
    };

    // Where the new value equals the old one, a change by a cascade of this statement is kept.
    static Result<std::vector<ColumnChange>> StillMeant(const Row& row) {
        std::vector<ColumnChange> changes;
        for (const auto& [column, value] : row.columns) {
            Value now = value.before;
            if (value.value == value.before)
                RETURN_IF_ERROR(row.table->Read(row.id, std::span(&column, 1), std::span(&now, 1)));
            if (now == value.before) changes.push_back({column, value.value});
        }
        return changes;
    }

    std::map<std::pair<Table*, RowId>, std::size_t> numbers_;
    std::vector<Row> rows_;  // as they were found
};

Status BindFrom(FromNode& from, Expression* where, Scope& scope, Session& session) {
    RETURN_IF_ERROR(AddSources(from, scope, session));
    RETURN_IF_ERROR(BindJoins(from, scope, session));
    return where != nullptr ? Bind(*where, scope, session) : Status::Ok();
}

Result<std::vector<JoinedAssignment>> BindJoinedAssignments(UpdateStatement& update, Scope& scope,
                                                            Session& session) {
    std::vector<JoinedAssignment> bound;
    for (const Assignment& assignment : update.assignments) {
        const Expression& name = *assignment.target;
        ASSIGN_OR_RETURN(const Scope::Place place, scope.Find(name.qualifier, name.name));
        for (const JoinedAssignment& other : bound)
            if (other.target.source == place.source && other.target.column == place.column)
                return JetError(ErrorNumber::kDuplicateDestination, name.name);
        RETURN_IF_ERROR(CheckWritable(session, *scope.sources()[place.source].table));
        if (HasSubquery(*assignment.value)) return JetError(ErrorNumber::kNotUpdatable);
        RETURN_IF_ERROR(Bind(*assignment.value, scope, session));
        bound.push_back({place, scope.Use(place), assignment.value.get()});
    }
    return bound;
}

// The new values that one combination gives, for each source that has a row.
Status CollectChanges(const std::vector<JoinedAssignment>& assignments, const Scope& scope,
                      EvalContext& context, const CombinedRows& found, RowChanges& changes) {
    for (const JoinedAssignment& assignment : assignments) {
        const std::size_t source = assignment.target.source;
        if (!found[source]) continue;
        Table& table = *scope.sources()[source].table;
        const ColumnDesign& column = table.design().columns[assignment.target.column];
        ASSIGN_OR_RETURN(Value value, StoredValue(*assignment.value, context, column));
        changes.Set(table, *found[source], assignment.target.column,
                    {(*context.rows)[source][assignment.slot], std::move(value)});
    }
    return Status::Ok();
}

Result<std::size_t> FindTarget(const DeleteStatement& erase, const Scope& scope) {
    if (erase.target.empty()) return JetError(ErrorNumber::kNoTargetOfDelete);
    for (std::size_t i = 0; i < scope.sources().size(); ++i)
        if (SameName(scope.sources()[i].name, erase.target)) return i;
    return JetError(ErrorNumber::kNoSuchTable, erase.target);
}

}  // namespace

Result<std::int64_t> UpdateJoined(UpdateStatement& update, Session& session) {
    Scope scope;
    RETURN_IF_ERROR(BindFrom(*update.from, update.where.get(), scope, session));
    ASSIGN_OR_RETURN(const auto assignments, BindJoinedAssignments(update, scope, session));
    RowChanges changes;
    std::int64_t count = 0;
    ASSIGN_OR_RETURN(const std::unique_ptr<Joiner> joiner,
                     Joiner::Make(*update.from, scope, update.where.get(), session));
    const auto collect = [&](const SourceRows& rows, const CombinedRows& found) -> Result<bool> {
        ++count;
        EvalContext context{&session, &rows, nullptr};
        RETURN_IF_ERROR(CollectChanges(assignments, scope, context, found, changes));
        return true;
    };
    RETURN_IF_ERROR(joiner->Run(collect));
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(changes.Write());
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
    ASSIGN_OR_RETURN(const std::unique_ptr<Joiner> joiner,
                     Joiner::Make(*erase.from, scope, erase.where.get(), session));
    const auto collect = [&](const SourceRows&, const CombinedRows& found) -> Result<bool> {
        if (found[target]) rows.insert(*found[target]);
        return true;
    };
    RETURN_IF_ERROR(joiner->Run(collect));
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(table.Delete(std::vector<RowId>(rows.begin(), rows.end())));
    RETURN_IF_ERROR(transaction.Commit());
    return static_cast<std::int64_t>(rows.size());
}

}  // namespace jet::sql
