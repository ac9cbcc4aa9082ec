#include "exchange/csv_reader.h"
#include "exchange/csv_writer.h"

#include <gtest/gtest.h>

namespace exchange {
namespace {

using Records = std::vector<std::vector<CsvField>>;

CsvField Plain(std::string text) {
    return {std::move(text), false};
}
CsvField Quoted(std::string text) {
    return {std::move(text), true};
}

Records Read(std::string_view bytes) {
    CsvReader reader(bytes);
    Records records;
    CsvRecord record;
    while (reader.Next(record))
        records.push_back(record.fields);
    EXPECT_TRUE(reader.status().ok()) << reader.status().message();
    return records;
}

std::string FailureOfCsv(std::string_view bytes) {
    CsvReader reader(bytes);
    CsvRecord record;
    while (reader.Next(record)) {
    }
    EXPECT_FALSE(reader.Next(record));
    return reader.status().message();
}

TEST(CsvReaderTest, LinesEndInThreeWays) {
    const Records three{{Plain("a"), Plain("b")}, {Plain("c"), Plain("")}, {Plain(""), Plain("d")}};
    EXPECT_EQ(Read("a,b\r\nc,\r\n,d\r\n"), three);
    EXPECT_EQ(Read("a,b\nc,\n,d"), three);
    EXPECT_EQ(Read("a,b\rc,\r,d\r"), three);
}

TEST(CsvReaderTest, AQuotedFieldHoldsAnything) {
    EXPECT_EQ(Read("\"a,\"\"b\"\"\r\nc\n\rd\",\"\"\n"),
              (Records{{Quoted("a,\"b\"\r\nc\n\rd"), Quoted("")}}));
}

TEST(CsvReaderTest, AnEmptyFieldIsNotAnEmptyText) {
    EXPECT_EQ(Read(",\"\""), (Records{{Plain(""), Quoted("")}}));
}

TEST(CsvReaderTest, AByteOrderMarkIsPassedOver) {
    EXPECT_EQ(Read("\xEF\xBB\xBF\"a\""), (Records{{Quoted("a")}}));
}

TEST(CsvReaderTest, NothingIsNoRecord) {
    EXPECT_TRUE(Read("").empty());
    EXPECT_EQ(Read("\n").size(), 1u);
}

TEST(CsvReaderTest, RecordsKnowTheirLines) {
    CsvReader reader("a\n\"b\r\nb\rb\nb\"\nc");
    CsvRecord record;
    std::vector<std::int64_t> lines;
    while (reader.Next(record))
        lines.push_back(record.line);
    EXPECT_EQ(lines, (std::vector<std::int64_t>{1, 2, 6}));
}

TEST(CsvReaderTest, WhatIsWrongIsToldWithItsLine) {
    EXPECT_EQ(FailureOfCsv("a\nb\"c\n"),
              "line 2: there is a quote inside a field that is not quoted");
    EXPECT_EQ(FailureOfCsv("a\n\"b\"c\n"), "line 2: there is text behind a quoted field");
    EXPECT_EQ(FailureOfCsv("a\nb,\"c\n\n\n"), "line 2: a quoted field does not end");
}

TEST(CsvWriterTest, OnlyWhatNeedsThemGetsQuotes) {
    const auto written = [](std::string_view text) {
        std::string line;
        AppendCsvText(line, text);
        return line;
    };
    EXPECT_EQ(written("Attack from Mars"), "Attack from Mars");
    EXPECT_EQ(written(""), "\"\"");
    EXPECT_EQ(written("a,b"), "\"a,b\"");
    EXPECT_EQ(written("say \"hi\""), "\"say \"\"hi\"\"\"");
    EXPECT_EQ(written("two\nlines"), "\"two\nlines\"");
    EXPECT_EQ(written("two\rlines"), "\"two\rlines\"");
    EXPECT_EQ(written(" a"), "\" a\"");
    EXPECT_EQ(written("a "), "\"a \"");
    EXPECT_EQ(written("\xEF\xBB\xBFmark"), "\"\xEF\xBB\xBFmark\"");
}

TEST(CsvWriterTest, FormulasAreKnown) {
    for (const char* formula : {"=1+1", "+1", "-1", "@SUM(A1)", "\tx", "\rx", "'=1", "''=1"})
        EXPECT_TRUE(LooksLikeFormula(formula)) << formula;
    for (const char* text : {"", "a=1", "'", "'a", "1-1"})
        EXPECT_FALSE(LooksLikeFormula(text)) << text;
}

}  // namespace
}  // namespace exchange
