// Every error of the table: its number, its text, and what stands in the places of the text.
#include "jet/errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

using jet::ErrorBecause;
using jet::ErrorNumber;
using jet::JetError;

struct Listed {
    ErrorNumber error;
    std::int32_t number;
    base::StatusCode code;
    std::string_view text;
};

constexpr Listed kAll[] = {
#define JET_ERROR(name, number, code, text)                                                        \
    {ErrorNumber::name, number, base::StatusCode::code, text},
#include "jet/error_table.h"
#undef JET_ERROR
};

TEST(JetErrorTest, EveryErrorHasItsNumberCodeAndText) {
    for (const Listed& listed : kAll) {
        const base::Status status = JetError(listed.error, u"\u00C4", u"B");
        EXPECT_EQ(status.number(), listed.number);
        EXPECT_EQ(status.code(), listed.code) << listed.number;
        EXPECT_TRUE(jet::Is(status, listed.error)) << listed.number;
        const auto places = std::ranges::count(listed.text, '|');
        EXPECT_LE(places, 2) << listed.number;
        std::string expected(listed.text);
        if (places > 0) expected.replace(expected.find('|'), 1, "\xC3\x84");
        if (places > 1) expected.replace(expected.find('|'), 1, "B");
        EXPECT_EQ(status.message(), expected);
        EXPECT_EQ(status.message().find('|'), std::string::npos) << listed.number;
    }
}

TEST(JetErrorTest, NumbersAscendAndNoTextStandsTwice) {
    for (std::size_t i = 0; i < std::size(kAll); ++i) {
        EXPECT_FALSE(kAll[i].text.empty()) << kAll[i].number;
        for (std::size_t k = 0; k < i; ++k) {
            EXPECT_LT(kAll[k].number, kAll[i].number);
            EXPECT_NE(kAll[k].text, kAll[i].text) << kAll[k].number << ", " << kAll[i].number;
        }
    }
}

TEST(JetErrorTest, AReasonStandsBehindTheText) {
    EXPECT_EQ(ErrorBecause(ErrorNumber::kReadOnly, "Why.").message(),
              "Cannot update. Database or object is read-only. (Why.)");
    EXPECT_EQ(jet::DamagedPage(7, "no row").message(),
              "The database file is damaged: page 7: no row.");
}

TEST(JetErrorTest, ANumberThatIsNoErrorIsAnswered) {
    const base::Status status = JetError(static_cast<ErrorNumber>(3002), u"x");
    EXPECT_EQ(status.number(), 3002);
    EXPECT_FALSE(status.message().empty());
}

}  // namespace
