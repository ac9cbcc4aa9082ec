#include "jet/values/coerce.h"

#include "jet/values/conversions.h"

#include <gtest/gtest.h>

namespace {

using jet::ColumnDesign;
using jet::ColumnType;
using jet::Value;

ColumnDesign Column(ColumnType type, std::uint16_t size = 0) {
    ColumnDesign column;
    column.type = type;
    column.size = size;
    return column;
}

int ErrorOf(const Value& value, const ColumnDesign& column) {
    return jet::Coerce(value, column).status().number();
}

TEST(CoerceTest, TextBecomesANumberWhereItIsOne) {
    EXPECT_EQ(*jet::Coerce(Value::Text(u" 12 "), Column(ColumnType::kLong)), Value::Long(12));
    EXPECT_EQ(*jet::Coerce(Value::Text(u"1E3"), Column(ColumnType::kLong)), Value::Long(1000));
    EXPECT_EQ(ErrorOf(Value::Text(u""), Column(ColumnType::kLong)), 3464);
    EXPECT_EQ(ErrorOf(Value::Text(u"x"), Column(ColumnType::kDouble)), 3464);
}

TEST(CoerceTest, NumbersRoundHalfToEven) {
    EXPECT_EQ(*jet::Coerce(Value::Double(2.5), Column(ColumnType::kShort)), Value::Short(2));
    EXPECT_EQ(*jet::Coerce(Value::Double(3.5), Column(ColumnType::kShort)), Value::Short(4));
}

TEST(CoerceTest, NumbersOutsideTheRangeOverflow) {
    EXPECT_EQ(ErrorOf(Value::Long(40000), Column(ColumnType::kShort)), 3349);
    EXPECT_EQ(ErrorOf(Value::Long(-1), Column(ColumnType::kByte)), 3349);
    EXPECT_EQ(ErrorOf(Value::Double(3e9), Column(ColumnType::kLong)), 3349);
    EXPECT_EQ(ErrorOf(Value::Double(1e300), Column(ColumnType::kSingle)), 3349);
    EXPECT_EQ(ErrorOf(Value::Double(1e300), Column(ColumnType::kDate)), 3349);
    EXPECT_EQ(ErrorOf(Value::Double(1e15), Column(ColumnType::kMoney)), 3349);
}

TEST(CoerceTest, MoneyIsExact) {
    EXPECT_EQ(*jet::Coerce(Value::Text(u"922337203685477.5807"), Column(ColumnType::kMoney)),
              Value::Currency({INT64_MAX}));
    EXPECT_EQ(*jet::Coerce(Value::Text(u"-922337203685477.5808"), Column(ColumnType::kMoney)),
              Value::Currency({INT64_MIN}));
    EXPECT_EQ(*jet::Coerce(Value::Double(0.1), Column(ColumnType::kMoney)),
              Value::Currency({1000}));
}

TEST(CoerceTest, TextBecomesADateWhereItIsOne) {
    const auto date = jet::Coerce(Value::Text(u"20-Nov-26"), Column(ColumnType::kDate));
    ASSERT_TRUE(date.ok());
    EXPECT_EQ(*date, Value::DateTime(jet::DaysFromCivil({2026, 11, 20})));
    EXPECT_EQ(*jet::Coerce(Value::Text(u"46000"), Column(ColumnType::kDate)),
              Value::DateTime(46000));
    EXPECT_EQ(ErrorOf(Value::Text(u""), Column(ColumnType::kDate)), 3464);
}

TEST(CoerceTest, DatesAndNumbersBecomeText) {
    EXPECT_EQ(*jet::Coerce(Value::DateTime(46000), Column(ColumnType::kText, 20)),
              Value::Text(u"12/9/2025"));
    EXPECT_EQ(*jet::Coerce(Value::Double(1.5), Column(ColumnType::kMemo)), Value::Text(u"1.5"));
}

TEST(CoerceTest, TextThatDoesNotFitIsRefusedWhole) {
    EXPECT_TRUE(jet::Coerce(Value::Text(u"abc"), Column(ColumnType::kText, 3)).ok());
    EXPECT_EQ(ErrorOf(Value::Text(u"abcd"), Column(ColumnType::kText, 3)), 3163);
    EXPECT_EQ(ErrorOf(Value::Binary(jet::Bytes(5)), Column(ColumnType::kBinary, 4)), 3163);
}

TEST(CoerceTest, FixedTextIsPadded) {
    ColumnDesign column = Column(ColumnType::kText, 4);
    column.fixed_text = true;
    EXPECT_EQ(*jet::Coerce(Value::Text(u"ab"), column), Value::Text(u"ab  "));
}

TEST(CoerceTest, NullIsFalseInABooleanColumnOnly) {
    EXPECT_EQ(*jet::Coerce(Value::Null(), Column(ColumnType::kBoolean)), Value::Boolean(false));
    EXPECT_EQ(*jet::Coerce(Value::Null(), Column(ColumnType::kLong)), Value::Null());
}

TEST(CoerceTest, BooleansTakeWordsAndNumbers) {
    const auto column = Column(ColumnType::kBoolean);
    EXPECT_EQ(*jet::Coerce(Value::Text(u"yes"), column), Value::Boolean(true));
    EXPECT_EQ(*jet::Coerce(Value::Text(u"Off"), column), Value::Boolean(false));
    EXPECT_EQ(*jet::Coerce(Value::Text(u"2"), column), Value::Boolean(true));
    EXPECT_EQ(*jet::Coerce(Value::Long(7), column), Value::Boolean(true));
    EXPECT_EQ(ErrorOf(Value::Text(u"maybe"), column), 3464);
}

TEST(CoerceTest, TrueIsMinusOneInNumberColumns) {
    EXPECT_EQ(*jet::Coerce(Value::Boolean(true), Column(ColumnType::kLong)), Value::Long(-1));
    EXPECT_EQ(*jet::Coerce(Value::Boolean(true), Column(ColumnType::kByte)), Value::Byte(255));
}

TEST(CoerceTest, NumericKeepsItsScale) {
    ColumnDesign column = Column(ColumnType::kNumeric);
    column.precision = 5;
    column.scale = 2;
    const auto value = jet::Coerce(Value::Double(12.345), column);
    ASSERT_TRUE(value.ok());
    EXPECT_EQ(jet::ToText(*value), u"12.34");
    EXPECT_EQ(ErrorOf(Value::Long(1000), column), 3349);
}

}  // namespace
