#include "cfb/name_order.h"

#include <algorithm>

namespace cfb {
namespace {

constexpr bool In(char16_t c, char16_t first, char16_t last) {
    return c >= first && c <= last;
}

// Ranges where upper and lower case letters alternate, the upper case one at even or at odd codes.
constexpr bool LowerAtOdd(char16_t c) {
    return In(c, 0x0100, 0x012F) || In(c, 0x0132, 0x0137) || In(c, 0x014A, 0x0177) ||
           In(c, 0x01DE, 0x01EF) || In(c, 0x01F8, 0x021F) || In(c, 0x0460, 0x0481) ||
           In(c, 0x048A, 0x04BF) || In(c, 0x04D0, 0x052F) || In(c, 0x1E00, 0x1E95) ||
           In(c, 0x1EA0, 0x1EFF);
}

constexpr bool LowerAtEven(char16_t c) {
    return In(c, 0x0139, 0x0148) || In(c, 0x0179, 0x017E) || In(c, 0x01CD, 0x01DC) ||
           In(c, 0x04C1, 0x04CE);
}

constexpr char16_t Minus(char16_t c, int distance) {
    return static_cast<char16_t>(c - distance);
}

constexpr char16_t UpperGreek(char16_t c) {
    if (c == 0x03AC) return 0x0386;
    if (In(c, 0x03AD, 0x03AF)) return Minus(c, 37);
    if (c == 0x03C2) return 0x03A3;
    if (In(c, 0x03B1, 0x03CB)) return Minus(c, 32);
    if (c == 0x03CC) return 0x038C;
    if (In(c, 0x03CD, 0x03CE)) return Minus(c, 63);
    return c;
}

}  // namespace

char16_t UpperCase(char16_t c) {
    if (In(c, u'a', u'z')) return Minus(c, 32);
    if (c < 0x80) return c;
    if (In(c, 0xE0, 0xFE) && c != 0xF7) return Minus(c, 32);
    if (c == 0xFF) return 0x0178;
    if (LowerAtOdd(c)) return c % 2 == 1 ? Minus(c, 1) : c;
    if (LowerAtEven(c)) return c % 2 == 0 ? Minus(c, 1) : c;
    if (In(c, 0x03AC, 0x03CE)) return UpperGreek(c);
    if (In(c, 0x0430, 0x044F)) return Minus(c, 32);
    if (In(c, 0x0450, 0x045F)) return Minus(c, 80);
    if (In(c, 0x0561, 0x0586)) return Minus(c, 48);
    return c;
}

bool SameName(std::u16string_view a, std::u16string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t x, char16_t y) { return UpperCase(x) == UpperCase(y); });
}

}  // namespace cfb
