// Whole files, our own and real ones, cell for cell as Debian's mdbtools read them.
#include "base/unicode.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/storage_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <sstream>

namespace jet::test {
namespace {

class SampleReadingTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(HasTool("mdb-export")) << "mdbtools are not installed"; }
};

TEST_F(SampleReadingTest, EveryCellIsWhatMdbExportPrints) {
    for (const auto& path : DatabasesWithoutPassword()) {
        auto database = OpenCopy(path);
        ASSERT_TRUE(database.ok()) << path << database.status().message();
        const auto names = database.value()->TableNames();
        ASSERT_TRUE(names.ok()) << names.status().message();
        for (const std::u16string& name : names.value()) {
            const auto table = database.value()->FindTable(name);
            ASSERT_TRUE(table.ok()) << table.status().message();
            CompareWithExport(path, *table.value());
        }
    }
}

TEST_F(SampleReadingTest, TableNamesAreThoseOfMdbTables) {
    for (const auto& path : DatabasesWithoutPassword()) {
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
    for (const auto& path :
         OurFilesAndReal({"databases/password-jet4.mdb"}, {"mdb/a2003-password.mdb"})) {
        const auto database = OpenCopy(path);
        ASSERT_FALSE(database.ok());
        EXPECT_EQ(database.status().number(), 3031);
        EXPECT_NE(database.status().message().find("Not a valid password."), std::string::npos);
    }
}

// Every row in index order, met exactly once, in ascending order of the keys.
TEST_F(SampleReadingTest, EveryIndexLeadsToEveryRow) {
    for (const auto& path : DatabasesWithoutPassword()) {
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

// The keys that were written, in real files by other engines, are the ones computed here; every
// page is accounted for.
TEST_F(SampleReadingTest, EveryIndexKeyIsRecomputedEqual) {
    std::size_t entries = 0;
    const auto files = WholeDatabases();
    EXPECT_EQ(files.size(), SampleFolder() ? 17U : 5U);
    // The pages of the files with a password are plain, so they are among them.
    for (const auto& path : files) {
        SCOPED_TRACE(path.filename().string());
        const auto pages = LoadIntoMemory(path);
        const StorageFaults found = CheckStorage(*pages);
        EXPECT_GT(found.entries_checked, 20U);
        EXPECT_EQ(found.indexes_not_computed, 0U);
        entries += found.entries_checked;
        // One key there was written by a much later engine, which counts letters that stand for two
        // otherwise.
        std::vector<std::string> allowed;
        if (path.filename() == "a2003-unicode.mdb")
            allowed = {"Table: index 1: wrong key at page 55 slot 7"};
        EXPECT_EQ(found.faults, allowed);
    }
    EXPECT_GT(entries, SampleFolder() ? 20000U : 900U);
}

}  // namespace
}  // namespace jet::test
