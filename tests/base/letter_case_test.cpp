#include "base/letter_case.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(LetterCaseTest, LatinLettersHaveTheirCapitals) {
    EXPECT_EQ(ToUpper(u"az\u00E0\u00FE\u00FF"), u"AZ\u00C0\u00DE\u0178");
    EXPECT_EQ(ToUpper(u"\u0101\u0142\u0161\u017E\u01D4\u0223\u1EA1\uFF41"),
              u"\u0100\u0141\u0160\u017D\u01D3\u0222\u1EA0\uFF21");
}

TEST(LetterCaseTest, GreekCyrillicAndArmenianLettersHaveTheirCapitals) {
    EXPECT_EQ(ToUpper(u"\u03AC\u03AD\u03B1\u03C2\u03C9\u03CC\u03CE\u03E3"),
              u"\u0386\u0388\u0391\u03A3\u03A9\u038C\u038F\u03E2");
    EXPECT_EQ(ToUpper(u"\u0430\u044F\u0450\u045F\u0461\u04C2"),
              u"\u0410\u042F\u0400\u040F\u0460\u04C1");
    EXPECT_EQ(ToUpper(u"\u0561\u0586"), u"\u0531\u0556");
}

TEST(LetterCaseTest, ACapitalAndItsSmallLetterLeadToEachOther) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const auto c = static_cast<char16_t>(unit);
        const bool is_final_sigma = c == 0x03C2;
        EXPECT_TRUE(ToLower(c) == c || ToUpper(ToLower(c)) == c) << std::hex << unit;
        EXPECT_TRUE(ToUpper(c) == c || ToLower(ToUpper(c)) == c || is_final_sigma)
            << std::hex << unit;
    }
}

TEST(LetterCaseTest, WhatIsNoSmallLetterStaysAsItIs) {
    for (const char16_t c :
         std::u16string(u"A@[`{0\u00D7\u00F7\u00DF\u0131\u0138\u0149\u4E2D\uFFFF"))
        EXPECT_EQ(ToUpper(c), c) << std::hex << static_cast<unsigned>(c);
}

}  // namespace
}  // namespace base
