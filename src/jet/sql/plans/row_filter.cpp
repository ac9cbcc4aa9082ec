#include "jet/sql/plans/row_filter.h"

#include "jet/sql/functions/operators.h"

#include <algorithm>
#include <utility>

namespace jet::sql {
namespace {

using base::Result;

bool IsAndChain(const Expression& e) {
    return e.kind == NodeKind::kChain &&
           std::ranges::all_of(e.operators, [](Operator op) { return op == Operator::kAnd; });
}

}  // namespace

RowFilter::RowFilter(const Expression* condition) : condition_(condition) {
    if (condition == nullptr) return;
    if (auto test = TestOf(*condition)) {
        tests_.push_back(std::move(*test));
        is_all_tests_ = true;
        return;
    }
    if (!IsAndChain(*condition)) return;
    for (const ExpressionPtr& part : condition->children) {
        auto test = TestOf(*part);
        if (!test) return;
        tests_.push_back(std::move(*test));
    }
    is_all_tests_ = true;
}

std::optional<RowFilter::TextTest> RowFilter::TestOf(const Expression& comparison) {
    if (comparison.kind != NodeKind::kChain || comparison.operators.size() != 1)
        return std::nullopt;
    Operator op = comparison.operators[0];
    if (!AsksForOrder(op)) return std::nullopt;
    const Expression* column = comparison.children[0].get();
    const Expression* constant = comparison.children[1].get();
    if (column->kind != NodeKind::kColumn) {
        std::swap(column, constant);
        op = Mirrored(op);
    }
    if (column->kind != NodeKind::kColumn || constant->kind != NodeKind::kLiteral)
        return std::nullopt;
    const auto* text = constant->value.get_if<std::u16string>();
    auto plain = text != nullptr ? PlainText::Of(*text) : std::nullopt;
    if (!plain) return std::nullopt;
    return TextTest{column->slot, op, std::move(*plain)};
}

std::optional<bool> RowFilter::Passes(const TextTest& test, const std::vector<Value>& row) {
    const auto* text = row[test.slot].get_if<std::u16string>();
    if (text == nullptr) return std::nullopt;
    const auto order = test.constant.Order(*text);
    if (!order) return std::nullopt;
    return Holds(test.op, *order);
}

std::optional<bool> RowFilter::Decides(StoredFields* stored,
                                       const std::vector<std::size_t>& columns) const {
    if (condition_ == nullptr) return true;
    if (stored == nullptr) return std::nullopt;
    for (const TextTest& test : tests_) {
        const auto text = stored->NarrowText(columns[test.slot]);
        const auto order = text ? test.constant.Order(*text) : std::nullopt;
        if (!order) return std::nullopt;
        if (!Holds(test.op, *order)) return false;
    }
    return is_all_tests_ ? std::optional(true) : std::nullopt;
}

Result<bool> RowFilter::Keeps(EvalContext& context) const {
    if (condition_ == nullptr) return true;
    bool decided = is_all_tests_;
    for (const TextTest& test : tests_) {
        const std::optional<bool> passes = Passes(test, (*context.rows)[0]);
        if (passes && !*passes) return false;
        if (passes) continue;
        decided = false;
        break;
    }
    if (decided) return true;
    ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*condition_, context));
    return truth == Truth::kTrue;
}

}  // namespace jet::sql
