// Which questions an index is asked. That the answers are right is shown by index_use_test.cpp.
#include "jet/sql/sql_fixture.h"

namespace {

using test_support::SqlFixture;

class IndexChoice : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE T (Truth YESNO, Tiny BYTE, Whole LONG, Price MONEY, Real4 SINGLE, Real8 "
            u"DOUBLE, Day DATETIME, Word TEXT(50), Mark GUID, Exact DECIMAL(10, 2), Other LONG)");
        for (const std::u16string_view column : {u"Truth", u"Tiny", u"Whole", u"Price", u"Real4",
                                                 u"Real8", u"Day", u"Word", u"Mark", u"Exact"})
            Run(u"CREATE INDEX By" + std::u16string(column) + u" ON T (" + std::u16string(column) +
                u")");
        Run(u"INSERT INTO T (Whole) VALUES (1)");
    }

    // How many ranges of an index the statement walks.
    int Ranges(std::u16string_view rest) {
        const int before = Table(u"T").ranges();
        const std::string answer = Run(u"SELECT * FROM T " + std::u16string(rest));
        EXPECT_NE(answer.substr(0, 1), "#") << answer;
        return Table(u"T").ranges() - before;
    }
};

TEST_F(IndexChoice, ServesConditionsOnEveryType) {
    for (const std::u16string_view condition :
         {u"Truth = True",       u"Truth",
          u"Not Truth",          u"Tiny > 3",
          u"Whole = 1",          u"Whole = '1'",
          u"Price < 2.5",        u"Price = CCur(1)",
          u"Real4 >= 0.1",       u"Real8 Between -1 And 1",
          u"2 > Real8",          u"Day > #1/1/2000#",
          u"Day = '1/1/2000'",   u"Day <= 36526",
          u"Day = #12/29/1899#", u"Word >= 'a'",
          u"Word Like 'ab%'",    u"Mark = '{00000000-0000-0000-0000-000000000001}'",
          u"Exact > 1.25",       u"Exact = -1",
          u"Whole Is Null"})
        EXPECT_EQ(Ranges(u"WHERE " + std::u16string(condition)), 1) << base::ToUtf8(condition);
}

TEST_F(IndexChoice, TakesOneRangeForEachChoice) {
    EXPECT_EQ(Ranges(u"WHERE Whole In (5, 1, 3, 1)"), 3);
    EXPECT_EQ(Ranges(u"WHERE Whole = 5 Or Whole = 1 Or Whole Between 10 And 20"), 3);
    EXPECT_EQ(Ranges(u"WHERE Whole < 5 Or Whole In (3, 7)"), 2);
    EXPECT_EQ(Ranges(u"WHERE Word Like 'a%' Or Word Like 'ab%' Or Word = 'b'"), 2);
    EXPECT_EQ(Ranges(u"WHERE (Word = 'a' Or Word = 'A') And Other = 1"), 1);
    EXPECT_EQ(Ranges(u"WHERE Whole In (Null)"), 0);
}

TEST_F(IndexChoice, LeavesWhatKeysDoNotTell) {
    for (const std::u16string_view condition :
         {u"Whole = 1 Or Other = 2", u"Whole <> 1", u"Whole + 0 = 1", u"Not Whole = 1",
          u"Word = 5 & ''  & Word", u"Word Like '%a'", u"Word Like '[ab]c'", u"Word Like '''a'",
          u"Word Not Like 'a%'", u"Whole Not In (1)", u"Real8 = CDate(1)", u"Whole = Rnd()",
          u"Whole Is Not Null", u"Whole In (1, Other)", u"Not Whole"})
        EXPECT_EQ(Ranges(u"WHERE " + std::u16string(condition)), 0) << base::ToUtf8(condition);
}

TEST_F(IndexChoice, ServesOrders) {
    for (const std::u16string_view column :
         {u"Truth", u"Tiny", u"Whole", u"Price", u"Real4", u"Real8", u"Word", u"Mark", u"Exact"}) {
        EXPECT_EQ(Ranges(u"ORDER BY " + std::u16string(column)), 1) << base::ToUtf8(column);
        EXPECT_EQ(Ranges(u"ORDER BY " + std::u16string(column) + u" DESC"), 1)
            << base::ToUtf8(column);
    }
    // One more looks for dates before the calendar's day 1.
    EXPECT_EQ(Ranges(u"ORDER BY Day"), 2);
    EXPECT_EQ(Ranges(u"ORDER BY Whole, Other"), 0);
}

TEST_F(IndexChoice, DoesNotOrderByEarlyDates) {
    Run(u"INSERT INTO T (Day) VALUES (CDate(-1.25))");
    Run(u"INSERT INTO T (Day) VALUES (CDate(-1.75))");
    EXPECT_EQ(Run(u"SELECT CDbl(Day) FROM T WHERE Day < 5 ORDER BY Day"), "-1.25|-1.75");
    EXPECT_EQ(Run(u"SELECT CDbl(Day) FROM T WHERE Day < 5 ORDER BY Day DESC"), "-1.75|-1.25");
}

TEST_F(IndexChoice, OrdersBehindColumnsOfOneValue) {
    Run(u"CREATE INDEX Two ON T (Other, Whole DESC, Real8)");
    EXPECT_EQ(Ranges(u"WHERE Other = 1 ORDER BY Whole DESC"), 1);
    for (int i = 0; i < 5; ++i) {
        const std::string number = std::to_string(i * 7 % 5);
        Run(u"INSERT INTO T (Other, Whole) VALUES (1, " +
            std::u16string(number.begin(), number.end()) + u")");
    }
    EXPECT_EQ(Run(u"SELECT Whole FROM T WHERE Other = 1 ORDER BY Other, Whole DESC"), "4|3|2|1|0");
    EXPECT_EQ(Run(u"SELECT Whole FROM T WHERE Other = 1 ORDER BY Whole"), "0|1|2|3|4");
    EXPECT_EQ(Run(u"SELECT Whole FROM T WHERE Other = 1 And Whole In (1, 3, 4) ORDER BY Whole"),
              "1|3|4");
}

}  // namespace
