#include "jet/values/conversions.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using jet::CivilDateTime;

struct DateCase {
    const char16_t* text;
    CivilDateTime expected;
};

void PrintTo(const DateCase& c, std::ostream* out) {
    *out << base::ToUtf8(c.text);
}

class ReadableDate : public testing::TestWithParam<DateCase> {};

TEST_P(ReadableDate, IsRead) {
    const auto days = jet::ParseDate(GetParam().text, 2026);
    ASSERT_TRUE(days.has_value());
    EXPECT_DOUBLE_EQ(*days, jet::DaysFromCivil(GetParam().expected));
}

const DateCase kReadable[] = {
    {u"20-Nov-26", {2026, 11, 20}},
    {u"20 Nov 2026", {2026, 11, 20}},
    {u"Nov 20, 2026", {2026, 11, 20}},
    {u"November 20 2026", {2026, 11, 20}},
    {u"2026 Nov 20", {2026, 11, 20}},
    {u"Friday, November 20, 2026", {2026, 11, 20}},
    {u"11/20/2026 3:04:05 PM", {2026, 11, 20, 15, 4, 5}},
    {u"3:04:05 PM 11/20/2026", {2026, 11, 20, 15, 4, 5}},
    {u"11/20/26 15:04:05", {2026, 11, 20, 15, 4, 5}},
    {u"2026-11-20", {2026, 11, 20}},
    {u"2026/11/20 15:04", {2026, 11, 20, 15, 4}},
    {u"20/11/2026", {2026, 11, 20}},
    {u"5/6/2026", {2026, 5, 6}},
    {u"11/20", {2026, 11, 20}},
    {u"20/11", {2026, 11, 20}},
    {u"11/2003", {2003, 11, 1}},
    {u"Nov 20", {2026, 11, 20}},
    {u"December 32", {1932, 12, 1}},
    {u"1/1/30", {1930, 1, 1}},
    {u"1/1/29", {2029, 1, 1}},
    {u"1/1/100", {100, 1, 1}},
    {u"3 PM", {1899, 12, 30, 15}},
    {u"3PM", {1899, 12, 30, 15}},
    {u"15:04", {1899, 12, 30, 15, 4}},
    {u"12:00 AM", {1899, 12, 30}},
    {u"12:30 p", {1899, 12, 30, 12, 30}},
    {u"  11 / 20 / 2026  ", {2026, 11, 20}},
    {u"2/29/2024", {2024, 2, 29}},
    {u"12/31/9999 23:59:59", {9999, 12, 31, 23, 59, 59}},
};
INSTANTIATE_TEST_SUITE_P(Dates, ReadableDate, testing::ValuesIn(kReadable));

class NotADate : public testing::TestWithParam<const char16_t*> {};

TEST_P(NotADate, IsRefused) {
    EXPECT_FALSE(jet::ParseDate(GetParam(), 2026).has_value());
    EXPECT_FALSE(jet::IsDate(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Texts, NotADate,
                         testing::Values(u"", u"abc", u"13/32/2026", u"46000", u"11/20/2026/1",
                                         u"11//20/2026", u"/11/20", u"11/20/", u"25:00", u"12:60",
                                         u"13:00 AM", u"Nov", u"Nov Dec 20", u"2/29/2023 x",
                                         u"1/1/20260", u":", u"PM", u"3 PM PM", u"1:2:3:4",
                                         u"2026-11-20T10:00", u"\u0661/1/2020", u"1.5",
                                         u"Select a Date"));

TEST(DateConversionTest, DayZeroIsThe30thOfDecember1899) {
    EXPECT_EQ(jet::DaysFromCivil({1899, 12, 30}), 0.0);
    EXPECT_EQ(jet::DaysFromCivil({1970, 1, 1}), 25569.0);
    EXPECT_EQ(jet::DaysFromCivil({100, 1, 1}), -657434.0);
}

TEST(DateConversionTest, TimeCountsForwardBeforeDayZero) {
    EXPECT_EQ(jet::DaysFromCivil({1899, 12, 29, 6}), -1.25);
    EXPECT_EQ(jet::CivilFromDays(-1.25), (CivilDateTime{1899, 12, 29, 6}));
    EXPECT_EQ(jet::CivilFromDays(-0.25), (CivilDateTime{1899, 12, 30, 6}));
}

TEST(DateConversionTest, EveryDayGoesThereAndBack) {
    for (double day = -657434; day <= 2958465; day += 97) {
        const auto civil = jet::CivilFromDays(day);
        ASSERT_TRUE(civil.has_value()) << day;
        ASSERT_EQ(jet::DaysFromCivil(*civil), day);
    }
}

TEST(DateConversionTest, RoundingToTheSecondMayReachTheNextDay) {
    EXPECT_EQ(jet::CivilFromDays(1.9999999), (CivilDateTime{1900, 1, 1}));
}

TEST(DateConversionTest, DaysOutsideTheCalendarHaveNoDate) {
    EXPECT_FALSE(jet::CivilFromDays(2958466).has_value());
    EXPECT_FALSE(jet::CivilFromDays(-657435).has_value());
    EXPECT_FALSE(jet::CivilFromDays(1e300).has_value());
    EXPECT_FALSE(jet::CivilFromDays(std::nan("")).has_value());
}

double Afternoon() {
    return jet::DaysFromCivil({2026, 11, 20, 15, 4, 5});
}

struct FormatCase {
    const char16_t* format;
    const char16_t* expected;
};
void PrintTo(const FormatCase& c, std::ostream* out) {
    *out << base::ToUtf8(c.format);
}

class DateFormat : public testing::TestWithParam<FormatCase> {};

TEST_P(DateFormat, WritesTheDate) {
    EXPECT_EQ(base::ToUtf8(jet::FormatDate(Afternoon(), GetParam().format)),
              base::ToUtf8(GetParam().expected));
}

const FormatCase kFormats[] = {
    {u"General Date", u"11/20/2026 3:04:05 PM"},
    {u"long date", u"Friday, November 20, 2026"},
    {u"medium date", u"20-Nov-26"},
    {u"Short Date", u"11/20/2026"},
    {u"Long Time", u"3:04:05 PM"},
    {u"Medium Time", u"03:04 PM"},
    {u"Short Time", u"15:04"},
    {u"mm/dd/yyyy hh:nn:ss", u"11/20/2026 15:04:05"},
    {u"hh:mm", u"15:04"},
    {u"mm hh:mm mm", u"11 15:04 11"},
    {u"d dd ddd dddd", u"20 20 Fri Friday"},
    {u"m mm mmm mmmm", u"11 11 Nov November"},
    {u"y yy yyyy", u"324 26 2026"},
    {u"q w ww", u"4 6 47"},
    {u"h:n:s am/pm", u"3:4:5 pm"},
    {u"h A/P", u"3 P"},
    {u"\\h\\i \"day\" d", u"hi day 20"},
    {u"c", u"11/20/2026 3:04:05 PM"},
    {u"ddddd ttttt", u"11/20/2026 3:04:05 PM"},
    {u"dddddd", u"Friday, November 20, 2026"},
    {u"", u""},
    {u"\\", u""},
    {u"\"", u""},
};
INSTANTIATE_TEST_SUITE_P(Patterns, DateFormat, testing::ValuesIn(kFormats));

TEST(DateFormatTest, GeneralDateLeavesOutMidnight) {
    EXPECT_EQ(jet::FormatGeneralDate(jet::DaysFromCivil({2026, 11, 20})), u"11/20/2026");
}

TEST(DateFormatTest, GeneralDateShowsOnlyTheTimeOnDayZero) {
    EXPECT_EQ(jet::FormatGeneralDate(0), u"12:00:00 AM");
    EXPECT_EQ(jet::FormatGeneralDate(0.25), u"6:00:00 AM");
}

TEST(DateFormatTest, WhatGeneralDateWritesIsReadAsTheSameDate) {
    for (const double days : {Afternoon(), 2.0, 0.75, -400.5}) {
        const auto read = jet::ParseDate(jet::FormatGeneralDate(days), 2026);
        ASSERT_TRUE(read.has_value());
        EXPECT_DOUBLE_EQ(*read, days);
    }
}

}  // namespace
