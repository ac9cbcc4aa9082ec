// SQL over whole files: our own and real ones against mdbtools' answers, and a new catalogue from
// the first statement to what other programs read of it.
#include "jet/connection.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include "base/unicode.h"
#include "jet/values/conversions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace jet::test {
namespace {

std::string Shown(const base::Result<Value>& value) {
    if (!value.ok()) return "<error> " + value.status().message();
    return value->is_null() ? "" : base::ToUtf8(ToText(*value));
}

std::string ShownRows(Recordset& rows) {
    std::string text;
    while (!rows.Eof()) {
        for (std::size_t i = 0; i < rows.FieldCount(); ++i)
            text += (i > 0 ? "\t" : "") + Shown(rows.Fields(i));
        text += "\n";
        if (!rows.MoveNext().ok()) break;
    }
    return text;
}

std::string Answer(Connection& connection, std::u16string_view sql) {
    std::int64_t affected = 0;
    auto rows = connection.Execute(sql, &affected);
    if (!rows.ok())
        return "#" + std::to_string(rows.status().number()) + ": " + rows.status().message();
    return rows->is_open() ? ShownRows(*rows) : std::to_string(affected);
}

// What mdb-sql prints for the same question.
std::string AnswerOfMdbSql(const std::filesystem::path& file, const std::string& sql) {
    const TemporaryFolder folder;
    const std::filesystem::path script = folder.path() / "question.sql";
    const std::string text = sql + "\ngo\n";
    WriteWholeFile(script, std::as_bytes(std::span(text)));
    auto output = OutputOf({"mdb-sql", "-HFP", "-i", script.string(), file.string()});
    if (!output) return "<mdb-sql failed>";
    while (!output->empty() && output->front() == '\n')
        output->erase(0, 1);
    return *output;
}

class SqlOverSamples : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(HasTool("mdb-sql")) << "mdbtools are not installed"; }
};

// Neither program promises an order.
std::vector<std::string> SortedLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
}

struct Question {
    std::filesystem::path file;
    const char* sql;
};

std::vector<Question> Questions() {
    const auto ours = DataFolder() / "databases";
    std::vector<Question> questions = {
        {ours / "arcade-jet3.mdb", "select ID, Made from Machines where ID > 30"},
        {ours / "arcade-jet3.mdb", "select ID from Machines where Maker = 'Kugelwerk'"},
        {ours / "arcade-jet3.mdb", "select ID, Name from Machines where Name like 'C%'"},
        {ours / "arcade-jet3.mdb", "select count(*) from Machines"},
        {ours / "arcade-jet4.mdb", "select ID, Maker from Machines where Made < 1970"},
        {ours / "catalogue-jet3.mdb", "select ID, Company from \"Tables\" where Year = '1980'"},
        {ours / "catalogue-jet4.mdb",
         "select ID, DisplayName, Author from \"Tables\" where ID > 30"},
        {ours / "catalogue-jet4.mdb",
         "select ID, FileName from \"Tables\" where Company = 'Kugelwerk' and ID < 30"},
    };
    if (const auto samples = SampleFolder())
        questions.insert(
            questions.end(),
            {{*samples / "mdb/a97-orders.mdb",
              "select OrderID, ShipCity from Orders where OrderID > 11000"},
             {*samples / "mdb/a97-orders.mdb",
              "select OrderID from Orders where ShipCity = 'London'"},
             {*samples / "mdb/a97-orders.mdb",
              "select OrderID, ShipName from Orders where ShipRegion = 'RJ'"},
             {*samples / "mdb/a97-orders.mdb",
              "select ProductID, ProductName from Products where ProductName like 'C%'"},
             {*samples / "mdb/a97-orders.mdb", "select count(*) from Orders"},
             {*samples / "catalogue/old-full-1000.mdb",
              "select ID, DisplayName, Author from \"Tables\" where ID > 990"},
             {*samples / "catalogue/old-full-1000.mdb",
              "select ID, FileName from \"Tables\" where Author = 'Pacdude' and ID < 300"},
             {*samples / "catalogue/old-base-250.mdb",
              "select ID, Company from \"Tables\" where Year = '1980'"}});
    return questions;
}

TEST_F(SqlOverSamples, AnswersAsMdbSqlDoes) {
    for (const auto& [path, question] : Questions()) {
        SCOPED_TRACE(question);
        auto database = OpenCopy(path);
        ASSERT_TRUE(database.ok()) << database.status().message();
        Connection connection(std::move(database).value(), Noon);
        std::string sql = question;
        for (std::size_t at; (at = sql.find('"')) != std::string::npos;)
            sql.erase(at, 1);
        const std::string expected = AnswerOfMdbSql(path, question);
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(SortedLines(Answer(connection, base::ToUtf16(sql))), SortedLines(expected));
    }
}

class SqlOverOldCatalogue : public testing::TestWithParam<std::filesystem::path> {
protected:
    void SetUp() override {
        auto database = OpenCopy(GetParam());
        ASSERT_TRUE(database.ok()) << database.status().message();
        connection_.emplace(std::move(database).value(), Noon);
    }
    std::string Ask(std::u16string_view sql) { return Answer(*connection_, sql); }

    std::optional<Connection> connection_;
};

TEST_P(SqlOverOldCatalogue, OrdersByAnIndexAsByItsValues) {
    // An expression cannot be ordered by the index on the column.
    EXPECT_EQ(Ask(u"Select DisplayName from Tables Order By DisplayName"),
              Ask(u"Select DisplayName from Tables Order By IIf(True, DisplayName, 0)"));
    EXPECT_EQ(Ask(u"Select Author, Year from Tables Order By Author Desc, Year Desc"),
              Ask(u"Select Author, Year from Tables Order By IIf(True, Author, 0) "
                  u"Desc, IIf(True, Year, 0) Desc"));
}

TEST_P(SqlOverOldCatalogue, FindsThroughAnIndexWhatAScanFinds) {
    // A name and an author that the catalogue holds.
    const std::u16string name =
        base::ToUtf16(Ask(u"Select Top 1 LCase(DisplayName) from Tables where ID > 20 And "
                          u"InStr(DisplayName, Chr(39)) = 0 order by ID"));
    const std::u16string author = base::ToUtf16(
        Ask(u"Select Top 1 Author from Tables where Year > '1985' And Author > '' And "
            u"InStr(Author, Chr(39)) = 0 order by ID"));
    const auto quoted = [](const std::u16string& line) {
        return u"'" + line.substr(0, line.size() - 1) + u"'";
    };
    const std::pair<std::u16string, std::u16string> pairs[] = {
        {u"Select ID from Tables where DisplayName = " + quoted(name) + u" order by ID",
         u"Select ID from Tables where DisplayName & '' = " + quoted(name) + u" order by ID"},
        {u"Select ID from Tables where Author = " + quoted(author) +
             u" and Year > '1985' order by ID",
         u"Select ID from Tables where Author & '' = " + quoted(author) +
             u" and Year & '' > '1985' order by ID"},
        {u"Select ID from Tables where ID between 10 and 20.5",
         u"Select ID from Tables where ID + 0 between 10 and 20.5"},
        {u"Select ID from Tables where Author > 'o' order by ID",
         u"Select ID from Tables where Author & '' > 'o' order by ID"},
    };
    for (const auto& [indexed, scanned] : pairs) {
        const std::string answer = Ask(indexed);
        EXPECT_FALSE(answer.empty() || answer.starts_with("#")) << base::ToUtf8(indexed) << answer;
        EXPECT_EQ(answer, Ask(scanned)) << base::ToUtf8(indexed);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, SqlOverOldCatalogue,
                         testing::ValuesIn(test_support::OldCatalogues()), NameOfFile);

// A catalogue in a file of its own, opened through a connection string.
class SqlOnDisk : public testing::Test {
protected:
    void SetUp() override {
        const auto made = CreateDatabaseFile(*files, path, Noon());
        ASSERT_TRUE(made.ok()) << made.message();
        Reopen();
        ASSERT_EQ(
            Ask(u"CREATE TABLE Tables (ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, DisplayName "
                u"TEXT(255) WITH COMPRESSION, FileName TEXT(255), Author TEXT(100), Notes MEMO, "
                u"PinMame YESNO)"),
            "0");
    }

    void Reopen() {
        connection = std::make_unique<Connection>(*files, Noon);
        const auto opened =
            connection->Open(u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path.u16string());
        ASSERT_TRUE(opened.ok()) << opened.message();
    }
    std::string Ask(std::u16string_view sql) { return Answer(*connection, sql); }

    // After the connection is closed.
    std::string Exported() {
        EXPECT_TRUE(connection->Close().ok());
        return OutputOf({"mdb-export", "-H", "-T", "%Y-%m-%d %H:%M:%S", path.string(), "Tables"})
            .value_or("<mdb-export failed>");
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "pinball.mdb";
    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<Connection> connection;
};

TEST_F(SqlOnDisk, WhatIsWrittenIsReadByMdbExport) {
    ASSERT_TRUE(HasTool("mdb-export")) << "mdbtools are not installed";
    EXPECT_EQ(Ask(u"Alter Table TABLES ADD TimesPlayed INT DEFAULT 0 NULL"), "0");
    EXPECT_EQ(Ask(u"Alter Table TABLES ADD LastPlayed DATE NULL"), "0");
    EXPECT_EQ(
        Ask(u"INSERT INTO TABLES (DisplayName, FileName, PinMame) Values ('It''s', 'a.vpt', True)"),
        "1");
    EXPECT_EQ(Ask(u"INSERT INTO TABLES (DisplayName, Notes) Values ('two', 'n')"), "1");
    EXPECT_EQ(Ask(u"SELECT @@IDENTITY"), "2\n");
    EXPECT_EQ(Ask(u"UPDATE Tables SET Tables.TimesPlayed = [Tables]![TimesPlayed]+1, "
                  u"Tables.LastPlayed = Format(Now(),'mm/dd/yyyy hh:nn:ss') WHERE Tables.ID = 1"),
              "1");
    EXPECT_EQ(Exported(), "1,\"It's\",\"a.vpt\",,,1,1,\"2026-11-20 12:00:00\"\n"
                          "2,\"two\",,,\"n\",0,0,\n");
}

TEST_F(SqlOnDisk, EverythingIsThereAfterOpeningAgain) {
    for (int i = 1; i <= 500; ++i) {
        const std::string number = std::to_string(i);
        const std::u16string text(number.begin(), number.end());
        ASSERT_EQ(Ask(u"INSERT INTO Tables (DisplayName, Notes) VALUES ('Table " + text +
                      u"', String(" + text + u", 'x'))"),
                  "1");
    }
    EXPECT_EQ(Ask(u"CREATE INDEX ByName ON Tables (DisplayName)"), "0");
    EXPECT_EQ(Ask(u"DELETE FROM Tables WHERE ID Mod 2 = 0"), "250");
    EXPECT_EQ(Ask(u"UPDATE Tables SET Notes = Notes & Space(3000) & 'end' WHERE ID = 499"), "1");
    ASSERT_TRUE(connection->Close().ok());
    Reopen();
    EXPECT_EQ(Ask(u"SELECT Count(*), Min(ID), Max(ID) FROM Tables"), "250\t1\t499\n");
    EXPECT_EQ(Ask(u"SELECT ID FROM Tables WHERE DisplayName = 'table 333'"), "333\n");
    EXPECT_EQ(Ask(u"SELECT Len(Notes) FROM Tables WHERE ID = 499"), "3502\n");
    EXPECT_EQ(Ask(u"SELECT TOP 2 DisplayName FROM Tables ORDER BY DisplayName DESC"),
              "Table 99\nTable 97\n");
}

TEST_F(SqlOnDisk, AFailedStatementLeavesNoTrace) {
    Ask(u"CREATE UNIQUE INDEX ByName ON Tables (DisplayName)");
    for (const std::u16string_view name : {u"a", u"b", u"c"})
        Ask(u"INSERT INTO Tables (DisplayName) VALUES ('" + std::u16string(name) + u"')");
    EXPECT_EQ(
        Ask(u"UPDATE Tables SET DisplayName = IIf(ID = 3, 'A2', DisplayName & '2'), FileName = "
            u"'x'")
            .substr(0, 5),
        "#3022");
    EXPECT_EQ(Ask(u"SELECT DisplayName, FileName FROM Tables"), "a\t\nb\t\nc\t\n");
}

TEST_F(SqlOnDisk, RecordsetEditsAreStored) {
    for (const std::u16string_view name : {u"b", u"a"})
        Ask(u"INSERT INTO Tables (DisplayName, FileName) VALUES ('" + std::u16string(name) +
            u"', 'f')");
    Recordset rows;
    ASSERT_TRUE(rows.Open(u"select * From Tables order by displayname", *connection,
                          CursorType::kKeyset, LockType::kOptimistic)
                    .ok());
    ASSERT_TRUE(rows.SetField(u"Author", Value::Text(u"first")).ok());
    ASSERT_TRUE(rows.SetField(u"Notes", Value::Text(std::u16string(10000, u'n'))).ok());
    ASSERT_TRUE(rows.Update().ok());
    ASSERT_TRUE(rows.MoveNext().ok());
    ASSERT_TRUE(rows.Delete().ok());
    rows.Close();
    ASSERT_TRUE(connection->Close().ok());
    Reopen();
    EXPECT_EQ(Ask(u"SELECT ID, DisplayName, FileName, Author, Len(Notes) FROM Tables"),
              "2\ta\tf\tfirst\t10000\n");
}

TEST_F(SqlOnDisk, ATableMadeOfRowsIsReadByMdbExport) {
    ASSERT_TRUE(HasTool("mdb-export")) << "mdbtools are not installed";
    for (const std::u16string_view name : {u"b", u"a", u"c"})
        Ask(u"INSERT INTO Tables (DisplayName, Notes) VALUES ('" + std::u16string(name) +
            u"', String(3000, 'n'))");
    EXPECT_EQ(
        Ask(u"SELECT ID, DisplayName, Left(Notes, 3) AS Begin INTO Made FROM Tables WHERE ID IN "
            u"(SELECT ID + 1 FROM Tables)"),
        "2");
    // A failure leaves no table.
    EXPECT_EQ(Ask(u"SELECT ID, 1/(ID - 2) AS X INTO Failed FROM Tables").substr(0, 3), "#11");
    EXPECT_EQ(Ask(u"SELECT * FROM Failed").substr(0, 5), "#3078");
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_EQ(OutputOf({"mdb-export", "-H", path.string(), "Made"}).value_or("<mdb-export failed>"),
              "2,\"a\",\"nnn\"\n3,\"c\",\"nnn\"\n");
}

TEST_F(SqlOnDisk, ChangesOverJoinsAreStored) {
    for (const std::u16string_view name : {u"b", u"a", u"c", u"d"})
        Ask(u"INSERT INTO Tables (DisplayName) VALUES ('" + std::u16string(name) + u"')");
    Ask(u"CREATE TABLE Authors (TableID LONG, Author TEXT(50))");
    for (const std::u16string_view row : {u"1, 'Ann'", u"3, 'Bob'", u"3, 'Bill'"})
        Ask(u"INSERT INTO Authors VALUES (" + std::u16string(row) + u")");
    EXPECT_EQ(
        Ask(u"UPDATE Tables INNER JOIN Authors ON Tables.ID = Authors.TableID SET Tables.Author = "
            u"Authors.Author"),
        "3");
    EXPECT_EQ(
        Ask(u"DELETE Tables.* FROM Tables LEFT JOIN Authors ON Tables.ID = Authors.TableID WHERE "
            u"Authors.TableID Is Null"),
        "2");
    EXPECT_EQ(
        Ask(u"DELETE FROM Authors WHERE NOT EXISTS (SELECT * FROM Tables WHERE ID = TableID And "
            u"Author <> Authors.Author)"),
        "2");
    ASSERT_TRUE(connection->Close().ok());
    Reopen();
    EXPECT_EQ(Ask(u"SELECT ID, Author FROM Tables"), "1\tAnn\n3\tBill\n");
    EXPECT_EQ(Ask(u"SELECT Author FROM Authors"), "Bob\n");
}

TEST_F(SqlOnDisk, AFileThatCannotBeWrittenIsOpenedForReading) {
    Ask(u"INSERT INTO Tables (DisplayName) VALUES ('a')");
    ASSERT_TRUE(connection->Close().ok());
    connection = std::make_unique<Connection>(*files, Noon);
    ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string() + u";Mode=Read").ok());
    EXPECT_EQ(Ask(u"SELECT DisplayName FROM Tables"), "a\n");
    EXPECT_EQ(Ask(u"DELETE FROM Tables").substr(0, 5), "#3073");
    EXPECT_EQ(Ask(u"DROP TABLE Tables").substr(0, 5), "#3027");
}

TEST_F(SqlOnDisk, AMissingFileSaysItsName) {
    Connection other(*files, Noon);
    const auto missing = other.Open(u"Data Source=" + (folder.path() / "no.mdb").u16string());
    EXPECT_EQ(missing.number(), 3024);
    EXPECT_NE(missing.message().find("no.mdb"), std::string::npos);
    EXPECT_FALSE(other.is_open());
    EXPECT_EQ(connection->Open(u"Data Source=" + path.u16string()).number(), 3705);
}

}  // namespace
}  // namespace jet::test
