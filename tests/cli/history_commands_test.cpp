#include "cli/cli_fixture.h"

namespace cli {
namespace {

using testing::HasSubstr;

class HistoryCommandsTest : public CliFixture {
protected:
    std::string ListedTables() {
        EXPECT_EQ(Run("list --columns=ID,DisplayName,Year"), kDone) << console.error;
        return console.out;
    }
};

TEST_F(HistoryCommandsTest, ThereIsNoneAtFirst) {
    EXPECT_EQ(Run("history"), kDone);
    EXPECT_EQ(console.out, "");
    EXPECT_EQ(Run("undo"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: There is nothing to undo.\n");
    EXPECT_EQ(Run("undo --redo"), kFailed);
    EXPECT_EQ(Run("undo 1"), kFailed);
    EXPECT_EQ(Run("undo one"), kFailed);
    EXPECT_FALSE(QFile::exists(DatabasePath() + QStringLiteral("-history")));
}

TEST_F(HistoryCommandsTest, WhatACommandChangedIsTakenBack) {
    const std::string before = ListedTables();
    EXPECT_EQ(Run("set 2 Year=1999"), kDone);
    EXPECT_EQ(Run("update"), kDone);
    const std::string updated = ListedTables();
    EXPECT_EQ(Run("history"), kDone);
    EXPECT_THAT(console.out,
                testing::MatchesRegex("1\t.*\tEdit \\(1 table\\)\t1\t1\n"
                                      "2\t.*\tImport Data from VPTs \\(3 tables\\)\t3\t.+\n"));
    EXPECT_EQ(Run("undo"), kDone) << console.error;
    EXPECT_EQ(console.out, "Undo Import Data from VPTs (3 tables)\n");
    EXPECT_EQ(Run("undo"), kDone) << console.error;
    EXPECT_EQ(ListedTables(), before);
    EXPECT_EQ(Run("undo --redo"), kDone);
    EXPECT_EQ(Run("undo --redo"), kDone);
    EXPECT_EQ(console.out, "Redo Import Data from VPTs (3 tables)\n");
    EXPECT_EQ(ListedTables(), updated);
    EXPECT_EQ(Run("undo --redo"), kFailed);
    EXPECT_EQ(Run("history --json"), kDone);
    EXPECT_THAT(console.out, HasSubstr("\"name\": \"Redo Edit\", \"rows\": 1, \"fields\": 1}"));
}

TEST_F(HistoryCommandsTest, WhatWasChangedSinceStaysAndIsTold) {
    EXPECT_EQ(Run("set 2 Year=1999 Author=Me"), kDone);
    EXPECT_EQ(Run("set 2 Year=2001"), kDone);
    EXPECT_EQ(Run("undo 1"), kFailed);
    EXPECT_EQ(console.out, "Undo Edit (1 table)\n");
    EXPECT_EQ(console.error,
              "tavolo-cli: Tables, ID 2, Year: now '2001', was '1988': It was changed since.\n");
    EXPECT_EQ(Scalar("Select [Year] & Author from Tables where ID = 2"), "2001");
}

TEST_F(HistoryCommandsTest, ADryRunHasNoHistory) {
    EXPECT_EQ(Run("set 2 Year=1999 --dry-run"), kDone);
    EXPECT_FALSE(QFile::exists(DatabasePath() + QStringLiteral("-history")));
}

}  // namespace
}  // namespace cli
