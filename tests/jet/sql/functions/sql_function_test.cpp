// The corners of functions, patterns and conversions: ends of ranges, defaults of arguments, and
// what lies one step beside the usual.
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

class SqlFunction : public SqlFixture, public testing::WithParamInterface<Case> {};

TEST_P(SqlFunction, HasItsValue) {
    EXPECT_EQ(Run(std::u16string(u"SELECT ") + GetParam().expression), GetParam().expected);
}

const Case kPatterns[] = {
    {u"'M' Like '[A-Z]'", "-1"},      {u"'m' Like '[A-Z]'", "-1"},
    {u"'M' Like '[a-z]'", "-1"},      {u"'A' Like '[a-z]'", "-1"},
    {u"'z' Like '[A-Z]'", "-1"},      {u"'5' Like '[A-Z]'", "0"},
    {u"'[' Like '[A-Z]'", "0"},       {u"'5' Like '[^A-Z]'", "-1"},
    {u"'m' Like '[^A-Z]'", "0"},      {u"'m' Like '[!A-Z]'", "0"},
    {u"'-' Like '[a-]'", "-1"},       {u"'-' Like '[-a]'", "-1"},
    {u"'b' Like '[-a]'", "0"},        {u"'b' Like '[axb]'", "-1"},
    {u"'c' Like '[axb]'", "0"},       {u"'d' Like '[a-cx-z]'", "0"},
    {u"'y' Like '[a-cx-z]'", "-1"},   {u"'%' Like '[%]'", "-1"},
    {u"'a' Like '[%]'", "0"},         {u"'[a' Like '[a'", "-1"},
    {u"'ab' Like '_'", "0"},          {u"'' Like '_'", "0"},
    {u"'ab' Like 'a%b%'", "-1"},      {u"'a' Like 'a%%'", "-1"},
    {u"'aab' Like '%ab'", "-1"},      {u"'aabx' Like '%ab'", "0"},
    {u"'abcabd' Like 'a%bd'", "-1"},  {u"'a' Like ''", "0"},
    {u"'a' Not Like Null", "<null>"}, {u"12 Like '1_'", "-1"},
    {u"True Like '-1'", "-1"},
};
INSTANTIATE_TEST_SUITE_P(Patterns, SqlFunction, testing::ValuesIn(kPatterns));

const Case kDates[] = {
    {u"DateAdd('m', 1, #3/31/2026#)", "4/30/2026"},
    {u"DateAdd('m', -1, #3/31/2026#)", "2/28/2026"},
    {u"DateAdd('m', 1, #1/31/2024#)", "2/29/2024"},
    {u"DateAdd('m', 2, #12/31/2025#)", "2/28/2026"},
    {u"DateAdd('m', -13, #1/31/2026#)", "12/31/2024"},
    {u"DateAdd('m', 12, #2/29/2024 10:00#)", "2/28/2025 10:00:00 AM"},
    {u"DateAdd('q', 1, #11/30/2025#)", "2/28/2026"},
    {u"DateAdd('q', -1, #5/31/2026#)", "2/28/2026"},
    {u"DateAdd('yyyy', 4, #2/29/2024#)", "2/29/2028"},
    {u"DateAdd('d', 1, #1/31/2026#)", "2/1/2026"},
    {u"DateAdd('y', 1, #12/31/2025#)", "1/1/2026"},
    {u"DateAdd('w', 1, #12/31/2025#)", "1/1/2026"},
    {u"DateAdd('ww', -1, #1/3/2026#)", "12/27/2025"},
    {u"DateAdd('n', 90, #1/31/2026 23:00#)", "2/1/2026 12:30:00 AM"},
    {u"DateAdd('s', -1, #1/1/2026#)", "12/31/2025 11:59:59 PM"},
    {u"DateAdd('h', -1, #1/1/2026#)", "12/31/2025 11:00:00 PM"},
    {u"DateDiff('q', #3/31/2026#, #4/1/2026#)", "1"},
    {u"DateDiff('q', #12/31/2025#, #1/1/2026#)", "1"},
    {u"DateDiff('q', #1/1/2026#, #3/31/2026#)", "0"},
    {u"DateDiff('m', #12/31/2025#, #1/1/2026#)", "1"},
    {u"DateDiff('m', #1/1/2026#, #12/31/2025#)", "-1"},
    {u"DateDiff('yyyy', #1/1/2026#, #12/31/2026#)", "0"},
    {u"DateDiff('d', #1/1/2026 23:59#, #1/2/2026 00:01#)", "1"},
    {u"DateDiff('d', #1/2/2026#, #1/1/2026#)", "-1"},
    {u"DateDiff('w', #1/1/2026#, #1/7/2026#)", "0"},
    {u"DateDiff('w', #1/1/2026#, #1/8/2026#)", "1"},
    {u"DateDiff('ww', #11/22/2026#, #11/28/2026#)", "0"},
    {u"DateDiff('h', #1/1/2026 10:59#, #1/1/2026 11:00#)", "1"},
    {u"DateDiff('h', #1/1/2026 10:00#, #1/1/2026 10:59#)", "0"},
    {u"DateDiff('s', #10:00:00#, #10:01:01#)", "61"},
    {u"DatePart('yyyy', #11/20/2026#) & DatePart('m', #11/20/2026#)", "202611"},
    {u"DatePart('q', #3/31/2026#) & DatePart('q', #4/1/2026#) & DatePart('q', #12/1/2026#)", "124"},
    {u"DatePart('y', #12/31/2024#)", "366"},
    {u"DatePart('y', #1/1/2026#)", "1"},
    {u"DatePart('d', #11/20/2026#) & DatePart('w', #11/20/2026#)", "206"},
    {u"DatePart('ww', #1/3/2026#) & DatePart('ww', #1/4/2026#)", "12"},
    {u"DatePart('ww', #12/31/2026#)", "53"},
    {u"DatePart('h', #15:04:05#) & DatePart('n', #15:04:05#) & DatePart('s', #15:04:05#)", "1545"},
    {u"Weekday(#11/22/2026#) & Weekday(#11/21/2026#)", "17"},
    {u"Weekday(#11/22/2026#, 2) & Weekday(#11/23/2026#, 2) & Weekday(#11/22/2026#, 0)", "711"},
    {u"DateSerial(30, 1, 1)", "1/1/1930"},
    {u"DateSerial(99, 12, 31)", "12/31/1999"},
    {u"DateSerial(100, 1, 1)", "1/1/100"},
    {u"DateSerial(2026, 0, 1)", "12/1/2025"},
    {u"DateSerial(2026, 1, 32)", "2/1/2026"},
    {u"DateSerial(2026, -11, 1)", "1/1/2025"},
    {u"TimeSerial(0, 0, 0)", "12:00:00 AM"},
    {u"TimeSerial(23, 59, 59)", "11:59:59 PM"},
    {u"TimeSerial(12, -30, 0)", "11:30:00 AM"},
    {u"Year('20-Nov-26') & Hour('3 PM')", "202615"},
    {u"Day(0) & Month(0) & Year(0)", "30121899"},
    {u"CDate(-1.25)", "12/29/1899 6:00:00 AM"},
    {u"#1/1/2026# - 1", "12/31/2025"},
    {u"#1/1/2026# = #1/1/2026 12:00:00 AM#", "-1"},
    {u"#1/1/2026 10:00:00# = #1/1/2026 10:00:01#", "0"},
    {u"#1/1/2026# < '1/2/2026'", "-1"},
    {u"'1/2/2026' > #1/1/2026#", "-1"},
};
INSTANTIATE_TEST_SUITE_P(Dates, SqlFunction, testing::ValuesIn(kDates));

const Case kTexts[] = {
    {u"Left('abc', 0)", ""},
    {u"Left('abc', 3)", "abc"},
    {u"Right('abc', 0)", ""},
    {u"Right('abc', 3)", "abc"},
    {u"Right('abc', 9)", "abc"},
    {u"Mid('abc', 1)", "abc"},
    {u"Mid('abc', 3)", "c"},
    {u"Mid('abc', 4)", ""},
    {u"Mid('abc', 2, 0)", ""},
    {u"Mid('abc', 2, 9)", "bc"},
    {u"Len('')", "0"},
    {u"Len(Null)", "<null>"},
    {u"Replace('aXbxc', 'x', '-', 3)", "b-c"},
    {u"Replace('aXbxc', 'x', '-', 1, 1)", "a-bxc"},
    {u"Replace('aXbxc', 'x', '-', 1, 0)", "aXbxc"},
    {u"Replace('aXbxc', 'x', '-', 1, -1, 0)", "aXb-c"},
    {u"Replace('aaa', 'aa', 'b')", "ba"},
    {u"Replace('abc', 'c', '', 9)", ""},
    {u"InStr(2, 'abab', 'ab')", "3"},
    {u"InStr(3, 'abab', 'ab')", "3"},
    {u"InStr('abc', 'd')", "0"},
    {u"InStr('abc', 'C', 0)", "0"},
    {u"InStrRev('abcabc', 'c', 6)", "6"},
    {u"InStrRev('abcabc', 'c', 5)", "3"},
    {u"StrComp('b', 'a')", "1"},
    {u"StrComp('a', 'a ', 0)", "-1"},
    {u"StrComp('a', 'a ')", "0"},
    {u"StrComp(Null, 'a')", "<null>"},
    {u"StrConv('aB c', 1) & StrConv('aB c', 2)", "AB Cab c"},
    {u"String(0, 'a')", ""},
    {u"String(2, 321)", "AA"},
    {u"Space(0)", ""},
    {u"Chr(65) & Chr(0) = 'A'", "-1"},
    {u"Chr(159)", "\u0178"},
    {u"Chr(160)", "\u00a0"},
    {u"Asc('\u20ac') & ',' & Asc('\u0178') & ',' & Asc('\u0416')", "128,159,63"},
    {u"AscW('\uffff')", "-1"},
    {u"ChrW(-1) = ChrW(65535)", "-1"},
    {u"Val('-3.5abc')", "-3.5"},
    {u"Val('&H1Fx')", "31"},
    {u"Val('')", "0"},
    {u"Val('1e2')", "100"},
    {u"Hex(0) & Oct(0) & Oct(-1)", "0037777777777"},
    {u"Hex(15.5)", "10"},
    {u"Partition(0, 0, 99, 10)", "  0:  9"},
    {u"Partition(99, 0, 99, 10)", " 90: 99"},
    {u"Partition(100, 0, 99, 10)", "100:   "},
    {u"Partition(95, 0, 97, 10)", "90:97"},
};
INSTANTIATE_TEST_SUITE_P(Texts, SqlFunction, testing::ValuesIn(kTexts));

const Case kNumbers[] = {
    {u"Int(1.5) & Fix(1.5) & Int(-2) & Fix('-1.5')", "11-2-1"},
    {u"Abs(True)", "1"},
    {u"Abs('-2.5')", "2.5"},
    {u"Abs(CCur(-2.5))", "2.5"},
    {u"Abs(0)", "0"},
    {u"Round(-2.5) & Round(0.5) & Round(1.5)", "-202"},
    {u"Round(0.125, 2) & Round(0.375, 2)", "0.120.38"},
    {u"Sgn(-0.1) & Sgn(0.1)", "-11"},
    {u"Exp(1) > 2.7182 And Exp(1) < 2.7183", "-1"},
    {u"Log(Exp(2))", "2"},
    {u"Sin(1) > 0.84 And Sin(1) < 0.85", "-1"},
    {u"Cos(1) > 0.54 And Cos(1) < 0.55", "-1"},
    {u"Tan(1) > 1.55 And Tan(1) < 1.56", "-1"},
    {u"Atn(1) * 4 > 3.14159 And Atn(1) * 4 < 3.1416", "-1"},
    {u"Sqr(2) * Sqr(2) > 1.999", "-1"},
    {u"CByte(255) & CInt(32767) & CInt(-32768)", "25532767-32768"},
    {u"CLng(-2147483648)", "-2147483648"},
    {u"CInt(0.5) & CInt(1.5) & CInt(-0.5)", "020"},
    {u"CBool(0) & CBool(0.1) & CBool('off')", "0-10"},
    {u"CBool('2')", "-1"},
    {u"IsNumeric(1) & IsNumeric(True) & IsNumeric(#1/1/2026#) & IsNumeric('1e5')", "-1-10-1"},
    {u"IsDate(#1/1/2026#) & IsDate(46000) & IsDate(Null)", "-100"},
    {u"5 - -3", "8"},
    {u"-5 \\ 2", "-2"},
    {u"5 Mod -3", "2"},
    {u"2 ^ -1", "0.5"},
    {u"-3 ^ 2", "-9"},
    {u"1 - 2 + 3", "2"},
    {u"2 + 3 Mod 2", "3"},
    {u"7 \\ 2 * 2", "1"},
    {u"8 / 2 / 2", "2"},
    {u"1 & 2 + 3", "15"},
    {u"Not 1 = 2", "-1"},
    {u"True And Not False Or False", "-1"},
    {u"False Or True And False", "0"},
    {u"True Xor False", "-1"},
    {u"True Xor Null", "<null>"},
    {u"True Imp False", "0"},
    {u"True Imp Null", "<null>"},
    {u"Null Imp True", "-1"},
    {u"Null Imp False", "<null>"},
    {u"False Eqv False", "-1"},
    {u"False Eqv Null", "<null>"},
    {u"2147483647 * 2", "4294967294"},
    {u"-2147483647 - 1", "-2147483648"},
    {u"-2147483647 - 2", "-2147483649"},
    {u"CByte(200) + CByte(100)", "300"},
    {u"3 < 3", "0"},
    {u"3 <= 3", "-1"},
    {u"3 >= 3 And 3 => 3 And 3 =< 3", "-1"},
    {u"3 > 3", "0"},
    {u"1 Between 1 And 1", "-1"},
    {u"0 Between 1 And 2 Or 3 Between 1 And 2", "0"},
    {u"2 Between 3 And 1", "0"},
    {u"2 Not In (1, Null)", "<null>"},
    {u"1 Not In (1, Null)", "0"},
    {u"IIf(1 = 2, 1 / 0, 'no')", "no"},
    {u"Choose(1, 'a', 1 / 0)", "a"},
    {u"Choose(0, 'a', 'b')", "<null>"},
    {u"Choose(2.5, 'a', 'b', 'c')", "b"},
    {u"Switch(1 = 2, 'a', Null, 'b')", "<null>"},
    {u"Switch(1 = 1, 'a', 1 = 1, 1 / 0)", "a"},
    {u"Format(0.5, '0.00') & Format(-0.5, '#.0')", "0.50-.5"},
    {u"Format(1234567.891, '#,##0.0')", "1,234,567.9"},
    {u"Format(999, '#,##0') & Format(1000, '#,##0')", "9991,000"},
    {u"Format(1500000, '0,')", "1500"},
    {u"Format(-5, '0;(0)')", "(5)"},
    {u"Format(-5, '0')", "-5"},
    {u"Format(0.0012, '0.0E-00')", "1.2E-03"},
    {u"Format(5, '00.00;;')", "05.00"},
    {u"Format(0, 'Yes/No') & Format(-1, 'On/Off') & Format(1, 'True/False')", "NoOnTrue"},
    {u"Format(0.5, '0%') & Format(12.5, '\\a0')", "50%a13"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, SqlFunction, testing::ValuesIn(kNumbers));

class SqlAggregate : public SqlFixture {
protected:
    void SetUp() override {
        Run(u"CREATE TABLE T (G TEXT(5), N LONG, M MONEY, S TEXT(10))");
        for (const std::u16string_view row : {u"'a', 1, 0.1, 'x'", u"'A', 2, 0.2, 'Y'",
                                              u"'a', 6, 0.3, 'b'", u"'b', Null, Null, Null"})
            Run(u"INSERT INTO T VALUES (" + std::u16string(row) + u")");
    }
};

TEST_F(SqlAggregate, Spreads) {
    EXPECT_EQ(Run(u"SELECT Var(N), VarP(N) * 3, Avg(N), Sum(N), Count(N), Count(*) FROM T"),
              "7,14,3,9,3,4");
    EXPECT_EQ(Run(u"SELECT StDev(N) * StDev(N) Between 6.99 And 7.01, StDevP(N) < StDev(N) FROM T"),
              "-1,-1");
    EXPECT_EQ(Run(u"SELECT Var(N), VarP(N), StDev(N), StDevP(N) FROM T WHERE N = 1"),
              "<null>,0,<null>,0");
    EXPECT_EQ(Run(u"SELECT Var(N), VarP(N) FROM T WHERE N > 99"), "<null>,<null>");
}

TEST_F(SqlAggregate, SmallestAndGreatest) {
    EXPECT_EQ(Run(u"SELECT Min(N), Max(N), Min(S), Max(S), First(S), Last(N) FROM T"),
              "1,6,b,Y,x,<null>");
    EXPECT_EQ(Run(u"SELECT G, Sum(N), Max(S) FROM T GROUP BY G HAVING Count(N) > 0"), "a,9,Y");
}

TEST_F(SqlAggregate, AmountsStayExact) {
    EXPECT_EQ(Run(u"SELECT Sum(M) = CCur(0.6), Sum(M) FROM T"), "-1,0.6");
    Run(u"UPDATE T SET M = 922337203685477");
    EXPECT_EQ(ErrorOf(u"SELECT Sum(M) FROM T"), 6);
}

}  // namespace
