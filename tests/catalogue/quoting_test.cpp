#include "catalogue/quoting.h"

#include <gtest/gtest.h>

namespace catalogue {
namespace {

TEST(QuoteSqlTest, DoublesEveryApostrophe) {
    EXPECT_EQ(QuoteSql(QStringLiteral("a'b''c")), QStringLiteral("a''b''''c"));
}

TEST(QuoteSqlTest, LeavesABarAlone) {
    EXPECT_EQ(QuoteSql(QStringLiteral("a|b")), QStringLiteral("a|b"));
}

TEST(QuoteSqlTest, OfNothingIsNothing) {
    EXPECT_EQ(QuoteSql({}), QString());
    EXPECT_EQ(QuoteSqlExpr({}), QString());
}

TEST(QuoteSqlExprTest, WritesQuotesAndBarsAsCharacterCodes) {
    EXPECT_EQ(QuoteSqlExpr(QStringLiteral("a'b|c")),
              QStringLiteral("a' & chr(39) & 'b' & chr(124) & 'c"));
}

TEST(QuoteSqlExprTest, TheTextPutInForAQuoteIsNotRewritten) {
    EXPECT_EQ(QuoteSqlExpr(QStringLiteral("'")), QStringLiteral("' & chr(39) & '"));
    EXPECT_EQ(QuoteSqlExpr(QStringLiteral("|'")),
              QStringLiteral("' & chr(124) & '' & chr(39) & '"));
}

}  // namespace
}  // namespace catalogue
