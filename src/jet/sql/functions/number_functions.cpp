#include "jet/errors.h"
#include "jet/sql/functions/functions.h"
#include "jet/sql/functions/operators.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace jet::sql {
namespace {

using base::Result;

Result<Value> Finite(double number) {
    if (!std::isfinite(number)) return JetError(ErrorNumber::kOverflow);
    return Value::Double(number);
}

bool IsWholeType(const Value& value) {
    return value.is<std::uint8_t>() || value.is<std::int16_t>() || value.is<std::int32_t>();
}

Result<Value> Abs(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    if (number >= 0 && !a[0].is<std::u16string>() && !a[0].is<bool>()) return a[0];
    if (a[0].is<std::u16string>()) return Value::Double(std::fabs(number));
    return Negate(a[0]);
}

Result<Value> Int(Arguments a, EvalContext&) {
    if (IsWholeType(a[0])) return a[0];
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    return Value::Double(std::floor(number));
}

Result<Value> Fix(Arguments a, EvalContext&) {
    if (IsWholeType(a[0])) return a[0];
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    return Value::Double(std::trunc(number));
}

// Halves go to the even neighbour.
Result<Value> Round(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    std::int32_t decimals = 0;
    if (a.size() > 1) {
        ASSIGN_OR_RETURN(decimals, WholeArgument(a[1]));
        if (decimals < 0 || decimals > 22) return JetError(ErrorNumber::kInvalidArgument);
    }
    const double scale = std::pow(10.0, decimals);
    const double scaled = number * scale;
    if (!std::isfinite(scaled)) return Value::Double(number);
    return Value::Double(std::nearbyint(scaled) / scale);
}

Result<Value> Sgn(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    return Value::Long(number > 0 ? 1 : number < 0 ? -1 : 0);
}

Result<Value> Sqr(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    if (number < 0) return JetError(ErrorNumber::kInvalidArgument);
    return Finite(std::sqrt(number));
}

Result<Value> Log(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    if (number <= 0) return JetError(ErrorNumber::kInvalidArgument);
    return Finite(std::log(number));
}

template <double (*Formula)(double)>
Result<Value> Real(Arguments a, EvalContext&) {
    ASSIGN_OR_RETURN(const double number, NumberArgument(a[0]));
    return Finite(Formula(number));
}

double Exp(double x) {
    return std::exp(x);
}
double Sin(double x) {
    return std::sin(x);
}
double Cos(double x) {
    return std::cos(x);
}
double Tan(double x) {
    return std::tan(x);
}
double Atn(double x) {
    return std::atan(x);
}

// A 24-bit linear congruence. A negative argument starts the sequence anew from it, 0 repeats the
// last number.
Result<Value> Rnd(Arguments a, EvalContext& context) {
    std::uint32_t& state = context.session->random;
    double argument = 1;
    if (!a.empty()) {
        ASSIGN_OR_RETURN(argument, NumberArgument(a[0]));
    }
    if (argument < 0) {
        const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(argument));
        state = (bits + (bits >> 24)) & 0xFFFFFF;
    }
    if (argument != 0) state = (state * 0x43FD43FDU + 0xC39EC3U) & 0xFFFFFF;
    return Value::Single(static_cast<float>(state) / 16777216.0F);
}

Result<Value> InRadix(const Value& value, int radix) {
    ASSIGN_OR_RETURN(const std::int32_t number, WholeArgument(value));
    char buffer[40];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::uint32_t>(number), radix);
    std::u16string text;
    for (const char* c = buffer; c != end.ptr; ++c)
        text += static_cast<char16_t>(*c >= 'a' ? *c - 32 : *c);
    return Value::Text(std::move(text));
}

Result<Value> Hex(Arguments a, EvalContext&) {
    return InRadix(a[0], 16);
}
Result<Value> Oct(Arguments a, EvalContext&) {
    return InRadix(a[0], 8);
}

// Partition(number, start, stop, interval): the range that the number falls into, "  0: 99".
Result<Value> Partition(Arguments a, EvalContext&) {
    std::int64_t n[4] = {};
    for (std::size_t i = 0; i < 4; ++i) {
        ASSIGN_OR_RETURN(const std::int32_t number, WholeArgument(a[i]));
        n[i] = number;
    }
    const auto [number, start, stop, interval] = n;
    if (start < 0 || stop <= start || interval < 1) return JetError(ErrorNumber::kInvalidArgument);
    const auto text = [](std::int64_t v) {
        const std::string digits = std::to_string(v);
        return std::u16string(digits.begin(), digits.end());
    };
    const std::size_t width = std::max(text(start - 1).size(), text(stop + 1).size());
    const auto padded = [&](const std::u16string& part) {
        return std::u16string(width - std::min(width, part.size()), u' ') + part;
    };
    if (number < start) return Value::Text(padded(u"") + u":" + padded(text(start - 1)));
    if (number > stop) return Value::Text(padded(text(stop + 1)) + u":" + padded(u""));
    const std::int64_t low = start + (number - start) / interval * interval;
    const std::int64_t high = std::min(low + interval - 1, stop);
    return Value::Text(padded(text(low)) + u":" + padded(text(high)));
}

constexpr Function kNumberFunctions[] = {
    {u"Abs", 1, 1, FunctionKind::kStrict, Abs},
    {u"Atn", 1, 1, FunctionKind::kStrict, Real<Atn>},
    {u"Cos", 1, 1, FunctionKind::kStrict, Real<Cos>},
    {u"Exp", 1, 1, FunctionKind::kStrict, Real<Exp>},
    {u"Fix", 1, 1, FunctionKind::kStrict, Fix},
    {u"Hex", 1, 1, FunctionKind::kStrict, Hex},
    {u"Int", 1, 1, FunctionKind::kStrict, Int},
    {u"Log", 1, 1, FunctionKind::kStrict, Log},
    {u"Oct", 1, 1, FunctionKind::kStrict, Oct},
    {u"Partition", 4, 4, FunctionKind::kStrict, Partition},
    {u"Rnd", 0, 1, FunctionKind::kChanging, Rnd},
    {u"Round", 1, 2, FunctionKind::kStrict, Round},
    {u"Sgn", 1, 1, FunctionKind::kStrict, Sgn},
    {u"Sin", 1, 1, FunctionKind::kStrict, Real<Sin>},
    {u"Sqr", 1, 1, FunctionKind::kStrict, Sqr},
    {u"Tan", 1, 1, FunctionKind::kStrict, Real<Tan>},
};

}  // namespace

std::span<const Function> NumberFunctions() {
    return kNumberFunctions;
}

}  // namespace jet::sql
