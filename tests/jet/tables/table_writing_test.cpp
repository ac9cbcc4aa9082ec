// Tables made, filled and changed by the engine, read back by it and by mdbtools.
#include "jet/errors.h"
#include "jet/rows/table_definition.h"
#include "jet/tables/table_fixture.h"
#include "support/faulty_file_system.h"

namespace jet::test {
namespace {

class TableWritingTest : public TableFixture {};

TEST_F(TableWritingTest, NewTableKeepsItsDesign) {
    CreateGames();
    Reopen();
    const TableDesign& design = Games().design();
    EXPECT_EQ(design.columns, GamesDesign().columns);
    ASSERT_EQ(design.indexes.size(), 2U);
    EXPECT_EQ(design.indexes[0].name, u"Name");
    EXPECT_TRUE(design.indexes[1].primary);
}

TEST_F(TableWritingTest, RowsComeBackAfterReopening) {
    CreateGames();
    for (int i = 0; i < 300; ++i) {
        const auto row = InsertGame(u"Game " + std::u16string(1, char16_t(u'A' + i % 26)),
                                    static_cast<std::int16_t>(1970 + i % 40),
                                    std::u16string(static_cast<std::size_t>(i * 40), u'n'));
        ASSERT_TRUE(row.ok()) << row.status().message();
    }
    Reopen();
    const auto rows = AllRows(Games());
    ASSERT_EQ(rows.size(), 300U);
    EXPECT_EQ(Games().row_count(), 300U);
    for (int i = 0; i < 300; ++i) {
        const auto& row = rows[static_cast<std::size_t>(i)];
        EXPECT_EQ(row[0], Value::Long(i + 1));
        EXPECT_EQ(row[3].as<std::u16string>().size(), static_cast<std::size_t>(i * 40));
    }
}

TEST_F(TableWritingTest, MdbExportReadsWhatWasWritten) {
    ASSERT_TRUE(HasTool("mdb-export")) << "mdbtools are not installed";
    CreateGames();
    for (int i = 0; i < 500; ++i)
        ASSERT_TRUE(InsertGame(u"Gäme " + std::u16string(1, char16_t(u'A' + i % 26)),
                               static_cast<std::int16_t>(1970 + i % 40),
                               std::u16string(static_cast<std::size_t>(i * 23 % 9000), u'é'))
                        .ok());
    ASSERT_TRUE(database_->Flush().ok());
    EXPECT_EQ(AllRows(Games()).size(), 500U);
    CompareWithExport(path_, Games());
}

TEST_F(TableWritingTest, DuplicateKeyLeavesNothingBehind) {
    TableDesign design = GamesDesign();
    design.indexes[1].unique = true;
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    ASSERT_TRUE(InsertGame(u"Taxi", 1988, u"one").ok());
    ASSERT_TRUE(database_->Flush().ok());
    const auto before = ReadWholeFile(path_);
    const auto second = InsertGame(u"TAXI ", 1988, std::u16string(20000, u'x'));
    EXPECT_EQ(second.status().number(), 3022);
    ASSERT_TRUE(database_->Flush().ok());
    EXPECT_EQ(ReadWholeFile(path_), before);
    EXPECT_TRUE(InsertGame(u"TAXI ", 1989, u"").ok());
    EXPECT_EQ(AllRows(Games()).size(), 2U);
}

// The optimizer's statistics in the definition of the table made last.
std::uint32_t DistinctKeysOf(PageStore& pages, std::size_t real_index) {
    std::uint32_t keys = 0;
    for (PageNumber page = 0; page < pages.page_count(); ++page) {
        const PageView view = pages.Read(page).value();
        if (HasType(view.bytes(), PageType::kDefinition))
            keys = ReadDistinctKeys(view.bytes(), FormatOf(4), real_index);
    }
    return keys;
}

TEST_F(TableWritingTest, DifferentKeysAreCounted) {
    TableDesign design;
    design.name = u"Names";
    design.columns = {Column(u"Name", ColumnType::kText, 50)};
    design.indexes = {Index(u"ByName", {{0, true}})};
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    for (const char16_t* name : {u"b", u"a", u"b", u"B", u"a", u"c"})
        ASSERT_TRUE(Insert(u"Names", {Value::Text(name)}).ok());
    EXPECT_EQ(DistinctKeysOf(database_->pages(), 0), 3U);
}

// Ten columns that fit a row, and whose key does not fit an index page twice.
TEST_F(TableWritingTest, KeyThatIsTooLongIsRefused) {
    TableDesign design;
    design.name = u"Wide";
    IndexDesign index = Index(u"All", {});
    for (std::size_t i = 0; i < 10; ++i) {
        const std::u16string name = u"C" + std::u16string(1, char16_t(u'0' + i));
        design.columns.push_back(Column(name.c_str(), ColumnType::kText, 255));
        index.columns.push_back({i, true});
    }
    design.indexes = {index};
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    const auto row_of = [](std::size_t length) {
        return std::vector<Value>(10, Value::Text(std::u16string(length, u'x')));
    };
    ASSERT_TRUE(Insert(u"Wide", row_of(150)).ok());
    EXPECT_TRUE(Is(Insert(u"Wide", row_of(190)).status(), ErrorNumber::kRecordTooLarge));
    EXPECT_EQ(AllRows(TableOf(u"Wide")).size(), 1U);
}

// Files in memory that tell how much was written.
class WrittenBytesTest : public TableFixture {
protected:
    WrittenBytesTest() {
        auto files = std::make_unique<test_support::FaultyFileSystem>();
        counting_ = files.get();
        files_ = std::move(files);
    }
    // By one update of the row, in a transaction of its own.
    std::uint64_t WrittenBy(RowId row, ColumnChange change) {
        EXPECT_TRUE(database_->Flush().ok());
        const std::uint64_t before = counting_->bytes_written();
        EXPECT_TRUE(Update(u"Games", row, {std::move(change)}).ok());
        EXPECT_TRUE(database_->Flush().ok());
        return counting_->bytes_written() - before;
    }

    test_support::FaultyFileSystem* counting_ = nullptr;
};

TEST_F(WrittenBytesTest, IndexesOfOtherColumnsAreNotWritten) {
    CreateGames();
    const RowId row = InsertGame(u"Taxi", 1988, u"notes").value();
    const std::uint64_t favourite = WrittenBy(row, {4, Value::Boolean(true)});
    const std::uint64_t name = WrittenBy(row, {1, Value::Text(u"Jaxi")});
    EXPECT_GT(favourite, 0U);
    EXPECT_LT(favourite, name);
}

TEST_F(TableWritingTest, ColumnsAddedLaterAreNullInOldRows) {
    CreateGames();
    const auto old_row = InsertGame(u"Fathom", 1981, u"deep");
    ASSERT_TRUE(old_row.ok());
    ColumnDesign played = Column(u"TimesPlayed", ColumnType::kLong);
    played.default_value = u"0";
    for (const ColumnDesign& column :
         {Column(u"RulesFile", ColumnType::kText, 255), Column(u"FileDate", ColumnType::kDate),
          Column(u"RulesText", ColumnType::kMemo), played, Column(u"CRC", ColumnType::kText, 50),
          Column(u"Seen", ColumnType::kBoolean)}) {
        const base::Status status = Do([&] { return database_->AddColumn(u"games", column); });
        ASSERT_TRUE(status.ok()) << status.message();
    }
    Reopen();
    const auto rows = AllRows(Games());
    ASSERT_EQ(rows.size(), 1U);
    ASSERT_EQ(rows[0].size(), 12U);
    EXPECT_EQ(rows[0][1], Value::Text(u"Fathom"));
    for (std::size_t c = 6; c < 11; ++c)
        EXPECT_TRUE(rows[0][c].is_null());
    EXPECT_EQ(rows[0][11], Value::Boolean(false));
    EXPECT_EQ(Games().design().columns[9].default_value, u"0");
    EXPECT_EQ(Do([&] { return database_->AddColumn(u"Games", played); }).number(), 3380);

    const std::vector<ColumnChange> changes = {{8, Value::Text(std::u16string(3000, u'r'))},
                                               {9, Value::Long(7)}};
    const base::Status updated = Do([&] { return Games().Update(old_row.value(), changes); });
    ASSERT_TRUE(updated.ok()) << updated.message();
    EXPECT_EQ(AllRows(Games())[0][9], Value::Long(7));
    EXPECT_EQ(AllRows(Games())[0][8].as<std::u16string>().size(), 3000U);
}

}  // namespace
}  // namespace jet::test
