#include "jet/sql/plans/select_query.h"

#include "jet/errors.h"
#include "jet/sql/functions/sort_key.h"
#include "jet/sql/plans/filtered_cursor.h"
#include "jet/sql/plans/join.h"

#include <algorithm>

namespace jet::sql {

using base::Result;
using base::Status;

bool HasAggregate(const Expression& expression) {
    return expression.kind == NodeKind::kAggregate ||
           std::ranges::any_of(expression.children,
                               [](const ExpressionPtr& child) { return HasAggregate(*child); });
}

Result<Value> OutputValue(const Expression& e, EvalContext& context) {
    ASSIGN_OR_RETURN(Value value, Evaluate(e, context));
    return IsColumn(e) ? value : WithoutTruth(std::move(value));
}

Status AppendKeyOf(const Expression& e, bool descending, EvalContext& context, std::string& key) {
    if (IsColumn(e)) {
        AppendSortKey((*context.rows)[e.source][e.slot], descending, key);
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(const Value value, Evaluate(e, context));
    AppendSortKey(value, descending, key);
    return Status::Ok();
}

SelectQuery::SelectQuery(SelectStatement&& select, Session& session, Scope&& scope)
    : select_(std::move(select)), session_(session), scope_(std::move(scope)) {}

SelectQuery::~SelectQuery() = default;

Status SelectQuery::Bind() {
    RETURN_IF_ERROR(ExpandStars());
    RETURN_IF_ERROR(ResolveOrder());
    NameOutputs();
    RETURN_IF_ERROR(BindExpressions());
    RETURN_IF_ERROR(CheckClauses());
    return FindPath(false);
}

const std::vector<OrderItem>& SelectQuery::path_order() const {
    static const std::vector<OrderItem> any;
    return any;
}

Status SelectQuery::FindPath(bool outer_known) {
    if (scope_.sources().size() != 1) return Status::Ok();
    ASSIGN_OR_RETURN(path_,
                     ChoosePath(scope_, select_.where.get(), path_order(), session_, outer_known));
    return Status::Ok();
}

Status SelectQuery::RefreshPath() {
    return scope_.outer_uses().empty() ? Status::Ok() : FindPath(true);
}

const ColumnDesign* SelectQuery::OutputColumn(std::size_t output) const {
    const Expression& e = *select_.outputs[output].expression;
    if (!IsColumn(e)) return nullptr;
    const Source& source = scope_.sources()[e.source];
    return &source.table->design().columns[source.columns[e.slot]];
}

Status SelectQuery::ExpandStars() {
    const auto is_star = [](const OutputItem& item) { return item.expression == nullptr; };
    if (std::ranges::none_of(select_.outputs, is_star)) return Status::Ok();
    std::vector<OutputItem> expanded;
    for (OutputItem& item : select_.outputs) {
        if (item.expression != nullptr) {
            expanded.push_back(std::move(item));
            continue;
        }
        bool found = false;
        for (const Source& source : scope_.sources()) {
            if (!item.star_of.empty() && !SameName(item.star_of, source.name)) continue;
            found = true;
            for (const ColumnDesign& column : source.table->design().columns) {
                OutputItem output;
                output.expression = std::make_unique<Expression>();
                output.expression->kind = NodeKind::kName;
                output.expression->qualifier = source.name;
                output.expression->name = column.name;
                expanded.push_back(std::move(output));
            }
        }
        if (!found)
            return item.star_of.empty() ? JetError(ErrorNumber::kNoTableInQuery)
                                        : JetError(ErrorNumber::kParameterMissing);
    }
    select_.outputs = std::move(expanded);
    return Status::Ok();
}

// Positions and aliases stand for their outputs.
Status SelectQuery::ResolveOrder() {
    for (OrderItem& order : select_.order_by) {
        Expression& e = *order.expression;
        const auto* position =
            e.kind == NodeKind::kLiteral ? e.value.get_if<std::int32_t>() : nullptr;
        if (position != nullptr) {
            if (*position < 1 || static_cast<std::size_t>(*position) > select_.outputs.size())
                return JetError(ErrorNumber::kSyntaxInOrderBy);
            order.expression =
                Clone(*select_.outputs[static_cast<std::size_t>(*position) - 1].expression);
            continue;
        }
        if (e.kind != NodeKind::kName || !e.qualifier.empty()) continue;
        for (const OutputItem& output : select_.outputs) {
            if (output.alias.empty() || !SameName(output.alias, e.name)) continue;
            order.expression = Clone(*output.expression);
            break;
        }
    }
    return Status::Ok();
}

Status SelectQuery::BindExpressions() {
    if (select_.where != nullptr) {
        if (HasAggregate(*select_.where)) return JetError(ErrorNumber::kAggregateInWhere, u"");
        RETURN_IF_ERROR(sql::Bind(*select_.where, scope_, session_));
    }
    for (const ExpressionPtr& key : select_.group_by)
        RETURN_IF_ERROR(sql::Bind(*key, scope_, session_));
    for (OutputItem& item : select_.outputs)
        RETURN_IF_ERROR(sql::Bind(*item.expression, output_scope(), session_, &aggregates_));
    if (select_.having != nullptr)
        RETURN_IF_ERROR(sql::Bind(*select_.having, scope_, session_, &aggregates_));
    for (OrderItem& order : select_.order_by)
        RETURN_IF_ERROR(sql::Bind(*order.expression, scope_, session_, &aggregates_));
    return select_.from != nullptr ? BindJoins(*select_.from, scope_, session_) : Status::Ok();
}

// Rows that DISTINCT makes one are sorted by what they show.
Status SelectQuery::CheckClauses() const {
    if (!select_.distinct) return Status::Ok();
    for (const OrderItem& order : select_.order_by) {
        const bool selected = std::any_of(
            select_.outputs.begin(), select_.outputs.end(), [&](const OutputItem& item) {
                return SameExpression(*item.expression, *order.expression);
            });
        if (!selected)
            return JetError(ErrorNumber::kOrderConflictsWithDistinct, order.expression->name);
    }
    return Status::Ok();
}

// A name that two outputs share is given with its source.
void SelectQuery::NameOutputs() {
    std::size_t unnamed = 1000;
    for (const OutputItem& item : select_.outputs)
        names_.push_back(NameOf(item, unnamed));
    if (scope_.sources().size() < 2) return;
    const std::vector<std::u16string> plain = names_;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const Expression& e = *select_.outputs[i].expression;
        if (e.kind != NodeKind::kName || !select_.outputs[i].alias.empty()) continue;
        const auto equal = [&](const std::u16string& name) { return SameName(name, plain[i]); };
        if (std::count_if(plain.begin(), plain.end(), equal) < 2) continue;
        const auto place = scope_.Find(e.qualifier, e.name);
        if (place.ok()) names_[i] = scope_.sources()[place->source].name + u"." + plain[i];
    }
}

std::u16string SelectQuery::NameOf(const OutputItem& item, std::size_t& unnamed) const {
    if (!item.alias.empty()) return item.alias;
    if (item.expression->kind == NodeKind::kName) {
        const auto place = scope_.Find(item.expression->qualifier, item.expression->name);
        if (!place.ok()) return item.expression->name;
        return scope_.sources()[place->source].table->design().columns[place->column].name;
    }
    const std::string number = std::to_string(unnamed++);
    return u"Expr" + std::u16string(number.begin(), number.end());
}

// Outputs and their order do not matter, nor how many rows there are.
Result<bool> SelectQuery::HasRows() {
    RETURN_IF_ERROR(RefreshPath());
    if (select_.top && *select_.top == 0) return false;
    bool has_rows = false;
    RETURN_IF_ERROR(ForEachRow([&](const SourceRows&) -> Result<bool> {
        has_rows = true;
        return false;
    }));
    return has_rows;
}

Status SelectQuery::AppendOrderKey(EvalContext& context, std::string& key) const {
    for (const OrderItem& order : select_.order_by)
        RETURN_IF_ERROR(AppendKeyOf(*order.expression, order.descending, context, key));
    return Status::Ok();
}

Status SelectQuery::ForEachRow(const TakeRow& take) {
    if (select_.from == nullptr) {
        const SourceRows none;
        EvalContext context{&session_, &none, nullptr};
        ASSIGN_OR_RETURN(const Truth truth, select_.where == nullptr
                                                ? Result<Truth>(Truth::kTrue)
                                                : EvaluateTruth(*select_.where, context));
        return truth == Truth::kTrue ? take(none).status() : Status::Ok();
    }
    if (scope_.sources().size() > 1) return ForEachCombination(take);
    ASSIGN_OR_RETURN(const std::unique_ptr<FilteredCursor> cursor,
                     FilteredCursor::Open(scope_, path_, select_.where.get(), session_));
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
        if (!row) return Status::Ok();
        RETURN_IF_ERROR(cursor->ReadInUse());
        ASSIGN_OR_RETURN(const bool more, take(cursor->rows()));
        if (!more) return Status::Ok();
    }
}

// A subquery that is run for each row around it keeps what it has read for the whole statement.
Status SelectQuery::ForEachCombination(const TakeRow& take) {
    if (joiner_ == nullptr) {
        ASSIGN_OR_RETURN(joiner_,
                         Joiner::Make(*select_.from, scope_, select_.where.get(), session_));
    }
    Status done =
        joiner_->Run([&](const SourceRows& rows, const CombinedRows&) { return take(rows); });
    if (outer_uses().empty()) joiner_.reset();
    return done;
}

}  // namespace jet::sql
