// Validation rules in files: the engine's own and those that another engine wrote.
#include "jet/connection.h"
#include "jet/tables/storage_support.h"
#include "jet/values/conversions.h"
#include "platform/file_system.h"
#include "support/check_database.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

std::string AnswerIn(Connection& connection, std::u16string_view sql) {
    std::int64_t affected = 0;
    auto rows = connection.Execute(sql, &affected);
    if (!rows.ok())
        return "#" + std::to_string(rows.status().number()) + ": " + rows.status().message();
    if (!rows->is_open()) return std::to_string(affected);
    std::string text;
    for (; !rows->Eof(); rows->MoveNext().Ignore())
        text += base::ToUtf8(ToText(rows->Fields(std::size_t{0}).value_or(Value()))) + "|";
    return text;
}

TableDesign RuledDesign() {
    TableDesign design;
    design.name = u"Games";
    design.columns.resize(3);
    design.columns[0].name = u"Name";
    design.columns[0].size = 50;
    design.columns[0].validation_rule = u"Like \"A*\"";
    design.columns[0].validation_text = u"Names begin with A.";
    design.columns[1].name = u"Players";
    design.columns[1].type = ColumnType::kLong;
    design.columns[1].validation_rule = u"Between 1 And 4";
    design.columns[2].name = u"Notes";
    design.columns[2].type = ColumnType::kMemo;
    design.validation_rule = u"Len([Notes]) > [Players]";
    return design;
}

class RulesOnDisk : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files, path, Noon()).ok());
        Make(RuledDesign());
    }
    void TearDown() override {
        connection.reset();
        database.reset();
        EXPECT_TRUE(test_support::DatabaseIsSound(path));
    }

    void Make(const TableDesign& design) {
        Open();
        ASSERT_TRUE(database->Begin().ok());
        const auto made = database->CreateTable(design);
        ASSERT_TRUE(made.ok()) << made.message();
        ASSERT_TRUE(database->Commit().ok());
        ASSERT_TRUE(database->Close().ok());
        database.reset();
    }
    // Without a connection, and so without anybody who understands rules.
    void Open() {
        auto pages = OpenPageStore(*files, path, {});
        ASSERT_TRUE(pages.ok());
        auto opened = OpenDatabase(std::move(pages).value(), path.string());
        ASSERT_TRUE(opened.ok());
        database = std::move(opened).value();
    }
    void Connect() {
        connection = std::make_unique<Connection>(*files, Noon);
        ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string()).ok());
    }
    std::string Ask(std::u16string_view sql) { return AnswerIn(*connection, sql); }
    int ErrorOf(std::u16string_view sql) { return connection->Execute(sql).status().number(); }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "rules.mdb";
    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<Database> database;
    std::unique_ptr<Connection> connection;
};

TEST_F(RulesOnDisk, AreReadAgainAndKept) {
    Connect();
    EXPECT_EQ(Ask(u"INSERT INTO Games VALUES ('Abra', 2, 'note')"), "1");
    EXPECT_EQ(Ask(u"INSERT INTO Games VALUES ('Taxi', 2, 'note')"), "#3317: Names begin with A.");
    EXPECT_EQ(ErrorOf(u"INSERT INTO Games VALUES ('Abra', 5, 'a long note')"), 3317);
    EXPECT_EQ(ErrorOf(u"INSERT INTO Games VALUES ('Abra', 4, 'note')"), 3317);
    EXPECT_EQ(ErrorOf(u"UPDATE Games SET Players = 0"), 3317);
    // The table's rule reads a memo that the statement does not touch.
    EXPECT_EQ(ErrorOf(u"UPDATE Games SET Players = 4"), 3317);
    EXPECT_EQ(Ask(u"UPDATE Games SET Players = 3"), "1");
    EXPECT_EQ(Ask(u"SELECT Players FROM Games"), "3|");
}

TEST_F(RulesOnDisk, HoldBelowSqlToo) {
    Connect();
    Database& raw = *connection->database();
    Table& table = **raw.FindTable(u"Games");
    std::vector<Value> row{Value::Text(u"Taxi"), Value::Long(1), Value::Text(u"note")};
    ASSERT_TRUE(raw.Begin().ok());
    EXPECT_EQ(table.Insert(row).status().number(), 3317);
    raw.Rollback();
    row[0] = Value::Text(u"Abra");
    ASSERT_TRUE(raw.Begin().ok());
    const auto inserted = table.Insert(row);
    ASSERT_TRUE(inserted.ok());
    ASSERT_TRUE(raw.Commit().ok());
    ASSERT_TRUE(raw.Begin().ok());
    const ColumnChange change{1, Value::Long(9)};
    EXPECT_EQ(table.Update(*inserted, std::span(&change, 1)).number(), 3317);
    raw.Rollback();
}

TEST_F(RulesOnDisk, OfNobodyWhoUnderstandsThemMakeTheTableReadOnly) {
    Open();
    Table& table = **database->FindTable(u"Games");
    ASSERT_TRUE(table.read_only_reason().has_value());
    std::vector<Value> row{Value::Text(u"Abra"), Value::Long(1), Value::Text(u"note")};
    ASSERT_TRUE(database->Begin().ok());
    EXPECT_EQ(table.Insert(row).status().number(), 3027);
    database->Rollback();
}

TEST_F(RulesOnDisk, ThatAreNotUnderstoodMakeTheTableReadOnlyAndSaySo) {
    TableDesign design = RuledDesign();
    design.name = u"Others";
    design.columns[1].validation_rule = u"Nz([Players]) > 0";
    Make(design);
    Connect();
    const std::string answer = Ask(u"INSERT INTO Others (Name) VALUES ('A')");
    EXPECT_EQ(answer.substr(0, 5), "#3027");
    EXPECT_NE(answer.find("'Nz([Players]) > 0' set for 'Others.Players'"), std::string::npos)
        << answer;
    EXPECT_EQ(Ask(u"SELECT Name FROM Others"), "");
    EXPECT_EQ(Ask(u"INSERT INTO Games VALUES ('Abra', 2, 'note')"), "1");
}

TEST_F(RulesOnDisk, SurviveAChangeOfTheirColumn) {
    Connect();
    EXPECT_EQ(Ask(u"ALTER TABLE Games ALTER COLUMN Name TEXT(80)"), "0");
    EXPECT_EQ(Ask(u"ALTER TABLE Games ALTER COLUMN Players DOUBLE"), "0");
    EXPECT_EQ(Ask(u"ALTER TABLE Games ADD COLUMN Extra LONG"), "0");
    EXPECT_EQ(Ask(u"INSERT INTO Games (Name) VALUES ('Taxi')"), "#3317: Names begin with A.");
    EXPECT_EQ(ErrorOf(u"INSERT INTO Games (Players) VALUES (4.5)"), 3317);
}

TEST_F(RulesOnDisk, KeepTheColumnsThatTheyNeed) {
    Connect();
    EXPECT_EQ(ErrorOf(u"ALTER TABLE Games DROP COLUMN Players"), 3280);
    // The rule of a column goes with it.
    EXPECT_EQ(Ask(u"ALTER TABLE Games DROP COLUMN Name"), "0");
    EXPECT_EQ(Ask(u"INSERT INTO Games VALUES (1, 'note')"), "1");
}

TEST_F(RulesOnDisk, AreSeenByMdbProp) {
    ASSERT_TRUE(HasTool("mdb-prop")) << "mdbtools are not installed";
    const std::string printed =
        OutputOf({"mdb-prop", path.string(), "Games"}).value_or("<mdb-prop failed>");
    EXPECT_NE(printed.find("ValidationRule: Between 1 And 4"), std::string::npos) << printed;
    EXPECT_NE(printed.find("ValidationText: Names begin with A."), std::string::npos) << printed;
}

// Rules as the designers of whole files wrote them.
struct RuledFile {
    std::filesystem::path path;
    std::u16string statement;  // with a "?" for what is set
    std::vector<std::pair<std::u16string, std::string>> answers;
};

std::vector<RuledFile> RuledFiles() {
    std::vector<RuledFile> files;
    for (const char* ours : {"databases/arcade-jet3.mdb", "databases/arcade-jet4.mdb"})
        files.push_back(
            {DataFolder() / ours,
             u"UPDATE Machines SET ? WHERE ID = 4",
             {{u"Players = 0", "#3317: Somebody has to play."},
              {u"Price = -0.01",
               "#3317: One or more values are prohibited by the validation rule '>=0' set for "
               "'Machines.Price'. Enter a value that the expression for this field can accept."},
              {u"Rating = 1, Players = 2, Price = 0", "1"}}});
    if (const auto samples = SampleFolder())
        files.push_back({*samples / "mdb/a97-orders.mdb",
                         u"UPDATE [Order Details] SET ? WHERE OrderID = 10248 AND ProductID = 11",
                         {{u"Quantity = 0", "#3317: Quantity must be greater than 0"},
                          {u"UnitPrice = -0.01", "#3317: You must enter a positive number."},
                          {u"Discount = 1.5", "#3317: You must enter a value with a percent sign."},
                          {u"Discount = 1, Quantity = 1, UnitPrice = 0", "1"}}});
    return files;
}

TEST(RulesOfWholeFiles, HoldAsTheyStandThere) {
    for (const RuledFile& file : RuledFiles()) {
        SCOPED_TRACE(file.path.filename().string());
        auto opened = OpenCopy(file.path);
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        Connection connection(std::move(opened).value(), Noon);
        for (const auto& [what, answer] : file.answers) {
            std::u16string sql = file.statement;
            sql.replace(sql.find(u'?'), 1, what);
            EXPECT_EQ(AnswerIn(connection, sql), answer);
        }
    }
}

}  // namespace
}  // namespace jet::test
