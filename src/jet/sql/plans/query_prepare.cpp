// Query, first half: names, orders and groups are checked and bound.
#include "jet/errors.h"
#include "jet/sql/plans/join.h"
#include "jet/sql/plans/query.h"

#include <algorithm>
#include <set>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

bool HasAggregate(const Expression& e) {
    return e.kind == NodeKind::kAggregate ||
           std::any_of(e.children.begin(), e.children.end(),
                       [](const ExpressionPtr& child) { return HasAggregate(*child); });
}

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

Query::Query(SelectStatement select, Session& session, Scope* outer)
    : select_(std::move(select)), session_(session), scope_(outer) {}

Query::~Query() = default;

Result<std::unique_ptr<Query>> Query::Prepare(SelectStatement select, Session& session,
                                              Scope* outer) {
    // Rows for a new table are no result.
    if (!select.into.empty()) return JetError(3219);
    auto query = std::unique_ptr<Query>(new Query(std::move(select), session, outer));
    RETURN_IF_ERROR(query->Bind());
    return query;
}

Status Query::Bind() {
    if (select_.from != nullptr) RETURN_IF_ERROR(AddSources(*select_.from, scope_, session_));
    RETURN_IF_ERROR(ExpandStars());
    if (!select_.unions.empty()) return PrepareUnions();
    RETURN_IF_ERROR(ResolveOrder());
    row_wise_ = IsRowWise();
    if (row_wise_) output_scope_ = scope_;
    NameOutputs();
    RETURN_IF_ERROR(BindExpressions());
    if (select_.distinct) RETURN_IF_ERROR(CheckDistinctOrder());
    if (IsGrouped() || select_.having != nullptr) RETURN_IF_ERROR(CheckGrouping());
    return FindPath(false);
}

Status Query::FindPath(bool outer_known) {
    if (scope_.sources().size() != 1) return Status::Ok();
    const std::vector<OrderItem> no_order;
    const bool use_order = row_wise_ && !select_.top;
    ASSIGN_OR_RETURN(path_,
                     ChoosePath(scope_, select_.where.get(),
                                use_order ? select_.order_by : no_order, session_, outer_known));
    return Status::Ok();
}

std::vector<OuterUse> Query::outer_uses() const {
    std::vector<OuterUse> uses = scope_.outer_uses();
    const std::vector<OuterUse>& more = output_scope_.outer_uses();
    uses.insert(uses.end(), more.begin(), more.end());
    for (const std::unique_ptr<Query>& part : unions_) {
        const std::vector<OuterUse> of_part = part->outer_uses();
        uses.insert(uses.end(), of_part.begin(), of_part.end());
    }
    return uses;
}

const ColumnDesign* Query::OutputColumn(std::size_t output) const {
    if (!unions_.empty()) return nullptr;
    const Expression& e = *select_.outputs[output].expression;
    if (!IsColumn(e)) return nullptr;
    const Source& source = (row_wise_ ? output_scope_ : scope_).sources()[e.source];
    return &source.table->design().columns[source.columns[e.slot]];
}

Status Query::ExpandStars() {
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
        if (!found) return item.star_of.empty() ? JetError(3067) : JetError(3061);
    }
    select_.outputs = std::move(expanded);
    return Status::Ok();
}

// Positions and aliases stand for their outputs.
Status Query::ResolveOrder() {
    for (OrderItem& order : select_.order_by) {
        Expression& e = *order.expression;
        const auto* position =
            e.kind == NodeKind::kLiteral ? e.value.get_if<std::int32_t>() : nullptr;
        if (position != nullptr) {
            if (*position < 1 || static_cast<std::size_t>(*position) > select_.outputs.size())
                return JetError(3138);
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

bool Query::IsRowWise() const {
    if (scope_.sources().size() != 1 || select_.distinct) return false;
    if (!select_.group_by.empty() || select_.having != nullptr) return false;
    return std::none_of(select_.outputs.begin(), select_.outputs.end(),
                        [](const OutputItem& item) { return HasAggregate(*item.expression); });
}

Status Query::BindExpressions() {
    Scope& output_scope = row_wise_ ? output_scope_ : scope_;
    if (select_.where != nullptr) {
        if (HasAggregate(*select_.where)) return JetError(3096, u"");
        RETURN_IF_ERROR(sql::Bind(*select_.where, scope_, session_));
    }
    for (const ExpressionPtr& key : select_.group_by)
        RETURN_IF_ERROR(sql::Bind(*key, scope_, session_));
    for (OutputItem& item : select_.outputs)
        RETURN_IF_ERROR(sql::Bind(*item.expression, output_scope, session_, &aggregates_));
    if (select_.having != nullptr)
        RETURN_IF_ERROR(sql::Bind(*select_.having, scope_, session_, &aggregates_));
    for (OrderItem& order : select_.order_by)
        RETURN_IF_ERROR(sql::Bind(*order.expression, scope_, session_, &aggregates_));
    return select_.from != nullptr ? BindJoins(*select_.from, scope_, session_) : Status::Ok();
}

Status Query::CheckGrouping() const {
    for (std::size_t i = 0; i < select_.outputs.size(); ++i)
        if (FindUngrouped(*select_.outputs[i].expression, select_.group_by) != nullptr)
            return JetError(3122, names_[i]);
    for (const OrderItem& order : select_.order_by)
        if (const Expression* column = FindUngrouped(*order.expression, select_.group_by))
            return JetError(3122, column->name);
    if (select_.having != nullptr)
        if (const Expression* column = FindUngrouped(*select_.having, select_.group_by))
            return JetError(3122, column->name);
    return Status::Ok();
}

Status Query::CheckDistinctOrder() const {
    for (const OrderItem& order : select_.order_by) {
        const bool selected = std::any_of(
            select_.outputs.begin(), select_.outputs.end(), [&](const OutputItem& item) {
                return SameExpression(*item.expression, *order.expression);
            });
        if (!selected) return JetError(3093, order.expression->name);
    }
    return Status::Ok();
}

// The whole takes its names from the first SELECT; each part is a query of its own.
Status Query::PrepareUnions() {
    NameOutputs();
    SelectStatement first = std::move(select_);
    select_ = SelectStatement();
    select_.unions = std::move(first.unions);
    select_.order_by = std::move(first.order_by);
    first.unions.clear();
    first.order_by.clear();
    Scope* const outer = scope_.outer();
    scope_ = Scope();
    ASSIGN_OR_RETURN(auto head, Prepare(std::move(first), session_, outer));
    unions_.push_back(std::move(head));
    for (SelectStatement::Union& part : select_.unions) {
        ASSIGN_OR_RETURN(auto query, Prepare(std::move(*part.select), session_, outer));
        if (query->names().size() != names_.size()) return JetError(3307);
        unions_.push_back(std::move(query));
    }
    for (OrderItem& order : select_.order_by) {
        Expression& e = *order.expression;
        std::size_t position = names_.size();
        if (const auto* number = e.value.get_if<std::int32_t>())
            position = static_cast<std::size_t>(*number) - 1;
        else if (e.kind == NodeKind::kName)
            position = static_cast<std::size_t>(
                std::find_if(names_.begin(), names_.end(),
                             [&](const std::u16string& name) { return SameName(name, e.name); }) -
                names_.begin());
        if (position >= names_.size()) return JetError(3138);
        e.slot = position;
    }
    return Status::Ok();
}

// A name that two outputs share is given with its source.
void Query::NameOutputs() {
    std::size_t unnamed = 1000;
    for (const OutputItem& item : select_.outputs)
        names_.push_back(NameOf(item, unnamed));
    const std::vector<std::u16string> plain = names_;
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const Expression& e = *select_.outputs[i].expression;
        if (e.kind != NodeKind::kName || !select_.outputs[i].alias.empty()) continue;
        const auto equal = [&](const std::u16string& name) { return SameName(name, plain[i]); };
        if (scope_.sources().size() < 2 || std::count_if(plain.begin(), plain.end(), equal) < 2)
            continue;
        const auto place = scope_.Find(e.qualifier, e.name);
        if (place.ok()) names_[i] = scope_.sources()[place->source].name + u"." + plain[i];
    }
}

std::u16string Query::NameOf(const OutputItem& item, std::size_t& unnamed) const {
    if (!item.alias.empty()) return item.alias;
    if (item.expression->kind == NodeKind::kName) {
        const auto place = scope_.Find(item.expression->qualifier, item.expression->name);
        if (!place.ok()) return item.expression->name;
        return scope_.sources()[place->source].table->design().columns[place->column].name;
    }
    const std::string number = std::to_string(unnamed++);
    return u"Expr" + std::u16string(number.begin(), number.end());
}

Result<std::unique_ptr<PreparedSelect>> PrepareSubselect(const SelectStatement& select,
                                                         Session& session, Scope& outer) {
    ASSIGN_OR_RETURN(std::unique_ptr<Query> query, Query::Prepare(Clone(select), session, &outer));
    return std::unique_ptr<PreparedSelect>(std::move(query));
}

}  // namespace jet::sql
