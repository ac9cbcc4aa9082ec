#include "exchange/cell.h"

#include <gtest/gtest.h>

#include <cmath>

namespace exchange {
namespace {

using jet::ColumnType;
using jet::Value;

jet::ColumnDesign Column(ColumnType type) {
    jet::ColumnDesign column;
    column.name = u"Field";
    column.type = type;
    column.size = type == ColumnType::kText ? 255 : 0;
    return column;
}

std::string Csv(const Value& value, bool escape_formulas = false) {
    std::string line;
    AppendCsvCell(line, value, escape_formulas);
    return line;
}

std::string Json(const Value& value) {
    std::string json;
    AppendJsonCell(json, value);
    return json;
}

Value FromText(const char16_t* text, ColumnType type) {
    auto value = ValueOf(Cell::Text(text), Column(type));
    EXPECT_TRUE(value.ok()) << value.status().message();
    return value.value_or(Value::Null());
}

std::string WhyNot(const char16_t* text, ColumnType type) {
    const auto value = ValueOf(Cell::Text(text), Column(type));
    EXPECT_FALSE(value.ok());
    return value.status().message();
}

TEST(CellTest, NullIsNotTheEmptyText) {
    EXPECT_EQ(Csv(Value::Null()), "");
    EXPECT_EQ(Csv(Value::Text(u"")), "\"\"");
    EXPECT_EQ(Json(Value::Null()), "null");
    EXPECT_EQ(Json(Value::Text(u"")), "\"\"");
    EXPECT_EQ(*ValueOf(Cell::Null(), Column(ColumnType::kText)), Value::Null());
    EXPECT_EQ(FromText(u"", ColumnType::kText), Value::Text(u""));
}

TEST(CellTest, DatesAreReadable) {
    EXPECT_EQ(Csv(Value::DateTime(46346)), "2026-11-20");
    EXPECT_EQ(Json(Value::DateTime(46346.5)), "\"2026-11-20 12:00:00\"");
    EXPECT_EQ(FromText(u"2026-11-20", ColumnType::kDate), Value::DateTime(46346));
    EXPECT_EQ(FromText(u"2026-11-20T12:00:00", ColumnType::kDate), Value::DateTime(46346.5));
    EXPECT_EQ(FromText(u"11/20/2026", ColumnType::kDate), Value::DateTime(46346));
    EXPECT_EQ(WhyNot(u"2026-02-30", ColumnType::kDate), "Field: \"2026-02-30\" is not a date");
    EXPECT_EQ(WhyNot(u"soon", ColumnType::kDate), "Field: \"soon\" is not a date");
}

TEST(CellTest, DatesComeBackBitByBit) {
    for (const double days : {0.0, 1.0, -1.5, 46346.123456789, 46346.62783564815, 0.1, 2958465.0,
                              std::nextafter(46346.5, 0.0)}) {
        const std::string text = Csv(Value::DateTime(days));
        const auto back = ValueOf(Cell::Text(std::u16string(text.begin(), text.end())),
                                  Column(ColumnType::kDate));
        ASSERT_TRUE(back.ok()) << text;
        EXPECT_EQ(back->as<jet::Date>().days, days) << text;
    }
}

TEST(CellTest, NumbersComeBack) {
    EXPECT_EQ(Csv(Value::Long(-7)), "-7");
    EXPECT_EQ(Json(Value::Double(0.1)), "0.1");
    EXPECT_EQ(FromText(u"0.1", ColumnType::kDouble), Value::Double(0.1));
    EXPECT_EQ(FromText(u"0.1", ColumnType::kSingle), Value::Single(0.1F));
    EXPECT_EQ(FromText(u" 12 ", ColumnType::kLong), Value::Long(12));
    EXPECT_EQ(WhyNot(u"1.5", ColumnType::kLong), "Field: \"1.5\" is not a whole number");
    EXPECT_EQ(WhyNot(u"many", ColumnType::kLong), "Field: \"many\" is not a number");
    EXPECT_FALSE(WhyNot(u"99999999999", ColumnType::kLong).empty());
}

TEST(CellTest, TruthIsReadInWords) {
    EXPECT_EQ(Json(Value::Boolean(true)), "true");
    for (const char16_t* yes : {u"true", u"TRUE", u"yes", u"1", u"-1"})
        EXPECT_EQ(FromText(yes, ColumnType::kBoolean), Value::Boolean(true));
    for (const char16_t* no : {u"false", u"No", u"0"})
        EXPECT_EQ(FromText(no, ColumnType::kBoolean), Value::Boolean(false));
    EXPECT_EQ(WhyNot(u"maybe", ColumnType::kBoolean), "Field: \"maybe\" is neither true nor false");
}

TEST(CellTest, BytesAreBase64) {
    const Value bytes = Value::Binary({std::byte{0}, std::byte{0xFF}, std::byte{0x10}});
    EXPECT_EQ(Json(bytes), "\"AP8Q\"");
    EXPECT_EQ(FromText(u"AP8Q", ColumnType::kOle), bytes);
    EXPECT_EQ(WhyNot(u"!", ColumnType::kOle), "Field: the bytes are not Base64");
}

TEST(CellTest, JsonEscapesWhatItMust) {
    EXPECT_EQ(Json(Value::Text(std::u16string(u"\x80 \x9B \x9F \xA0"))),
              "\"\\u0080 \\u009b \\u009f \xC2\xA0\"");
    EXPECT_EQ(Json(Value::Text(u"a\"\\\n\r\t\u0001\u007F")),
              "\"a\\\"\\\\\\n\\r\\t\\u0001\\u007f\"");
    EXPECT_EQ(Json(Value::Text(u"\uFEFFmark")), "\"\\ufeffmark\"");
    EXPECT_EQ(Json(Value::Text(u"\xDC80\U0001F3B1")), "\"\\udc80\xF0\x9F\x8E\xB1\"");
}

TEST(CellTest, FormulasAreEscapedOnRequest) {
    EXPECT_EQ(Csv(Value::Text(u"=1+1")), "=1+1");
    EXPECT_EQ(Csv(Value::Text(u"=1+1"), true), "'=1+1");
    EXPECT_EQ(Csv(Value::Text(u"'=1"), true), "''=1");
    EXPECT_EQ(Csv(Value::Long(-1), true), "-1");
    for (const char16_t* original : {u"=1+1", u"'=1", u"''@", u"'a", u"plain"}) {
        const std::string escaped = Csv(Value::Text(original), true);
        std::u16string text(escaped.begin(), escaped.end());
        UnescapeFormula(text);
        EXPECT_EQ(text, original);
    }
}

TEST(CellTest, ATextThatIsTooLongIsRefused) {
    const std::u16string text(256, u'x');
    EXPECT_NE(WhyNot(text.c_str(), ColumnType::kText).find("Field: "), std::string::npos);
}

}  // namespace
}  // namespace exchange
