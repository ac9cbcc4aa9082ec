#include "maintenance/launcher_record.h"

#include "maintenance/launcher_statements.h"

#include <gtest/gtest.h>

namespace maintenance {
namespace {

LauncherRecord Parsed(const char16_t* line) {
    const auto record = ParseLauncherLine(QString::fromUtf16(line));
    EXPECT_TRUE(record.has_value());
    return record.value_or(LauncherRecord{});
}

TEST(LauncherRecordTest, AVPinMameTableWithoutACompanyHasVPinMameAsItsCompany) {
    LauncherRecord expected;
    expected.name = QStringLiteral("Attack");
    expected.version = QStringLiteral("1.1");
    expected.checksum = QStringLiteral("$1A2B3C4D");
    expected.key = QStringLiteral("1A2B3C4D");
    expected.author = QStringLiteral("Someone");
    expected.year = QStringLiteral("1999");
    expected.company = QStringLiteral("VPinMame");
    expected.pin_mame = true;
    EXPECT_EQ(Parsed(u"Attack\\1.1\\$1A2B3C4D\\Someone\\1999\\-\\VPinMame"), expected);
}

TEST(LauncherRecordTest, AnEmptyLastFieldCounts) {
    const LauncherRecord record = Parsed(u"Attack\\1.1\\$1A2B3C4D\\Someone\\1999\\Bally\\");
    EXPECT_EQ(record.company, QStringLiteral("Bally"));
    EXPECT_FALSE(record.pin_mame);
}

TEST(LauncherRecordTest, OnlyOneDollarIsTakenOffTheKey) {
    EXPECT_EQ(Parsed(u"a\\1\\$$AB\\c\\d\\e\\f").key, QStringLiteral("$AB"));
    EXPECT_EQ(Parsed(u"a\\1\\AB$\\c\\d\\e\\f").key, QStringLiteral("AB$"));
}

TEST(LauncherRecordTest, TheVPinMameMarkIsComparedWithItsLetterCase) {
    EXPECT_FALSE(Parsed(u"a\\1\\AB\\c\\d\\e\\vpinmame").pin_mame);
    EXPECT_FALSE(Parsed(u"a\\1\\AB\\c\\d\\e\\VPinMame ").pin_mame);
    EXPECT_TRUE(Parsed(u"a\\1\\AB\\c\\d\\e\\VPinMame").pin_mame);
}

TEST(LauncherRecordTest, OnlyExactlyOneHyphenMeansNoCompany) {
    EXPECT_EQ(Parsed(u"a\\1\\AB\\c\\d\\- \\f").company, QStringLiteral("- "));
    EXPECT_EQ(Parsed(u"a\\1\\AB\\c\\d\\--\\f").company, QStringLiteral("--"));
}

TEST(LauncherRecordTest, FieldsPastTheSeventhAreIgnored) {
    EXPECT_EQ(Parsed(u"a\\1\\AB\\c\\d\\e\\f\\g\\h"), Parsed(u"a\\1\\AB\\c\\d\\e\\f"));
}

TEST(LauncherRecordTest, ALineOfFewerThanSevenFieldsIsNoRecord) {
    EXPECT_FALSE(ParseLauncherLine(QString()));
    EXPECT_FALSE(ParseLauncherLine(QStringLiteral("a\\1\\AB\\c\\d\\e")));
}

TEST(LauncherRecordTest, ALineWithANulIsNoRecord) {
    EXPECT_FALSE(ParseLauncherLine(QStringLiteral("a\\1\\AB\\c\\d\\e\\f") + QChar(u'\0')));
}

TEST(LauncherStatementsTest, TheKeyIsNotQuotedAndTheColumnsNamesDifferByStatement) {
    EXPECT_EQ(MatchQuery(MatchColumn::kChecksum, QStringLiteral("it's"), {}),
              QStringLiteral("Select * from Tables where (CRC = 'it's')"));
    EXPECT_EQ(MatchQuery(MatchColumn::kDisplayName, QStringLiteral("AB"),
                         DateCondition(QStringLiteral("1/2/2003"))),
              QStringLiteral("Select * from Tables where (DisplayName = 'AB' AND "
                             "[Tables]![DateAdded] > #1/2/2003#)"));
}

TEST(LauncherStatementsTest, TheUpdateDoublesQuotesInValues) {
    LauncherRecord record = Parsed(u"n\\1'1\\$AB\\O'Brien\\19'99\\Bal'ly\\x");
    EXPECT_EQ(UpdateStatement(record, MatchColumn::kChecksum, {}),
              QStringLiteral("Update TABLES Set tables.Version = '1''1', tables.Author='O''Brien', "
                             "tables.Year= '19''99',tables.Company='Bal''ly', tables.PinMame "
                             "=False Where (Tables.CRC= 'AB')"));
}

TEST(LauncherStatementsTest, TheUpdateOfOneRowNamesItsId) {
    LauncherRecord record = Parsed(u"n\\1\\AB\\a\\1999\\c\\VPinMame");
    EXPECT_EQ(UpdateStatement(record, MatchColumn::kDisplayName,
                              DateCondition(QStringLiteral("1/2/2003")), 17),
              QStringLiteral("Update TABLES Set tables.Version = '1', tables.Author='a', "
                             "tables.Year= '1999',tables.Company='c', tables.PinMame =True Where "
                             "(Tables.DisplayName= 'AB' AND [Tables]![DateAdded] > #1/2/2003#) "
                             "AND Tables.ID = 17"));
}

}  // namespace
}  // namespace maintenance
