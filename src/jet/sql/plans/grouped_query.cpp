#include "jet/sql/plans/grouped_query.h"

#include "jet/errors.h"
#include "jet/sql/expressions/accumulator.h"
#include "jet/sql/expressions/evaluate.h"

#include <algorithm>
#include <unordered_map>

namespace jet::sql {

using base::Result;
using base::Status;

namespace {

// The first column outside of the grouped expressions and aggregates; nullptr: there is none.
const Expression* FindUngrouped(const Expression& e, const std::vector<ExpressionPtr>& groups) {
    if (e.kind == NodeKind::kAggregate) return nullptr;
    for (const ExpressionPtr& group : groups)
        if (SameExpression(e, *group)) return nullptr;
    if (IsColumn(e)) return &e;
    for (const ExpressionPtr& child : e.children)
        if (const Expression* found = FindUngrouped(*child, groups)) return found;
    return nullptr;
}

}  // namespace

// Collects the rows of each group and makes one row of each.
class GroupedQuery::Grouping {
public:
    explicit Grouping(const GroupedQuery& query) : query_(query) {}

    Result<bool> Add(const SourceRows& rows) {
        EvalContext context{&query_.session_, &rows, nullptr};
        key_.clear();
        for (const ExpressionPtr& expression : query_.select_.group_by)
            RETURN_IF_ERROR(AppendKeyOf(*expression, false, context, key_));
        const auto [found, is_new] = numbers_.try_emplace(key_, groups_.size());
        if (is_new) Open(key_, rows);
        for (Accumulator& accumulator : groups_[found->second].accumulators)
            RETURN_IF_ERROR(accumulator.Add(context));
        return true;
    }

    Result<std::vector<SortedRow>> Finish() {
        // Without GROUP BY there is one group, even of no rows.
        if (groups_.empty() && query_.select_.group_by.empty()) Open({}, NullRows());
        std::sort(groups_.begin(), groups_.end(),
                  [](const Group& a, const Group& b) { return a.key < b.key; });
        std::vector<SortedRow> rows;
        for (const Group& group : groups_)
            RETURN_IF_ERROR(AddRow(group, rows));
        return rows;
    }

private:
    struct Group {
        std::string key;
        SourceRows first;
        std::vector<Accumulator> accumulators;
    };

    void Open(const std::string& key, const SourceRows& rows) {
        Group group{key, rows, {}};
        for (const Expression* aggregate : query_.aggregates_)
            group.accumulators.emplace_back(*aggregate);
        groups_.push_back(std::move(group));
    }

    SourceRows NullRows() const {
        SourceRows rows;
        for (const Source& source : query_.scope_.sources())
            rows.emplace_back(source.columns.size());
        return rows;
    }

    Status AddRow(const Group& group, std::vector<SortedRow>& rows) {
        std::vector<Value> aggregates;
        for (const Accumulator& accumulator : group.accumulators) {
            ASSIGN_OR_RETURN(Value value, accumulator.Result());
            aggregates.push_back(std::move(value));
        }
        EvalContext context{&query_.session_, &group.first, &aggregates};
        if (query_.select_.having != nullptr) {
            ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*query_.select_.having, context));
            if (truth != Truth::kTrue) return Status::Ok();
        }
        ASSIGN_OR_RETURN(SortedRow row, query_.MakeRow(context, false));
        rows.push_back(std::move(row));
        return Status::Ok();
    }

    const GroupedQuery& query_;
    std::unordered_map<std::string, std::size_t> numbers_;
    std::string key_;  // of the row being added
    std::vector<Group> groups_;
};

Result<std::vector<SortedRow>> GroupedQuery::MakeRows(bool) {
    Grouping grouping(*this);
    RETURN_IF_ERROR(ForEachRow([&](const SourceRows& rows) { return grouping.Add(rows); }));
    return grouping.Finish();
}

Status GroupedQuery::CheckClauses() const {
    RETURN_IF_ERROR(ValueQuery::CheckClauses());
    for (std::size_t i = 0; i < select_.outputs.size(); ++i)
        if (FindUngrouped(*select_.outputs[i].expression, select_.group_by) != nullptr)
            return JetError(ErrorNumber::kNotPartOfAggregate, names_[i]);
    for (const OrderItem& order : select_.order_by)
        if (const Expression* column = FindUngrouped(*order.expression, select_.group_by))
            return JetError(ErrorNumber::kNotPartOfAggregate, column->name);
    if (select_.having != nullptr)
        if (const Expression* column = FindUngrouped(*select_.having, select_.group_by))
            return JetError(ErrorNumber::kNotPartOfAggregate, column->name);
    return Status::Ok();
}

Result<bool> GroupedQuery::HasRows() {
    if (select_.having == nullptr && !select_.group_by.empty()) return ValueQuery::HasRows();
    RETURN_IF_ERROR(RefreshPath());
    if (select_.top && *select_.top == 0) return false;
    // Without GROUP BY there is one group, even of no rows.
    if (select_.having == nullptr) return true;
    ASSIGN_OR_RETURN(const std::vector<SortedRow> rows, MakeRows(false));
    return !rows.empty();
}

}  // namespace jet::sql
