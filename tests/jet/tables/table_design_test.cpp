// Changes of a table's design with rows in it.
#include "jet/tables/table_fixture.h"

namespace jet::test {
namespace {

class TableDesignTest : public TableFixture {
protected:
    void FillGames(int rows) {
        CreateGames();
        for (int i = 0; i < rows; ++i)
            ASSERT_TRUE(InsertGame(u"Game " + std::u16string(1, char16_t(u'A' + i % 26)),
                                   static_cast<std::int16_t>(1970 + i % 40),
                                   std::u16string(static_cast<std::size_t>(i * 37 % 6000), u'n'))
                            .ok());
    }
};

TEST_F(TableDesignTest, DroppedTableGivesItsPagesBack) {
    FillGames(200);
    const PageNumber pages = database_->pages().page_count();
    for (int round = 0; round < 3; ++round) {
        const base::Status dropped = Do([&] { return database_->DropTable(u"GAMES"); });
        ASSERT_TRUE(dropped.ok()) << dropped.message();
        EXPECT_EQ(database_->FindTable(u"Games").status().number(), 3078);
        EXPECT_TRUE(database_->TableNames().value().empty());
        FillGames(200);
    }
    EXPECT_LE(database_->pages().page_count(), pages + 1);
}

TEST_F(TableDesignTest, SecondTableOfTheSameNameIsRefused) {
    CreateGames();
    TableDesign design = GamesDesign();
    design.name = u"games";
    EXPECT_EQ(Do([&] { return database_->CreateTable(design); }).number(), 3010);
}

TEST_F(TableDesignTest, RolledBackTableIsNotThere) {
    ASSERT_TRUE(database_->Begin().ok());
    ASSERT_TRUE(database_->CreateTable(GamesDesign()).ok());
    EXPECT_TRUE(database_->FindTable(u"Games").ok());
    database_->Rollback();
    EXPECT_EQ(database_->FindTable(u"Games").status().number(), 3078);
    CreateGames();
    EXPECT_TRUE(InsertGame(u"Taxi", 1988, u"").ok());
}

TEST_F(TableDesignTest, RolledBackColumnIsNotThere) {
    FillGames(10);
    ASSERT_TRUE(database_->Begin().ok());
    ASSERT_TRUE(database_->AddColumn(u"Games", Column(u"CRC", ColumnType::kText, 50)).ok());
    database_->Rollback();
    EXPECT_EQ(Games().design().columns.size(), 6U);
    EXPECT_TRUE(InsertGame(u"Taxi", 1988, u"").ok());
}

TEST_F(TableDesignTest, ManyColumnsMakeTheDefinitionSpanPages) {
    FillGames(5);
    const std::u16string stem = u"A column with quite a long name to fill the definition ";
    for (int i = 0; i < 249; ++i) {
        ColumnDesign column = Column(u"", ColumnType::kShort);
        column.name = stem + std::u16string(1, char16_t(u'A' + i / 16)) +
                      std::u16string(1, char16_t(u'A' + i % 16));
        if (i % 50 == 0) column.type = ColumnType::kMemo;
        const base::Status added = Do([&] { return database_->AddColumn(u"Games", column); });
        ASSERT_TRUE(added.ok()) << i << added.message();
    }
    EXPECT_EQ(Do([&] {
                  return database_->AddColumn(u"Games", Column(u"X", ColumnType::kLong));
              }).number(),
              3190);
    Reopen();
    EXPECT_EQ(Games().design().columns.size(), 255U);
    std::vector<Value> values(255);
    values[254] = Value::Short(7);
    ASSERT_TRUE(Insert(u"Games", values).ok());
    const auto rows = AllRows(Games());
    EXPECT_EQ(rows.back()[254], Value::Short(7));
    EXPECT_TRUE(rows.front()[254].is_null());
}

TEST_F(TableDesignTest, DroppedColumnLeavesTheOthersAlone) {
    FillGames(120);
    const auto before = AllRows(Games());
    const base::Status dropped = Do([&] { return database_->DropColumn(u"Games", u"notes"); });
    ASSERT_TRUE(dropped.ok()) << dropped.message();
    const auto after = AllRows(Games());
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t r = 0; r < after.size(); ++r) {
        EXPECT_EQ(after[r][1], before[r][1]);
        EXPECT_EQ(after[r][4], before[r][5]);
    }
    EXPECT_EQ(Do([&] { return database_->DropColumn(u"Games", u"Name"); }).number(), 3280);
    EXPECT_EQ(Do([&] { return database_->DropColumn(u"Games", u"None"); }).number(), 3381);
    ASSERT_TRUE(Do([&] {
                    return database_->AddColumn(u"Games", Column(u"Notes", ColumnType::kMemo));
                }).ok());
    EXPECT_TRUE(AllRows(Games())[0][5].is_null());
}

TEST_F(TableDesignTest, ColumnOfAnotherTypeKeepsWhatCanBeConverted) {
    FillGames(80);
    ASSERT_TRUE(Do([&] {
                    return database_->AlterColumn(u"Games", Column(u"Year", ColumnType::kText, 10));
                }).ok());
    EXPECT_EQ(Games().design().columns[2].type, ColumnType::kText);
    EXPECT_EQ(AllRows(Games())[3][2], Value::Text(u"1973"));
    ASSERT_TRUE(InsertGame(u"Odd", 1990, u"").ok());
    ASSERT_TRUE(Insert(u"Games", {{}, Value::Text(u"Odd"), Value::Text(u"soon"), {}, {}, {}}).ok());
    ASSERT_TRUE(Do([&] {
                    return database_->AlterColumn(u"Games", Column(u"Year", ColumnType::kLong));
                }).ok());
    const auto rows = AllRows(Games());
    EXPECT_EQ(rows[3][2], Value::Long(1973));
    EXPECT_EQ(rows[80][2], Value::Long(1990));
    EXPECT_TRUE(rows[81][2].is_null());
}

TEST_F(TableDesignTest, TextBecomesMemoAndBack) {
    FillGames(40);
    ASSERT_TRUE(Do([&] { return database_->DropIndex(u"Games", u"Name"); }).ok());
    ASSERT_TRUE(Do([&] {
                    return database_->AlterColumn(u"Games", Column(u"Name", ColumnType::kMemo));
                }).ok());
    EXPECT_EQ(AllRows(Games())[2][1], Value::Text(u"Game C"));
    ASSERT_TRUE(Do([&] {
                    return database_->AlterColumn(u"Games", Column(u"Name", ColumnType::kText, 50));
                }).ok());
    EXPECT_EQ(AllRows(Games())[2][1], Value::Text(u"Game C"));
    EXPECT_EQ(Games().design().columns[1].size, 50U);
}

TEST_F(TableDesignTest, ShorterTextIsRefusedWhileALongerValueIsThere) {
    FillGames(10);
    EXPECT_EQ(Do([&] {
                  return database_->AlterColumn(u"Games", Column(u"Name", ColumnType::kText, 3));
              }).number(),
              3163);
    EXPECT_TRUE(Do([&] {
                    return database_->AlterColumn(u"Games", Column(u"Name", ColumnType::kText, 6));
                }).ok());
    EXPECT_EQ(InsertGame(u"Too long", 1990, u"").status().number(), 3163);
}

TEST_F(TableDesignTest, SameTypeAgainIsAllowed) {
    FillGames(10);
    const auto before = AllRows(Games());
    EXPECT_TRUE(Do([&] {
                    return database_->AlterColumn(u"Games", Column(u"Added", ColumnType::kDate));
                }).ok());
    EXPECT_EQ(AllRows(Games()), before);
}

TEST_F(TableDesignTest, IndexMadeLaterHoldsTheRows) {
    FillGames(600);
    ASSERT_TRUE(Do([&] {
                    return database_->CreateIndex(u"Games", Index(u"ByDate", {{5, false}}));
                }).ok());
    ASSERT_TRUE(
        Do([&] {
            return database_->CreateIndex(u"Games", Index(u"ByNotes", {{3, true}, {4, true}}));
        }).ok());
    IndexDesign unique = Index(u"Unique", {{2, true}});
    unique.unique = true;
    EXPECT_EQ(Do([&] { return database_->CreateIndex(u"Games", unique); }).number(), 3022);
    EXPECT_EQ(Do([&] {
                  return database_->CreateIndex(u"Games", Index(u"bydate", {{5, true}}));
              }).number(),
              3375);
    ASSERT_EQ(Games().design().indexes.size(), 4U);
    ASSERT_TRUE(InsertGame(u"Taxi", 1988, u"late").ok());
    ASSERT_TRUE(Do([&] { return database_->DropIndex(u"Games", u"ByDate"); }).ok());
    EXPECT_EQ(Do([&] { return database_->DropIndex(u"Games", u"ByDate"); }).number(), 3372);
    EXPECT_TRUE(InsertGame(u"Taxi", 1989, u"later").ok());
}

TEST_F(TableDesignTest, FirstVariableColumnReachesOldRows) {
    TableDesign design;
    design.name = u"Numbers";
    design.columns = {Column(u"A", ColumnType::kLong), Column(u"B", ColumnType::kBoolean)};
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(Insert(u"Numbers", {Value::Long(i), Value::Boolean(i % 3 == 0)}).ok());
    ASSERT_TRUE(Do([&] {
                    return database_->AddColumn(u"Numbers", Column(u"C", ColumnType::kText, 20));
                }).ok());
    const auto rows = AllRows(TableOf(u"Numbers"));
    EXPECT_EQ(rows[7][0], Value::Long(7));
    EXPECT_TRUE(rows[7][2].is_null());
    ASSERT_TRUE(database_->Flush().ok());
    CompareWithExport(path_, TableOf(u"Numbers"));
}

TEST_F(TableDesignTest, RulesOfColumnsAreKept) {
    TableDesign design = GamesDesign();
    design.columns[1].required = true;
    design.columns[3].allow_zero_length = false;
    ASSERT_TRUE(Do([&] { return database_->CreateTable(design); }).ok());
    Reopen();
    EXPECT_EQ(Insert(u"Games", std::vector<Value>(6)).status().number(), 3314);
    EXPECT_EQ(InsertGame(u"Taxi", 1988, u"").status().number(), 3315);
    EXPECT_EQ(InsertGame(std::u16string(101, u'x'), 1988, u"n").status().number(), 3163);
    const auto row = InsertGame(u"Taxi", 1988, u"n");
    ASSERT_TRUE(row.ok());
    EXPECT_EQ(Update(u"Games", row.value(), {{1, Value::Null()}}).number(), 3314);
    EXPECT_EQ(AllRows(Games()).size(), 1U);
}

TEST_F(TableDesignTest, BadDesignsAreRefused) {
    TableDesign design = GamesDesign();
    design.columns[1].name = u"id";
    EXPECT_EQ(Do([&] { return database_->CreateTable(design); }).number(), 3380);
    design = GamesDesign();
    design.columns[1].name = u"a.b";
    EXPECT_EQ(Do([&] { return database_->CreateTable(design); }).number(), 3125);
    design.columns.clear();
    EXPECT_EQ(Do([&] { return database_->CreateTable(design); }).number(), 3264);
    design = GamesDesign();
    design.columns[1].size = 256;
    EXPECT_FALSE(Do([&] { return database_->CreateTable(design); }).ok());
    design = GamesDesign();
    design.indexes[1].primary = true;
    EXPECT_EQ(Do([&] { return database_->CreateTable(design); }).number(), 3283);
    EXPECT_EQ(Do([&] { return database_->DropTable(u"MSysObjects"); }).number(), 3027);
}

}  // namespace
}  // namespace jet::test
