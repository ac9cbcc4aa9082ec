// Freed space is used again; values change their form of storage; limits are kept.
#include "jet/check/check.h"
#include "jet/pages/data_page.h"
#include "jet/tables/catalog.h"
#include "jet/tables/table_fixture.h"

#include <random>

namespace jet::test {
namespace {

class StorageReuseTest : public TableFixture {
protected:
    PageNumber PageCount() { return database_->pages().page_count(); }

    std::u16string Notes(std::size_t length) { return std::u16string(length, u'n'); }

    // Calls `look` with the table's definition, inside a transaction.
    template <typename Look>
    void WithDefinition(std::u16string_view name, Look look) {
        const PageHeader header =
            ReadPageHeader(database_->pages().Read(0).value().bytes(), "").value();
        FileContext file(database_->pages(), header);
        Catalog catalog(file);
        const auto entry = catalog.FindTable(name);
        ASSERT_TRUE(entry.ok());
        const auto table = ReadTableDefinition(file.store, file.format, file.text,
                                               entry.value()->definition_page());
        ASSERT_TRUE(table.ok());
        ASSERT_TRUE(database_->Begin().ok());
        look(file, table.value());
        ASSERT_TRUE(database_->Commit().ok());
    }
    static std::vector<PageNumber> PagesOf(const UsageMap& map) { return map.Members().value(); }
    void LoseHints(std::u16string_view name) {
        WithDefinition(name, [](FileContext& file, const TableDefinition& table) {
            UsageMap free = file.Map(table.free);
            for (const PageNumber page : PagesOf(free))
                ASSERT_TRUE(free.Remove(page).ok());
        });
    }
    std::vector<PageNumber> HintsOf(std::u16string_view name) {
        std::vector<PageNumber> hints;
        WithDefinition(name, [&](FileContext& file, const TableDefinition& table) {
            hints = file.Map(table.free).Members().value();
        });
        return hints;
    }
    void CreateTwoMemos() {
        TableDesign design;
        design.name = u"Two";
        design.columns = {Column(u"A", ColumnType::kMemo), Column(u"B", ColumnType::kMemo)};
        ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    }
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
    LoseHints(u"Games");  // as other engines leave files
    Reopen();
    const PageNumber before = PageCount();
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(InsertGame(u"Some game", 1990, u"notes in the row").ok());
    EXPECT_LE(PageCount(), before + 1);
}

// A page that one column gave back and another took is not found again by the first.
TEST_F(StorageReuseTest, ForgottenPageOfAnotherColumnIsLeftAlone) {
    CreateTwoMemos();
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

// The same without a search: what a column knew of a page goes with it.
TEST_F(StorageReuseTest, APageGivenBackIsNoPlaceForItsOldColumn) {
    CreateTwoMemos();
    const RowId row = Insert(u"Two", {Value::Text(Notes(1500)), {}}).value();
    ASSERT_TRUE(Delete(u"Two", row).ok());
    ASSERT_TRUE(Insert(u"Two", {{}, Value::Text(Notes(1500))}).ok());
    ASSERT_TRUE(Insert(u"Two", {Value::Text(Notes(400)), {}}).ok());
    const CheckReport report = CheckIntegrity(database_->pages());
    EXPECT_EQ(report.findings.size(), 0U) << report.findings.front().text;
}

// Each page of a value that spans pages holds its piece and nothing else, however much is free.
TEST_F(StorageReuseTest, PagesOfALongMemoStayAlone) {
    CreateTwoMemos();
    ASSERT_TRUE(Insert(u"Two", {Value::Text(Notes(5000)), {}}).ok());
    Reopen();
    ASSERT_TRUE(Insert(u"Two", {Value::Text(Notes(500)), {}}).ok());
    std::vector<std::size_t> rows_of_pages;
    WithDefinition(u"Two", [&](FileContext& file, const TableDefinition& table) {
        for (const LongValueMaps& maps : table.long_values)
            for (const PageNumber page : PagesOf(file.Map(maps.owned))) {
                const auto view = file.store.Read(page);
                ASSERT_TRUE(view.ok()) << view.status().message();
                rows_of_pages.push_back(DataPage::Parse(view->bytes(), file.format)->slot_count());
            }
    });
    EXPECT_EQ(rows_of_pages, (std::vector<std::size_t>{1, 1, 1, 1}));
}

// A memo that may be compressed is, up to 1024 characters.
TEST_F(StorageReuseTest, LongerMemosAreNotCompressed) {
    TableDesign design;
    design.name = u"Memos";
    design.columns = {Column(u"A", ColumnType::kMemo)};
    design.columns[0].compressed = true;
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    for (const std::size_t length : {1024U, 1025U})
        ASSERT_TRUE(Insert(u"Memos", {Value::Text(Notes(length))}).ok());
    std::vector<std::size_t> sizes;
    WithDefinition(u"Memos", [&](FileContext& file, const TableDefinition& table) {
        for (const PageNumber page : PagesOf(file.Map(table.long_values.front().owned))) {
            const auto view = file.store.Read(page);
            const auto parsed = DataPage::Parse(view->bytes(), file.format);
            for (std::size_t slot = 0; slot < parsed->slot_count(); ++slot)
                sizes.push_back(parsed->Bytes(slot)->size());
        }
    });
    EXPECT_EQ(sizes, (std::vector<std::size_t>{2 + 1024, 2 * 1025}));
}

TEST_F(StorageReuseTest, FullPagesAreNoHints) {
    CreateGames();
    for (int i = 0; i < 600; ++i)
        ASSERT_TRUE(InsertGame(u"Some game", 1990, u"notes in the row").ok());
    LoseHints(u"Games");
    Reopen();
    for (const PageNumber before = PageCount(); PageCount() == before;)
        ASSERT_TRUE(InsertGame(u"Some game", 1990, u"notes in the row").ok());
    EXPECT_EQ(HintsOf(u"Games").size(), 1U);
}

// A row that went to another page comes back when that one is full and there is room at home.
TEST_F(StorageReuseTest, ARowComesHomeAndLeavesNothingBehind) {
    TableDesign design;
    design.name = u"Wide";
    design.columns = {Column(u"A", ColumnType::kText, 255), Column(u"B", ColumnType::kText, 255),
                      Column(u"C", ColumnType::kText, 255)};
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    const Value wide = Value::Text(std::u16string(255, u'\u0416'));  // 510 bytes
    const RowId row = Insert(u"Wide", {Value::Text(u"x"), {}, {}}).value();
    const RowId neighbour = Insert(u"Wide", {wide, wide, wide}).value();
    ASSERT_TRUE(Insert(u"Wide", {wide, wide, wide}).ok());
    ASSERT_TRUE(Update(u"Wide", row, {{0, wide}, {1, wide}}).ok());  // moves
    ASSERT_TRUE(Insert(u"Wide", {wide, wide, wide}).ok());
    ASSERT_TRUE(Insert(u"Wide", {wide, wide, {}}).ok());
    ASSERT_TRUE(Delete(u"Wide", neighbour).ok());
    ASSERT_TRUE(Update(u"Wide", row, {{2, wide}}).ok());
    EXPECT_EQ(AllRows(TableOf(u"Wide")).size(), 4U);
    EXPECT_EQ(CheckIntegrity(database_->pages()).findings.size(), 0U);
    std::vector<int> slots;
    WithDefinition(u"Wide", [&](FileContext& file, const TableDefinition& table) {
        for (const PageNumber page : PagesOf(file.Map(table.owned))) {
            const auto view = file.store.Read(page);
            const auto parsed = DataPage::Parse(view->bytes(), file.format);
            for (std::size_t slot = 0; slot < parsed->slot_count(); ++slot)
                slots.push_back(parsed->Flags(slot));
        }
    });
    // Home: the row, the deleted one, the other. The other page: what the row left, and two rows.
    EXPECT_EQ(slots, (std::vector<int>{0, kSlotDeleted, 0, kSlotDeleted, 0, 0}));
}

TEST_F(StorageReuseTest, AMovedRowIsDeletedInBothPlaces) {
    CreateGames();
    std::vector<RowId> rows;
    for (int i = 0; i < 100; ++i)
        rows.push_back(InsertGame(u"", 1990, u"").value());
    const RowId moved = rows.front();
    ASSERT_TRUE(Update(u"Games", moved,
                       {{1, Value::Text(std::u16string(100, u'\u0416'))},
                        {3, Value::Text(std::u16string(25, u'\u0416'))}})
                    .ok());
    for (const RowId row : rows)
        ASSERT_TRUE(Delete(u"Games", row).ok());
    std::size_t pages = 0;
    WithDefinition(u"Games", [&](FileContext& file, const TableDefinition& table) {
        pages = file.Map(table.owned).Members().value().size();
    });
    EXPECT_EQ(pages, 0U);
}

// The value of a boolean is its bit; where a table has no text, there is nothing else to read.
TEST_F(StorageReuseTest, ABooleanStaysWhenItsRowIsChanged) {
    TableDesign design;
    design.name = u"Flags";
    design.columns = {Column(u"Number", ColumnType::kLong), Column(u"Set", ColumnType::kBoolean)};
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    const RowId row = Insert(u"Flags", {Value::Long(0x00050000), Value::Boolean(true)}).value();
    const base::Status updated = Update(u"Flags", row, {{0, Value::Long(7)}});
    ASSERT_TRUE(updated.ok()) << updated.message();
    EXPECT_EQ(AllRows(TableOf(u"Flags"))[0],
              (std::vector<Value>{Value::Long(7), Value::Boolean(true)}));
}

TEST_F(StorageReuseTest, ATextLongerThanItsColumnIsRefused) {
    CreateGames();
    EXPECT_TRUE(InsertGame(Notes(100), 1990, u"").ok());
    EXPECT_EQ(InsertGame(Notes(101), 1990, u"").status().number(), 3163);
}

// A hint may be wrong altogether.
TEST_F(StorageReuseTest, AHintToAPageOfAnotherTableIsPassedOver) {
    CreateGames();
    CreateTwoMemos();
    ASSERT_TRUE(Insert(u"Two", {Value::Text(u"a"), {}}).ok());
    std::vector<PageNumber> of_the_other;
    WithDefinition(u"Two", [&](FileContext& file, const TableDefinition& table) {
        of_the_other = file.Map(table.owned).Members().value();
    });
    ASSERT_EQ(of_the_other.size(), 1U);
    WithDefinition(u"Games", [&](FileContext& file, const TableDefinition& table) {
        ASSERT_TRUE(file.Map(table.free).Add(of_the_other.front(), file.allocator).ok());
    });
    Reopen();
    const auto inserted = InsertGame(u"Some game", 1990, u"");
    EXPECT_TRUE(inserted.ok()) << inserted.status().message();
    EXPECT_NE(inserted.value().page, of_the_other.front());
    EXPECT_EQ(HintsOf(u"Games"), std::vector<PageNumber>{inserted.value().page});
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
