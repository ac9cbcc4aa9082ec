// The bytes printed in docs/formats/jet.md are those of a file that the engine makes.
#include "jet/connection.h"
#include "jet/pages/rc4.h"
#include "jet/rows/row_encoder.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>
#include <string>

namespace jet::test {
namespace {

constexpr double kCreated = 46347.5;
constexpr std::size_t kPageSize = 4096;

// A line of one of the book's examples.
struct PrintedLine {
    int number = 0;     // in the book
    std::string where;  // "page 16", "page 0 unmasked", "row3"
    std::size_t offset = 0;
    std::vector<std::byte> bytes;
};

bool IsHex(const std::string& word, std::size_t digits) {
    return word.size() == digits && word.find_first_not_of("0123456789abcdef") == std::string::npos;
}

std::byte ByteOf(const std::string& word) {
    return static_cast<std::byte>(std::stoul(word, nullptr, 16));
}

// "01c  00 00 4e  words": an offset, two blanks, bytes parted by one blank, then two blanks and
// words.
PrintedLine ParseLine(const std::string& line) {
    PrintedLine parsed;
    const std::size_t offset_end = line.find("  ");
    parsed.offset = std::stoul(line.substr(0, offset_end), nullptr, 16);
    const std::size_t from = offset_end + 2;
    std::istringstream words(line.substr(from, line.find("  ", from) - from));
    for (std::string word; words >> word;) {
        EXPECT_TRUE(IsHex(word, 2)) << line;
        parsed.bytes.push_back(ByteOf(word));
    }
    return parsed;
}

std::vector<PrintedLine> PrintedLines() {
    std::vector<PrintedLine> lines;
    std::ifstream book(TAVOLO_FORMAT_BOOK);
    std::string where;
    int number = 0;
    for (std::string line; std::getline(book, line);) {
        ++number;
        if (line.starts_with("```")) {
            where = line.starts_with("```hex ") ? line.substr(7) : std::string();
        } else if (!where.empty()) {
            lines.push_back(ParseLine(line));
            lines.back().number = number;
            lines.back().where = where;
        }
    }
    return lines;
}

// The statements that the book gives.
void FillExample(Connection& connection) {
    const auto run = [&](const std::u16string& sql) {
        const auto done = connection.Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    };
    run(u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(100) WITH COMPRESSION, "
        u"Made SHORT DEFAULT 1990, Solid BIT, Notes MEMO)");
    run(u"INSERT INTO Games (Name, Made, Solid, Notes) VALUES ('Taxi', 1988, True, 'Short')");
    run(u"INSERT INTO Games (Name, Notes) VALUES ('Fathom', String(40, 'x'))");
    run(u"INSERT INTO Games (Name, Made, Notes) VALUES (ChrW(196), Null, String(2100, 'y'))");
    run(u"INSERT INTO Games (Name) VALUES ('Gone')");
    run(u"DELETE FROM Games WHERE ID = 4");
    run(u"CREATE INDEX ByName ON Games (Name, Made DESC)");
    run(u"CREATE TABLE Many (Number LONG PRIMARY KEY)");
    run(u"INSERT INTO Many VALUES (1)");
    for (const char16_t* rest :
         {u"1", u"2", u"4", u"8", u"16", u"32", u"64", u"128", u"256", u"512"})
        run(u"INSERT INTO Many SELECT Number + " + std::u16string(rest) + u" FROM Many");
}

std::vector<std::byte> ExampleFile() {
    const TemporaryFolder folder;
    const std::filesystem::path path = folder.path() / "games.mdb";
    const auto files = platform::MakeFileSystem();
    EXPECT_TRUE(CreateDatabaseFile(*files, path, kCreated).ok());
    Connection connection(*files, [] { return kCreated; });
    EXPECT_TRUE(connection.Open(u"Provider=Jet;Data Source=" + path.u16string()).ok());
    FillExample(connection);
    EXPECT_TRUE(connection.Close().ok());
    return ReadWholeFile(path);
}

// The row of a LONG and two texts in a file of version 3.
std::vector<std::byte> ExampleRowJet3() {
    TableDefinition table;
    table.columns_ever = 3;
    table.variables_ever = 2;
    ColumnDefinition number;
    number.type = ColumnType::kLong;
    number.flags = kColumnFixed | kColumnUpdatable;
    number.length = 4;
    table.columns.push_back(number);
    for (std::uint16_t i = 0; i < 2; ++i) {
        ColumnDefinition text;
        text.number = static_cast<std::uint16_t>(i + 1);
        text.variable_index = i;
        table.columns.push_back(text);
    }
    std::array<RowField, 3> fields;
    fields[0].bytes = {std::byte{7}, std::byte{0}, std::byte{0}, std::byte{0}};
    fields[1].bytes.assign(200, std::byte{'x'});
    fields[2].bytes.assign(100, std::byte{'y'});
    for (RowField& field : fields)
        field.set = true;
    return EncodeRow(FormatOf(3), table, fields);
}

class Example {
public:
    // What the book's example with this name shows from offset 0 on.
    std::vector<std::byte> Bytes(const std::string& where) const {
        if (where == "row3") return row3_;
        EXPECT_TRUE(where.starts_with("page ")) << where;
        const std::size_t page = std::stoul(where.substr(5));
        const auto bytes = std::span(file_).subspan(page * kPageSize, kPageSize);
        std::vector<std::byte> copy(bytes.begin(), bytes.end());
        constexpr std::array kMaskKey = {std::byte{0xC7}, std::byte{0xDA}, std::byte{0x39},
                                         std::byte{0x6B}};
        if (where.ends_with(" unmasked")) ApplyRc4(kMaskKey, std::span(copy).subspan(0x18, 128));
        return copy;
    }

private:
    std::vector<std::byte> file_ = ExampleFile();
    std::vector<std::byte> row3_ = ExampleRowJet3();
};

TEST(FormatBookTest, EveryPrintedByteIsInTheFile) {
    const std::vector<PrintedLine> lines = PrintedLines();
    ASSERT_GT(lines.size(), 100U);
    const Example example;
    for (const PrintedLine& line : lines) {
        const std::vector<std::byte> all = example.Bytes(line.where);
        ASSERT_FALSE(line.bytes.empty()) << "line " << line.number;
        ASSERT_LE(line.offset + line.bytes.size(), all.size()) << "line " << line.number;
        const auto there = all.begin() + static_cast<std::ptrdiff_t>(line.offset);
        EXPECT_TRUE(std::equal(line.bytes.begin(), line.bytes.end(), there))
            << "line " << line.number << ", " << line.where << " at " << std::hex << line.offset;
    }
}

}  // namespace
}  // namespace jet::test
