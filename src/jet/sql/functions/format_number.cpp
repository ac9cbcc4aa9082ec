#include "jet/sql/functions/format_number.h"

#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

namespace jet::sql {
namespace {

constexpr int kMaxDecimals = 30;

// Digits before and after the point, rounded.
struct FixedDigits {
    std::string whole;
    std::string decimals;
};

FixedDigits RoundTo(double number, int decimals) {
    // The shortest digits first, so that 2.675 rounds as it reads.
    char shortest[400];
    auto end = std::to_chars(shortest, shortest + sizeof shortest, std::fabs(number),
                             std::chars_format::fixed);
    std::string text(shortest, end.ptr);
    if (text.find('.') == std::string::npos) text += '.';
    const std::size_t point = text.find('.');
    FixedDigits digits{text.substr(0, point), text.substr(point + 1)};
    const auto keep = static_cast<std::size_t>(decimals);
    const bool up = digits.decimals.size() > keep && digits.decimals[keep] >= '5';
    digits.decimals.resize(keep, '0');
    if (!up) return digits;
    std::string all = digits.whole + digits.decimals;
    std::size_t i = all.size();
    while (i > 0 && all[i - 1] == '9')
        all[--i] = '0';
    if (i > 0)
        ++all[i - 1];
    else
        all.insert(all.begin(), '1');
    return {all.substr(0, all.size() - keep), all.substr(all.size() - keep)};
}

std::u16string Widen(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

// What a section asks for.
struct Section {
    int whole_zeros = 0;  // "0" before the point
    int decimals = 0;     // "0" and "#" after it
    int decimal_zeros = 0;
    int percents = 0;
    int scale_commas = 0;  // each divides by a thousand
    bool thousands = false;
    bool point = false;
    bool exponent = false;
    int exponent_digits = 0;
    bool exponent_plus = false;
    bool has_digits = false;
};

struct Part {
    bool literal = false;
    char16_t unit = 0;
};

// The section as parts: escaped and quoted characters are literal.
std::vector<Part> SplitParts(std::u16string_view text) {
    std::vector<Part> parts;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\\') {
            if (++i < text.size()) parts.push_back({true, text[i]});
        } else if (text[i] == u'"') {
            for (++i; i < text.size() && text[i] != u'"'; ++i)
                parts.push_back({true, text[i]});
        } else {
            parts.push_back({false, text[i]});
        }
    }
    return parts;
}

bool IsDigitMark(const Part& part) {
    return !part.literal && (part.unit == u'0' || part.unit == u'#');
}

bool StartsExponent(const std::vector<Part>& parts, std::size_t i) {
    return !parts[i].literal && AsciiLower(parts[i].unit) == u'e' && i + 2 < parts.size() &&
           (parts[i + 1].unit == u'+' || parts[i + 1].unit == u'-') && parts[i + 2].unit == u'0';
}

Section Study(const std::vector<Part>& parts) {
    Section section;
    int commas = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const Part& part = parts[i];
        if (part.literal) continue;
        if (StartsExponent(parts, i)) {
            section.exponent = true;
            section.exponent_plus = parts[i + 1].unit == u'+';
            for (i += 2; i < parts.size() && parts[i].unit == u'0'; ++i)
                ++section.exponent_digits;
            --i;
        } else if (IsDigitMark(part)) {
            section.has_digits = true;
            if (section.point) {
                ++section.decimals;
                if (part.unit == u'0') section.decimal_zeros = section.decimals;
            } else {
                if (commas > 0) section.thousands = true;
                commas = 0;
                if (part.unit == u'0' || section.whole_zeros > 0) ++section.whole_zeros;
            }
        } else if (part.unit == u',' && section.has_digits && !section.point) {
            ++commas;
        } else if (part.unit == u'.') {
            section.point = true;
        } else if (part.unit == u'%') {
            ++section.percents;
        }
    }
    section.scale_commas = commas;
    section.decimals = std::min(section.decimals, kMaxDecimals);
    section.decimal_zeros = std::min(section.decimal_zeros, kMaxDecimals);
    return section;
}

std::string WithThousands(const std::string& whole) {
    std::string grouped;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) grouped += ',';
        grouped += whole[i];
    }
    return grouped;
}

// The magnitude with the section's percents and thousands; what grows out of range stays at its
// end.
double Scaled(double number, const Section& section) {
    const double scaled = std::fabs(number) * std::pow(100.0, std::min(section.percents, 100)) *
                          std::pow(0.001, section.scale_commas);
    return std::isfinite(scaled) ? scaled : std::numeric_limits<double>::max();
}

// number / 10^exponent, where that power itself may be out of range.
double Shifted(double number, int exponent) {
    const int half = exponent / 2;
    return number / std::pow(10.0, half) / std::pow(10.0, exponent - half);
}

// The digits of a mantissa, and the exponent that goes with them. Requires: number > 0.
FixedDigits Mantissa(double number, const Section& section, int& exponent) {
    const int whole = std::clamp(section.whole_zeros, 1, kMaxDecimals);
    exponent = static_cast<int>(std::floor(std::log10(number))) - (whole - 1);
    FixedDigits digits = RoundTo(Shifted(number, exponent), section.decimals);
    // 9.99 has become 10.0.
    if (digits.whole.size() <= static_cast<std::size_t>(whole)) return digits;
    ++exponent;
    return RoundTo(Shifted(number, exponent), section.decimals);
}

std::u16string NumberText(double number, const Section& section) {
    number = Scaled(number, section);
    int exponent = 0;
    FixedDigits digits = section.exponent && number != 0 ? Mantissa(number, section, exponent)
                                                         : RoundTo(number, section.decimals);
    while (digits.decimals.size() > static_cast<std::size_t>(section.decimal_zeros) &&
           digits.decimals.back() == '0')
        digits.decimals.pop_back();
    digits.whole.erase(0, digits.whole.find_first_not_of('0'));
    if (digits.whole.size() < static_cast<std::size_t>(section.whole_zeros))
        digits.whole.insert(0, static_cast<std::size_t>(section.whole_zeros) - digits.whole.size(),
                            '0');
    std::string text = section.thousands ? WithThousands(digits.whole) : digits.whole;
    if (section.point) text += "." + digits.decimals;
    if (section.exponent) {
        std::string power = std::to_string(std::abs(exponent));
        if (power.size() < static_cast<std::size_t>(section.exponent_digits))
            power.insert(0, static_cast<std::size_t>(section.exponent_digits) - power.size(), '0');
        text += exponent < 0 ? "E-" : section.exponent_plus ? "E+" : "E";
        text += power;
    }
    return Widen(text);
}

// Where the digit marks stand goes the number; everything else stands for itself.
std::u16string WriteSection(double number, const std::vector<Part>& parts, const Section& section) {
    std::u16string text;
    bool written = false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const Part& part = parts[i];
        const bool number_mark =
            !part.literal && (IsDigitMark(part) || part.unit == u'.' || part.unit == u',');
        if (number_mark && section.has_digits) {
            if (!written) text += NumberText(number, section);
            written = true;
        } else if (section.exponent && StartsExponent(parts, i)) {
            i += 1 + static_cast<std::size_t>(section.exponent_digits);
        } else {
            text += part.unit;
        }
    }
    return text;
}

std::vector<std::u16string_view> SplitSections(std::u16string_view format) {
    std::vector<std::u16string_view> sections;
    std::size_t begin = 0;
    bool quoted = false;
    for (std::size_t i = 0; i <= format.size(); ++i) {
        if (i < format.size() && format[i] == u'"') quoted = !quoted;
        if (i < format.size() && format[i] == u'\\') {
            i = std::min(i + 1, format.size() - 1);
            continue;
        }
        if (i < format.size() && (quoted || format[i] != u';')) continue;
        sections.push_back(format.substr(begin, i - begin));
        begin = i + 1;
    }
    return sections;
}

std::u16string FormatPattern(double number, std::u16string_view format) {
    const auto sections = SplitSections(format);
    std::size_t which = 0;
    if (number < 0 && sections.size() > 1 && !sections[1].empty()) which = 1;
    if (number == 0 && sections.size() > 2 && !sections[2].empty()) which = 2;
    const auto parts = SplitParts(sections[which]);
    const std::u16string text = WriteSection(number, parts, Study(parts));
    return number < 0 && which == 0 ? u"-" + text : text;
}

struct NamedFormat {
    std::u16string_view name;
    std::u16string_view pattern;
};

constexpr NamedFormat kNamed[] = {
    {u"Fixed", u"0.00"},
    {u"Standard", u"#,##0.00"},
    {u"Currency", u"$#,##0.00;($#,##0.00)"},
    {u"Percent", u"0.00%"},
    {u"Scientific", u"0.00E+00"},
    {u"Yes/No", u"\"Yes\";\"Yes\";\"No\""},
    {u"True/False", u"\"True\";\"True\";\"False\""},
    {u"On/Off", u"\"On\";\"On\";\"Off\""},
};

}  // namespace

std::u16string FormatNumberAs(double number, std::u16string_view format) {
    if (!std::isfinite(number) || SameWord(format, u"General Number")) return FormatNumber(number);
    for (const NamedFormat& named : kNamed)
        if (SameWord(named.name, format)) return FormatPattern(number, named.pattern);
    return FormatPattern(number, format);
}

}  // namespace jet::sql
