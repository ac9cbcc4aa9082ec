#include "jet/sql/plans/join_condition.h"

#include "jet/sql/expressions/bind.h"
#include "jet/sql/functions/functions.h"

#include <algorithm>

namespace jet::sql {
namespace {

template <typename Test>
bool AnyNode(const Expression& e, Test test) {
    return test(e) || std::ranges::any_of(e.children, [&](const ExpressionPtr& child) {
               return AnyNode(*child, test);
           });
}

void MarkSources(const Expression& e, SourceMarks& marks) {
    if (e.kind == NodeKind::kColumn) marks.Add(e.source);
    for (const ExpressionPtr& child : e.children)
        MarkSources(*child, marks);
}

bool IsChanging(const Expression& e) {
    return e.kind == NodeKind::kCall && e.function->kind == FunctionKind::kChanging;
}

void Split(const Expression& e, std::size_t sources, JoinConditions& conditions) {
    const bool conjunction =
        e.kind == NodeKind::kChain &&
        std::ranges::all_of(e.operators, [](Operator op) { return op == Operator::kAnd; });
    if (conjunction) {
        for (const ExpressionPtr& child : e.children)
            Split(*child, sources, conditions);
        return;
    }
    auto condition = std::make_unique<JoinCondition>(JoinCondition{&e, SourceMarks(sources)});
    MarkSources(e, condition->sources);
    condition->varies = NamesOuterColumns(e);
    condition->changes = AnyNode(e, IsChanging);
    conditions.push_back(std::move(condition));
}

}  // namespace

void SourceMarks::Add(const SourceMarks& other) {
    for (std::size_t i = 0; i < marks_.size(); ++i)
        marks_[i] = marks_[i] || other.marks_[i];
}

bool SourceMarks::IsEmpty() const {
    return std::ranges::none_of(marks_, [](bool mark) { return mark; });
}

bool SourceMarks::IsWithin(const SourceMarks& others) const {
    for (std::size_t i = 0; i < marks_.size(); ++i)
        if (marks_[i] && !others.marks_[i]) return false;
    return true;
}

void AddConditions(const Expression* e, std::size_t sources, JoinConditions& conditions) {
    if (e == nullptr) return;
    Split(*e, sources, conditions);
    std::stable_partition(conditions.begin(), conditions.end(),
                          [](const std::unique_ptr<JoinCondition>& condition) {
                              return !HasSubquery(*condition->test);
                          });
}

std::optional<Link> FindLink(const JoinCondition& condition, const SourceMarks& here,
                             const SourceMarks& there, bool bare) {
    const Expression& e = *condition.test;
    if (e.kind != NodeKind::kChain || e.operators.size() != 1 ||
        e.operators[0] != Operator::kEqual || condition.changes || HasSubquery(e))
        return std::nullopt;
    for (const std::size_t first : {std::size_t{0}, std::size_t{1}}) {
        const Link link{e.children[first].get(), e.children[1 - first].get()};
        SourceMarks left(here.size());
        SourceMarks right(here.size());
        MarkSources(*link.here, left);
        MarkSources(*link.there, right);
        if (left.IsWithin(here) && left.IsEmpty() == bare && right.IsWithin(there) &&
            !right.IsEmpty())
            return link;
    }
    return std::nullopt;
}

bool NamesOuterColumns(const Expression& e) {
    return AnyNode(e, [](const Expression& node) { return node.kind == NodeKind::kOuter; });
}

}  // namespace jet::sql
