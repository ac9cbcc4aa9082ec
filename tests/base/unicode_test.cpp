#include "base/unicode.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(UnicodeTest, RoundTripOfEveryLength) {
    const std::u16string text = u"a\u00e9\u20ac\U0001F600";
    EXPECT_EQ(ToUtf8(text), "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(ToUtf16(ToUtf8(text)), text);
}

TEST(UnicodeTest, LoneSurrogateBecomesReplacement) {
    EXPECT_EQ(ToUtf8(std::u16string(1, char16_t{0xD800})), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::u16string(1, char16_t{0xDC00})), "\xEF\xBF\xBD");
}

TEST(UnicodeTest, BadBytesBecomeReplacements) {
    EXPECT_EQ(ToUtf16("\xFF"
                      "a"),
              u"\uFFFDa");
    EXPECT_EQ(ToUtf16("\xC3"), u"\uFFFD");
    EXPECT_EQ(ToUtf16("\xE0\x80\x80"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(ToUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD");
}

}  // namespace
}  // namespace base
