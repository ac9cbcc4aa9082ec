#include "jet/values/decimal.h"

#include <algorithm>
#include <charconv>

namespace jet {
namespace {

constexpr int kMaxDecimalDigits = 28;  // what the engine's decimal type carries

using Words = std::array<std::uint32_t, 4>;  // most significant first

std::uint32_t DivideByTen(Words& words) {
    std::uint64_t rest = 0;
    for (std::uint32_t& word : words) {
        const std::uint64_t part = (rest << 32) | word;
        word = static_cast<std::uint32_t>(part / 10);
        rest = part % 10;
    }
    return static_cast<std::uint32_t>(rest);
}

void TimesTenPlus(Words& words, std::uint32_t digit) {
    std::uint64_t carry = digit;
    for (std::size_t i = words.size(); i-- > 0;) {
        const std::uint64_t part = std::uint64_t{words[i]} * 10 + carry;
        words[i] = static_cast<std::uint32_t>(part);
        carry = part >> 32;
    }
}

bool IsZero(const Words& words) {
    return std::all_of(words.begin(), words.end(), [](std::uint32_t w) { return w == 0; });
}

// Digits of a plain number and the place of its point, counted in digits from the front.
struct Scientific {
    bool negative = false;
    std::string digits;
    long point = 0;
};

Scientific Split(std::string_view plain) {
    Scientific number;
    if (!plain.empty() && plain.front() == '-') {
        number.negative = true;
        plain.remove_prefix(1);
    }
    const std::size_t e = std::min(plain.find('e'), plain.size());
    bool before_point = true;
    for (const char c : plain.substr(0, e)) {
        if (c == '.') {
            before_point = false;
            continue;
        }
        number.digits += c;
        if (before_point) ++number.point;
    }
    long exponent = 0;
    if (e < plain.size()) {
        std::string_view text = plain.substr(e + 1);
        if (!text.empty() && text.front() == '+') text.remove_prefix(1);
        std::from_chars(text.data(), text.data() + text.size(), exponent);
    }
    number.point += exponent;
    return number;
}

// Cuts the digits after `keep`; tells whether the last kept one goes up (half to even).
bool CutDigits(std::string& digits, std::size_t keep) {
    if (keep >= digits.size()) return false;
    const char next = digits[keep];
    const bool rest = std::any_of(digits.begin() + static_cast<std::ptrdiff_t>(keep) + 1,
                                  digits.end(), [](char c) { return c != '0'; });
    const bool odd = keep > 0 && (digits[keep - 1] - '0') % 2 == 1;
    digits.resize(keep);
    return next > '5' || (next == '5' && (rest || odd));
}

void RoundUp(std::string& digits) {
    for (std::size_t i = digits.size(); i-- > 0;) {
        if (digits[i] != '9') {
            ++digits[i];
            return;
        }
        digits[i] = '0';
    }
    digits.insert(digits.begin(), '1');
}

}  // namespace

std::string NumericText(const Numeric& numeric) {
    Words words = numeric.magnitude;
    std::string text;
    const bool zero = IsZero(words);
    while (!IsZero(words))
        text += static_cast<char>('0' + DivideByTen(words));
    while (text.size() <= numeric.scale)
        text += '0';
    std::reverse(text.begin(), text.end());
    if (numeric.scale > 0) text.insert(text.size() - numeric.scale, 1, '.');
    return numeric.negative && !zero ? "-" + text : text;
}

double NumericToDouble(const Numeric& numeric) {
    const std::string text = NumericText(numeric);
    double value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::optional<Numeric> NumericFromText(std::string_view plain, std::uint8_t precision,
                                       std::uint8_t scale) {
    Scientific number = Split(plain);
    const std::size_t zeros = std::min(number.digits.find_first_not_of('0'), number.digits.size());
    number.digits.erase(0, zeros);
    number.point -= static_cast<long>(zeros);
    const long keep = number.point + scale;
    if (number.digits.empty() || keep < 0)
        number.digits.clear();
    else if (keep > kMaxDecimalDigits + 1)
        return std::nullopt;
    else {
        const auto kept = static_cast<std::size_t>(keep);
        if (kept > number.digits.size()) number.digits.append(kept - number.digits.size(), '0');
        if (CutDigits(number.digits, kept)) RoundUp(number.digits);
    }
    if (number.digits.size() > std::min<std::size_t>(precision, kMaxDecimalDigits))
        return std::nullopt;
    Numeric numeric;
    numeric.scale = scale;
    for (const char c : number.digits)
        TimesTenPlus(numeric.magnitude, static_cast<std::uint32_t>(c - '0'));
    numeric.negative = number.negative && !IsZero(numeric.magnitude);
    return numeric;
}

}  // namespace jet
