#include "jet/sql/plans/interval_of.h"

#include "jet/sql/functions/sort_key.h"
#include "jet/text/plain_text.h"
#include "jet/values/conversions.h"
#include "jet/values/decimal.h"
#include "jet/values/guid_text.h"
#include "jet/values/system_clock.h"
#include "jet/values/value_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace jet::sql {
namespace {

constexpr std::size_t kMaxPrefixLength = 100;
// Relative error that covers the roundings between a decimal number and the double it is compared
// as.
constexpr double kRounding = 1e-14;

EqualValues Between(Value low, Value high, bool exact = false) {
    return {{IntervalEnd{std::move(low)}, IntervalEnd{std::move(high)}}, exact};
}

template <typename Int, typename Make>
EqualValues WholeValues(double number, Make make) {
    constexpr auto kMin = static_cast<double>(std::numeric_limits<Int>::min());
    constexpr auto kMax = static_cast<double>(std::numeric_limits<Int>::max());
    const double low = std::clamp(std::floor(number), kMin, kMax);
    const double high = std::clamp(std::ceil(number), kMin, kMax);
    return Between(make(static_cast<Int>(low)), make(static_cast<Int>(high)), low == high);
}

// True is -1 and has the smaller key.
EqualValues TruthValues(double number) {
    const bool low = number < 0;
    const bool high = number <= -1;
    return Between(Value::Boolean(low), Value::Boolean(high), low == high);
}

// Minus zero equals zero, but has a smaller key.
EqualValues DoubleValues(double number) {
    if (number == 0) return Between(Value::Double(-0.0), Value::Double(0.0));
    return Between(Value::Double(number), Value::Double(number), true);
}

EqualValues SingleValues(double number) {
    if (number == 0) return Between(Value::Single(-0.0F), Value::Single(0.0F));
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr double kMax = std::numeric_limits<float>::max();
    if (std::fabs(number) > kMax)  // beyond all of them, on one side
        return number > 0 ? Between(Value::Single(std::numeric_limits<float>::max()),
                                    Value::Single(kInfinity))
                          : Between(Value::Single(-kInfinity),
                                    Value::Single(-std::numeric_limits<float>::max()));
    const auto nearest = static_cast<float>(number);
    const double back = nearest;
    if (back == number) return Between(Value::Single(nearest), Value::Single(nearest), true);
    return Between(Value::Single(back > number ? std::nextafter(nearest, -kInfinity) : nearest),
                   Value::Single(back < number ? std::nextafter(nearest, kInfinity) : nearest));
}

Value MoneyNear(double units) {
    constexpr double kMax = 9.2e18;
    if (units > kMax) return Value::Currency({std::numeric_limits<std::int64_t>::max()});
    if (units < -kMax) return Value::Currency({std::numeric_limits<std::int64_t>::min()});
    return Value::Currency({static_cast<std::int64_t>(units)});
}

EqualValues MoneyValues(double number) {
    constexpr double kUnits = 10000;
    const double units = number * kUnits;
    const double nearest = std::nearbyint(units);
    // Below this, no two amounts are the same double.
    constexpr double kExactBelow = 1e14;
    if (std::fabs(nearest) < kExactBelow && nearest / kUnits == number)
        return Between(MoneyNear(nearest), MoneyNear(nearest), true);
    const double margin = std::fabs(units) * kRounding + 1;
    return Between(MoneyNear(std::floor(units - margin)), MoneyNear(std::ceil(units + margin)));
}

std::optional<Value> DecimalNear(const ColumnDesign& column, double number) {
    // Longer numbers have no key in the column.
    const double most = std::pow(10.0, column.precision - column.scale) * (1 - 1e-9);
    number = std::clamp(number, -most, most);
    char buffer[64];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::scientific, 16);
    const auto numeric =
        NumericFromText(std::string(buffer, end.ptr), column.precision, column.scale);
    if (!numeric) return std::nullopt;
    return Value::Decimal(*numeric);
}

std::optional<EqualValues> DecimalValues(const ColumnDesign& column, double number) {
    const double margin = std::fabs(number) * kRounding + 2 * std::pow(10.0, -column.scale);
    auto low = DecimalNear(column, number - margin);
    auto high = DecimalNear(column, number + margin);
    if (!low || !high) return std::nullopt;
    const double most = std::pow(10.0, column.precision - column.scale) * (1 - 1e-8);
    EqualValues values = Between(std::move(*low), std::move(*high));
    if (number - margin < -most) values.interval.low.reset();
    if (number + margin > most) values.interval.high.reset();
    return values;
}

// The time of day counts forward also before day 0, so that keys (the plain numbers) and moments
// have different orders there; from day 2 on they agree.
EqualValues DateValues(double days) {
    constexpr double kSecondsPerDay = 86400;
    constexpr double kMargin = 1.5 / kSecondsPerDay;
    if (days >= 2) return Between(Value::DateTime(days - kMargin), Value::DateTime(days + kMargin));
    const double day = std::floor(SecondsOfDate(days) / kSecondsPerDay);
    return Between(Value::DateTime(day - 2), Value::DateTime(day + 2));
}

// The number that comparisons with a column of this type see in the constant.
std::optional<double> NumberFor(const ColumnDesign& column, const Value& constant) {
    const auto* text = constant.get_if<std::u16string>();
    const bool is_date = column.type == ColumnType::kDate;
    // Other numbers are compared with dates by the second.
    if (constant.is<Date>() && !is_date) return std::nullopt;
    if (text != nullptr && is_date)
        if (const auto days = ParseDate(*text, CurrentYear())) return days;
    if (text != nullptr && column.type == ColumnType::kBoolean)
        if (const auto truth = TruthWord(*text)) return *truth ? -1 : 0;
    const auto number = NumberOf(constant);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<EqualValues> GuidValues(const Value& constant) {
    std::optional<Guid> guid;
    if (const auto* given = constant.get_if<Guid>()) guid = *given;
    if (const auto* text = constant.get_if<std::u16string>()) guid = ParseGuid(*text);
    if (!guid) return std::nullopt;
    return Between(Value::OfGuid(*guid), Value::OfGuid(*guid), true);
}

// Keys that are in the order of the ends. A prefix's key is the beginning of the keys of all texts
// that begin with it.
std::string EndKey(const IntervalEnd& end, bool high) {
    std::string key;
    if (const auto* date = end.value.get_if<Date>())
        AppendSortKey(Value::Double(date->days), false, key);
    else
        AppendSortKey(end.value, false, key);
    if (!end.prefix) return key;
    key.resize(key.size() - 2);  // 01 00, which end the key of a plain text
    if (high) key.append(8, '\xFF');
    return key;
}

std::string LowKey(const Interval& interval) {
    return interval.low ? EndKey(*interval.low, false) : std::string();
}

// True when nothing lies between the end and the start of the other.
bool Touches(const Interval& first, const Interval& second) {
    if (!first.high || !second.low) return true;
    return EndKey(*second.low, false) <= EndKey(*first.high, true);
}

}  // namespace

std::optional<EqualValues> ValuesEqualTo(const ColumnDesign& column, const Value& constant) {
    if (IsTextType(column.type)) {
        if (!constant.is<std::u16string>()) return std::nullopt;
        return Between(constant, constant, true);
    }
    if (column.type == ColumnType::kGuid) return GuidValues(constant);
    // An amount is compared with an amount exactly.
    if (column.type == ColumnType::kMoney && constant.is<Money>())
        return Between(constant, constant, true);
    if (constant.is<Bytes>() || constant.is<Guid>()) return std::nullopt;
    const auto number = NumberFor(column, constant);
    if (!number) return std::nullopt;
    switch (column.type) {
    case ColumnType::kBoolean:
        return TruthValues(*number);
    case ColumnType::kByte:
        return WholeValues<std::uint8_t>(*number, Value::Byte);
    case ColumnType::kShort:
        return WholeValues<std::int16_t>(*number, Value::Short);
    case ColumnType::kLong:
        return WholeValues<std::int32_t>(*number, Value::Long);
    case ColumnType::kMoney:
        return MoneyValues(*number);
    case ColumnType::kSingle:
        return SingleValues(*number);
    case ColumnType::kDouble:
        return DoubleValues(*number);
    case ColumnType::kDate:
        return DateValues(*number);
    case ColumnType::kNumeric:
        return DecimalValues(column, *number);
    default:
        return std::nullopt;
    }
}

std::u16string PrefixOfPattern(std::u16string_view pattern) {
    std::u16string prefix;
    for (const char16_t c : pattern.substr(0, kMaxPrefixLength)) {
        // Letters that Like takes for the same have the same weight only among the plain ones. The
        // x stands for a last character that counts, which a blank would not.
        const char16_t tried[] = {c, u'x'};
        std::string key;
        if (c == u'%' || c == u'_' || c == u'[' || !AppendPlainKey({tried, 2}, key)) break;
        prefix += c;
    }
    while (!prefix.empty() && prefix.back() == u' ')
        prefix.pop_back();
    return prefix;
}

void SortIntervals(std::vector<Interval>& intervals) {
    std::vector<std::pair<std::string, std::size_t>> order;
    for (std::size_t i = 0; i < intervals.size(); ++i)
        order.emplace_back(LowKey(intervals[i]), i);
    std::sort(order.begin(), order.end());
    std::vector<Interval> sorted;
    for (const auto& [key, i] : order) {
        Interval& next = intervals[i];
        if (sorted.empty() || !Touches(sorted.back(), next)) {
            sorted.push_back(std::move(next));
            continue;
        }
        std::optional<IntervalEnd>& high = sorted.back().high;
        if (!next.high || (high && EndKey(*high, true) < EndKey(*next.high, true)))
            high = std::move(next.high);
    }
    intervals = std::move(sorted);
}

Interval Intersection(const Interval& a, const Interval& b) {
    Interval both = a;
    if (b.low && (!both.low || EndKey(*both.low, false) < EndKey(*b.low, false))) both.low = b.low;
    if (b.high && (!both.high || EndKey(*b.high, true) < EndKey(*both.high, true)))
        both.high = b.high;
    return both;
}

}  // namespace jet::sql
