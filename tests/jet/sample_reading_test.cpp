// Every real sample file, cell for cell as Debian's mdbtools read it.
#include "base/unicode.h"
#include "jet/storage_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <sstream>

namespace jet::test {
namespace {

class SampleReadingTest : public testing::Test {
protected:
    void SetUp() override {
        if (SampleDatabases().empty()) GTEST_SKIP() << "no sample files on this machine";
        if (!HasProgram("mdb-export")) GTEST_SKIP() << "mdbtools are not installed";
    }
};

bool HasPassword(const std::filesystem::path& path) {
    return path.filename() == "a2003-password.mdb";
}

std::vector<std::vector<Value>> AllRows(Table& table) {
    std::vector<std::size_t> columns(table.design().columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<std::vector<Value>> rows;
    auto cursor = table.Scan();
    EXPECT_TRUE(cursor.ok()) << cursor.status().message();
    while (cursor.ok()) {
        const auto next = cursor.value()->Next();
        EXPECT_TRUE(next.ok()) << next.status().message();
        if (!next.ok() || !next.value()) break;
        auto& row = rows.emplace_back(columns.size());
        const auto status = cursor.value()->Read(columns, row);
        EXPECT_TRUE(status.ok()) << status.message();
    }
    return rows;
}

void CompareTable(const std::filesystem::path& path, Table& table) {
    const std::string name = base::ToUtf8(table.design().name);
    SCOPED_TRACE(path.filename().string() + " " + name);
    const auto names = ExportedNames(path, name);
    const auto exported = ExportedRows(path, name);
    ASSERT_TRUE(exported);
    ASSERT_EQ(names.size(), table.design().columns.size());
    std::vector<std::size_t> column_of;  // mdb-export orders columns by number
    for (const std::string& column : names) {
        const auto found =
            std::ranges::find(table.design().columns, base::ToUtf16(column), &ColumnDesign::name);
        ASSERT_NE(found, table.design().columns.end()) << column;
        column_of.push_back(static_cast<std::size_t>(found - table.design().columns.begin()));
    }
    const auto rows = AllRows(table);
    ASSERT_EQ(rows.size(), exported->size());
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (std::size_t c = 0; c < names.size(); ++c)
            EXPECT_TRUE(SameAsExported(rows[r][column_of[c]], (*exported)[r][c]))
                << "row " << r << " " << names[c] << ": " << Describe(rows[r][column_of[c]])
                << " | " << (*exported)[r][c].value_or("(null)");
}

TEST_F(SampleReadingTest, EveryCellIsWhatMdbExportPrints) {
    for (const auto& path : SampleDatabases()) {
        if (HasPassword(path)) continue;
        auto database = OpenCopy(path);
        ASSERT_TRUE(database.ok()) << path << database.status().message();
        const auto names = database.value()->TableNames();
        ASSERT_TRUE(names.ok()) << names.status().message();
        for (const std::u16string& name : names.value()) {
            const auto table = database.value()->FindTable(name);
            ASSERT_TRUE(table.ok()) << table.status().message();
            CompareTable(path, *table.value());
        }
    }
}

TEST_F(SampleReadingTest, TableNamesAreThoseOfMdbTables) {
    for (const auto& path : SampleDatabases()) {
        if (HasPassword(path)) continue;
        auto database = OpenCopy(path);
        ASSERT_TRUE(database.ok()) << database.status().message();
        const auto names = database.value()->TableNames();
        ASSERT_TRUE(names.ok()) << names.status().message();
        std::vector<std::string> ours;
        for (const std::u16string& name : names.value())
            ours.push_back(base::ToUtf8(name));
        std::vector<std::string> theirs;
        std::istringstream lines(OutputOf({"mdb-tables", "-1", path.string()}).value_or(""));
        for (std::string line; std::getline(lines, line);)
            theirs.push_back(line);
        EXPECT_THAT(ours, testing::UnorderedElementsAreArray(theirs));
    }
}

TEST_F(SampleReadingTest, PasswordProtectedDatabaseIsRefusedByName) {
    const auto path = *SampleFolder() / "mdb" / "a2003-password.mdb";
    const auto database = OpenCopy(path);
    ASSERT_FALSE(database.ok());
    EXPECT_EQ(database.status().number(), 3031);
    EXPECT_NE(database.status().message().find("Not a valid password."), std::string::npos);
}

// Every row in index order, met exactly once, in ascending order of the keys.
TEST_F(SampleReadingTest, EveryIndexLeadsToEveryRow) {
    for (const auto& path : SampleDatabases()) {
        if (HasPassword(path)) continue;
        auto database = OpenCopy(path);
        ASSERT_TRUE(database.ok());
        const auto names = database.value()->TableNames();
        ASSERT_TRUE(names.ok());
        for (const std::u16string& name : names.value()) {
            Table& table = *database.value()->FindTable(name).value();
            for (std::size_t index = 0; index < table.design().indexes.size(); ++index) {
                SCOPED_TRACE(path.filename().string() + " " + base::ToUtf8(name) + " " +
                             base::ToUtf8(table.design().indexes[index].name));
                std::vector<RowId> scanned;
                auto scan = table.Scan();
                ASSERT_TRUE(scan.ok());
                for (auto row = scan.value()->Next(); row.ok() && row.value();
                     row = scan.value()->Next())
                    scanned.push_back(*row.value());
                for (const bool backwards : {false, true}) {
                    auto cursor = table.Range(index, {}, {}, backwards);
                    ASSERT_TRUE(cursor.ok()) << cursor.status().message();
                    std::vector<RowId> found;
                    while (true) {
                        const auto row = cursor.value()->Next();
                        ASSERT_TRUE(row.ok()) << row.status().message();
                        if (!row.value()) break;
                        found.push_back(*row.value());
                    }
                    std::ranges::sort(found);
                    if (!table.design().indexes[index].ignore_nulls) {
                        EXPECT_EQ(found, scanned);
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace jet::test
