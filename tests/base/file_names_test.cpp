#include "base/file_names.h"

#include <gtest/gtest.h>

#include <random>

namespace base {
namespace {

TEST(FileNamesTest, ValidUtf8IsItsText) {
    EXPECT_EQ(DecodeFileName("Grüße \xF0\x9F\x98\x80.vpt"), u"Grüße \xD83D\xDE00.vpt");
    EXPECT_EQ(EncodeFileName(u"Grüße \xD83D\xDE00.vpt"), "Grüße \xF0\x9F\x98\x80.vpt");
}

TEST(FileNamesTest, AByteThatIsNoUtf8IsALoneSurrogate) {
    EXPECT_EQ(DecodeFileName("S\xFC"
                             "d"),
              u"S\xDCFC"
              u"d");
    EXPECT_EQ(EncodeFileName(u"S\xDCFC"
                             u"d"),
              "S\xFC"
              "d");
}

TEST(FileNamesTest, ASurrogateWrittenAsUtf8IsThreeBytes) {
    EXPECT_EQ(DecodeFileName("\xED\xB3\xBC"), u"\xDCED\xDCB3\xDCBC");
}

TEST(FileNamesTest, ASurrogateThatStandsForNoByteBecomesTheReplacementCharacter) {
    EXPECT_EQ(EncodeFileName(u"a\xD800"), "a\xEF\xBF\xBD");
    EXPECT_EQ(EncodeFileName(u"\xDC7F"), "\xEF\xBF\xBD");
}

// Every pair of bytes, and long names of bytes that are likely to form sequences with one another.
TEST(FileNamesTest, WhateverTheBytesTheyComeBack) {
    for (int first = 1; first < 256; ++first)
        for (int second = 1; second < 256; ++second) {
            const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(EncodeFileName(DecodeFileName(bytes)), bytes) << first << ' ' << second;
        }
    std::mt19937 random(20261121);
    constexpr std::string_view kBytes = "a\x7F\x80\x8F\x90\xA0\xBF\xC0\xC2\xE0\xED\xEF\xF0\xF4\xFF";
    for (int round = 0; round < 20'000; ++round) {
        std::string bytes;
        for (std::size_t i = random() % 12; i > 0; --i)
            bytes += kBytes[random() % kBytes.size()];
        ASSERT_EQ(EncodeFileName(DecodeFileName(bytes)), bytes) << round;
        ASSERT_EQ(TextOf(PathOf(DecodeFileName(bytes))), DecodeFileName(bytes)) << round;
    }
}

}  // namespace
}  // namespace base
