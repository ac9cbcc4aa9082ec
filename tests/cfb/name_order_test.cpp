#include "cfb/name_order.h"

#include <gtest/gtest.h>

namespace cfb {
namespace {

TEST(NameOrderTest, LetterCaseDoesNotCount) {
    EXPECT_TRUE(SameName(u"TableInfo", u"TABLEINFO"));
    EXPECT_TRUE(SameName(u"\u03C2\u0451\u04C2", u"\u03A3\u0401\u04C1"));
    EXPECT_FALSE(SameName(u"TableInfo", u"Table1nfo"));
}

TEST(NameOrderTest, NamesOfDifferentLengthDiffer) {
    EXPECT_FALSE(SameName(u"TableInfo", u"TableInf"));
    EXPECT_FALSE(SameName(u"TableInf", u"TableInfo"));
}

}  // namespace
}  // namespace cfb
