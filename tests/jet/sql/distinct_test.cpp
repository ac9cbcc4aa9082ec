// DISTINCT over a file, where rows are told apart by their stored bytes first.
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

namespace jet::test {
namespace {

class Distinct : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files, path, 45000).ok());
        connection = std::make_unique<Connection>(*files);
        ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string()).ok());
        Run(u"CREATE TABLE T (Id COUNTER PRIMARY KEY, Name TEXT(255) WITH COMPRESSION, Amount "
            u"DOUBLE, Seen YESNO, Notes MEMO)");
    }

    void Run(const std::u16string& sql) {
        const auto done = connection->Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    void Insert(const std::u16string& name, const std::u16string& amount = u"Null",
                const std::u16string& seen = u"False", const std::u16string& notes = u"Null") {
        Run(u"INSERT INTO T (Name, Amount, Seen, Notes) VALUES (" + name + u", " + amount + u", " +
            seen + u", " + notes + u")");
    }
    // Commas between fields, bars between rows.
    std::string All(std::u16string_view sql) {
        Recordset rows;
        const auto opened = rows.Open(sql, *connection, CursorType::kKeyset);
        if (!opened.ok()) return opened.message();
        std::string text;
        for (; !rows.Eof(); rows.MoveNext().Ignore()) {
            text += text.empty() ? "" : "|";
            for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
                const auto value = rows.Fields(i);
                EXPECT_TRUE(value.ok()) << value.status().message();
                text += (i > 0 ? "," : "") +
                        (value->is_null() ? "<null>" : base::ToUtf8(ToText(*value)));
            }
        }
        return text;
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "distinct.mdb";
    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<Connection> connection;
};

// The same value in other bytes: letter case, blanks behind, a wide spelling, minus zero.
TEST_F(Distinct, RowsOfOtherBytesAreOneWhereTheirValuesAreEqual) {
    for (const auto* name : {u"'alpha'", u"'ALPHA'", u"'alpha'", u"'alpha '", u"'Beta'", u"Null",
                             u"Null", u"'beta'", u"''"})
        Insert(name);
    EXPECT_EQ(All(u"SELECT DISTINCT Name FROM T"), "<null>||alpha|Beta");
    Run(u"DELETE FROM T");
    Insert(u"'n'", u"0");
    Insert(u"'n'", u"-0.0");
    Insert(u"'n'", u"1");
    Insert(u"'n'", u"Null");
    EXPECT_EQ(All(u"SELECT DISTINCT Name, Amount FROM T"), "n,<null>|n,0|n,1");
}

TEST_F(Distinct, TakesEveryColumnIntoAccount) {
    Insert(u"'a'", u"1", u"True", u"'long'");
    Insert(u"'a'", u"1", u"False", u"'long'");
    Insert(u"'a'", u"1", u"True", u"'longer'");
    Insert(u"'a'", u"1", u"True", u"'long'");
    EXPECT_EQ(All(u"SELECT DISTINCT Name, Amount FROM T"), "a,1");
    EXPECT_EQ(All(u"SELECT DISTINCT Seen, Name FROM T"), "True,a|False,a");
    EXPECT_EQ(All(u"SELECT DISTINCT Name, Notes FROM T"), "a,long|a,longer");
    EXPECT_EQ(All(u"SELECT DISTINCT Name, Name FROM T WHERE Id < 3"), "a,a");
    EXPECT_EQ(All(u"SELECT DISTINCT Name FROM T WHERE Id > 9"), "");
}

// A field's bytes must not run into those of the next one.
TEST_F(Distinct, FieldsKeepApart) {
    Insert(u"'ab'", u"Null", u"False", u"'c'");
    Insert(u"'a'", u"Null", u"False", u"'bc'");
    Insert(u"Null", u"Null", u"False", u"'abc'");
    Insert(u"''", u"Null", u"False", u"'abc'");
    EXPECT_EQ(All(u"SELECT DISTINCT Name, Notes FROM T"), "<null>,abc|,abc|a,bc|ab,c");
}

TEST_F(Distinct, AConditionAndAnOrderDecideAsWithoutIt) {
    for (const auto* name : {u"'b'", u"'c'", u"'a'", u"'B'", u"'d'", u"'a'"})
        Insert(name, u"2");
    EXPECT_EQ(
        All(u"SELECT DISTINCT Name FROM T WHERE Amount = 2 AND Name < 'd' ORDER BY Name DESC"),
        "c|b|a");
    EXPECT_EQ(All(u"SELECT DISTINCT TOP 2 Name FROM T ORDER BY Name"), "a|b");
    EXPECT_EQ(All(u"SELECT DISTINCT Name & '!' FROM T WHERE Id > 4"), "a!|d!");
    EXPECT_EQ(All(u"SELECT Id FROM T AS o WHERE Name IN (SELECT DISTINCT Name FROM T WHERE Id = "
                  u"o.Id + 3)"),
              "1|3");
}

// Where most rows are others it is no use to remember their bytes.
TEST_F(Distinct, ManyDifferentRowsAreAllThere) {
    ASSERT_TRUE(connection->database()->Begin().ok());
    Table& table = **connection->database()->FindTable(u"T");
    for (int i = 0; i < 6000; ++i) {
        std::vector<Value> row(5);
        row[1] = Value::Text(base::ToUtf16((i % 2 == 0 ? "name " : "NAME ") +
                                           std::to_string(i < 3000 ? i : i / 4 * 4)));
        row[3] = Value::Boolean(false);
        ASSERT_TRUE(table.Insert(row).ok());
    }
    ASSERT_TRUE(connection->database()->Commit().ok());
    Recordset rows;
    ASSERT_TRUE(rows.Open(u"SELECT DISTINCT Name FROM T", *connection, CursorType::kKeyset).ok());
    EXPECT_EQ(rows.RecordCount(), 3000 + 3000 / 4);
    std::set<std::u16string> names;
    while (!rows.Eof()) {
        names.insert(ToText(*rows.Fields(0)).substr(5));
        ASSERT_TRUE(rows.MoveNext().ok());
    }
    EXPECT_EQ(names.size(), 3750u);
}

}  // namespace
}  // namespace jet::test
