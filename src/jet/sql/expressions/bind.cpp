#include "jet/sql/expressions/bind.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/expressions/subquery.h"
#include "jet/sql/expressions/value_set.h"
#include "jet/sql/functions/functions.h"
#include "jet/values/calendar_names.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

Status WrongArguments(const Expression& call) {
    return JetError(ErrorNumber::kInQueryExpression,
                    u"Wrong number of arguments used with function", call.name);
}

// `failure` is what the statement's own sources say to the name.
Status BindOuterName(Expression& name, Scope& scope, Status failure) {
    std::size_t depth = 1;
    for (Scope* outer = scope.outer(); outer != nullptr; outer = outer->outer(), ++depth) {
        if (!Is(failure, ErrorNumber::kParameterMissing)) return failure;
        const auto place = outer->Find(name.qualifier, name.name);
        if (!place.ok()) {
            failure = place.status();
            continue;
        }
        name.kind = NodeKind::kOuter;
        name.depth = depth;
        name.source = place->source;
        name.slot = outer->Use(*place);
        scope.NoteOuterUse({depth, name.source, name.slot, name.name});
        return Status::Ok();
    }
    return failure;
}

Status BindName(Expression& name, Scope& scope, const Session& session) {
    if (name.qualifier.empty() && SameWord(name.name, u"@@IDENTITY")) {
        name.kind = NodeKind::kLiteral;
        name.value = Value::Long(session.identity);
        return Status::Ok();
    }
    const auto place = scope.Find(name.qualifier, name.name);
    if (!place.ok()) return BindOuterName(name, scope, place.status());
    name.kind = NodeKind::kColumn;
    name.source = place->source;
    name.slot = scope.Use(*place);
    return Status::Ok();
}

// The outer columns that a subquery uses become part of the expression, so that they
// are found as its other columns are.
Status BindSubquery(Expression& e, Scope& scope, Session& session) {
    ASSIGN_OR_RETURN(e.subquery,
                     Subquery::Prepare(*e.select, scope, session, e.kind == NodeKind::kExists));
    for (const OuterUse& use : e.subquery->uses()) {
        auto column = std::make_unique<Expression>();
        column->kind = use.depth == 1 ? NodeKind::kColumn : NodeKind::kOuter;
        column->source = use.source;
        column->slot = use.slot;
        column->depth = use.depth - 1;
        column->name = use.name;
        if (use.depth > 1) scope.NoteOuterUse({use.depth - 1, use.source, use.slot, use.name});
        e.children.push_back(std::move(column));
    }
    return Status::Ok();
}

bool IsNumberOrText(const Expression& e) {
    return e.kind == NodeKind::kLiteral ||
           (e.kind == NodeKind::kNegate && e.children[0]->kind == NodeKind::kLiteral);
}

void HashChoices(Expression& in, Session& session) {
    // Fewer are compared as fast one by one.
    constexpr std::size_t kWorthHashing = 8;
    if (in.children.size() <= kWorthHashing) return;
    EvalContext context{&session, nullptr, nullptr};
    std::vector<Value> values;
    for (std::size_t i = 1; i < in.children.size(); ++i) {
        if (!IsNumberOrText(*in.children[i])) return;
        auto value = Evaluate(*in.children[i], context);
        if (!value.ok()) return;
        values.push_back(std::move(value).value());
    }
    in.choices = ValueSet::Make(values);
}

Status BindCall(Expression& call) {
    call.function = FindFunction(call.name);
    if (call.function == nullptr) return JetError(ErrorNumber::kNoSuchFunction, call.name);
    if (call.children.size() < call.function->least || call.children.size() > call.function->most)
        return WrongArguments(call);
    return Status::Ok();
}

}  // namespace

std::size_t FindColumn(const TableDesign& design, std::u16string_view name) {
    std::size_t at = 0;
    while (at < design.columns.size() && !SameName(design.columns[at].name, name))
        ++at;
    return at;
}

Status Scope::Add(const std::u16string& table, const std::u16string& alias, Session& session) {
    auto found = session.database->FindTable(table);
    if (!found.ok()) return found.status();
    Source source;
    source.table = *found;
    source.name = alias.empty() ? table : alias;
    sources_.push_back(std::move(source));
    return Status::Ok();
}

Result<Scope::Place> Scope::Find(std::u16string_view qualifier, std::u16string_view name) const {
    std::optional<Place> found;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
        if (!qualifier.empty() && !SameName(qualifier, sources_[i].name)) continue;
        const TableDesign& design = sources_[i].table->design();
        const std::size_t column = FindColumn(design, name);
        if (column == design.columns.size()) continue;
        if (found) return JetError(ErrorNumber::kAmbiguousField, name);
        found = Place{i, column};
    }
    if (!found) return JetError(ErrorNumber::kParameterMissing);
    return *found;
}

std::size_t Scope::Use(const Place& place) {
    std::vector<std::size_t>& columns = sources_[place.source].columns;
    const auto found = std::find(columns.begin(), columns.end(), place.column);
    const auto slot = static_cast<std::size_t>(found - columns.begin());
    if (found == columns.end()) columns.push_back(place.column);
    return slot;
}

Status Bind(Expression& expression, Scope& scope, Session& session,
            std::vector<const Expression*>* aggregates) {
    if (expression.kind == NodeKind::kName) return BindName(expression, scope, session);
    const bool aggregate = expression.kind == NodeKind::kAggregate;
    if (aggregate && aggregates == nullptr)
        return JetError(ErrorNumber::kAggregateInExpression, expression.name);
    for (const ExpressionPtr& child : expression.children)
        RETURN_IF_ERROR(Bind(*child, scope, session, aggregate ? nullptr : aggregates));
    if (aggregate) {
        expression.slot = aggregates->size();
        aggregates->push_back(&expression);
    }
    if (expression.kind == NodeKind::kCall) return BindCall(expression);
    if (expression.kind == NodeKind::kIn) HashChoices(expression, session);
    if (expression.select != nullptr) return BindSubquery(expression, scope, session);
    return Status::Ok();
}

Status AddSources(FromNode& from, Scope& scope, Session& session) {
    if (from.left != nullptr) {
        RETURN_IF_ERROR(AddSources(*from.left, scope, session));
        return AddSources(*from.right, scope, session);
    }
    from.source = scope.sources().size();
    return scope.Add(from.table, from.alias, session);
}

Status BindJoins(FromNode& from, Scope& scope, Session& session) {
    if (from.left == nullptr) return Status::Ok();
    RETURN_IF_ERROR(BindJoins(*from.left, scope, session));
    RETURN_IF_ERROR(BindJoins(*from.right, scope, session));
    return from.on != nullptr ? Bind(*from.on, scope, session) : Status::Ok();
}

bool HasSubquery(const Expression& expression) {
    return expression.select != nullptr ||
           std::any_of(expression.children.begin(), expression.children.end(),
                       [](const ExpressionPtr& child) { return HasSubquery(*child); });
}

ExpressionPtr Clone(const Expression& expression) {
    auto copy = std::make_unique<Expression>();
    copy->kind = expression.kind;
    copy->value = expression.value;
    copy->qualifier = expression.qualifier;
    copy->name = expression.name;
    copy->operators = expression.operators;
    copy->negated = expression.negated;
    copy->all = expression.all;
    copy->select = expression.select;
    copy->subquery = expression.subquery;
    copy->depth = expression.depth;
    copy->aggregate = expression.aggregate;
    copy->begin = expression.begin;
    copy->end = expression.end;
    copy->source = expression.source;
    copy->slot = expression.slot;
    copy->function = expression.function;
    copy->choices = expression.choices;
    for (const ExpressionPtr& child : expression.children)
        copy->children.push_back(Clone(*child));
    return copy;
}

namespace {

ExpressionPtr CloneOf(const ExpressionPtr& expression) {
    return expression != nullptr ? Clone(*expression) : nullptr;
}

std::unique_ptr<FromNode> CloneOf(const std::unique_ptr<FromNode>& node) {
    if (node == nullptr) return nullptr;
    auto copy = std::make_unique<FromNode>();
    copy->table = node->table;
    copy->alias = node->alias;
    copy->kind = node->kind;
    copy->left = CloneOf(node->left);
    copy->right = CloneOf(node->right);
    copy->on = CloneOf(node->on);
    copy->source = node->source;
    return copy;
}

}  // namespace

SelectStatement Clone(const SelectStatement& select) {
    SelectStatement copy;
    copy.into = select.into;
    copy.distinct = select.distinct;
    copy.top = select.top;
    copy.top_percent = select.top_percent;
    for (const OutputItem& item : select.outputs)
        copy.outputs.push_back({CloneOf(item.expression), item.star_of, item.alias});
    copy.from = CloneOf(select.from);
    copy.where = CloneOf(select.where);
    for (const ExpressionPtr& key : select.group_by)
        copy.group_by.push_back(Clone(*key));
    copy.having = CloneOf(select.having);
    for (const OrderItem& item : select.order_by)
        copy.order_by.push_back({CloneOf(item.expression), item.descending});
    for (const SelectStatement::Union& part : select.unions)
        copy.unions.push_back({part.all, std::make_unique<SelectStatement>(Clone(*part.select))});
    return copy;
}

namespace {

bool SameText(const std::u16string& a, const std::u16string& b) {
    return SameName(a, b);
}

template <typename T>
bool SameParsed(const std::unique_ptr<T>& a, const std::unique_ptr<T>& b);

bool SameParsed(const Expression& a, const Expression& b) {
    return SameExpression(a, b);
}

bool SameParsed(const FromNode& a, const FromNode& b) {
    return SameText(a.table, b.table) && SameText(a.alias, b.alias) && a.kind == b.kind &&
           SameParsed(a.left, b.left) && SameParsed(a.right, b.right) && SameParsed(a.on, b.on);
}

bool SameParsed(const SelectStatement& a, const SelectStatement& b) {
    return a.distinct == b.distinct && a.top == b.top && a.top_percent == b.top_percent &&
           SameParsed(a.from, b.from) && SameParsed(a.where, b.where) &&
           SameParsed(a.having, b.having) &&
           std::ranges::equal(a.outputs, b.outputs,
                              [](const OutputItem& x, const OutputItem& y) {
                                  return SameText(x.star_of, y.star_of) &&
                                         SameText(x.alias, y.alias) &&
                                         SameParsed(x.expression, y.expression);
                              }) &&
           std::ranges::equal(
               a.group_by, b.group_by,
               [](const ExpressionPtr& x, const ExpressionPtr& y) { return SameParsed(x, y); }) &&
           std::ranges::equal(a.order_by, b.order_by,
                              [](const OrderItem& x, const OrderItem& y) {
                                  return x.descending == y.descending &&
                                         SameParsed(x.expression, y.expression);
                              }) &&
           std::ranges::equal(a.unions, b.unions,
                              [](const SelectStatement::Union& x, const SelectStatement::Union& y) {
                                  return x.all == y.all && SameParsed(x.select, y.select);
                              });
}

template <typename T>
bool SameParsed(const std::unique_ptr<T>& a, const std::unique_ptr<T>& b) {
    return a == nullptr || b == nullptr ? a == b : SameParsed(*a, *b);
}

// A subquery that is written twice is parsed twice.
bool SameSelect(const SelectStatement* a, const SelectStatement* b) {
    return a == b || (a != nullptr && b != nullptr && SameParsed(*a, *b));
}

}  // namespace

bool SameExpression(const Expression& a, const Expression& b) {
    if (a.kind != b.kind || a.value != b.value || a.operators != b.operators ||
        a.negated != b.negated || a.all != b.all || !SameSelect(a.select.get(), b.select.get()) ||
        a.function != b.function || a.children.size() != b.children.size())
        return false;
    if (a.kind == NodeKind::kName &&
        !(SameName(a.name, b.name) && SameName(a.qualifier, b.qualifier)))
        return false;
    if (a.kind == NodeKind::kCall && !SameName(a.name, b.name)) return false;
    if (a.kind == NodeKind::kOuter && a.depth != b.depth) return false;
    if ((a.kind == NodeKind::kColumn || a.kind == NodeKind::kOuter) &&
        (a.source != b.source || a.slot != b.slot))
        return false;
    if (a.kind == NodeKind::kAggregate && a.aggregate != b.aggregate) return false;
    for (std::size_t i = 0; i < a.children.size(); ++i)
        if (!SameExpression(*a.children[i], *b.children[i])) return false;
    return true;
}

bool IsColumn(const Expression& expression) {
    return expression.kind == NodeKind::kColumn;
}

}  // namespace jet::sql
