#include "jet/sql/expressions/evaluate.h"

#include "jet/errors.h"
#include "jet/sql/expressions/subquery.h"
#include "jet/sql/expressions/value_set.h"
#include "jet/sql/functions/functions.h"

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

// The value of an operand: a column's or literal's where it lies, any other in `made`.
Status Fetch(const Expression& operand, EvalContext& context, Value& made, const Value*& value) {
    if (operand.kind == NodeKind::kLiteral) {
        value = &operand.value;
        return Status::Ok();
    }
    if (operand.kind == NodeKind::kColumn) {
        value = &(*context.rows)[operand.source][operand.slot];
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(made, Evaluate(operand, context));
    value = &made;
    return Status::Ok();
}

bool IsComparison(Operator op) {
    return op >= Operator::kEqual && op <= Operator::kNotLike;
}
bool IsLogic(Operator op) {
    return op <= Operator::kAnd;
}

bool IsNullLiteral(const Expression& expression) {
    return expression.kind == NodeKind::kLiteral && expression.value.is_null();
}

Truth Logic(Operator op, Truth a, Truth b) {
    const bool known = a != Truth::kNull && b != Truth::kNull;
    switch (op) {
    case Operator::kAnd:
        if (a == Truth::kFalse || b == Truth::kFalse) return Truth::kFalse;
        return known ? Truth::kTrue : Truth::kNull;
    case Operator::kOr:
        if (a == Truth::kTrue || b == Truth::kTrue) return Truth::kTrue;
        return known ? Truth::kFalse : Truth::kNull;
    case Operator::kImp:
        return Logic(Operator::kOr, Not(a), b);
    case Operator::kXor:
        return known ? ToTruth(a != b) : Truth::kNull;
    default:
        return known ? ToTruth(a == b) : Truth::kNull;
    }
}

Result<Truth> LogicChain(const Expression& chain, EvalContext& context) {
    ASSIGN_OR_RETURN(Truth truth, EvaluateTruth(*chain.children[0], context));
    for (std::size_t i = 0; i < chain.operators.size(); ++i) {
        const Operator op = chain.operators[i];
        if (op == Operator::kAnd && truth == Truth::kFalse) continue;
        if (op == Operator::kOr && truth == Truth::kTrue) continue;
        ASSIGN_OR_RETURN(const Truth next, EvaluateTruth(*chain.children[i + 1], context));
        truth = Logic(op, truth, next);
    }
    return truth;
}

// `x <> NULL` with the word on the right asks whether x has a value; Jet's own rule.
Result<Truth> CompareOnce(Operator op, const Value& left, const Expression& right,
                          EvalContext& context) {
    if (op == Operator::kNotEqual && IsNullLiteral(right)) return ToTruth(!left.is_null());
    Value made;
    const Value* value = nullptr;
    RETURN_IF_ERROR(Fetch(right, context, made, value));
    return CompareWith(op, left, *value);
}

Result<Truth> ComparisonChain(const Expression& chain, EvalContext& context) {
    Value made;
    const Value* left = nullptr;
    RETURN_IF_ERROR(Fetch(*chain.children[0], context, made, left));
    ASSIGN_OR_RETURN(Truth truth,
                     CompareOnce(chain.operators[0], *left, *chain.children[1], context));
    for (std::size_t i = 1; i < chain.operators.size(); ++i) {
        ASSIGN_OR_RETURN(truth, CompareOnce(chain.operators[i], TruthValue(truth),
                                            *chain.children[i + 1], context));
    }
    return truth;
}

Result<Value> ConcatChain(const Expression& chain, EvalContext& context) {
    std::u16string text;
    bool all_null = true;
    for (const ExpressionPtr& child : chain.children) {
        Value made;
        const Value* value = nullptr;
        RETURN_IF_ERROR(Fetch(*child, context, made, value));
        all_null = all_null && value->is_null();
        text += ConcatText(*value);
        if (text.size() > kMaxResultLength) return JetError(ErrorNumber::kExpressionTooComplex);
    }
    return all_null ? Value::Null() : Value::Text(std::move(text));
}

Result<Value> ArithmeticChain(const Expression& chain, EvalContext& context) {
    ASSIGN_OR_RETURN(Value result, Evaluate(*chain.children[0], context));
    for (std::size_t i = 0; i < chain.operators.size(); ++i) {
        Value made;
        const Value* value = nullptr;
        RETURN_IF_ERROR(Fetch(*chain.children[i + 1], context, made, value));
        ASSIGN_OR_RETURN(result, Calculate(chain.operators[i], result, *value));
        const auto* text = result.get_if<std::u16string>();
        if (text != nullptr && text->size() > kMaxResultLength)
            return JetError(ErrorNumber::kExpressionTooComplex);
    }
    return result;
}

Result<Truth> InTruth(const Expression& test, EvalContext& context) {
    Value made;
    const Value* value = nullptr;
    RETURN_IF_ERROR(Fetch(*test.children[0], context, made, value));
    const auto found = test.choices != nullptr && !value->is_null() ? test.choices->Contains(*value)
                                                                    : std::nullopt;
    if (found) return test.negated ? Not(*found) : *found;
    Truth truth = Truth::kFalse;
    for (std::size_t i = 1; i < test.children.size() && truth != Truth::kTrue; ++i) {
        Value made_choice;
        const Value* choice = nullptr;
        RETURN_IF_ERROR(Fetch(*test.children[i], context, made_choice, choice));
        ASSIGN_OR_RETURN(const Truth equal, CompareWith(Operator::kEqual, *value, *choice));
        truth = Logic(Operator::kOr, truth, equal);
    }
    return test.negated ? Not(truth) : truth;
}

Result<Truth> BetweenTruth(const Expression& test, EvalContext& context) {
    Value made[3];
    const Value* values[3] = {};
    for (std::size_t i = 0; i < 3; ++i)
        RETURN_IF_ERROR(Fetch(*test.children[i], context, made[i], values[i]));
    // Without one of the ends there is no range, even for what lies beyond the other one.
    if (values[1]->is_null() || values[2]->is_null()) return Truth::kNull;
    ASSIGN_OR_RETURN(const Truth low, CompareWith(Operator::kGreaterEqual, *values[0], *values[1]));
    ASSIGN_OR_RETURN(const Truth high, CompareWith(Operator::kLessEqual, *values[0], *values[2]));
    const Truth truth = Logic(Operator::kAnd, low, high);
    return test.negated ? Not(truth) : truth;
}

Result<Value> CallStrictOrPlain(const Expression& call, EvalContext& context) {
    std::vector<Value> arguments;
    arguments.reserve(call.children.size());
    bool has_null = false;
    for (const ExpressionPtr& child : call.children) {
        ASSIGN_OR_RETURN(Value argument, Evaluate(*child, context));
        has_null = has_null || argument.is_null();
        arguments.push_back(std::move(argument));
    }
    if (has_null && call.function->kind != FunctionKind::kPlain) return Value::Null();
    return call.function->code(arguments, context);
}

Result<Value> CallIIf(const Expression& call, EvalContext& context) {
    ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*call.children[0], context));
    return Evaluate(*call.children[truth == Truth::kTrue ? 1 : 2], context);
}

Result<Value> CallChoose(const Expression& call, EvalContext& context) {
    ASSIGN_OR_RETURN(const Value index, Evaluate(*call.children[0], context));
    if (index.is_null()) return Value::Null();
    ASSIGN_OR_RETURN(const std::int32_t number, WholeArgument(index));
    if (number < 1 || static_cast<std::size_t>(number) >= call.children.size())
        return Value::Null();
    return Evaluate(*call.children[static_cast<std::size_t>(number)], context);
}

Result<Value> CallSwitch(const Expression& call, EvalContext& context) {
    for (std::size_t i = 0; i + 1 < call.children.size(); i += 2) {
        ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*call.children[i], context));
        if (truth == Truth::kTrue) return Evaluate(*call.children[i + 1], context);
    }
    return Value::Null();
}

Result<Value> Call(const Expression& call, EvalContext& context) {
    switch (call.function->kind) {
    case FunctionKind::kIIf:
        return CallIIf(call, context);
    case FunctionKind::kChoose:
        return CallChoose(call, context);
    case FunctionKind::kSwitch:
        return CallSwitch(call, context);
    default:
        return CallStrictOrPlain(call, context);
    }
}

bool IsTestOfQuery(const Expression& e) {
    return e.kind == NodeKind::kExists || e.kind == NodeKind::kInQuery ||
           e.kind == NodeKind::kComparedQuery;
}

// A column of a statement around this one.
Result<Value> OuterColumn(const Expression& e, const EvalContext& context) {
    const OuterRows* outer = context.session->outer;
    for (std::size_t depth = 1; depth < e.depth && outer != nullptr; ++depth)
        outer = outer->next;
    if (outer == nullptr || outer->rows == nullptr) return JetError(ErrorNumber::kParameterMissing);
    return (*outer->rows)[e.source][e.slot];
}

bool IsCondition(const Expression& e) {
    if (e.kind == NodeKind::kChain) return IsLogic(e.operators[0]) || IsComparison(e.operators[0]);
    return e.kind == NodeKind::kNot || e.kind == NodeKind::kIn || e.kind == NodeKind::kBetween ||
           e.kind == NodeKind::kIsNull || IsTestOfQuery(e);
}

Result<Truth> ConditionTruth(const Expression& e, EvalContext& context) {
    if (e.kind == NodeKind::kChain)
        return IsLogic(e.operators[0]) ? LogicChain(e, context) : ComparisonChain(e, context);
    if (e.kind == NodeKind::kIn) return InTruth(e, context);
    if (IsTestOfQuery(e)) return SubqueryTruth(e, context);
    if (e.kind == NodeKind::kBetween) return BetweenTruth(e, context);
    if (e.kind == NodeKind::kNot) {
        ASSIGN_OR_RETURN(const Truth truth, EvaluateTruth(*e.children[0], context));
        return Not(truth);
    }
    Value made;
    const Value* value = nullptr;
    RETURN_IF_ERROR(Fetch(*e.children[0], context, made, value));
    return ToTruth(value->is_null() != e.negated);
}

}  // namespace

Result<Value> Evaluate(const Expression& e, EvalContext& context) {
    if (IsCondition(e)) {
        ASSIGN_OR_RETURN(const Truth truth, ConditionTruth(e, context));
        return TruthValue(truth);
    }
    switch (e.kind) {
    case NodeKind::kLiteral:
        return e.value;
    case NodeKind::kColumn:
        return (*context.rows)[e.source][e.slot];
    case NodeKind::kOuter:
        return OuterColumn(e, context);
    case NodeKind::kScalarQuery:
        return EvaluateSubquery(e, context);
    case NodeKind::kAggregate:
        return (*context.aggregates)[e.slot];
    case NodeKind::kCall:
        return Call(e, context);
    case NodeKind::kNegate: {
        ASSIGN_OR_RETURN(const Value value, Evaluate(*e.children[0], context));
        return Negate(value);
    }
    case NodeKind::kChain:
        return e.operators[0] == Operator::kConcat ? ConcatChain(e, context)
                                                   : ArithmeticChain(e, context);
    default:
        return JetError(ErrorNumber::kParameterMissing);  // a name that was never bound
    }
}

Result<Truth> EvaluateTruth(const Expression& e, EvalContext& context) {
    if (IsCondition(e)) return ConditionTruth(e, context);
    Value made;
    const Value* value = nullptr;
    RETURN_IF_ERROR(Fetch(e, context, made, value));
    return TruthOf(*value);
}

}  // namespace jet::sql
