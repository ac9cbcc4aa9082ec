// English names of months and weekdays, and how keywords compare.
#pragma once

#include <array>
#include <string_view>

namespace jet {

inline constexpr std::array<std::u16string_view, 12> kMonthNames = {
    u"January", u"February", u"March",     u"April",   u"May",      u"June",
    u"July",    u"August",   u"September", u"October", u"November", u"December"};

inline constexpr std::array<std::u16string_view, 7> kWeekdayNames = {
    u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};

constexpr bool IsAsciiDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
constexpr bool IsAsciiLetter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}
constexpr bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == 0xA0;
}
constexpr char16_t AsciiLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

// Keywords, function names, format names: letter case of A to Z does not count.
constexpr bool SameWord(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
    return true;
}

constexpr std::u16string_view TrimBlanks(std::u16string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace jet
