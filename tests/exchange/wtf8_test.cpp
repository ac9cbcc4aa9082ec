#include "exchange/wtf8.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

namespace exchange {
namespace {

std::string Bytes(std::u16string_view text) {
    std::string bytes;
    AppendWtf8(bytes, text);
    return bytes;
}

TEST(Wtf8Test, TextIsUtf8) {
    const std::u16string text = u"A\u00E9\u20AC\U0001F3B1";
    EXPECT_EQ(Bytes(text), base::ToUtf8(text));
}

TEST(Wtf8Test, HalvesAreKept) {
    EXPECT_EQ(Bytes(u"\xDC80"), "\xED\xB2\x80");
    for (const std::u16string& text :
         {std::u16string(u"\xD800"), std::u16string(u"a\xDCFFz"), std::u16string(u"\xDC00\xD800"),
          std::u16string(u"\xD800\xD800\xDC00")})
        EXPECT_EQ(FromWtf8(Bytes(text)), text);
}

TEST(Wtf8Test, EveryUnitComesBack) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string text{static_cast<char16_t>(unit)};
        ASSERT_EQ(FromWtf8(Bytes(text)), text) << unit;
    }
}

TEST(Wtf8Test, OtherBytesAreRefused) {
    for (const char* bytes : {"\x80", "\xC3", "\xC0\x80", "\xED\xA0", "\xF4\x90\x80\x80", "\xFF"})
        EXPECT_FALSE(FromWtf8(bytes));
    // Two halves that make a character.
    EXPECT_FALSE(FromWtf8("\xED\xA0\xBC\xED\xBE\xB1"));
}

}  // namespace
}  // namespace exchange
