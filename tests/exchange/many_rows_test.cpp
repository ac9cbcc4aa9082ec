// A catalogue of 100,000 tables goes out and comes in again, cell for cell: memos of all lengths,
// every character that there is, line ends, quotes, Null apart from the empty text.
#include "exchange/row_import.h"
#include "exchange/row_writer.h"

#include "jet/tables/database.h"
#include "support/catalogue_fixture.h"

#include <gmock/gmock.h>

namespace exchange {
namespace {

using jet::Value;

constexpr std::int32_t kRows = 100'000;
constexpr char32_t kCodes = 0x110000;

// Some characters, others for each row: all of them, and halves of pairs that stand alone.
std::u16string SomeCharacters(std::int32_t row) {
    constexpr char32_t kEach = 12;
    std::u16string text;
    for (char32_t i = 0; i < kEach; ++i) {
        const char32_t code = (static_cast<char32_t>(row) * kEach + i) % kCodes;
        if (code >= 0x10000) {
            text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
            text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        } else {
            text += static_cast<char16_t>(code);
            text += u'.';  // two halves beside each other would be a pair
        }
    }
    return text;
}

Value SomeText(std::int32_t row) {
    static constexpr const char16_t* kTexts[] = {
        u"plain", u"a, \"b\"\r\nand c", u" blanks ", u"\n", u"'=1+1", u"null", u"\uFEFFmark"};
    const auto place = static_cast<std::size_t>(row) % (std::size(kTexts) + 2);
    if (place == std::size(kTexts)) return Value::Null();
    if (place > std::size(kTexts)) return Value::Text(u"");
    return Value::Text(kTexts[place]);
}

Value SomeMemo(std::int32_t row) {
    std::u16string text = SomeCharacters(row);
    if (row % 1000 == 0) text += std::u16string(static_cast<std::size_t>(row), u'x');
    return Value::Text(text);
}

Value CellOf(std::u16string_view column, std::int32_t row) {
    if (column == u"ID") return Value::Long(row * 3 + 1);
    if (column == u"FileName") return Value::Text(u"/t/" + SomeCharacters(row + 7));
    if (column == u"Notes") return SomeMemo(row);
    if (column == u"Favorite") return Value::Boolean(row % 2 == 0);
    if (column == u"PinMame") return Value::Boolean(row % 3 == 0);
    if (column == u"TimesPlayed") return Value::Long(row * 977 - 5000);
    if (column == u"FileDate") return Value::DateTime(row / 7.0);
    if (column == u"DateAdded") return row % 5 == 0 ? Value::Null() : Value::DateTime(row);
    if (column == u"Author" || column == u"RulesText") return SomeText(row);
    return Value::Null();
}

class ManyRowsTest : public test_support::CatalogueFixture,
                     public testing::WithParamInterface<Format> {
protected:
    void Fill() {
        const auto filled = connection->Change([](jet::Database& database) -> base::Status {
            ASSIGN_OR_RETURN(jet::Table * table, database.FindTable(u"Tables"));
            for (std::int32_t row = 0; row < kRows; ++row) {
                std::vector<Value> cells;
                for (const jet::ColumnDesign& column : table->design().columns)
                    cells.push_back(CellOf(column.name, row));
                RETURN_IF_ERROR(table->Insert(cells).status());
            }
            return {};
        });
        ASSERT_TRUE(filled.ok()) << filled.message();
    }
    std::string Out() {
        std::string bytes;
        auto rows = connection->Execute(u"Select * from Tables");
        EXPECT_TRUE(rows.ok());
        const auto written = WriteRows(*rows, {.format = GetParam()}, [&](std::string_view piece) {
            bytes += piece;
            return base::Status();
        });
        EXPECT_EQ(written.value_or(0), kRows);
        return bytes;
    }
    // The first cells that are others than they were.
    std::vector<std::string> Differences() {
        std::vector<std::string> differences;
        auto rows = connection->Execute(u"Select * from Tables order by ID");
        EXPECT_TRUE(rows.ok());
        std::vector<std::u16string> names;
        for (std::size_t field = 0; field < rows->FieldCount(); ++field)
            names.push_back(rows->FieldName(field));
        std::int32_t row = 0;
        for (; !rows->Eof() && differences.size() < 10; ++row) {
            for (std::size_t field = 0; field < names.size(); ++field) {
                const auto value = rows->Fields(field);
                if (!value.ok() || *value != CellOf(names[field], row))
                    differences.push_back(QString::fromStdU16String(names[field]).toStdString() +
                                          " of row " + std::to_string(row));
            }
            if (!rows->MoveNext().ok()) differences.emplace_back("cannot be read on");
        }
        if (row != kRows) differences.push_back(std::to_string(row) + " rows");
        return differences;
    }
};

TEST_P(ManyRowsTest, GoOutAndComeInAgain) {
    Fill();
    const std::string bytes = Out();
    Execute(QStringLiteral("DELETE FROM Tables"));
    const auto source = MakeRowSource(bytes, GetParam());
    const auto report = ImportRows(*connection, *source, {});
    ASSERT_TRUE(report.ok()) << report.status().message();
    ASSERT_TRUE(report->accepted()) << report->problems.front().text;
    EXPECT_EQ(report->added, kRows);
    EXPECT_THAT(Differences(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Formats, ManyRowsTest, testing::Values(Format::kCsv, Format::kJson),
                         [](const testing::TestParamInfo<Format>& format) {
                             return format.param == Format::kCsv ? "Csv" : "Json";
                         });

}  // namespace
}  // namespace exchange
