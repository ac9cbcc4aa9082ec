#include "history/change_names.h"

#include <gtest/gtest.h>

namespace history {
namespace {

Change Made(std::u16string name, std::vector<Change::TableCount> tables) {
    Change change;
    change.label.name = std::move(name);
    change.tables = std::move(tables);
    return change;
}

TEST(ChangeNamesTest, PinballTablesAreCalledTables) {
    EXPECT_EQ(DisplayName(Made(u"Purge", {{u"Tables", 3412}})), u"Purge (3,412 tables)");
    EXPECT_EQ(DisplayName(Made(u"Purge", {{u"TABLES", 1}})), u"Purge (1 table)");
}

TEST(ChangeNamesTest, OtherRowsAreRows) {
    EXPECT_EQ(DisplayName(Made(u"Import", {{u"Games", 1}})), u"Import (1 row)");
    EXPECT_EQ(DisplayName(Made(u"Import", {{u"Tables", 1}, {u"Games", 1000}})),
              u"Import (1,001 rows)");
}

TEST(ChangeNamesTest, WithoutANameOrRows) {
    EXPECT_EQ(DisplayName(Made(u"", {{u"Tables", 2}})), u"Other change (2 tables)");
    EXPECT_EQ(DisplayName(Made(u"Undo Purge", {})), u"Undo Purge");
    EXPECT_EQ(DisplayName(Made(u"Undo", {{u"Tables", 2}}), u"Purge"), u"Purge (2 tables)");
}

TEST(ChangeNamesTest, DigitsAreGroupedByThrees) {
    EXPECT_EQ(GroupedNumber(0), u"0");
    EXPECT_EQ(GroupedNumber(999), u"999");
    EXPECT_EQ(GroupedNumber(1000), u"1,000");
    EXPECT_EQ(GroupedNumber(12345678), u"12,345,678");
}

}  // namespace
}  // namespace history
