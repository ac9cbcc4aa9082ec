// What the operators do with two values: comparison with its conversions, arithmetic,
// concatenation.
#pragma once

#include "base/status.h"
#include "jet/sql/syntax/ast.h"
#include "jet/values/value.h"

#include <compare>
#include <optional>

namespace jet::sql {

enum class Truth : std::uint8_t { kFalse, kTrue, kNull };

inline Truth ToTruth(bool b) {
    return b ? Truth::kTrue : Truth::kFalse;
}
inline Truth Not(Truth truth) {
    return truth == Truth::kNull ? truth : ToTruth(truth == Truth::kFalse);
}
Value TruthValue(Truth truth);
// Numbers other than 0 are true. 3464: a text that is neither a number nor a truth word.
base::Result<Truth> TruthOf(const Value& value);

// nullopt: one of the two is Null, or a text that is no date stands beside a date. 3464: the types
// do not compare.
base::Result<std::optional<std::weak_ordering>> Compare(const Value& a, const Value& b);
base::Result<Truth> CompareWith(Operator op, const Value& a, const Value& b);
// Whether it is one of the six comparisons, which do not include Like.
bool AsksForOrder(Operator op);
// `a op b` as seen from b, where AsksForOrder(op); any other operator stays.
Operator Mirrored(Operator op);
// Whether two values in this order satisfy a comparison. Requires: AsksForOrder(op).
bool Holds(Operator op, std::weak_ordering order);

// 3464: no number; 6 overflow; 11 division by zero.
base::Result<Value> Calculate(Operator op, const Value& a, const Value& b);
base::Result<Value> Negate(const Value& value);

// The text that "&" takes for a value: True is "-1".
std::u16string ConcatText(const Value& value);

// A column is shown as it is stored; the truth of an expression as -1 or 0.
Value WithoutTruth(Value value);

}  // namespace jet::sql
