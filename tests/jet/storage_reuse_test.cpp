// Freed space is used again; values change their form of storage; limits are kept.
#include "jet/catalog.h"
#include "jet/table_fixture.h"

#include <random>

namespace jet::test {
namespace {

class StorageReuseTest : public TableFixture {
protected:
    PageNumber PageCount() { return database_->pages().page_count(); }

    std::u16string Notes(std::size_t length) { return std::u16string(length, u'n'); }
};

TEST_F(StorageReuseTest, LongChurnDoesNotGrowTheFile) {
    CreateGames();
    std::mt19937 random(7);
    std::vector<RowId> rows;
    const auto length = [&] { return random() % 10 == 0 ? random() % 12000 : random() % 300; };
    for (int i = 0; i < 200; ++i)
        rows.push_back(InsertGame(u"Game", 1990, Notes(length())).value());
    PageNumber settled = 0;
    for (int i = 0; i < 6000; ++i) {
        if (i == 2000) settled = PageCount();
        const std::size_t at = random() % rows.size();
        if (i % 3 == 0) {
            ASSERT_TRUE(Delete(u"Games", rows[at]).ok());
            rows[at] = InsertGame(u"Game", 1990, Notes(length())).value();
        } else {
            ASSERT_TRUE(Update(u"Games", rows[at],
                               {{3, Value::Text(Notes(length()))},
                                {1, Value::Text(std::u16string(random() % 100, u'x'))}})
                            .ok());
        }
        if (i == 4000) Reopen();
    }
    EXPECT_LE(PageCount(), settled + settled / 5);
}

TEST_F(StorageReuseTest, EmptiedTableGivesItsPagesBack) {
    CreateGames();
    std::vector<RowId> rows;
    for (int i = 0; i < 800; ++i)
        rows.push_back(InsertGame(u"Game", 1990, Notes(200)).value());
    const PageNumber full = PageCount();
    for (int round = 0; round < 2; ++round) {
        for (const RowId row : rows)
            ASSERT_TRUE(Delete(u"Games", row).ok());
        rows.clear();
        EXPECT_EQ(Games().row_count(), 0U);
        for (int i = 0; i < 800; ++i)
            rows.push_back(InsertGame(u"Game", 1990, Notes(200)).value());
        EXPECT_LE(PageCount(), full + 2);
    }
}

TEST_F(StorageReuseTest, RoomIsFoundWithoutTheMapOfFreeSpace) {
    CreateGames();
    std::vector<RowId> rows;
    for (int i = 0; i < 600; ++i)
        rows.push_back(InsertGame(u"Some game", 1990, u"notes in the row").value());
    for (std::size_t i = 0; i < rows.size(); i += 2)
        ASSERT_TRUE(Delete(u"Games", rows[i]).ok());
    Reopen();
    // As other engines leave files: the hints are gone.
    PageHeader header = ReadPageHeader(database_->pages().Read(0).value().bytes(), "").value();
    FileContext file(database_->pages(), header);
    Catalog catalog(file);
    const auto entry = catalog.FindTable(u"Games");
    ASSERT_TRUE(entry.ok());
    const auto table =
        ReadTableDefinition(file.store, file.format, file.text, entry.value()->definition_page());
    ASSERT_TRUE(table.ok());
    UsageMap free = file.Map(table.value().free);
    ASSERT_TRUE(database_->Begin().ok());
    const auto hinted = free.Members();
    ASSERT_TRUE(hinted.ok());
    for (const PageNumber page : hinted.value())
        ASSERT_TRUE(free.Remove(page).ok());
    ASSERT_TRUE(database_->Commit().ok());
    Reopen();
    const PageNumber before = PageCount();
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(InsertGame(u"Some game", 1990, u"notes in the row").ok());
    EXPECT_LE(PageCount(), before + 1);
}

// A page that one column gave back and another took is not found again by the first.
TEST_F(StorageReuseTest, ForgottenPageOfAnotherColumnIsLeftAlone) {
    TableDesign design;
    design.name = u"Two";
    design.columns = {Column(u"A", ColumnType::kMemo), Column(u"B", ColumnType::kMemo)};
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    std::vector<RowId> rows;
    for (int i = 0; i < 45; ++i)  // a page each, more than one search looks at
        rows.push_back(Insert(u"Two", {Value::Text(Notes(2000)), {}}).value());
    Reopen();
    ASSERT_TRUE(Insert(u"Two", {Value::Text(Notes(1900)), {}}).ok());  // begins the search
    ASSERT_TRUE(Delete(u"Two", rows[0]).ok());
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(Insert(u"Two", {{}, Value::Text(Notes(100))}).ok());
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(Insert(u"Two", {Value::Text(Notes(700)), {}}).ok());
}

TEST_F(StorageReuseTest, MemoChangesItsFormAndBack) {
    CreateGames();
    const RowId row = InsertGame(u"Taxi", 1988, Notes(10)).value();
    const PageNumber before = PageCount();
    for (const std::size_t length : {5000U, 20U, 1500U, 90000U, 0U, 3000U, 31U, 90000U, 1U}) {
        ASSERT_TRUE(Update(u"Games", row, {{3, Value::Text(Notes(length))}}).ok());
        EXPECT_EQ(AllRows(Games())[0][3], Value::Text(Notes(length)));
    }
    ASSERT_TRUE(Update(u"Games", row, {{3, Value::Null()}}).ok());
    EXPECT_TRUE(AllRows(Games())[0][3].is_null());
    const PageNumber after = PageCount();
    ASSERT_TRUE(Update(u"Games", row, {{3, Value::Text(Notes(90000))}}).ok());
    EXPECT_EQ(PageCount(), after);
    EXPECT_LE(after, before + 50);
}

TEST_F(StorageReuseTest, RowsThatGrowMoveAndStayFound) {
    CreateGames();
    std::vector<RowId> rows;
    for (int i = 0; i < 300; ++i)
        rows.push_back(InsertGame(u"G", 1990, u"").value());
    for (const RowId row : rows)
        ASSERT_TRUE(Update(u"Games", row, {{1, Value::Text(std::u16string(99, u'w'))}}).ok());
    for (const RowId row : rows)
        ASSERT_TRUE(Update(u"Games", row, {{3, Value::Text(std::u16string(30, u'v'))}}).ok());
    const std::size_t name = 1;
    for (const RowId row : rows) {
        Value value;
        ASSERT_TRUE(Games().Read(row, std::span(&name, 1), std::span(&value, 1)).ok());
        EXPECT_EQ(value.as<std::u16string>().size(), 99U);
    }
    for (std::size_t i = 0; i < rows.size(); i += 3)
        ASSERT_TRUE(Delete(u"Games", rows[i]).ok());
    EXPECT_EQ(AllRows(Games()).size(), 200U);
}

TEST_F(StorageReuseTest, RowLongerThanAPageIsRefused) {
    TableDesign design;
    design.name = u"Wide";
    for (int i = 0; i < 20; ++i) {
        design.columns.push_back(Column(u"", ColumnType::kText, 255));
        design.columns.back().name = u"C" + std::u16string(1, char16_t(u'a' + i));
    }
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    std::vector<Value> values(20, Value::Text(std::u16string(255, u'x')));
    EXPECT_EQ(Insert(u"Wide", values).status().number(), 3047);
    for (std::size_t i = 7; i < 20; ++i)
        values[i] = Value::Null();
    EXPECT_TRUE(Insert(u"Wide", values).ok());
}

TEST_F(StorageReuseTest, ManyMemosInOneRowLeaveTheRow) {
    TableDesign design;
    design.name = u"Memos";
    for (int i = 0; i < 100; ++i) {
        design.columns.push_back(Column(u"", ColumnType::kMemo));
        design.columns.back().name = u"M" + std::u16string(1, char16_t(u'a' + i / 10)) +
                                     std::u16string(1, char16_t(u'a' + i % 10));
    }
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    const std::vector<Value> values(100, Value::Text(std::u16string(30, u'm')));
    ASSERT_TRUE(Insert(u"Memos", values).ok());
    EXPECT_EQ(AllRows(TableOf(u"Memos"))[0], values);
}

TEST_F(StorageReuseTest, DeletedRowSaysSo) {
    CreateGames();
    const RowId row = InsertGame(u"Taxi", 1988, u"").value();
    ASSERT_TRUE(Delete(u"Games", row).ok());
    EXPECT_EQ(Delete(u"Games", row).number(), 3167);
    EXPECT_EQ(Update(u"Games", row, {{2, Value::Short(1)}}).number(), 3167);
    const std::size_t name = 1;
    Value value;
    EXPECT_EQ(Games().Read(row, std::span(&name, 1), std::span(&value, 1)).number(), 3167);
}

TEST_F(StorageReuseTest, AutonumberGoesOnBehindTheLargest) {
    CreateGames();
    ASSERT_TRUE(Insert(u"Games", {Value::Long(100), Value::Text(u"A"), {}, {}, {}, {}}).ok());
    ASSERT_TRUE(InsertGame(u"B", 1990, u"").ok());
    EXPECT_EQ(AllRows(Games())[1][0], Value::Long(101));
    EXPECT_EQ(
        Insert(u"Games", {Value::Long(100), Value::Text(u"C"), {}, {}, {}, {}}).status().number(),
        3022);
}

TEST_F(StorageReuseTest, RangeMeetsEveryRowWhileRowsChange) {
    CreateGames();
    for (int i = 0; i < 500; ++i)
        ASSERT_TRUE(InsertGame(u"Game " + std::u16string(1, char16_t(u'A' + i % 26)),
                               static_cast<std::int16_t>(i), u"")
                        .ok());
    const KeyBound from{{Value::Text(u"game c")}, true};
    const KeyBound to{{Value::Text(u"GAME F")}, false};
    for (const bool backwards : {false, true}) {
        auto cursor = Games().Range(0, from, to, backwards);
        ASSERT_TRUE(cursor.ok());
        int rows = 0;
        for (auto row = cursor.value()->Next(); row.ok() && row.value();
             row = cursor.value()->Next(), ++rows)
            ASSERT_TRUE(Update(u"Games", *row.value(), {{5, Value::DateTime(1)}}).ok());
        EXPECT_EQ(rows, 60);
        cursor = Games().Range(0, from, to, backwards);
        rows = 0;
        for (auto row = cursor.value()->Next(); row.ok() && row.value();
             row = cursor.value()->Next(), ++rows) {
            ASSERT_TRUE(Delete(u"Games", *row.value()).ok());
            ASSERT_TRUE(InsertGame(u"Zebra", 1, u"").ok());
        }
        EXPECT_EQ(rows, 60);
        for (int i = 0; i < 60; ++i)
            ASSERT_TRUE(InsertGame(u"Game " + std::u16string(1, char16_t(u'C' + i % 3)),
                                   static_cast<std::int16_t>(i), u"")
                            .ok());
    }
}

}  // namespace
}  // namespace jet::test
