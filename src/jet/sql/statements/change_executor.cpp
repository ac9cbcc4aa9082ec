// INSERT, UPDATE and DELETE.
#include "jet/errors.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/plans/access_path.h"
#include "jet/sql/plans/filtered_cursor.h"
#include "jet/sql/plans/query.h"
#include "jet/sql/statements/change_steps.h"
#include "jet/sql/statements/executor.h"
#include "jet/sql/statements/transaction.h"
#include "jet/sql/syntax/parser.h"
#include "jet/values/coerce.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

class Inserter {
public:
    Inserter(Table& table, Session& session) : table_(table), session_(session) {}

    // The columns that are given values, in the order of the values.
    Status SetColumns(const std::vector<std::u16string>& names) {
        const TableDesign& design = table_.design();
        for (const std::u16string& name : names) {
            const std::size_t column = FindColumn(design, name);
            if (column == design.columns.size())
                return JetError(ErrorNumber::kUnknownFieldInInsert, name);
            if (std::find(targets_.begin(), targets_.end(), column) != targets_.end())
                return JetError(ErrorNumber::kDuplicateDestination, name);
            targets_.push_back(column);
        }
        if (names.empty())
            for (std::size_t i = 0; i < design.columns.size(); ++i)
                targets_.push_back(i);
        return FindDefaults();
    }
    std::size_t columns() const { return targets_.size(); }
    const ColumnDesign& column(std::size_t i) const { return table_.design().columns[targets_[i]]; }

    Status Insert(std::vector<Value> given) {
        ASSIGN_OR_RETURN(std::vector<Value> row, Defaults());
        for (std::size_t i = 0; i < targets_.size(); ++i)
            row[targets_[i]] = std::move(given[i]);
        const auto inserted = table_.Insert(row);
        if (!inserted.ok()) return inserted.status();
        const std::vector<ColumnDesign>& columns = table_.design().columns;
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (columns[i].autonumber && row[i].is<std::int32_t>())
                identity_ = row[i].as<std::int32_t>();
        return Status::Ok();
    }

    // To be called when the statement is committed.
    void KeepIdentity() {
        if (identity_) session_.identity = *identity_;
    }

private:
    struct Default {
        std::size_t column = 0;
        ExpressionPtr expression;
    };

    // A default that this engine does not understand gives no value.
    Status FindDefaults() {
        const std::vector<ColumnDesign>& columns = table_.design().columns;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (!columns[i].default_value || columns[i].autonumber) continue;
            if (std::find(targets_.begin(), targets_.end(), i) != targets_.end()) continue;
            std::u16string_view text = *columns[i].default_value;
            if (!text.empty() && text.front() == u'=') text.remove_prefix(1);
            auto expression = ParseExpression(text, session_.current_year());
            Scope none;
            if (!expression.ok() || !Bind(**expression, none, session_).ok()) continue;
            defaults_.push_back({i, std::move(expression).value()});
        }
        return Status::Ok();
    }

    Result<std::vector<Value>> Defaults() {
        std::vector<Value> row(table_.design().columns.size());
        EvalContext context{&session_, nullptr, nullptr};
        for (const Default& by_default : defaults_) {
            const ColumnDesign& column = table_.design().columns[by_default.column];
            ASSIGN_OR_RETURN(row[by_default.column],
                             StoredValue(*by_default.expression, context, column));
        }
        return row;
    }

    Table& table_;
    Session& session_;
    std::vector<std::size_t> targets_;
    std::vector<Default> defaults_;
    std::optional<std::int32_t> identity_;
};

Status InsertValues(InsertStatement& insert, Session& session, Inserter& inserter) {
    if (insert.values.size() != inserter.columns())
        return JetError(ErrorNumber::kValueCountDiffers);
    Scope none;
    EvalContext context{&session, nullptr, nullptr};
    std::vector<Value> values;
    for (std::size_t i = 0; i < insert.values.size(); ++i) {
        RETURN_IF_ERROR(Bind(*insert.values[i], none, session));
        ASSIGN_OR_RETURN(Value value, StoredValue(*insert.values[i], context, inserter.column(i)));
        values.push_back(std::move(value));
    }
    return inserter.Insert(std::move(values));
}

// The rows are read before the first is inserted: the source may be the same table.
Result<std::int64_t> InsertSelected(InsertStatement& insert, Session& session, Inserter& inserter) {
    ASSIGN_OR_RETURN(const std::unique_ptr<Query> query,
                     Query::Prepare(std::move(*insert.select), session));
    if (query->names().size() != inserter.columns())
        return JetError(ErrorNumber::kValueCountDiffers);
    ASSIGN_OR_RETURN(std::vector<ResultRow> rows, query->Rows());
    for (ResultRow& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            ASSIGN_OR_RETURN(row[i], Coerce(row[i], inserter.column(i)));
        }
        RETURN_IF_ERROR(inserter.Insert(std::move(row)));
    }
    return static_cast<std::int64_t>(rows.size());
}

// The rows that a condition selects, found before the first of them is changed.
struct Selected {
    Scope scope;
    std::vector<RowId> rows;
};

Result<Selected> Select(const FromNode& from, Expression* where, Session& session) {
    Selected selected;
    RETURN_IF_ERROR(selected.scope.Add(from.table, from.alias, session));
    RETURN_IF_ERROR(CheckWritable(session, *selected.scope.sources()[0].table));
    if (where != nullptr) RETURN_IF_ERROR(Bind(*where, selected.scope, session));
    ASSIGN_OR_RETURN(const AccessPath path, ChoosePath(selected.scope, where, {}, session));
    ASSIGN_OR_RETURN(const std::unique_ptr<FilteredCursor> cursor,
                     FilteredCursor::Open(selected.scope, path, where, session));
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
        if (!row) return selected;
        selected.rows.push_back(*row);
    }
}

// Tells who watches the rows of a statement, now and then.
class RowCount {
public:
    RowCount(const Session& session, std::size_t total)
        : watch_(session.rows_watch), total_(static_cast<std::int64_t>(total)) {}
    // One more is about to be changed.
    void Next() {
        constexpr std::int64_t kRowsApart = 256;
        if (watch_ && done_ % kRowsApart == 0) watch_(done_, total_);
        ++done_;
    }

private:
    const std::function<void(std::int64_t, std::int64_t)>& watch_;
    std::int64_t total_;
    std::int64_t done_ = 0;
};

struct BoundAssignment {
    std::size_t column = 0;
    const Expression* value = nullptr;
};

Result<std::vector<BoundAssignment>> BindAssignments(UpdateStatement& update, Scope& scope,
                                                     Session& session) {
    std::vector<BoundAssignment> bound;
    for (const Assignment& assignment : update.assignments) {
        ASSIGN_OR_RETURN(const Scope::Place place,
                         scope.Find(assignment.target->qualifier, assignment.target->name));
        for (const BoundAssignment& other : bound)
            if (other.column == place.column)
                return JetError(ErrorNumber::kDuplicateDestination, assignment.target->name);
        if (HasSubquery(*assignment.value)) return JetError(ErrorNumber::kNotUpdatable);
        RETURN_IF_ERROR(Bind(*assignment.value, scope, session));
        bound.push_back({place.column, assignment.value.get()});
    }
    return bound;
}

}  // namespace

Status CheckWritable(Session& session, const Table& table) {
    if (session.database->read_only()) return JetError(ErrorNumber::kNotUpdatable);
    const auto reason = table.read_only_reason();
    return reason ? *reason : Status::Ok();
}

// A bare column keeps its type; the truth of an expression is a number.
Result<Value> StoredValue(const Expression& e, EvalContext& context, const ColumnDesign& column) {
    ASSIGN_OR_RETURN(Value value, Evaluate(e, context));
    const bool plain = IsColumn(e) || column.type == ColumnType::kBoolean;
    return Coerce(plain ? value : WithoutTruth(std::move(value)), column);
}

Result<std::int64_t> Execute(InsertStatement& insert, Session& session) {
    const auto table = session.database->FindTable(insert.table);
    if (!table.ok())
        return Is(table.status(), ErrorNumber::kNoSuchTable)
                   ? JetError(ErrorNumber::kNoOutputTable, insert.table)
                   : table.status();
    RETURN_IF_ERROR(CheckWritable(session, **table));
    Inserter inserter(**table, session);
    RETURN_IF_ERROR(inserter.SetColumns(insert.columns));
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    std::int64_t count = 1;
    if (insert.select != nullptr) {
        ASSIGN_OR_RETURN(count, InsertSelected(insert, session, inserter));
    } else {
        RETURN_IF_ERROR(InsertValues(insert, session, inserter));
    }
    RETURN_IF_ERROR(transaction.Commit());
    inserter.KeepIdentity();
    return count;
}

Result<std::int64_t> Execute(UpdateStatement& update, Session& session) {
    if (update.from->left != nullptr) return UpdateJoined(update, session);
    ASSIGN_OR_RETURN(const Selected selected, Select(*update.from, update.where.get(), session));
    Scope scope;
    RETURN_IF_ERROR(scope.Add(update.from->table, update.from->alias, session));
    ASSIGN_OR_RETURN(const auto assignments, BindAssignments(update, scope, session));
    if (selected.rows.empty()) return std::int64_t{0};
    const Source& source = scope.sources()[0];
    SourceRows values(1);
    values[0].resize(source.columns.size());
    EvalContext context{&session, &values, nullptr};
    std::vector<std::size_t> columns;
    columns.reserve(assignments.size());
    for (const BoundAssignment& assignment : assignments)
        columns.push_back(assignment.column);
    RowCount count(session, selected.rows.size());
    const auto make = [&](std::span<Value> new_values) -> Status {
        count.Next();
        for (std::size_t i = 0; i < assignments.size(); ++i) {
            const ColumnDesign& column = source.table->design().columns[columns[i]];
            ASSIGN_OR_RETURN(new_values[i], StoredValue(*assignments[i].value, context, column));
        }
        return Status::Ok();
    };
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(
        source.table->Update(selected.rows, {source.columns, values[0], columns, make}));
    RETURN_IF_ERROR(transaction.Commit());
    return static_cast<std::int64_t>(selected.rows.size());
}

Result<std::int64_t> Execute(DeleteStatement& erase, Session& session) {
    if (erase.from->left != nullptr) return DeleteJoined(erase, session);
    ASSIGN_OR_RETURN(const Selected selected, Select(*erase.from, erase.where.get(), session));
    const std::u16string& name = selected.scope.sources()[0].name;
    if (!erase.target.empty() && !SameName(erase.target, name))
        return JetError(ErrorNumber::kNoSuchTable, erase.target);
    if (selected.rows.empty()) return std::int64_t{0};
    Table& table = *selected.scope.sources()[0].table;
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(table.Delete(selected.rows));
    RETURN_IF_ERROR(transaction.Commit());
    return static_cast<std::int64_t>(selected.rows.size());
}

}  // namespace jet::sql
