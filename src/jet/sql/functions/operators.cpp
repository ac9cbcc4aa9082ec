#include "jet/sql/functions/operators.h"

#include "jet/errors.h"
#include "jet/sql/functions/sort_key.h"
#include "jet/text/collation.h"
#include "jet/text/like.h"
#include "jet/text/plain_text.h"
#include "jet/values/conversions.h"
#include "jet/values/decimal.h"
#include "jet/values/guid_text.h"
#include "jet/values/system_clock.h"
#include "jet/values/value_number.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;
using Ordering = std::optional<std::weak_ordering>;

Status Mismatch() {
    return JetError(ErrorNumber::kTypeMismatch);
}

std::weak_ordering OrderNumbers(double a, double b) {
    if (a < b) return std::weak_ordering::less;
    return a > b ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

std::weak_ordering OrderTexts(std::u16string_view a, std::u16string_view b) {
    const auto plain = ComparePlain(a, b);
    return plain ? *plain : CompareText(a, b);
}

Result<Ordering> CompareDateAndText(double days, std::u16string_view text) {
    auto other = ParseDate(text, CurrentYear());
    if (!other) other = ParseNumber(text);
    // A text that is no date is neither equal to a date nor before or after it.
    if (!other) return Ordering();
    return Ordering(OrderNumbers(SecondsOfDate(days), SecondsOfDate(*other)));
}

Ordering Reversed(const Ordering& order) {
    if (!order) return order;
    return 0 <=> *order;
}

Result<Ordering> CompareTextWith(const std::u16string& text, const Value& other) {
    if (const auto* date = other.get_if<Date>()) {
        ASSIGN_OR_RETURN(const Ordering order, CompareDateAndText(date->days, text));
        return Reversed(order);
    }
    if (const auto* guid = other.get_if<Guid>()) {
        const auto parsed = ParseGuid(text);
        if (!parsed) return Mismatch();
        return Ordering(CompareText(GuidText(*parsed), GuidText(*guid)));
    }
    if (other.is<bool>()) {
        if (const auto truth = TruthWord(text))
            return Ordering(OrderNumbers(*truth ? -1 : 0, other.as<bool>() ? -1 : 0));
    }
    const auto number = ParseNumber(text);
    const auto second = NumberOf(other);
    if (!number || !second) return Mismatch();
    return Ordering(OrderNumbers(*number, *second));
}

Result<Ordering> CompareOthers(const Value& a, const Value& b) {
    if (a.is<Money>() && b.is<Money>()) return Ordering(a.as<Money>() <=> b.as<Money>());
    if (const auto* bytes = a.get_if<Bytes>()) {
        const auto* second = b.get_if<Bytes>();
        if (second == nullptr) return Mismatch();
        return Ordering(std::lexicographical_compare_three_way(bytes->begin(), bytes->end(),
                                                               second->begin(), second->end()));
    }
    if (const auto* guid = a.get_if<Guid>()) {
        const auto* second = b.get_if<Guid>();
        if (second == nullptr) return Mismatch();
        return Ordering(CompareText(GuidText(*guid), GuidText(*second)));
    }
    const auto first = NumberOf(a);
    const auto second = NumberOf(b);
    if (!first || !second) return Mismatch();
    if (a.is<Date>() || b.is<Date>())
        return Ordering(OrderNumbers(SecondsOfDate(*first), SecondsOfDate(*second)));
    return Ordering(OrderNumbers(*first, *second));
}

Truth LikeTruth(Operator op, const Value& a, const Value& b) {
    if (a.is_null() || b.is_null()) return Truth::kNull;
    const bool fits = Like(ConcatText(a), ConcatText(b));
    return ToTruth(fits == (op == Operator::kLike));
}

bool IsWhole(const Value& value) {
    return value.is<bool>() || value.is<std::uint8_t>() || value.is<std::int16_t>() ||
           value.is<std::int32_t>();
}

bool FitsLong(double number) {
    return number >= std::numeric_limits<std::int32_t>::min() &&
           number <= std::numeric_limits<std::int32_t>::max();
}

Result<Value> NumberResult(double number, bool whole) {
    if (!std::isfinite(number)) return JetError(ErrorNumber::kOverflow);
    if (whole && FitsLong(number)) return Value::Long(static_cast<std::int32_t>(number));
    return Value::Double(number);
}

// Both operands as whole numbers for "\" and Mod.
Result<Value> WholeDivision(Operator op, double a, double b) {
    const double dividend = std::nearbyint(a);
    const double divisor = std::nearbyint(b);
    if (!FitsLong(dividend) || !FitsLong(divisor)) return JetError(ErrorNumber::kOverflow);
    if (divisor == 0) return JetError(ErrorNumber::kDivisionByZero);
    const auto x = static_cast<std::int64_t>(dividend);
    const auto y = static_cast<std::int64_t>(divisor);
    const std::int64_t result = op == Operator::kMod ? x % y : x / y;
    if (!FitsLong(static_cast<double>(result))) return JetError(ErrorNumber::kOverflow);
    return Value::Long(static_cast<std::int32_t>(result));
}

// The value as an amount, so that sums of amounts stay exact. 6: overflow.
Result<std::int64_t> MoneyUnits(const Value& value, double number) {
    if (const auto* money = value.get_if<Money>()) return money->units;
    const double units = std::nearbyint(number * 10000);
    if (!(std::fabs(units) < 9.2e18)) return JetError(ErrorNumber::kOverflow);
    return static_cast<std::int64_t>(units);
}

Result<Value> MoneySum(Operator op, std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    const bool overflow = op == Operator::kAdd ? __builtin_add_overflow(a, b, &sum)
                                               : __builtin_sub_overflow(a, b, &sum);
    if (overflow) return JetError(ErrorNumber::kOverflow);
    return Value::Currency({sum});
}

Result<Value> MoneyFromDouble(double number) {
    const double units = std::nearbyint(number * 10000);
    if (!(std::fabs(units) < 9.2e18)) return JetError(ErrorNumber::kOverflow);
    return Value::Currency({static_cast<std::int64_t>(units)});
}

// A text counts as the double it stands for.
bool IsReal(const Value& value) {
    return value.is<float>() || value.is<double>() || value.is<std::u16string>();
}

Result<Value> DateResult(double days) {
    if (!CivilFromDays(days)) return JetError(ErrorNumber::kOverflow);
    return Value::DateTime(days);
}

Result<Value> CalculateNumbers(Operator op, const Value& a, const Value& b, double x, double y) {
    const bool whole = IsWhole(a) && IsWhole(b);
    const bool dates = a.is<Date>() || b.is<Date>();
    const bool money = a.is<Money>() || b.is<Money>();
    switch (op) {
    case Operator::kAdd:
    case Operator::kSubtract: {
        if (money && !dates) {
            ASSIGN_OR_RETURN(const std::int64_t first, MoneyUnits(a, x));
            ASSIGN_OR_RETURN(const std::int64_t second, MoneyUnits(b, y));
            return MoneySum(op, first, second);
        }
        const double sum = op == Operator::kAdd ? x + y : x - y;
        const bool distance = op == Operator::kSubtract && a.is<Date>() && b.is<Date>();
        if (dates && !distance) return DateResult(sum);
        return NumberResult(sum, whole);
    }
    case Operator::kMultiply:
        if (money && !dates && !IsReal(a) && !IsReal(b)) return MoneyFromDouble(x * y);
        return NumberResult(x * y, whole);
    case Operator::kDivide:
        if (y == 0) return JetError(ErrorNumber::kDivisionByZero);
        return NumberResult(x / y, false);
    case Operator::kPower:
        return NumberResult(std::pow(x, y), false);
    default:
        return WholeDivision(op, x, y);
    }
}

}  // namespace

Value TruthValue(Truth truth) {
    return truth == Truth::kNull ? Value::Null() : Value::Boolean(truth == Truth::kTrue);
}

Result<Truth> TruthOf(const Value& value) {
    if (value.is_null()) return Truth::kNull;
    if (const auto* text = value.get_if<std::u16string>())
        if (const auto word = TruthWord(*text)) return ToTruth(*word);
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    return ToTruth(*number != 0);
}

Result<Ordering> Compare(const Value& a, const Value& b) {
    if (a.is_null() || b.is_null()) return Ordering();
    const auto* first = a.get_if<std::u16string>();
    const auto* second = b.get_if<std::u16string>();
    if (first != nullptr && second != nullptr) return Ordering(OrderTexts(*first, *second));
    if (first != nullptr) return CompareTextWith(*first, b);
    if (second != nullptr) {
        ASSIGN_OR_RETURN(const Ordering order, CompareTextWith(*second, a));
        return Reversed(order);
    }
    return CompareOthers(a, b);
}

bool AsksForOrder(Operator op) {
    return op >= Operator::kEqual && op <= Operator::kGreaterEqual;
}

Operator Mirrored(Operator op) {
    switch (op) {
    case Operator::kLess:
        return Operator::kGreater;
    case Operator::kLessEqual:
        return Operator::kGreaterEqual;
    case Operator::kGreater:
        return Operator::kLess;
    case Operator::kGreaterEqual:
        return Operator::kLessEqual;
    default:
        return op;
    }
}

bool Holds(Operator op, std::weak_ordering order) {
    switch (op) {
    case Operator::kEqual:
        return order == 0;
    case Operator::kNotEqual:
        return order != 0;
    case Operator::kLess:
        return order < 0;
    case Operator::kLessEqual:
        return order <= 0;
    case Operator::kGreater:
        return order > 0;
    default:
        return order >= 0;
    }
}

Result<Truth> CompareWith(Operator op, const Value& a, const Value& b) {
    if (op == Operator::kLike || op == Operator::kNotLike) return LikeTruth(op, a, b);
    ASSIGN_OR_RETURN(const Ordering order, Compare(a, b));
    return order ? ToTruth(Holds(op, *order)) : Truth::kNull;
}

Result<Value> Calculate(Operator op, const Value& a, const Value& b) {
    if (op == Operator::kConcat && !(a.is_null() && b.is_null()))
        return Value::Text(ConcatText(a) + ConcatText(b));
    if (a.is_null() || b.is_null()) return Value::Null();
    if (op == Operator::kAdd && a.is<std::u16string>() && b.is<std::u16string>())
        return Value::Text(a.as<std::u16string>() + b.as<std::u16string>());
    const auto x = NumberOf(a);
    const auto y = NumberOf(b);
    if (!x || !y) return Mismatch();
    return CalculateNumbers(op, a, b, *x, *y);
}

Result<Value> Negate(const Value& value) {
    if (value.is_null()) return Value::Null();
    if (value.is<Money>()) return MoneySum(Operator::kSubtract, 0, value.as<Money>().units);
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    return NumberResult(-*number, IsWhole(value));
}

std::u16string ConcatText(const Value& value) {
    if (const auto* truth = value.get_if<bool>()) return *truth ? u"-1" : u"0";
    return ToText(value);
}

Value WithoutTruth(Value value) {
    if (const auto* truth = value.get_if<bool>()) return Value::Short(*truth ? -1 : 0);
    return value;
}

}  // namespace jet::sql
