#include "tableinfo/table_text.h"

#include "support/vpt_builder.h"

#include <gtest/gtest.h>

namespace tableinfo {
namespace {

using test_support::BytesOf;
using test_support::Utf16Bytes;

QString Decode(std::string_view bytes) {
    return DecodeTableText(BytesOf(bytes));
}
QString Decode16(std::u16string_view text) {
    return DecodeTableText(Utf16Bytes(text));
}

TEST(TableTextTest, SixteenBitTextIsItsCharacters) {
    EXPECT_EQ(Decode({"\x41\0\x74\0\x74\0\x61\0\x63\0\x6B\0", 12}), QStringLiteral("Attack"));
}

TEST(TableTextTest, EveryCharacterFrom1To255SurvivesSixteenBitStorage) {
    std::u16string all;
    for (char16_t c = 1; c < 256; ++c) {
        all.push_back(c);
        EXPECT_EQ(Decode16(std::u16string(1, c)), QString(QChar(c))) << static_cast<unsigned>(c);
    }
    EXPECT_EQ(Decode16(all), QString::fromStdU16String(all));
}

TEST(TableTextTest, OneBytePerCharacterIsReadAsSuch) {
    EXPECT_EQ(Decode("Attack"), QStringLiteral("Attack"));
    EXPECT_EQ(Decode("Five!"), QStringLiteral("Five!"));
    EXPECT_EQ(Decode("\xE9t\xE9!"), QStringLiteral(u"\u00E9t\u00E9!"));
}

TEST(TableTextTest, NulsAreRemovedWhereverTheyStand) {
    EXPECT_EQ(Decode({"ABC\0", 4}), QStringLiteral("ABC"));
    EXPECT_EQ(Decode({"A\0\0\0B\0\0\0", 8}), QStringLiteral("AB"));
    EXPECT_EQ(Decode({"\0\0\0", 3}), QString());
    EXPECT_EQ(Decode(""), QString());
}

TEST(TableTextTest, TypographersQuotesSurvive) {
    EXPECT_EQ(Decode16(u"Bob\u2019s \u201CTable\u201D"),
              QStringLiteral(u"Bob\u2019s \u201CTable\u201D"));
}

TEST(TableTextTest, TextsOfOtherAlphabetsSurvive) {
    EXPECT_EQ(Decode16(u"\u041F\u0440\u0438\u0432\u0435\u0442"),
              QStringLiteral(u"\u041F\u0440\u0438\u0432\u0435\u0442"));
}

TEST(TableTextTest, LineEndsBelongToTheText) {
    EXPECT_EQ(Decode16(u"one\r\n\ttwo"), QStringLiteral("one\r\n\ttwo"));
    EXPECT_EQ(Decode("one\r\n\ttwo"), QStringLiteral("one\r\n\ttwo"));
}

TEST(TableTextTest, PaddingWithNulsTellsNothing) {
    EXPECT_EQ(Decode({"Attack\0\0\0\0\0\0\0\0\0\0", 16}), QStringLiteral("Attack"));
}

TEST(TableTextTest, AControlCharacterDoesNotMakeSixteenBits) {
    EXPECT_EQ(Decode("A\x0C"
                     "BC"),
              QStringLiteral("A\x0C"
                             "BC"));
}

}  // namespace
}  // namespace tableinfo
