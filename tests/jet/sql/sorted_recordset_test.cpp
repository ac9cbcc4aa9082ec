// Recordsets that are sorted without an index, over a file: what they show when rows change after
// the sorting, and the order itself.
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

#include <memory>

namespace jet::test {
namespace {

class SortedRecordset : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files, path, 45000).ok());
        connection = std::make_unique<Connection>(*files);
        ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string()).ok());
        Run(u"CREATE TABLE T (Id COUNTER, Name TEXT(255) WITH COMPRESSION, Made DATE, Price "
            u"CURRENCY, Seen YESNO, Notes MEMO)");
    }

    void Run(std::u16string_view sql) {
        const auto done = connection->Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    void Insert(std::u16string_view name) {
        Run(u"INSERT INTO T (Name) VALUES ('" + std::u16string(name) + u"')");
    }
    Recordset Open(std::u16string_view sql, CursorType cursor = CursorType::kKeyset) {
        Recordset rows;
        const auto opened = rows.Open(sql, *connection, cursor, LockType::kOptimistic);
        EXPECT_TRUE(opened.ok()) << opened.message();
        return rows;
    }
    static std::string Field(Recordset& rows, std::size_t field) {
        const auto value = rows.Fields(field);
        if (!value.ok()) return "#" + std::to_string(value.status().number());
        return value->is_null() ? "<null>" : base::ToUtf8(ToText(*value));
    }
    // Commas between fields, bars between rows.
    static std::string Rest(Recordset& rows) {
        std::string text;
        while (!rows.Eof()) {
            text += text.empty() ? "" : "|";
            for (std::size_t i = 0; i < rows.FieldCount(); ++i)
                text += (i > 0 ? "," : "") + Field(rows, i);
            EXPECT_TRUE(rows.MoveNext().ok());
        }
        return text;
    }
    std::string All(std::u16string_view sql) {
        Recordset rows = Open(sql);
        return Rest(rows);
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "sorted.mdb";
    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<Connection> connection;
};

TEST_F(SortedRecordset, AKeysetShowsWhatAStatementChangedAfterTheSorting) {
    for (const auto* name : {u"b", u"c", u"a"})
        Insert(name);
    Recordset rows = Open(u"SELECT Name, Id FROM T ORDER BY Name");
    EXPECT_EQ(Field(rows, 0), "a");
    Run(u"UPDATE T SET Name = 'changed' WHERE Name = 'b'");
    EXPECT_EQ(Field(rows, 0), "a");
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(Field(rows, 0), "changed");
    Run(u"DELETE FROM T WHERE Name = 'c'");
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(Field(rows, 0), "#3167");
}

TEST_F(SortedRecordset, AKeysetShowsWhatAnotherRecordsetChanged) {
    for (const auto* name : {u"b", u"a"})
        Insert(name);
    Recordset rows = Open(u"SELECT Name FROM T ORDER BY Name");
    Recordset other = Open(u"SELECT Name FROM T ORDER BY Name DESC");
    ASSERT_TRUE(other.SetField(u"Name", Value::Text(u"z")).ok());
    ASSERT_TRUE(other.Update().ok());
    EXPECT_EQ(Rest(rows), "a|z");
}

TEST_F(SortedRecordset, AKeysetShowsWhatWasChangedBelowSql) {
    for (const auto* name : {u"b", u"a"})
        Insert(name);
    Recordset rows = Open(u"SELECT Name FROM T ORDER BY Name");
    Database& database = *connection->database();
    Table& table = **database.FindTable(u"T");
    const auto cursor = table.Scan();
    ASSERT_TRUE(cursor.ok());
    const auto first = (*cursor)->Next();
    ASSERT_TRUE(first.ok() && first->has_value());
    const ColumnChange change{1, Value::Text(u"B2")};
    ASSERT_TRUE(database.Begin().ok());
    ASSERT_TRUE(table.Update(**first, std::span(&change, 1)).ok());
    EXPECT_EQ(Field(rows, 0), "a");
    ASSERT_TRUE(database.Commit().ok());
    EXPECT_EQ(Rest(rows), "a|B2");
}

TEST_F(SortedRecordset, EditsOfItsOwnAreShownAndWritten) {
    for (const auto* name : {u"b", u"a"})
        Insert(name);
    Recordset rows = Open(u"SELECT Name FROM T ORDER BY Name");
    ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"x")).ok());
    EXPECT_EQ(Field(rows, 0), "x");
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(Field(rows, 0), "b");
    ASSERT_TRUE(rows.Delete().ok());
    EXPECT_EQ(Field(rows, 0), "#3167");
    EXPECT_EQ(All(u"SELECT Name FROM T ORDER BY Name"), "x");
}

TEST_F(SortedRecordset, SurvivesAChangeOfTheDesign) {
    for (const auto* name : {u"b", u"a"})
        Insert(name);
    Recordset rows = Open(u"SELECT Name FROM T ORDER BY Name");
    Run(u"ALTER TABLE T ADD COLUMN Extra TEXT(10)");
    EXPECT_EQ(Rest(rows), "a|b");
}

TEST_F(SortedRecordset, HoldsValuesOfEveryKind) {
    Run(u"INSERT INTO T (Name, Made, Price, Seen, Notes) VALUES ('b', #1/2/1999#, 1.5, True, "
        u"'short')");
    Run(u"INSERT INTO T (Name, Notes) VALUES ('a', String(5000, 'n'))");
    EXPECT_EQ(All(u"SELECT Made, Price, Seen, Len(Notes) FROM T ORDER BY Name"),
              "<null>,<null>,False,5000|1/2/1999,1.5,True,5");
    EXPECT_EQ(All(u"SELECT Notes, Seen, Made, Price, Id FROM T WHERE Name = 'B' ORDER BY Name"),
              "short,True,1/2/1999,1.5,1");
    Recordset rows = Open(u"SELECT Notes FROM T ORDER BY Name");
    EXPECT_EQ(Field(rows, 0), std::string(5000, 'n'));
}

TEST_F(SortedRecordset, AStaticOneKeepsWhatItSorted) {
    for (const auto* name : {u"b", u"a"})
        Insert(name);
    Recordset rows = Open(u"SELECT Name, Seen FROM T ORDER BY Name", CursorType::kStatic);
    Run(u"UPDATE T SET Name = 'z'");
    EXPECT_EQ(Rest(rows), "a,False|b,False");
}

TEST_F(SortedRecordset, TextsDescendWithAccentsAndMarks) {
    for (const auto* name : {u"cote", u"cot\u00e9", u"c\u00f4te", u"coat", u"co-at", u"COTE", u"",
                             u"c\u00f4t\u00e9", u"cote and more"})
        Insert(name);
    Insert(u"nothing");
    Run(u"UPDATE T SET Name = Null WHERE Name = 'nothing'");
    EXPECT_EQ(All(u"SELECT Name FROM T ORDER BY Name DESC, Id"),
              "cote and more|c\u00f4t\u00e9|c\u00f4te|cot\u00e9|cote|COTE|co-at|coat||<null>");
    EXPECT_EQ(All(u"SELECT Name FROM T ORDER BY Name, Id DESC"),
              "<null>||coat|co-at|COTE|cote|cot\u00e9|c\u00f4te|c\u00f4t\u00e9|cote and more");
}

// An expression is sorted by its values, a column by what is stored where that is enough.
TEST_F(SortedRecordset, TextsSortAsTheirValuesHoweverTheyAreStored) {
    Run(u"ALTER TABLE T ADD COLUMN Wide TEXT(100)");
    for (const auto* name : {u"Lodz", u"\u0141\u00f3d\u017a", u"lod", u"\u65e5\u672c", u"z", u"Zz",
                             u"a b", u"ab", u"\u00dfa", u"ssb", u"no-one", u"noone"})
        Insert(name);
    Run(u"UPDATE T SET Wide = Name");
    for (const std::u16string column : {u"Name", u"Wide"})
        for (const std::u16string direction : {u"", u" DESC"})
            EXPECT_EQ(All(u"SELECT Id FROM T ORDER BY " + column + direction),
                      All(u"SELECT Id FROM T ORDER BY IIf(True, " + column + u", 0)" + direction));
    EXPECT_EQ(All(u"SELECT Id FROM T WHERE Wide > 'lodz'"),
              All(u"SELECT Id FROM T WHERE Name > 'lodz'"));
}

TEST_F(SortedRecordset, EqualRowsStayInTheOrderInWhichTheyAreStored) {
    std::string expected;
    for (int i = 1; i <= 600; ++i) {
        Insert(i % 2 == 0 ? u"the same name" : u"THE SAME NAME  ");
        expected += (i > 1 ? "|" : "") + std::to_string(i);
    }
    EXPECT_EQ(All(u"SELECT Id FROM T ORDER BY Name"), expected);
    EXPECT_EQ(All(u"SELECT Id FROM T ORDER BY Name DESC, Made"), expected);
}

TEST_F(SortedRecordset, TopBringsTheTiesOfTheLastRow) {
    for (const auto* name : {u"a", u"b", u"B", u"c"})
        Insert(name);
    EXPECT_EQ(All(u"SELECT TOP 2 Name FROM T ORDER BY Name"), "a|b|B");
    EXPECT_EQ(All(u"SELECT TOP 0 Name FROM T ORDER BY Name"), "");
    EXPECT_EQ(All(u"SELECT TOP 50 PERCENT Name FROM T ORDER BY Name DESC"), "c|b|B");
}

TEST_F(SortedRecordset, ConditionsOnTextsAgreeWithTheirLongerForm) {
    for (const auto* name : {u"Company 2", u"company 10", u"Company 3 ", u"", u"co-op", u"coop",
                             u"Comp\u00e1ny 5", u"Comp"})
        Insert(name);
    Run(u"UPDATE T SET Name = Null WHERE Id = 8");
    for (const std::u16string op : {u"=", u"<>", u"<", u"<=", u">", u">="})
        for (const std::u16string constant :
             {u"'Company 2'", u"'COMPANY 3'", u"'coop'", u"''", u"'co-op'", u"'comp\u00e1ny 5'"}) {
            const std::u16string plain = u"SELECT Id FROM T WHERE ";
            const std::string expected = All(plain + u"IIf(True, Name, 0) " + op + u" " + constant);
            EXPECT_EQ(All(plain + u"Name " + op + u" " + constant), expected)
                << base::ToUtf8(op + constant);
            EXPECT_EQ(All(plain + u"Name " + op + u" " + constant + u" AND Id > 0"), expected);
        }
    EXPECT_EQ(All(u"SELECT Id FROM T WHERE 'coop' <= Name AND Name < 'Company 2'"), "");
    EXPECT_EQ(All(u"SELECT Id FROM T WHERE 'Company 10' = Name AND Name < 'Company 2'"), "2");
}

}  // namespace
}  // namespace jet::test
