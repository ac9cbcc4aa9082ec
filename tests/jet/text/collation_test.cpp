// Text keys against ones read from index pages of real files.
#include "jet/text/collation.h"

#include "jet/text/text_codec.h"
#include "jet/text/text_key.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace jet {
namespace {

std::string Hex(const Bytes& bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X ", std::to_integer<unsigned>(byte));
        text += digits;
    }
    if (!text.empty()) text.pop_back();
    return text;
}

std::string KeyOf(std::u16string_view text) {
    Bytes key;
    AppendTextKey(text, key);
    return Hex(key);
}

std::string KeyOfJet3(std::u16string_view text) {
    Bytes key;
    AppendTextKeyJet3(*TextCodec(3, 1252).EncodeName(text), key);
    return Hex(key);
}

TEST(CollationTest, PlainTextHasNoSections) {
    EXPECT_EQ(KeyOf(u"Tables"), "6D 4A 4C 5E 51 6B 01 00");
    EXPECT_EQ(KeyOf(u"a b"), "4A 07 4C 01 00");
    EXPECT_EQ(KeyOf(u""), "01 00");
}

TEST(CollationTest, HyphensAndApostrophesComeLast) {
    EXPECT_EQ(KeyOf(u"-1"), "38 01 01 01 01 80 07 06 82 00");
    EXPECT_EQ(KeyOf(u"Bon app'"), "4C 64 62 07 4A 66 66 01 01 01 01 80 23 06 80 00");
    EXPECT_EQ(KeyOf(u"NuNuCa Nuß-Nougat-Creme"),
              "62 6F 62 6F 4D 4A 07 62 6F 6B 6B 62 64 6F 55 4A 6D 4D 69 51 60 51 01 01 01 01 80 "
              "33 06 82 80 4B 06 82 00");
}

TEST(CollationTest, AccentsComeAfterAllLetters) {
    EXPECT_EQ(KeyOf(u"Bräcke"), "4C 69 4A 4D 5C 51 01 02 02 13 00");
    EXPECT_EQ(KeyOf(u"København"), "5C 64 4C 51 62 57 4A 71 62 01 02 21 00");
    EXPECT_EQ(KeyOf(u"Århus"), "4A 69 57 6F 6B 01 1A 00");
    EXPECT_EQ(KeyOf(u"ääkkösiä"), "4A 4A 5C 5C 64 6B 59 4A 01 13 13 02 02 13 02 02 13 00");
    EXPECT_EQ(KeyOf(u"HILARIÓN-Abastos"),
              "57 59 5E 4A 69 59 64 62 4A 4C 4A 6B 6D 64 6B 01 02 02 02 02 02 02 0E 01 01 01 80 27 "
              "06 82 00");
}

TEST(CollationTest, KanaHasASectionOfItsOwn) {
    EXPECT_EQ(KeyOf(u"漢字仮名交じり文"),
              "C0 B6 AC AC A0 0D A5 47 9F BE 7F 13 7F 43 B6 F6 01 02 02 02 02 02 03 01 01 FF 02 80 "
              "FF 80 00");
}

TEST(CollationTest, GreekWithUnknownUnits) {
    EXPECT_EQ(KeyOf(u"ϰα\u1F76 τ\u1F79τ' \u1F10γ\u1F7C Κ\u1F7Bϰλωπα"),
              "79 15 79 0C 07 79 1E 79 1E 07 79 0E 07 79 15 79 15 79 16 79 23 79 1B 79 0C 01 03 02 "
              "02 02 02 02 02 02 02 03 01 01 01 80 1B 06 80 00");
}

TEST(CollationTest, CaseAndTrailingBlanksDoNotCount) {
    EXPECT_EQ(CompareText(u"Black Knight", u"BLACK KNIGHT  "), std::weak_ordering::equivalent);
    EXPECT_EQ(CompareText(u"coop", u"co-op"), std::weak_ordering::less);
    EXPECT_EQ(CompareText(u"resume", u"résumé"), std::weak_ordering::less);
    EXPECT_EQ(CompareText(u"résumé", u"resumf"), std::weak_ordering::less);
    EXPECT_EQ(CompareText(u"10", u"9"), std::weak_ordering::less);
}

TEST(CollationTest, OnlyTheFirst255UnitsCount) {
    const std::u16string long_text(300, u'x');
    EXPECT_EQ(KeyOf(long_text), KeyOf(long_text.substr(0, 255)));
    EXPECT_NE(KeyOf(long_text), KeyOf(long_text.substr(0, 254)));
}

TEST(CollationTest, Jet3KeysHaveAccentNibbles) {
    EXPECT_EQ(KeyOfJet3(u"Café"), "62 60 67 66 02 24 00");
    EXPECT_EQ(KeyOfJet3(u"Plutzer Lebensmittelgroßmärkte AG"),
              "73 6D 78 77 7E 66 75 11 6D 66 61 66 70 76 6F 6A 77 77 66 6D 68 75 72 76 76 6F 60 75 "
              "6C 77 66 11 60 68 02 22 22 22 22 22 60");
}

TEST(TextCodecTest, CompressedTextMayMixModes) {
    const TextCodec codec(4, 1252);
    const auto bytes = [](std::initializer_list<unsigned> values) {
        Bytes out;
        for (const unsigned value : values)
            out.push_back(static_cast<std::byte>(value));
        return out;
    };
    EXPECT_EQ(codec.DecodeValue(bytes({0xFF, 0xFE, 'a', 0, 0xB1, 0x03, 0, 'b'})), u"aαb");
    EXPECT_EQ(codec.DecodeValue(bytes({0xFF, 0xFE})), u"");
    EXPECT_EQ(codec.EncodeValue(u"abc", true), bytes({0xFF, 0xFE, 'a', 'b', 'c'}));
    EXPECT_EQ(codec.EncodeValue(u"ab", true), bytes({'a', 0, 'b', 0}));
    EXPECT_EQ(codec.EncodeValue(u"aα", false), bytes({'a', 0, 0xB1, 0x03}));
}

TEST(TextCodecTest, ByteOrderMarkInFrontDoesNotLookCompressed) {
    const TextCodec codec(4, 1252);
    for (const std::u16string text : {u"\xFEFF"
                                      u"abc",
                                      u"\xFEFF"
                                      u"αb",
                                      u"\xFEFF"})
        EXPECT_EQ(codec.DecodeValue(*codec.EncodeValue(text, false)), text);
    EXPECT_EQ(codec.DecodeValue(*codec.EncodeValue(u"\xFEFF\x0100", false)), u"\x0100");
}

}  // namespace
}  // namespace jet
