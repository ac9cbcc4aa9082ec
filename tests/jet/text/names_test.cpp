// Names are the same where the collation calls them so, by whatever shorter way that is found.
#include "jet/text/names.h"

#include "base/unicode.h"
#include "jet/text/collation.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace jet {
namespace {

bool SameByCollation(std::u16string_view a, std::u16string_view b) {
    return CompareText(a, b) == std::weak_ordering::equivalent;
}

TEST(Names, EveryTwoUnitsAreTheSameAsByTheCollation) {
    for (char16_t a = 0x20; a < 0x180; ++a)
        for (char16_t b = 0x20; b < 0x180; ++b) {
            const std::u16string one = {u'x', a};
            const std::u16string other = {u'X', b};
            ASSERT_EQ(SameName(one, other), SameByCollation(one, other)) << int{a} << " " << int{b};
        }
}

// Letters, digits, what has no weight, what has a place, marks, letters that count as two.
TEST(Names, RandomNamesAreTheSameAsByTheCollation) {
    const std::u16string units =
        u"abABst09 _-'\u0301\u00AD\u00DF\u00E6\u00C6\u00FE\u00E0\u30AB\u304B.";
    std::mt19937 random(20261121);
    const auto number = [&](std::size_t below) { return random() % below; };
    int same = 0;
    for (int i = 0; i < 200000; ++i) {
        std::u16string one;
        for (std::size_t n = number(6); n > 0; --n)
            one += units[number(units.size())];
        std::u16string other = one;
        for (std::size_t n = number(3); n > 0; --n) {
            const std::size_t at = number(other.size() + 1);
            const std::u16string unit(1, units[number(units.size())]);
            if (number(2) == 0)
                other.insert(at, unit);
            else if (at < other.size())
                other.replace(at, 1, unit);
        }
        ASSERT_EQ(SameName(one, other), SameByCollation(one, other))
            << base::ToUtf8(one) << " " << base::ToUtf8(other);
        same += SameName(one, other) ? 1 : 0;
    }
    EXPECT_GT(same, 50000);
    EXPECT_LT(same, 150000);
}

// The key of a text takes in 255 units; what lies behind is compared after it.
TEST(Names, LongTextsAreTheSameAsByTheCollation) {
    for (const std::size_t size : {63, 64, 65, 254, 255, 256, 300}) {
        const std::u16string one(size, u'a');
        for (const std::u16string& other :
             {std::u16string(size, u'A'), one + u"b", one + u" ", one + u"-", one.substr(1) + u"b",
              u"b" + one.substr(1)}) {
            EXPECT_EQ(SameName(one, other), SameByCollation(one, other)) << size;
            EXPECT_EQ(SameName(other, one), SameByCollation(other, one)) << size;
        }
    }
}

}  // namespace
}  // namespace jet
