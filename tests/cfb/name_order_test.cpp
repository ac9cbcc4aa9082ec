#include "cfb/name_order.h"

#include <gtest/gtest.h>

#include <string>

namespace cfb {
namespace {

std::u16string Upper(std::u16string text) {
    for (char16_t& c : text)
        c = UpperCase(c);
    return text;
}

TEST(NameOrderTest, LatinLettersHaveTheirCapitals) {
    EXPECT_EQ(Upper(u"az\u00E0\u00FE\u00FF"), u"AZ\u00C0\u00DE\u0178");
    EXPECT_EQ(Upper(u"\u0101\u0142\u0161\u017E\u01D4\u1EA1"),
              u"\u0100\u0141\u0160\u017D\u01D3\u1EA0");
}

TEST(NameOrderTest, GreekCyrillicAndArmenianLettersHaveTheirCapitals) {
    EXPECT_EQ(Upper(u"\u03AC\u03AD\u03B1\u03C2\u03C9\u03CC\u03CE"),
              u"\u0386\u0388\u0391\u03A3\u03A9\u038C\u038F");
    EXPECT_EQ(Upper(u"\u0430\u044F\u0450\u045F\u0461\u04C2"),
              u"\u0410\u042F\u0400\u040F\u0460\u04C1");
    EXPECT_EQ(Upper(u"\u0561\u0586"), u"\u0531\u0556");
}

TEST(NameOrderTest, WhatIsNoSmallLetterStaysAsItIs) {
    for (const char16_t c :
         std::u16string(u"A@[`{0\u00D7\u00F7\u00DF\u0131\u0138\u0149\u4E2D\uFFFF"))
        EXPECT_EQ(UpperCase(c), c) << std::hex << static_cast<unsigned>(c);
}

TEST(NameOrderTest, NamesOfDifferentLengthDiffer) {
    EXPECT_TRUE(SameName(u"TableInfo", u"TABLEINFO"));
    EXPECT_FALSE(SameName(u"TableInfo", u"TableInf"));
    EXPECT_FALSE(SameName(u"TableInf", u"TableInfo"));
}

}  // namespace
}  // namespace cfb
