#include "jet/values/value.h"

#include "jet/values/conversions.h"
#include "jet/values/decimal.h"
#include "jet/values/guid_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace jet {
namespace {

std::u16string Widen(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

std::u16string WholeText(int number) {
    std::array<char, 12> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

template <typename... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

std::u16string MoneyText(Money money) {
    const bool negative = money.units < 0;
    std::uint64_t units = static_cast<std::uint64_t>(money.units);
    if (negative) units = ~units + 1;
    std::string text = std::to_string(units / 10000);
    std::string decimals = std::to_string(10000 + units % 10000).substr(1);
    while (!decimals.empty() && decimals.back() == '0')
        decimals.pop_back();
    if (!decimals.empty()) text += "." + decimals;
    return Widen(negative ? "-" + text : text);
}

std::u16string TrimmedNumericText(const Numeric& numeric) {
    std::string text = NumericText(numeric);
    if (text.find('.') != std::string::npos) {
        while (text.back() == '0')
            text.pop_back();
        if (text.back() == '.') text.pop_back();
    }
    return Widen(text);
}

std::u16string HexText(const Bytes& bytes) {
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    std::u16string text;
    text.reserve(bytes.size() * 2);
    for (const std::byte b : bytes) {
        text += kDigits[std::to_integer<std::size_t>(b) >> 4];
        text += kDigits[std::to_integer<std::size_t>(b) & 15];
    }
    return text;
}

std::int64_t WholeNumber(double number) {
    const double rounded = std::nearbyint(number);  // half to even, the default rounding
    if (!(std::fabs(rounded) < 9.2e18)) return 0;
    return static_cast<std::int64_t>(rounded);
}

}  // namespace

std::u16string ToText(const Value& value) {
    return std::visit(Overloaded{
                          [](std::monostate) { return std::u16string(); },
                          [](bool v) { return std::u16string(v ? u"True" : u"False"); },
                          [](Money v) { return MoneyText(v); },
                          [](float v) { return FormatNumber(v); },
                          [](double v) { return FormatNumber(v); },
                          [](Date v) { return FormatGeneralDate(v.days); },
                          [](const std::u16string& v) { return v; },
                          [](const Bytes& v) { return HexText(v); },
                          [](const Guid& v) { return GuidText(v); },
                          [](const Numeric& v) { return TrimmedNumericText(v); },
                          [](auto whole) { return WholeText(static_cast<int>(whole)); },
                      },
                      value.content());
}

std::u16string ToText(Value&& value) {
    if (value.is<std::u16string>()) return std::move(value.MakeText());
    return ToText(std::as_const(value));
}

bool ToBool(const Value& value) {
    return std::visit(Overloaded{
                          [](std::monostate) { return false; },
                          [](bool v) { return v; },
                          [](Money v) { return v.units != 0; },
                          [](Date v) { return v.days != 0; },
                          [](const std::u16string&) { return false; },
                          [](const Bytes&) { return false; },
                          [](const Guid&) { return false; },
                          [](const Numeric& v) { return v.magnitude != decltype(v.magnitude){}; },
                          [](auto number) { return number != 0; },
                      },
                      value.content());
}

std::int64_t ToInteger(const Value& value) {
    return std::visit(
        Overloaded{
            [](std::monostate) { return std::int64_t{0}; },
            [](bool v) { return std::int64_t{v ? -1 : 0}; },
            [](Money v) { return WholeNumber(static_cast<double>(v.units) / 10000.0); },
            [](Date v) { return WholeNumber(v.days); },
            [](const std::u16string& v) { return WholeNumber(ParseNumber(v).value_or(0.0)); },
            [](const Bytes&) { return std::int64_t{0}; },
            [](const Guid&) { return std::int64_t{0}; },
            [](const Numeric& v) { return WholeNumber(NumericToDouble(v)); },
            [](float v) { return WholeNumber(static_cast<double>(v)); },
            [](double v) { return WholeNumber(v); },
            [](auto whole) { return static_cast<std::int64_t>(whole); },
        },
        value.content());
}

}  // namespace jet
