#include "base/ansi_text.h"

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(AnsiTextTest, TheBytesThatTheCodePageLeavesOpenStandForThemselves) {
    EXPECT_EQ(ToAnsi(u"\u0081"), std::vector{std::byte{0x81}});
    EXPECT_EQ(ToAnsi(u"\u0080"), std::vector{std::byte{'?'}});
}

TEST(AnsiTextTest, EachUnitOfACharacterBeyondTheBasicPlaneIsAQuestionMark) {
    EXPECT_EQ(ToAnsi(u"\U0001F600"), (std::vector{std::byte{'?'}, std::byte{'?'}}));
}

TEST(AnsiTextTest, EveryByteIsACharacterAndComesBackFromIt) {
    std::vector<std::byte> bytes;
    for (int value = 0; value < 256; ++value)
        bytes.push_back(static_cast<std::byte>(value));
    EXPECT_EQ(ToAnsi(FromAnsi(bytes)), bytes);
}

}  // namespace
}  // namespace base
