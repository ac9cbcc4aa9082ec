#include "jet/sql/bind.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/sql/functions.h"
#include "jet/sql/text_case.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

Status WrongArguments(const Expression& call) {
    return {base::StatusCode::kInvalidArgument,
            "Wrong number of arguments used with function in query expression '" +
                base::ToUtf8(call.name) + "'.",
            3075};
}

Status BindName(Expression& name, Scope& scope, const Session& session) {
    if (SameName(name.name, u"@@IDENTITY") && name.qualifier.empty()) {
        name.kind = NodeKind::kLiteral;
        name.value = Value::Long(session.identity);
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(const Scope::Place place, scope.Find(name.qualifier, name.name));
    name.kind = NodeKind::kColumn;
    name.source = place.source;
    name.slot = scope.Use(place);
    return Status::Ok();
}

Status BindCall(Expression& call) {
    call.function = FindFunction(call.name);
    if (call.function == nullptr) return JetError(3085, call.name);
    if (call.children.size() < call.function->least || call.children.size() > call.function->most)
        return WrongArguments(call);
    return Status::Ok();
}

}  // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t x, char16_t y) { return x == y || ToLower(x) == ToLower(y); });
}

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
        if (found) return JetError(3079, name);
        found = Place{i, column};
    }
    if (!found) return JetError(3061);
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
    if (aggregate && aggregates == nullptr) return JetError(3095, expression.name);
    for (const ExpressionPtr& child : expression.children)
        RETURN_IF_ERROR(Bind(*child, scope, session, aggregate ? nullptr : aggregates));
    if (aggregate) {
        expression.slot = aggregates->size();
        aggregates->push_back(&expression);
    }
    if (expression.kind == NodeKind::kCall) return BindCall(expression);
    return Status::Ok();
}

ExpressionPtr Clone(const Expression& expression) {
    auto copy = std::make_unique<Expression>();
    copy->kind = expression.kind;
    copy->value = expression.value;
    copy->qualifier = expression.qualifier;
    copy->name = expression.name;
    copy->operators = expression.operators;
    copy->negated = expression.negated;
    copy->aggregate = expression.aggregate;
    copy->begin = expression.begin;
    copy->end = expression.end;
    copy->source = expression.source;
    copy->slot = expression.slot;
    copy->function = expression.function;
    for (const ExpressionPtr& child : expression.children)
        copy->children.push_back(Clone(*child));
    return copy;
}

bool SameExpression(const Expression& a, const Expression& b) {
    if (a.kind != b.kind || a.value != b.value || a.operators != b.operators ||
        a.negated != b.negated || a.function != b.function ||
        a.children.size() != b.children.size())
        return false;
    if (a.kind == NodeKind::kName &&
        !(SameName(a.name, b.name) && SameName(a.qualifier, b.qualifier)))
        return false;
    if (a.kind == NodeKind::kCall && !SameName(a.name, b.name)) return false;
    if (a.kind == NodeKind::kColumn && (a.source != b.source || a.slot != b.slot)) return false;
    if (a.kind == NodeKind::kAggregate && a.aggregate != b.aggregate) return false;
    for (std::size_t i = 0; i < a.children.size(); ++i)
        if (!SameExpression(*a.children[i], *b.children[i])) return false;
    return true;
}

bool IsColumn(const Expression& expression) {
    return expression.kind == NodeKind::kColumn;
}

}  // namespace jet::sql
