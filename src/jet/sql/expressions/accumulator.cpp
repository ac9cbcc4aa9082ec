#include "jet/sql/expressions/accumulator.h"

#include "jet/errors.h"
#include "jet/values/value_number.h"

#include <cmath>
#include <limits>

namespace jet::sql {

using base::Status;

Status Accumulator::Add(EvalContext& context) {
    if (expression_->children.empty()) {  // Count(*)
        ++count_;
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(Value value, Evaluate(*expression_->children[0], context));
    const Aggregate kind = expression_->aggregate;
    if (kind == Aggregate::kFirst || kind == Aggregate::kLast) {
        if (kind == Aggregate::kLast || count_ == 0) kept_ = std::move(value);
        ++count_;
        return Status::Ok();
    }
    if (value.is_null()) return Status::Ok();
    ++count_;
    if (kind == Aggregate::kCount) return Status::Ok();
    if (kind == Aggregate::kMin || kind == Aggregate::kMax)
        return KeepSmaller(value, kind == Aggregate::kMax);
    return AddNumber(value);
}

Status Accumulator::KeepSmaller(const Value& value, bool greater) {
    if (kept_.is_null()) {
        kept_ = value;
        return Status::Ok();
    }
    ASSIGN_OR_RETURN(const auto order, Compare(value, kept_));
    if (order && (greater ? *order > 0 : *order < 0)) kept_ = value;
    return Status::Ok();
}

Status Accumulator::AddNumber(const Value& value) {
    const auto number = NumberOf(value);
    if (!number) return JetError(ErrorNumber::kTypeMismatch);
    sum_ += *number;
    const double distance = *number - mean_;
    mean_ += distance / static_cast<double>(count_);
    squares_ += distance * (*number - mean_);
    const auto* money = value.get_if<Money>();
    all_money_ = all_money_ && money != nullptr;
    if (all_money_ && __builtin_add_overflow(money_, money->units, &money_))
        return JetError(ErrorNumber::kOverflow);
    return Status::Ok();
}

base::Result<Value> Accumulator::Spread() const {
    const Aggregate kind = expression_->aggregate;
    const bool population = kind == Aggregate::kStDevP || kind == Aggregate::kVarP;
    const std::int64_t divisor = population ? count_ : count_ - 1;
    if (divisor < 1) return Value::Null();
    const double variance = squares_ / static_cast<double>(divisor);
    const bool root = kind == Aggregate::kStDev || kind == Aggregate::kStDevP;
    return Value::Double(root ? std::sqrt(variance) : variance);
}

base::Result<Value> Accumulator::Result() const {
    switch (expression_->aggregate) {
    case Aggregate::kCount:
        if (count_ > std::numeric_limits<std::int32_t>::max())
            return JetError(ErrorNumber::kOverflow);
        return Value::Long(static_cast<std::int32_t>(count_));
    case Aggregate::kMin:
    case Aggregate::kMax:
    case Aggregate::kFirst:
    case Aggregate::kLast:
        return kept_;
    case Aggregate::kSum:
        if (count_ == 0) return Value::Null();
        return all_money_ ? Value::Currency({money_}) : Value::Double(sum_);
    case Aggregate::kAvg:
        if (count_ == 0) return Value::Null();
        return Value::Double(sum_ / static_cast<double>(count_));
    default:
        return Spread();
    }
}

}  // namespace jet::sql
