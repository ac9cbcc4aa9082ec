#include "jet/values/number_text.h"

#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace jet {
namespace {

constexpr std::size_t kMaxNumberText = 400;

// &H1F and &O17: at most 32 bits.
std::optional<double> ParseRadix(std::u16string_view text) {
    if (text.size() < 3 || text[0] != u'&') return std::nullopt;
    const char16_t mark = AsciiLower(text[1]);
    if (mark != u'h' && mark != u'o') return std::nullopt;
    const std::uint64_t radix = mark == u'h' ? 16 : 8;
    std::uint64_t value = 0;
    for (const char16_t c : text.substr(2)) {
        const char16_t lower = AsciiLower(c);
        std::uint64_t digit = 99;
        if (IsAsciiDigit(c)) digit = static_cast<std::uint64_t>(c - u'0');
        if (lower >= u'a' && lower <= u'f') digit = static_cast<std::uint64_t>(lower - u'a') + 10;
        if (digit >= radix) return std::nullopt;
        value = value * radix + digit;
        if (value > 0xFFFFFFFFULL) return std::nullopt;
    }
    return static_cast<double>(value);
}

// Takes signs, a currency sign and surrounding parentheses (a minus) off both ends.
struct Sign {
    bool negative = false;
    bool seen = false;
};

bool TakeSign(std::u16string_view& text, Sign& sign) {
    if (text.empty() || (text.front() != u'-' && text.front() != u'+')) return true;
    if (sign.seen) return false;
    sign = {text.front() == u'-', true};
    text = TrimBlanks(text.substr(1));
    return true;
}

bool TakePrefix(std::u16string_view& text, Sign& sign) {
    if (text.size() > 2 && text.front() == u'(' && text.back() == u')') {
        text = TrimBlanks(text.substr(1, text.size() - 2));
        sign = {true, true};
    }
    if (!TakeSign(text, sign)) return false;
    if (!text.empty() && text.front() == u'$') text = TrimBlanks(text.substr(1));
    return TakeSign(text, sign);
}

// The digits of the mantissa without thousands separators, as from_chars reads them. An exponent
// follows 'e'.
std::optional<std::string> PlainDigits(std::u16string_view text) {
    std::string plain;
    bool digits = false;
    bool point = false;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (IsAsciiDigit(c)) {
            plain += static_cast<char>(c);
            digits = true;
        } else if (c == u'.' && !point) {
            plain += '.';
            point = true;
        } else if (c != u',' || point || !digits) {
            break;
        }
    }
    if (!digits) return std::nullopt;
    if (i == text.size()) return plain;
    const char16_t mark = AsciiLower(text[i++]);
    if (mark != u'e' && mark != u'd') return std::nullopt;
    plain += 'e';
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
        if (text[i] == u'-') plain += '-';
        ++i;
    }
    if (i == text.size() || text.size() - i > 4) return std::nullopt;
    for (; i < text.size(); ++i) {
        if (!IsAsciiDigit(text[i])) return std::nullopt;
        plain += static_cast<char>(text[i]);
    }
    return plain;
}

template <typename Float>
std::u16string ShortText(Float number, int digits) {
    if (number == 0) return u"0";  // also minus zero
    if (!std::isfinite(number)) {
        if (std::isnan(number)) return u"-1.#IND";
        return number > 0 ? u"1.#INF" : u"-1.#INF";
    }
    char buffer[64];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::general, digits);
    std::u16string text;
    for (const char* c = buffer; c != end.ptr; ++c)
        text += static_cast<char16_t>(*c == 'e' ? 'E' : *c);
    return text;
}

}  // namespace

std::optional<std::string> PlainNumber(std::u16string_view text) {
    text = TrimBlanks(text);
    if (text.empty() || text.size() > kMaxNumberText) return std::nullopt;
    Sign sign;
    if (!TakePrefix(text, sign)) return std::nullopt;
    auto digits = PlainDigits(text);
    if (!digits) return std::nullopt;
    return sign.negative ? "-" + *digits : *digits;
}

std::optional<double> ParseNumber(std::u16string_view text) {
    if (const auto radix = ParseRadix(TrimBlanks(text))) return radix;
    const auto plain = PlainNumber(text);
    if (!plain) return std::nullopt;
    double value = 0;
    const auto read = std::from_chars(plain->data(), plain->data() + plain->size(), value);
    if (read.ec == std::errc::result_out_of_range) {
        const bool tiny = plain->find("e-") != std::string::npos;
        return tiny ? std::optional<double>(0.0) : std::nullopt;
    }
    if (read.ec != std::errc{}) return std::nullopt;
    return value;
}

bool IsNumeric(std::u16string_view text) {
    return ParseNumber(text).has_value();
}

std::u16string FormatNumber(double number) {
    return ShortText(number, 15);
}

std::u16string FormatNumber(float number) {
    return ShortText(number, 7);
}

}  // namespace jet
