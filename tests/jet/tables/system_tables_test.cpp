// What changes of designs leave in the system tables, read back from files of the test's own; and
// what the checker says when they contradict the tables.
#include "jet/check/check.h"
#include "jet/tables/system_tables.h"
#include "jet/tables/table_fixture.h"
#include "jet/values/system_clock.h"
#include "support/encoded_file.h"

#include <algorithm>
#include <functional>

namespace jet::test {
namespace {

constexpr double kLongAgo = 30000.25;

class SystemTablesTest : public TableFixture {
protected:
    // Rows of a table whose field in `column` is `wanted`.
    std::vector<RowId> Find(std::u16string_view table, std::u16string_view column,
                            const Value& wanted) {
        std::vector<RowId> found;
        const std::size_t position = PositionOf(table, column);
        const auto cursor = TableOf(table).Scan().value();
        while (const auto row = cursor->Next().value()) {
            Value value;
            EXPECT_TRUE(cursor->Read(std::span(&position, 1), std::span(&value, 1)).ok());
            if (value == wanted) found.push_back(*row);
        }
        return found;
    }
    std::size_t PositionOf(std::u16string_view table, std::u16string_view column) {
        const auto& columns = TableOf(table).design().columns;
        return static_cast<std::size_t>(std::ranges::find(columns, column, &ColumnDesign::name) -
                                        columns.begin());
    }
    Value Read(std::u16string_view table, RowId row, std::u16string_view column) {
        const std::size_t position = PositionOf(table, column);
        Value value;
        EXPECT_TRUE(TableOf(table).Read(row, std::span(&position, 1), std::span(&value, 1)).ok());
        return value;
    }
    RowId ObjectOf(std::u16string_view name) {
        const auto rows = Find(u"MSysObjects", u"Name", Value::Text(name));
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? RowId{} : rows.front();
    }
    Value IdOf(std::u16string_view name) { return Read(u"MSysObjects", ObjectOf(name), u"Id"); }

    void Remove(std::u16string_view table, const std::vector<RowId>& rows) {
        EXPECT_FALSE(rows.empty());
        for (const RowId row : rows)
            ASSERT_TRUE(Delete(table, row).ok());
    }

    void CreateScores() {
        TableDesign scores;
        scores.name = u"Scores";
        scores.columns = {Column(u"Game", ColumnType::kLong), Column(u"Points", ColumnType::kLong)};
        ASSERT_TRUE(Do([&] { return database_->CreateTable(scores); }).ok());
    }
    base::Status Relate() {
        RelationDesign relation;
        relation.name = u"GamesScores";
        relation.table = u"Scores";
        relation.columns = {u"Game"};
        relation.referenced_table = u"Games";
        relation.on_delete = RelationRule::kCascade;
        return Do([&] { return database_->CreateRelation(relation); });
    }

    // The first finding with the text; its severity.
    std::optional<Severity> Reported(const std::string& text) {
        for (const Finding& finding : CheckIntegrity(database_->pages()).findings)
            if (finding.text.find(text) != std::string::npos) return finding.severity;
        return std::nullopt;
    }
    // The fixture wants a sound file.
    void LeaveDamaged() {
        ASSERT_TRUE(database_->Close().ok());
        database_.reset();
    }
};

TEST_F(SystemTablesTest, ANewTableHasThePermissionsThatItsContainerGives) {
    CreateGames();
    std::vector<std::pair<std::string, std::string>> access;
    for (const RowId row : Find(u"MSysACEs", u"ObjectId", IdOf(u"Games"))) {
        access.emplace_back(Describe(Read(u"MSysACEs", row, u"SID")),
                            Describe(Read(u"MSysACEs", row, u"ACM")));
        EXPECT_EQ(Read(u"MSysACEs", row, u"FInheritable"), Value::Boolean(false));
    }
    std::ranges::sort(access);
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"0201", std::to_string(0xFFEFF)}, {"0301", std::to_string(0xF00FE)}};
    EXPECT_EQ(access, expected);
    EXPECT_EQ(Describe(Read(u"MSysObjects", ObjectOf(u"Games"), u"Owner")), "0301");
}

TEST_F(SystemTablesTest, PermissionsOfOneUserInTheContainerAddUp) {
    constexpr std::int32_t kTablesContainer = 0x0F000001;
    std::vector<Value> row(4);
    row[PositionOf(u"MSysACEs", u"ObjectId")] = Value::Long(kTablesContainer);
    row[PositionOf(u"MSysACEs", u"SID")] = Value::Binary(SidBytes(kSidAdmin));
    row[PositionOf(u"MSysACEs", u"ACM")] = Value::Long(1);
    row[PositionOf(u"MSysACEs", u"FInheritable")] = Value::Boolean(true);
    ASSERT_TRUE(Insert(u"MSysACEs", row).ok());
    CreateGames();
    std::vector<std::string> rights;
    for (const RowId entry : Find(u"MSysACEs", u"ObjectId", IdOf(u"Games")))
        if (Read(u"MSysACEs", entry, u"SID") == Value::Binary(SidBytes(kSidAdmin)))
            rights.push_back(Describe(Read(u"MSysACEs", entry, u"ACM")));
    EXPECT_EQ(rights, (std::vector{std::to_string(0xF00FE | 1)})) << "those of the owner, and this";
}

// The key of the stream is made from fields of page 0; without a password only these count.
TEST_F(SystemTablesTest, UsersAreScrambledInTheFile) {
    CreateGames();
    ASSERT_TRUE(database_->Flush().ok());
    auto head = ReadWholeFile(path_);
    test_support::ApplyKeyStream(0x6B39DAC7, std::span(head).subspan(0x18, 128));
    const auto byte = [&](std::size_t at) { return std::to_integer<std::uint32_t>(head[at]); };
    const std::uint32_t hash = byte(0x6A) << 20 ^ byte(0x6C) << 21 ^ byte(0x6E) << 22 ^
                               byte(0x70) << 23 ^ byte(0x72) ^ byte(0x74) << 1 ^ byte(0x76) << 2 ^
                               byte(0x78) << 3;
    const std::uint32_t key = base::LoadLittle<std::uint32_t>(head.data() + 0x72) ^ hash;
    // mdb-export prints the bytes as they are stored.
    const auto names = ExportedNames(path_, "MSysACEs");
    const auto rows = ExportedRows(path_, "MSysACEs");
    ASSERT_TRUE(rows);
    const auto column_of = [&](const char* name) {
        return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
    };
    const std::string id = Describe(IdOf(u"Games"));
    std::vector<std::string> users;
    for (const TextRow& row : *rows) {
        if (row[column_of("ObjectId")] != id) continue;
        const std::string stored = row[column_of("SID")].value();
        ASSERT_EQ(stored.size(), 4U);
        std::vector<std::byte> bytes = {
            static_cast<std::byte>(std::stoi(stored.substr(0, 2), nullptr, 16)),
            static_cast<std::byte>(std::stoi(stored.substr(2), nullptr, 16))};
        test_support::ApplyKeyStream(key, bytes);
        users.push_back(Describe(Value::Binary(bytes)));
    }
    std::ranges::sort(users);
    EXPECT_EQ(users, (std::vector<std::string>{"0201", "0301"}));
}

TEST_F(SystemTablesTest, ADroppedTableLeavesNoRowBehind) {
    CreateGames();
    const Value id = IdOf(u"Games");
    ASSERT_TRUE(Do([&] { return database_->DropTable(u"Games"); }).ok());
    EXPECT_TRUE(Find(u"MSysACEs", u"ObjectId", id).empty());
    EXPECT_TRUE(Find(u"MSysObjects", u"Name", Value::Text(u"Games")).empty());
    EXPECT_EQ(CheckIntegrity(database_->pages()).warnings, 0U);
}

TEST_F(SystemTablesTest, EveryChangeOfADesignDatesTheTable) {
    CreateGames();
    CreateScores();
    ColumnDesign wider = Column(u"Extra", ColumnType::kText, 60);
    const std::pair<const char*, std::function<base::Status()>> changes[] = {
        {"AddColumn",
         [&] { return database_->AddColumn(u"Games", Column(u"Extra", ColumnType::kText, 20)); }},
        {"AlterColumn", [&] { return database_->AlterColumn(u"Games", wider); }},
        {"CreateIndex",
         [&] {
             return database_->CreateIndex(u"Games", Index(u"ByExtra", {{6, true}}));
         }},
        {"DropIndex", [&] { return database_->DropIndex(u"Games", u"ByExtra"); }},
        {"DropColumn", [&] { return database_->DropColumn(u"Games", u"Extra"); }}};
    for (const auto& [name, change] : changes) {
        SCOPED_TRACE(name);
        const RowId object = ObjectOf(u"Games");
        const Value created = Read(u"MSysObjects", object, u"DateCreate");
        ASSERT_TRUE(Update(u"MSysObjects", object,
                           {{PositionOf(u"MSysObjects", u"DateUpdate"), Value::DateTime(kLongAgo)}})
                        .ok());
        const double before = SystemNow();
        ASSERT_TRUE(Do(change).ok());
        const Value updated = Read(u"MSysObjects", ObjectOf(u"Games"), u"DateUpdate");
        EXPECT_GE(updated.as<Date>().days, before);
        EXPECT_LE(updated.as<Date>().days, SystemNow());
        EXPECT_EQ(Read(u"MSysObjects", ObjectOf(u"Games"), u"DateCreate"), created);
    }
}

TEST_F(SystemTablesTest, ARelationIsToldAndForgotten) {
    CreateGames();
    CreateScores();
    ASSERT_TRUE(Relate().ok());
    const Value name = Value::Text(u"GamesScores");
    const auto rows = Find(u"MSysRelationships", u"szRelationship", name);
    ASSERT_EQ(rows.size(), 1U);
    const auto read = [&](std::u16string_view column) {
        return Describe(Read(u"MSysRelationships", rows.front(), column));
    };
    EXPECT_EQ(read(u"szObject"), "Scores");
    EXPECT_EQ(read(u"szColumn"), "Game");
    EXPECT_EQ(read(u"szReferencedObject"), "Games");
    EXPECT_EQ(read(u"szReferencedColumn"), "ID");
    EXPECT_EQ(read(u"ccolumn"), "1");
    EXPECT_EQ(read(u"icolumn"), "0");
    EXPECT_EQ(read(u"grbit"), std::to_string(0x1000));
    const Value id = IdOf(u"GamesScores");
    EXPECT_FALSE(Find(u"MSysACEs", u"ObjectId", id).empty());
    EXPECT_EQ(CheckIntegrity(database_->pages()).warnings, 0U);

    ASSERT_TRUE(Do([&] { return database_->DropRelation(u"Scores", u"GamesScores"); }).ok());
    EXPECT_TRUE(Find(u"MSysRelationships", u"szRelationship", name).empty());
    EXPECT_TRUE(Find(u"MSysObjects", u"Name", name).empty());
    EXPECT_TRUE(Find(u"MSysACEs", u"ObjectId", id).empty());
    EXPECT_EQ(CheckIntegrity(database_->pages()).warnings, 0U);
}

// The columns of both sides in turn; the flags say what is passed on, and that one row refers to
// one.
TEST_F(SystemTablesTest, ARelationOfTwoColumnsHasTwoRows) {
    TableDesign matches;
    matches.name = u"Matches";
    matches.columns = {Column(u"Game", ColumnType::kLong), Column(u"Round", ColumnType::kLong)};
    matches.indexes = {Index(u"Both", {{0, true}, {1, true}})};
    matches.indexes[0].unique = true;
    TableDesign results = matches;
    results.name = u"Results";
    results.columns[0].name = u"G";
    results.columns[1].name = u"R";
    RelationDesign relation;
    relation.name = u"MatchesResults";
    relation.table = u"Results";
    relation.columns = {u"G", u"R"};
    relation.referenced_table = u"Matches";
    relation.referenced_columns = {u"Game", u"Round"};
    relation.on_update = RelationRule::kCascade;
    ASSERT_TRUE(Do([&] { return database_->CreateTable(matches); }).ok());
    ASSERT_TRUE(Do([&] { return database_->CreateTable(results); }).ok());
    const base::Status related = Do([&] { return database_->CreateRelation(relation); });
    ASSERT_TRUE(related.ok()) << related.message();
    std::vector<std::string> rows;
    for (const RowId row :
         Find(u"MSysRelationships", u"szRelationship", Value::Text(u"MatchesResults"))) {
        std::string text;
        for (const auto* column :
             {u"icolumn", u"ccolumn", u"szColumn", u"szReferencedColumn", u"grbit"})
            text += Describe(Read(u"MSysRelationships", row, column)) + " ";
        rows.push_back(text);
    }
    std::ranges::sort(rows);
    EXPECT_EQ(rows, (std::vector<std::string>{"0 2 G Game 257 ", "1 2 R Round 257 "}));
}

// ------------------------------------------------------------------------- the checker

TEST_F(SystemTablesTest, APermissionOfNothingIsAWarning) {
    CreateGames();
    std::vector<Value> row(4);
    row[PositionOf(u"MSysACEs", u"ObjectId")] = Value::Long(4711);
    row[PositionOf(u"MSysACEs", u"SID")] = Value::Binary(SidBytes(kSidAdmin));
    row[PositionOf(u"MSysACEs", u"ACM")] = Value::Long(0x14);
    row[PositionOf(u"MSysACEs", u"FInheritable")] = Value::Boolean(false);
    const auto inserted = Insert(u"MSysACEs", row);
    ASSERT_TRUE(inserted.ok()) << inserted.status().message();
    EXPECT_EQ(Reported("is a permission of object 4711"), Severity::kWarning);
}

TEST_F(SystemTablesTest, ATableThatNobodyMayUseIsAWarning) {
    CreateGames();
    Remove(u"MSysACEs", Find(u"MSysACEs", u"ObjectId", IdOf(u"Games")));
    EXPECT_EQ(Reported("nobody has permissions for table Games"), Severity::kWarning);
}

TEST_F(SystemTablesTest, AnUnknownUserIsAFault) {
    CreateGames();
    const auto rows = Find(u"MSysACEs", u"ObjectId", IdOf(u"Games"));
    ASSERT_TRUE(Update(u"MSysACEs", rows.front(),
                       {{PositionOf(u"MSysACEs", u"SID"), Value::Binary(SidBytes(0x7777))}})
                    .ok());
    EXPECT_EQ(Reported("the user of the permission is unknown"), Severity::kFault);
    LeaveDamaged();
}

TEST_F(SystemTablesTest, ARelationThatIsOnlyToldIsAWarning) {
    CreateGames();
    CreateScores();
    ASSERT_TRUE(Relate().ok());
    const RowId row =
        Find(u"MSysRelationships", u"szRelationship", Value::Text(u"GamesScores")).front();
    const auto position = PositionOf(u"MSysRelationships", u"szRelationship");
    ASSERT_TRUE(Update(u"MSysRelationships", row, {{position, Value::Text(u"Other")}}).ok());
    EXPECT_EQ(Reported("relation Other is kept by no index"), Severity::kWarning);
    EXPECT_EQ(Reported("relation GamesScores is not in MSysRelationships"), Severity::kFault);
    ASSERT_TRUE(Update(u"MSysRelationships", row, {{position, Value::Text(u"gamesSCORES")}}).ok());
    EXPECT_EQ(Reported("elation"), std::nullopt);
}

}  // namespace
}  // namespace jet::test
