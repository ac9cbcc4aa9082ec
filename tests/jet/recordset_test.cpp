#include "jet/recordset.h"

#include "jet/connection_string.h"
#include "jet/sql/sql_fixture.h"

namespace {

using jet::CursorType;
using jet::LockType;
using jet::Recordset;
using jet::Value;
using test_support::Shown;
using test_support::ShownRows;
using test_support::SqlFixture;

class RecordsetTest : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE T (Id COUNTER PRIMARY KEY, Name TEXT(20), Played LONG)");
        for (const std::u16string_view name : {u"b", u"a", u"c"})
            Run(u"INSERT INTO T (Name, Played) VALUES ('" + std::u16string(name) + u"', 1)");
    }

    Recordset Open(std::u16string_view sql, CursorType cursor = CursorType::kKeyset,
                   LockType lock = LockType::kOptimistic) {
        Recordset rows;
        const auto opened = rows.Open(sql, *connection, cursor, lock);
        EXPECT_TRUE(opened.ok()) << opened.message();
        return rows;
    }
};

class AnyCursor : public RecordsetTest, public testing::WithParamInterface<CursorType> {};

TEST_P(AnyCursor, WalksFromTheFirstRowToTheEnd) {
    Recordset rows = Open(u"SELECT Name FROM T ORDER BY Name", GetParam());
    EXPECT_FALSE(rows.Bof() || rows.Eof());
    EXPECT_EQ(ShownRows(rows), "a|b|c");
    EXPECT_TRUE(rows.Eof());
    EXPECT_EQ(rows.MoveNext().number(), 3021);
    EXPECT_TRUE(rows.MoveFirst().ok());
    EXPECT_EQ(ShownRows(rows), "a|b|c");
}

TEST_P(AnyCursor, WalksATableInItsOrder) {
    Recordset rows = Open(u"SELECT Name FROM T", GetParam());
    EXPECT_EQ(ShownRows(rows), "b|a|c");
    EXPECT_TRUE(rows.MoveFirst().ok());
    EXPECT_TRUE(rows.MoveLast().ok());
    EXPECT_EQ(Shown(*rows.Fields(u"name")), "c");
    EXPECT_TRUE(rows.MoveNext().ok());
    EXPECT_TRUE(rows.Eof());
}

TEST_P(AnyCursor, AnOutputThatFailsLeavesTheOthers) {
    Run(u"UPDATE T SET Played = 0 WHERE Name = 'a'");
    Recordset rows = Open(u"SELECT Name, 6 / Played, Id FROM T ORDER BY Id", GetParam());
    EXPECT_EQ(ShownRows(rows), "b,6,1|a,<error> Division by zero,2|c,6,3");
    EXPECT_TRUE(rows.MoveFirst().ok());
    EXPECT_EQ(ShownRows(rows), "b,6,1|a,<error> Division by zero,2|c,6,3");
}

TEST_P(AnyCursor, AnOutputOfAJoinThatFailsLeavesTheOthers) {
    Run(u"UPDATE T SET Played = 0 WHERE Name = 'a'");
    Recordset rows = Open(u"SELECT T.Name, 6 / U.Played FROM T INNER JOIN T AS U ON T.Id = U.Id "
                          u"ORDER BY T.Name DESC",
                          GetParam());
    EXPECT_EQ(ShownRows(rows), "c,6|b,6|a,<error> Division by zero");
}

TEST_P(AnyCursor, WithoutRowsIsAtBothEnds) {
    Recordset rows = Open(u"SELECT * FROM T WHERE Id = 99", GetParam());
    EXPECT_TRUE(rows.Bof() && rows.Eof());
    EXPECT_EQ(rows.MoveFirst().number(), 3021);
    EXPECT_EQ(rows.MoveNext().number(), 3021);
    EXPECT_EQ(rows.Fields(u"Name").status().number(), 3021);
    EXPECT_EQ(rows.SetField(u"Name", Value::Text(u"x")).number(), 3021);
}

TEST_P(AnyCursor, WritesOnlyTheFieldsThatAreSet) {
    Recordset rows = Open(u"SELECT * FROM T", GetParam());
    ASSERT_TRUE(rows.MoveNext().ok());
    ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"new")).ok());
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "new");
    Run(u"UPDATE T SET Played = 5");
    EXPECT_TRUE(rows.Update().ok());
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "new");
    EXPECT_EQ(Run(u"SELECT Name, Played FROM T"), "b,5|new,5|c,5");
}

TEST_P(AnyCursor, DeletesTheCurrentRow) {
    Recordset rows = Open(u"SELECT * FROM T", GetParam());
    ASSERT_TRUE(rows.Delete().ok());
    EXPECT_EQ(rows.Delete().number(), 3167);
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "a");
    EXPECT_EQ(Run(u"SELECT Id FROM T"), "2|3");
}

INSTANTIATE_TEST_SUITE_P(Cursors, AnyCursor,
                         testing::Values(CursorType::kForwardOnly, CursorType::kKeyset,
                                         CursorType::kDynamic, CursorType::kStatic));

TEST_F(RecordsetTest, OutputsThatAreComparedOrStoredMustNotFail) {
    Run(u"UPDATE T SET Played = 0 WHERE Name = 'a'");
    EXPECT_EQ(ErrorOf(u"SELECT DISTINCT 6 / Played FROM T"), 11);
    EXPECT_EQ(ErrorOf(u"SELECT 6 / Played FROM T UNION SELECT 1"), 11);
    EXPECT_EQ(ErrorOf(u"SELECT Name FROM T ORDER BY 6 / Played"), 11);
    EXPECT_EQ(ErrorOf(u"INSERT INTO T (Played) SELECT 6 / Played FROM T"), 11);
    EXPECT_EQ(ErrorOf(u"SELECT Name FROM T WHERE 3 In (SELECT 6 / Played FROM T)"), 11);
}

TEST_F(RecordsetTest, AKeysetKnowsItsCountAndGoesAnywhere) {
    Recordset rows = Open(u"SELECT * FROM T ORDER BY Name DESC");
    EXPECT_EQ(rows.RecordCount(), 3);
    EXPECT_TRUE(rows.MoveTo(2).ok());
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "a");
    EXPECT_TRUE(rows.MovePrevious().ok());
    EXPECT_EQ(Shown(*rows.Fields(1)), "b");
    EXPECT_EQ(rows.MoveTo(3).number(), 3021);
    EXPECT_TRUE(rows.MoveFirst().ok());
    EXPECT_TRUE(rows.MovePrevious().ok());
    EXPECT_TRUE(rows.Bof());
    EXPECT_EQ(rows.MovePrevious().number(), 3021);
    EXPECT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "c");
}

TEST_F(RecordsetTest, AForwardOnlyOneDoesNot) {
    Recordset rows = Open(u"SELECT * FROM T", CursorType::kForwardOnly);
    EXPECT_EQ(rows.RecordCount(), -1);
    EXPECT_EQ(rows.MovePrevious().number(), 3219);
    EXPECT_EQ(rows.MoveTo(1).number(), 3219);
}

TEST_F(RecordsetTest, AKeysetShowsWhatIsStoredNowAndKeepsItsRows) {
    Recordset rows = Open(u"SELECT * FROM T ORDER BY Name");
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "a");
    Run(u"UPDATE T SET Name = 'z' WHERE Name = 'a'");
    Run(u"INSERT INTO T (Name) VALUES ('aa')");
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "z");
    EXPECT_EQ(rows.RecordCount(), 3);
    Run(u"DELETE FROM T WHERE Name = 'b'");
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(rows.Fields(u"Name").status().number(), 3167);
}

TEST_F(RecordsetTest, AKeysetAsksItsSubqueriesAnewAfterAnEdit) {
    Recordset rows = Open(u"SELECT Played, (SELECT Sum(Played) FROM T), "
                          u"(SELECT Sum(A.Played) FROM T AS A, T AS B WHERE A.Id = B.Id And B.Id "
                          u"<= T.Id + 9) FROM T ORDER BY Id");
    EXPECT_EQ(Shown(*rows.Fields(1)) + Shown(*rows.Fields(2)), "33");
    ASSERT_TRUE(rows.SetField(u"Played", Value::Long(5)).ok());
    ASSERT_TRUE(rows.Update().ok());
    EXPECT_EQ(Shown(*rows.Fields(1)) + Shown(*rows.Fields(2)), "77");
}

TEST_F(RecordsetTest, AStaticOneKeepsTheValues) {
    Recordset rows = Open(u"SELECT * FROM T ORDER BY Name", CursorType::kStatic);
    Run(u"UPDATE T SET Name = 'z'");
    EXPECT_EQ(ShownRows(rows), "2,a,1|1,b,1|3,c,1");
}

TEST_F(RecordsetTest, MovingAwayWrites) {
    Recordset rows = Open(u"SELECT * FROM T");
    ASSERT_TRUE(rows.SetField(u"Played", Value::Long(9)).ok());
    ASSERT_TRUE(rows.MoveNext().ok());
    EXPECT_EQ(Run(u"SELECT Played FROM T"), "9|1|1");
}

TEST_F(RecordsetTest, CancelForgetsWhatWasSet) {
    Recordset rows = Open(u"SELECT * FROM T");
    ASSERT_TRUE(rows.SetField(u"Played", Value::Long(9)).ok());
    rows.CancelUpdate();
    ASSERT_TRUE(rows.Update().ok());
    EXPECT_EQ(Run(u"SELECT Played FROM T"), "1|1|1");
}

TEST_F(RecordsetTest, AFieldChangedMeanwhileIsNotOverwritten) {
    Recordset rows = Open(u"SELECT * FROM T");
    ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"mine")).ok());
    Run(u"UPDATE T SET Name = 'theirs' WHERE Id = 1");
    EXPECT_EQ(rows.Update().number(), 3197);
    rows.CancelUpdate();
    EXPECT_EQ(Shown(*rows.Fields(u"Name")), "theirs");
}

TEST_F(RecordsetTest, ARowDeletedMeanwhileIsNotWritten) {
    Recordset rows = Open(u"SELECT * FROM T");
    ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"mine")).ok());
    Run(u"DELETE FROM T WHERE Id = 1");
    EXPECT_EQ(rows.Update().number(), 3167);
}

TEST_F(RecordsetTest, WhatCannotBeWrittenSaysSo) {
    Recordset locked = Open(u"SELECT * FROM T", CursorType::kKeyset, LockType::kReadOnly);
    EXPECT_EQ(locked.SetField(u"Name", Value::Text(u"x")).number(), 3027);
    EXPECT_EQ(locked.Delete().number(), 3027);
    Recordset computed = Open(u"SELECT Name & '!' AS N, Id, Name FROM T");
    EXPECT_EQ(computed.SetField(u"N", Value::Text(u"x")).number(), 3027);
    EXPECT_EQ(computed.SetField(u"Id", Value::Long(7)).number(), 3164);
    EXPECT_EQ(computed.SetField(u"Nope", Value::Long(7)).number(), 3265);
    EXPECT_EQ(computed.SetField(u"Name", Value::Text(std::u16string(21, u'x'))).number(), 3163);
    Recordset distinct = Open(u"SELECT DISTINCT Name FROM T");
    EXPECT_EQ(distinct.SetField(u"Name", Value::Text(u"x")).number(), 3027);
    memory->set_read_only(true);
    Recordset read_only = Open(u"SELECT * FROM T");
    EXPECT_EQ(read_only.SetField(u"Name", Value::Text(u"x")).number(), 3027);
}

TEST_F(RecordsetTest, ValuesAreConvertedToTheColumn) {
    Recordset rows = Open(u"SELECT * FROM T");
    ASSERT_TRUE(rows.SetField(u"Played", Value::Text(u"12")).ok());
    EXPECT_EQ(*rows.Fields(u"Played"), Value::Long(12));
    EXPECT_EQ(rows.SetField(u"Played", Value::Text(u"x")).number(), 3464);
}

TEST_F(RecordsetTest, ATableNameIsEnough) {
    Recordset rows = Open(u" t ");
    EXPECT_EQ(rows.RecordCount(), 3);
    Recordset bracketed = Open(u"[T]");
    EXPECT_EQ(bracketed.FieldCount(), 3U);
    Recordset other;
    EXPECT_EQ(other.Open(u"Nowhere", *connection).number(), 3078);
    EXPECT_EQ(other.Open(u"DELETE FROM T", *connection).number(), 3141);
    EXPECT_FALSE(other.is_open());
    EXPECT_EQ(Run(u"SELECT Count(*) FROM T"), "3");
}

TEST_F(RecordsetTest, AClosedOneSaysSo) {
    Recordset rows = Open(u"SELECT * FROM T");
    EXPECT_EQ(rows.Open(u"T", *connection).number(), 3705);
    rows.Close();
    EXPECT_FALSE(rows.is_open());
    EXPECT_EQ(rows.Fields(u"Name").status().number(), 3704);
    EXPECT_EQ(rows.MoveNext().number(), 3704);
    EXPECT_TRUE(rows.Bof() && rows.Eof());
}

TEST_F(RecordsetTest, ClosingTheConnectionClosesItsRecordsets) {
    Recordset walking = Open(u"SELECT * FROM T", CursorType::kForwardOnly);
    Recordset listed = Open(u"SELECT * FROM T");
    ASSERT_TRUE(connection->Close().ok());
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(walking.is_open() || listed.is_open());
    EXPECT_EQ(ErrorOf(u"SELECT 1"), 3704);
    Recordset rows;
    EXPECT_EQ(rows.Open(u"T", *connection).number(), 3704);
}

TEST_F(RecordsetTest, OpenRecordsetsSurviveAChangeOfTheDesign) {
    Recordset walking = Open(u"SELECT * FROM T", CursorType::kForwardOnly);
    Recordset listed = Open(u"SELECT * FROM T");
    ASSERT_TRUE(walking.MoveNext().ok());
    ASSERT_EQ(Run(u"ALTER TABLE T ADD Extra INT"), "0");
    EXPECT_EQ(Shown(*walking.Fields(u"Name")), "a");
    EXPECT_EQ(Shown(*listed.Fields(u"Name")), "b");
    ASSERT_TRUE(listed.SetField(u"Extra", Value::Long(4)).ok());
    ASSERT_TRUE(listed.Update().ok());
    EXPECT_EQ(Run(u"SELECT Extra FROM T WHERE Id = 1"), "4");
    ASSERT_EQ(Run(u"DROP TABLE T"), "0");
    EXPECT_EQ(listed.Fields(u"Name").status().number(), 3011);
}

TEST_F(RecordsetTest, AnUpdateThatFailsCanBeRepeated) {
    Run(u"CREATE UNIQUE INDEX ByName ON T (Name)");
    Recordset rows = Open(u"SELECT * FROM T");
    ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"C")).ok());
    EXPECT_EQ(rows.Update().number(), 3022);
    EXPECT_EQ(Run(u"SELECT Name FROM T"), "b|a|c");
    ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"d")).ok());
    EXPECT_TRUE(rows.Update().ok());
    EXPECT_EQ(Run(u"SELECT Name FROM T"), "d|a|c");
}

using jet::ConnectionSettings;

TEST(ConnectionStringTest, DataSourceAndMode) {
    EXPECT_EQ(
        *jet::ParseConnectionString(u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/a b/c.mdb"),
        (ConnectionSettings{u"/a b/c.mdb", false}));
    EXPECT_EQ(*jet::ParseConnectionString(u" data source = C:\\x.mdb ; MODE = read ; "),
              (ConnectionSettings{u"C:\\x.mdb", true}));
    EXPECT_EQ(*jet::ParseConnectionString(u"Data Source=x;Mode=ReadWrite"),
              (ConnectionSettings{u"x", false}));
}

TEST(ConnectionStringTest, QuotedValues) {
    EXPECT_EQ(*jet::ParseConnectionString(u"Data Source=\"a;b\"\"c\";Mode='Read'"),
              (ConnectionSettings{u"a;b\"c", true}));
    EXPECT_EQ(*jet::ParseConnectionString(u"Data Source='it''s'"),
              (ConnectionSettings{u"it's", false}));
}

TEST(ConnectionStringTest, WhatIsNoneIsRefused) {
    for (const char16_t* text : {u"", u"nonsense", u"Provider=x", u"Data Source=",
                                 u"Data Source='a", u"Data Source='a'b", u"x;Data Source=y"})
        EXPECT_FALSE(jet::ParseConnectionString(text).ok()) << base::ToUtf8(text);
}

}  // namespace
