// Damage planted in a file that the engine made in memory, and what the checker says of it.
#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/pages/format.h"
#include "jet/tables/database.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace jet {
namespace {

// A table of 300 rows with an index on a text: pages of rows, leaves and a node.
std::vector<std::byte> MadeFile() {
    test_support::FaultyFileSystem files;
    EXPECT_TRUE(CreateDatabaseFile(files, "/made.mdb", 46000).ok());
    Connection connection(files);
    EXPECT_TRUE(connection.Open(u"Data Source=/made.mdb").ok());
    EXPECT_TRUE(connection.Execute(u"CREATE TABLE T (ID LONG, Name TEXT(100))").ok());
    EXPECT_TRUE(connection.Execute(u"CREATE INDEX ByName ON T (Name)").ok());
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        EXPECT_TRUE(connection
                        .Execute(u"INSERT INTO T (ID, Name) VALUES (1, 'The name of a table " +
                                 std::u16string(number.begin(), number.end()) + u"')")
                        .ok());
    }
    EXPECT_TRUE(connection.Close().ok());
    return files.Get("/made.mdb");
}

class PlantedInAMadeFile : public testing::Test {
protected:
    const Format& format = FormatOf(4);
    std::vector<std::byte> file = MadeFile();

    std::byte* At(PageNumber page, std::size_t offset) {
        return file.data() + page * format.page_size + offset;
    }
    std::uint16_t U16(PageNumber page, std::size_t offset) {
        return base::LoadLittle<std::uint16_t>(At(page, offset));
    }
    void Set16(PageNumber page, std::size_t offset, std::size_t value) {
        base::StoreLittle(At(page, offset), static_cast<std::uint16_t>(value));
    }
    // The last page of the type: one of the table's own.
    PageNumber LastPage(PageType type) {
        auto page = static_cast<PageNumber>(file.size() / format.page_size);
        while (page > 0 && *At(--page, 0) != static_cast<std::byte>(type)) {
        }
        EXPECT_GT(page, 0U);
        return page;
    }
    CheckReport Check() {
        const auto store = MakeMemoryPageStore(format.page_size, file);
        return CheckIntegrity(*store);
    }
    void ExpectFault(PageNumber page, std::string_view text) {
        const CheckReport report = Check();
        EXPECT_GT(report.faults, 0U);
        EXPECT_TRUE(std::ranges::any_of(report.findings,
                                        [&](const Finding& finding) {
                                            return finding.severity == Severity::kFault &&
                                                   finding.page == page &&
                                                   finding.text.find(text) != std::string::npos;
                                        }))
            << text << (report.findings.empty() ? "" : Describe(report.findings.front()));
    }
};

TEST_F(PlantedInAMadeFile, NothingIsFoundWithoutDamage) {
    const CheckReport report = Check();
    EXPECT_EQ(report.faults, 0U);
    EXPECT_EQ(report.warnings, 0U);
    EXPECT_GT(report.index_entries, 300U);
}

TEST_F(PlantedInAMadeFile, ALeafWithATailIsAFault) {
    const PageNumber leaf = LastPage(PageType::kIndexLeaf);
    base::StoreLittle<std::uint32_t>(At(leaf, format.index_links_offset + 8), 3);
    ExpectFault(leaf, "a leaf with a tail");
}

TEST_F(PlantedInAMadeFile, APrefixLongerThanTheFirstEntryIsAFault) {
    const PageNumber leaf = LastPage(PageType::kIndexLeaf);
    Set16(leaf, format.index_prefix_offset, 3000);
    ExpectFault(leaf, "the prefix is longer than the first entry");
}

TEST_F(PlantedInAMadeFile, ARowAmongTheSlotsIsAFault) {
    const PageNumber page = LastPage(PageType::kData);
    const std::size_t rows = U16(page, format.slot_count_offset);
    ASSERT_GT(rows, 1U);
    Set16(page, format.slots_offset + 2 * (rows - 1), format.slots_offset);
    ExpectFault(page, "the row's place is wrong");
}

TEST_F(PlantedInAMadeFile, LessFreeSpaceThanThereIsCountsAsAWarning) {
    const PageNumber page = LastPage(PageType::kData);
    const std::uint16_t free = U16(page, 2);
    ASSERT_GT(free, 4U);
    Set16(page, 2, free - 4U);
    const CheckReport report = Check();
    EXPECT_EQ(report.faults, 0U);
    EXPECT_EQ(report.warnings, 1U);
    EXPECT_EQ(report.findings.size(), 1U);
}

}  // namespace
}  // namespace jet
