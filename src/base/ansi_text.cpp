#include "base/ansi_text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace base {
namespace {

// The characters of the bytes 0x80 to 0x9F in code page 1252. The five that it leaves undefined are
// the control characters of the same value, as in Windows' conversion.
constexpr std::array<char16_t, 32> kFrom80To9F = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::byte AnsiByte(char16_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<std::byte>(c);
    const auto* const found = std::find(kFrom80To9F.begin(), kFrom80To9F.end(), c);
    if (found == kFrom80To9F.end()) return std::byte{'?'};
    return static_cast<std::byte>(0x80 + (found - kFrom80To9F.begin()));
}

char16_t AnsiCharacter(std::byte byte) {
    const auto value = std::to_integer<std::uint8_t>(byte);
    return value >= 0x80 && value <= 0x9F ? kFrom80To9F[value - 0x80U] : char16_t{value};
}

std::vector<std::byte> ToAnsi(std::u16string_view text) {
    std::vector<std::byte> bytes(text.size());
    std::transform(text.begin(), text.end(), bytes.begin(), AnsiByte);
    return bytes;
}

std::u16string FromAnsi(std::span<const std::byte> bytes) {
    std::u16string text(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), text.begin(), AnsiCharacter);
    return text;
}

}  // namespace base
