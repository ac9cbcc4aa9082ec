#include "catalogue/pin_subs.h"

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

TEST(PathPiecesTest, AFolderKeepsItsSeparator) {
    EXPECT_EQ(GetFolder(QStringLiteral("C:\\Tables\\Foo.vpt")), QStringLiteral("C:\\Tables\\"));
    EXPECT_EQ(GetFolder(QStringLiteral("/home/me/Foo.vpt")), QStringLiteral("/home/me/"));
    EXPECT_EQ(GetFolder(QStringLiteral("Foo.vpt")), QString());
}

TEST(PathPiecesTest, AFileNameIsWhatFollowsTheLastSeparator) {
    EXPECT_EQ(GetFileName(QStringLiteral("C:\\Tables\\Foo.vpt")), QStringLiteral("Foo.vpt"));
    EXPECT_EQ(GetFileName(QStringLiteral("C:\\A\\")), QString());
    EXPECT_EQ(GetFileName(QStringLiteral("  ")), QString());
}

TEST(PathPiecesTest, AnExtensionIsFourCharacters) {
    EXPECT_EQ(StripExtension(QStringLiteral("Game.final.vpt")), QStringLiteral("Game.final"));
}

TEST(PathPiecesTest, ASeparatorIsAddedInTheKindOfThePath) {
    EXPECT_EQ(WithTrailingSeparator(QStringLiteral("C:\\Tables")), QStringLiteral("C:\\Tables\\"));
    EXPECT_EQ(WithTrailingSeparator(QStringLiteral("/home/me")), QStringLiteral("/home/me/"));
    EXPECT_EQ(WithTrailingSeparator(QStringLiteral("/home/me/")), QStringLiteral("/home/me/"));
}

TEST(DateTextTest, AMediumDateNamesTheMonth) {
    const QDateTime time(QDate(2026, 11, 5), QTime(15, 4, 5));
    EXPECT_EQ(MediumDate(time), QStringLiteral("05-Nov-26"));
}

TEST(DateTextTest, AGeneralDateShowsTheTimeUnlessItIsMidnight) {
    const QDate date(2026, 11, 20);
    EXPECT_EQ(GeneralDate(QDateTime(date, QTime(15, 4, 5))),
              QStringLiteral("11/20/2026 3:04:05 PM"));
    EXPECT_EQ(GeneralDate(QDateTime(date, QTime(0, 0))), QStringLiteral("11/20/2026"));
}

TEST(DateTextTest, DaysCountFromTheEndOf1899) {
    EXPECT_DOUBLE_EQ(ToOleDate(QDateTime(QDate(1900, 1, 1), QTime(12, 0))), 2.5);
}

TEST(FieldTextTest, NullIsTheEmptyText) {
    EXPECT_EQ(FieldText(jet::Value::Null()), QString());
    EXPECT_EQ(FieldText(jet::Value::Boolean(true)), QStringLiteral("True"));
    EXPECT_EQ(FieldText(jet::Value::DateTime(46346)), QStringLiteral("11/20/2026"));
    EXPECT_EQ(FieldText(jet::Value::Long(-3)), QStringLiteral("-3"));
}

}  // namespace
}  // namespace catalogue
