#include "jet/values/guid_text.h"

#include "jet/values/calendar_names.h"

namespace jet {
namespace {

// Place in the stored bytes of each pair of hexadecimal digits, in the order written: the first
// three groups are little endian.
constexpr std::array<std::size_t, 16> kByteOfPair = {3, 2, 1,  0,  5,  4,  7,  6,
                                                     8, 9, 10, 11, 12, 13, 14, 15};

constexpr bool DashBefore(std::size_t pair) {
    return pair == 4 || pair == 6 || pair == 8 || pair == 10;
}

int HexDigit(char16_t c) {
    const char16_t lower = AsciiLower(c);
    if (IsAsciiDigit(c)) return c - u'0';
    if (lower >= u'a' && lower <= u'f') return lower - u'a' + 10;
    return -1;
}

std::u16string_view WithoutBraces(std::u16string_view text) {
    text = TrimBlanks(text);
    while (text.size() > 2 && text.front() == u'{' && text.back() == u'}') {
        text = TrimBlanks(text.substr(1, text.size() - 2));
        if (text.size() > 4 && SameWord(text.substr(0, 4), u"guid"))
            text = TrimBlanks(text.substr(4));
    }
    return text;
}

}  // namespace

std::u16string GuidText(const Guid& guid) {
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    std::u16string text = u"{";
    for (std::size_t pair = 0; pair < kByteOfPair.size(); ++pair) {
        if (DashBefore(pair)) text += u'-';
        const auto byte = std::to_integer<std::size_t>(guid.bytes[kByteOfPair[pair]]);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text + u"}";
}

std::optional<Guid> ParseGuid(std::u16string_view text) {
    text = WithoutBraces(text);
    Guid guid;
    std::size_t at = 0;
    for (std::size_t pair = 0; pair < kByteOfPair.size(); ++pair) {
        if (DashBefore(pair)) {
            if (at >= text.size() || text[at] != u'-') return std::nullopt;
            ++at;
        }
        if (text.size() - at < 2) return std::nullopt;
        const int high = HexDigit(text[at]);
        const int low = HexDigit(text[at + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        guid.bytes[kByteOfPair[pair]] = static_cast<std::byte>(high * 16 + low);
        at += 2;
    }
    if (at != text.size()) return std::nullopt;
    return guid;
}

}  // namespace jet
