#include "jet/values/conversions.h"

#include "base/unicode.h"
#include "jet/values/decimal.h"
#include "jet/values/guid_text.h"
#include "jet/values/value.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct NumberCase {
    const char16_t* text;
    double expected;
};
void PrintTo(const NumberCase& c, std::ostream* out) {
    *out << base::ToUtf8(c.text);
}

class ReadableNumber : public testing::TestWithParam<NumberCase> {};

TEST_P(ReadableNumber, IsRead) {
    EXPECT_EQ(jet::ParseNumber(GetParam().text), GetParam().expected);
    EXPECT_TRUE(jet::IsNumeric(GetParam().text));
}

const NumberCase kNumbers[] = {
    {u"0", 0},
    {u" 12 ", 12},
    {u"-5", -5},
    {u"+5", 5},
    {u"1E3", 1000},
    {u"1.5e-3", .0015},
    {u".5", .5},
    {u"5.", 5},
    {u"1,234.5", 1234.5},
    {u"$12.50", 12.5},
    {u"-$3", -3},
    {u"$-3", -3},
    {u"(7)", -7},
    {u"&H1F", 31},
    {u"&o17", 15},
    {u"&HFFFFFFFF", 4294967295.0},
    {u"1d2", 100},
    {u"1e-400", 0},
};
INSTANTIATE_TEST_SUITE_P(Texts, ReadableNumber, testing::ValuesIn(kNumbers));

class NotANumber : public testing::TestWithParam<const char16_t*> {};

TEST_P(NotANumber, IsRefused) {
    EXPECT_FALSE(jet::IsNumeric(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Texts, NotANumber,
                         testing::Values(u"", u" ", u"abc", u"1 2", u"1e", u"1e+", u"--1", u"1.2.3",
                                         u"$", u"&H", u"&HG", u"&H100000000", u"1e400", u",1",
                                         u"20-Nov-26", u"()", u"e5", u"."));

TEST(NumberFormatTest, UpToFifteenDigits) {
    EXPECT_EQ(jet::FormatNumber(0.1 + 0.2), u"0.3");
    EXPECT_EQ(jet::FormatNumber(123456789012345.0), u"123456789012345");
    EXPECT_EQ(jet::FormatNumber(-2.5), u"-2.5");
    EXPECT_EQ(jet::FormatNumber(-0.0), u"0");
}

TEST(NumberFormatTest, ExponentFormBeyond) {
    EXPECT_EQ(jet::FormatNumber(1e20), u"1E+20");
    EXPECT_EQ(jet::FormatNumber(1.5e-10), u"1.5E-10");
}

TEST(NumberFormatTest, SevenDigitsForSingle) {
    EXPECT_EQ(jet::FormatNumber(0.1F), u"0.1");
    EXPECT_EQ(jet::FormatNumber(1.0F / 3), u"0.3333333");
}

TEST(ValueTextTest, EachKindHasItsText) {
    using jet::Value;
    EXPECT_EQ(jet::ToText(Value::Null()), u"");
    EXPECT_EQ(jet::ToText(Value::Boolean(true)), u"True");
    EXPECT_EQ(jet::ToText(Value::Byte(200)), u"200");
    EXPECT_EQ(jet::ToText(Value::Short(-7)), u"-7");
    EXPECT_EQ(jet::ToText(Value::Long(-2147483647 - 1)), u"-2147483648");
    EXPECT_EQ(jet::ToText(Value::Currency({-12345})), u"-1.2345");
    EXPECT_EQ(jet::ToText(Value::Currency({INT64_MIN})), u"-922337203685477.5808");
    EXPECT_EQ(jet::ToText(Value::DateTime(0)), u"12:00:00 AM");
    EXPECT_EQ(jet::ToText(Value::Text(u"x")), u"x");
    EXPECT_EQ(jet::ToText(Value::Binary({std::byte{0x1F}, std::byte{0xA0}})), u"1FA0");
    EXPECT_EQ(jet::ToText(Value::Decimal(*jet::NumericFromText("-12.50", 10, 4))), u"-12.5");
}

TEST(ValueNumberTest, ToIntegerRoundsHalfToEven) {
    using jet::Value;
    EXPECT_EQ(jet::ToInteger(Value::Double(2.5)), 2);
    EXPECT_EQ(jet::ToInteger(Value::Double(3.5)), 4);
    EXPECT_EQ(jet::ToInteger(Value::Text(u"-1.5")), -2);
    EXPECT_EQ(jet::ToInteger(Value::Text(u"x")), 0);
    EXPECT_EQ(jet::ToInteger(Value::Boolean(true)), -1);
    EXPECT_EQ(jet::ToInteger(Value::Double(1e300)), 0);
    EXPECT_EQ(jet::ToInteger(Value::Double(std::nan(""))), 0);
}

TEST(ValueNumberTest, ToBoolTakesNumbersOnly) {
    using jet::Value;
    EXPECT_TRUE(jet::ToBool(Value::Long(3)));
    EXPECT_FALSE(jet::ToBool(Value::Long(0)));
    EXPECT_FALSE(jet::ToBool(Value::Text(u"True")));
    EXPECT_FALSE(jet::ToBool(Value::Null()));
}

TEST(DecimalTest, RoundsHalfToEven) {
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText("2.5", 5, 0)), "2");
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText("3.5", 5, 0)), "4");
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText("2.51", 5, 0)), "3");
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText("0.999", 5, 2)), "1.00");
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText("-0.001", 5, 2)), "0.00");
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText("1e3", 5, 1)), "1000.0");
}

TEST(DecimalTest, MoreDigitsThanThePrecisionIsRefused) {
    EXPECT_FALSE(jet::NumericFromText("100", 2, 0).has_value());
    EXPECT_FALSE(jet::NumericFromText("99.5", 2, 0).has_value());
    EXPECT_FALSE(jet::NumericFromText("1e9999", 28, 0).has_value());
}

TEST(DecimalTest, TwentyEightDigitsAreExact) {
    const char* digits = "1234567890123456789012345.678";
    EXPECT_EQ(jet::NumericText(*jet::NumericFromText(digits, 28, 3)), digits);
}

TEST(GuidTextTest, FirstGroupsAreLittleEndian) {
    const auto guid = jet::ParseGuid(u"{33221100-5544-7766-8899-aabbccddeeff}");
    ASSERT_TRUE(guid.has_value());
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(std::to_integer<std::size_t>(guid->bytes[i]), i * 0x11);
    EXPECT_EQ(jet::GuidText(*guid), u"{33221100-5544-7766-8899-AABBCCDDEEFF}");
    EXPECT_FALSE(jet::ParseGuid(u"{33221100-5544-7766-8899-aabbccddeef}").has_value());
    EXPECT_FALSE(jet::ParseGuid(u"").has_value());
}

}  // namespace
