// The edges of functions and comparisons: the last element, the other direction, what is just too
// much.
#include "jet/sql/sql_fixture.h"

namespace {

using test_support::SqlFixture;

struct Case {
    const char16_t* expression;
    const char* expected;
};
void PrintTo(const Case& c, std::ostream* out) {
    *out << base::ToUtf8(c.expression);
}

class SqlEdge : public SqlFixture, public testing::WithParamInterface<Case> {};

TEST_P(SqlEdge, HasItsValue) {
    EXPECT_EQ(Run(std::u16string(u"SELECT ") + GetParam().expression), GetParam().expected);
}

const Case kPatterns[] = {
    {u"'b' Like '[A-Z]'", "-1"},    {u"'B' Like '[a-z]'", "-1"},   {u"'5' Like '[A-Z]'", "0"},
    {u"'d1' Like '[!a-c]%'", "-1"}, {u"'b1' Like '[!a-c]%'", "0"}, {u"'-' Like '[a-]'", "-1"},
    {u"'b' Like '[a-]'", "0"},      {u"'abab' Like '%ab'", "-1"},  {u"'aXbXc' Like 'a%X_'", "-1"},
    {u"'aXa' Like 'aX%Xa'", "0"},   {u"'ab' Like 'ab%%'", "-1"},   {u"'ab' Like 'ab_'", "0"},
    {u"'a[b' Like 'a[b'", "-1"},
};
INSTANTIATE_TEST_SUITE_P(Patterns, SqlEdge, testing::ValuesIn(kPatterns));

const Case kOperators[] = {
    {u"#11/20/2026# = '46346'", "-1"},
    {u"#11/20/2026# < '11/21/2026'", "-1"},
    {u"2 <= 2", "-1"},
    {u"3 <= 2", "0"},
    {u"2 >= 2", "-1"},
    {u"2 < 2", "0"},
    {u"2 > 2", "0"},
    {u"7 \\ 2.6", "2"},
    {u"7.5 \\ 2", "4"},
    {u"8 Mod 2.6", "2"},
    {u"(#1/2/2026# - #1/1/2026#) & ''", "1"},
    {u"(#1/2/2026# + 1) & ''", "1/3/2026"},
    {u"CCur(1.5) + 2", "3.5"},
    {u"CCur('900000000000000.0001') + 1", "900000000000001.0001"},
    {u"#11/20/2026 8:00:00# = 46346.333333", "-1"},
    {u"#11/20/2026 8:00:00# < 46346.34", "-1"},
    {u"True & ''", "-1"},
    {u"False & ''", "0"},
};
INSTANTIATE_TEST_SUITE_P(Operators, SqlEdge, testing::ValuesIn(kOperators));

const Case kDates[] = {
    {u"DateAdd('m', 1, #5/31/2026#)", "6/30/2026"},
    {u"DateAdd('m', 2, #12/31/2025#)", "2/28/2026"},
    {u"DateAdd('q', 1, #11/30/2023#)", "2/29/2024"},
    {u"DateAdd('m', 1, #1/31/2026 13:14:15#)", "2/28/2026 1:14:15 PM"},
    {u"DateAdd('yyyy', 1, #2/28/2023 23:59:58#)", "2/28/2024 11:59:58 PM"},
    {u"DateAdd('h', 6, #12/28/1899#)", "12/28/1899 6:00:00 AM"},
    {u"DateAdd('h', -6, #12/28/1899#)", "12/27/1899 6:00:00 PM"},
    {u"DateAdd('s', -1, #1/1/2026#)", "12/31/2025 11:59:59 PM"},
    {u"DateAdd('n', 90, #1/1/2026#)", "1/1/2026 1:30:00 AM"},
    {u"DateAdd('w', 1, #1/1/2026#)", "1/2/2026"},
    {u"DateAdd('ww', -1, #1/1/2026#)", "12/25/2025"},
    {u"DateSerial(30, 1, 1)", "1/1/1930"},
    {u"DateSerial(99, 1, 1)", "1/1/1999"},
    {u"DateSerial(0, 1, 1)", "1/1/2000"},
    {u"DateSerial(100, 1, 1)", "1/1/100"},
    {u"Weekday(#2026-11-20#, 0)", "6"},
    {u"Weekday(#2026-11-20#, 7)", "7"},
    {u"DateDiff('w', #1/20/2026#, #1/10/2026#)", "-1"},
    {u"DateDiff('w', #1/10/2026#, #1/20/2026#)", "1"},
    {u"DateDiff('h', #1/1/2026 10:59:00#, #1/1/2026 11:01:00#)", "1"},
    {u"DateDiff('h', #1/1/2026 11:01:00#, #1/1/2026 10:59:00#)", "-1"},
    {u"DateDiff('s', #1/1/2026 10:00:00#, #1/1/2026 10:01:05#)", "65"},
    {u"DateDiff('q', #3/31/2026#, #4/1/2026#)", "1"},
    {u"DateDiff('ww', #11/22/2026#, #11/28/2026#)", "0"},
    {u"DatePart('ww', #1/1/2028#)", "1"},
    {u"DatePart('ww', #1/2/2028#)", "2"},
    {u"DatePart('ww', #12/31/2027#)", "53"},
    {u"DatePart('w', #11/22/2026#)", "1"},
    {u"DatePart('y', #12/31/2024#)", "366"},
    {u"DatePart('q', #3/31/2026#)", "1"},
    {u"DatePart('q', #4/1/2026#)", "2"},
};
INSTANTIATE_TEST_SUITE_P(Dates, SqlEdge, testing::ValuesIn(kDates));

const Case kTexts[] = {
    {u"Right('abc', 3)", "abc"},
    {u"Right('abc', 2)", "bc"},
    {u"Right('abc', 4)", "abc"},
    {u"Right('abc', 0) & '.'", "."},
    {u"Mid('abc', 3)", "c"},
    {u"Mid('abc', 4) & '.'", "."},
    {u"Mid('abc', 2, 1)", "b"},
    {u"Left('abc', 4)", "abc"},
    {u"AscW(ChrW(40000))", "-25536"},
    {u"Asc(Chr(255))", "255"},
    {u"Chr(159)", "\u0178"},
    {u"Chr(160) = ChrW(160)", "-1"},
    {u"StrConv('o''neill-smith AND co', 3)", "O'neill-smith And Co"},
    {u"InStr(3, 'abcabc', 'c')", "3"},
    {u"InStr(4, 'abcabc', 'c')", "6"},
    {u"InStrRev('abcabc', 'c', 5)", "3"},
    {u"LTrim(' a ') & '.'", "a ."},
    {u"RTrim(' a ') & '.'", " a."},
    {u"String(2, 321)", "AA"},
};
INSTANTIATE_TEST_SUITE_P(Texts, SqlEdge, testing::ValuesIn(kTexts));

class SqlEdgeOfRows : public SqlFixture {};

TEST_F(SqlEdgeOfRows, ADistanceThatIsNoLongIsAnOverflow) {
    EXPECT_EQ(ErrorOf(u"SELECT DateDiff('s', #1/1/100#, #1/1/9999#)"), 6);
    EXPECT_EQ(ErrorOf(u"SELECT DateDiff('s', #1/1/9999#, #1/1/100#)"), 6);
}

TEST_F(SqlEdgeOfRows, FirstIsTheFirstRowsValueEvenWhenItIsNull) {
    Run(u"CREATE TABLE T (ID LONG, V LONG)");
    Run(u"INSERT INTO T VALUES (1, Null)");
    Run(u"INSERT INTO T VALUES (2, 5)");
    EXPECT_EQ(Run(u"SELECT First(V), Last(V) FROM T"), "<null>,5");
}

TEST_F(SqlEdgeOfRows, OneValueHasNoSpreadAsASample) {
    Run(u"CREATE TABLE T (V LONG)");
    Run(u"INSERT INTO T VALUES (4)");
    EXPECT_EQ(Run(u"SELECT Var(V), VarP(V), StDev(V), StDevP(V) FROM T"), "<null>,0,<null>,0");
    Run(u"INSERT INTO T VALUES (8)");
    EXPECT_EQ(Run(u"SELECT Var(V), VarP(V) FROM T"), "8,4");
}

}  // namespace
