#include "cli/cli_fixture.h"

#include "support/full_disk.h"

namespace cli {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class SnapshotCommandsTest : public CliFixture {};

TEST_F(SnapshotCommandsTest, SnapshotPrintsItsLine) {
    EXPECT_EQ(Run("snapshot"), kDone);
    EXPECT_EQ(console.out, "1\t2026-11-20 15:04:05\tby hand\t" +
                               std::to_string(DatabaseBytes().size()) + "\tgood\n");
    EXPECT_EQ(Run("snapshot"), kDone);
    EXPECT_THAT(console.out, StartsWith("1\t"));
    EXPECT_EQ(console.error, "nothing has changed since then\n");
}

TEST_F(SnapshotCommandsTest, ASnapshotIsMadeBesideAProgramThatHasTheCatalogue) {
    WithConnection([&](jet::Connection& connection) {
        ASSERT_TRUE(connection.Execute(u"Update Tables set Notes = 'open'").ok());
        EXPECT_EQ(Run("snapshot"), kDone);
        EXPECT_EQ(Run("restore 1"), kInUse);
    });
    Sql("Update Tables set Notes = 'later'");
    EXPECT_EQ(Run("restore 1"), kDone);
    EXPECT_EQ(Scalar("Select Notes from Tables where ID = 1"), "open");
}

TEST_F(SnapshotCommandsTest, RestoreListsTheNewestFirst) {
    Run("snapshot");
    Sql("Update Tables set Notes = 'second'");
    clock.now = clock.now.addDays(1);
    Run("snapshot");
    EXPECT_EQ(Run("restore"), kDone);
    EXPECT_THAT(console.out, StartsWith("2\t2026-11-21 15:04:05\tby hand\t"));
    EXPECT_THAT(console.out, HasSubstr("\n1\t2026-11-20 15:04:05\tby hand\t"));
}

TEST_F(SnapshotCommandsTest, RestoreTellsTheDifferenceAndKeepsToday) {
    Run("snapshot");
    Sql("Delete from Tables where DisplayName = 'Taxi'");
    Sql("Update Tables set Notes = 'changed' where DisplayName = 'Fathom'");
    const QByteArray before = DatabaseBytes();
    EXPECT_EQ(Run("restore --dry-run 1"), kDone);
    EXPECT_EQ(console.out, "Tables: 1 more, 0 fewer, 1 different\n");
    EXPECT_EQ(DatabaseBytes(), before);
    EXPECT_EQ(Run("restore 1"), kDone);
    EXPECT_EQ(console.error, "The catalogue was restored. The state before is snapshot 2.\n");
    EXPECT_EQ(Scalar("Select Count(*) from Tables"), "3");
    EXPECT_EQ(Run("restore 2"), kDone);
    EXPECT_EQ(Scalar("Select Count(*) from Tables"), "2");
}

TEST_F(SnapshotCommandsTest, TheBackupIsRestoredByItsName) {
    Run("backup");
    Sql("Delete from Tables");
    EXPECT_EQ(Run("restore"), kDone);
    EXPECT_THAT(console.out, StartsWith("BU\t"));
    EXPECT_EQ(Run("restore BU"), kDone);
    EXPECT_EQ(Scalar("Select Count(*) from Tables"), "3");
}

TEST_F(SnapshotCommandsTest, WhatIsNotThereIsTold) {
    EXPECT_EQ(Run("restore 5"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: there is no snapshot 5\n");
    EXPECT_EQ(Run("restore"), kDone);
    EXPECT_EQ(console.out, "");
}

TEST_F(SnapshotCommandsTest, ADamagedCatalogueIsKeptAndReplaced) {
    Run("snapshot");
    QFile file(DatabasePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no database");
    file.close();
    EXPECT_EQ(Run("list"), kFailed);
    EXPECT_EQ(Run("restore 1"), kDone);
    EXPECT_EQ(console.error, "The catalogue was restored. The damaged file is kept as "
                             "pinball.damaged-20261120-150405.mdb.\n");
    EXPECT_EQ(Scalar("Select Count(*) from Tables"), "3");
}

TEST_F(SnapshotCommandsTest, CommandsThatChangeManyTablesMakeOneBefore) {
    for (const char* command : {"scan", "update", "crc"}) {
        Sql("Update Tables set Notes = '" + std::string(command) + "', CRC = Null");
        const QStringList words =
            command == std::string_view("scan")
                ? QStringList{QStringLiteral("scan"), folder.filePath(QStringLiteral("tables"))}
                : QStringList{QString::fromLatin1(command)};
        EXPECT_EQ(Run(words), kDone) << console.error;
        EXPECT_EQ(Run("restore"), kDone);
        EXPECT_THAT(console.out, HasSubstr("\tbefore " + std::string(command) + "\t"));
    }
    Sql("Update Tables set Notes = 'import'");
    console.in = "ID,Notes\n1,imported\n";
    EXPECT_EQ(Run("import -"), kDone);
    EXPECT_EQ(Run("restore"), kDone);
    EXPECT_THAT(console.out, HasSubstr("\tbefore import\t"));
    EXPECT_EQ(Run("restore 4"), kDone);
    EXPECT_EQ(Scalar("Select Notes from Tables where ID = 1"), "import");
}

TEST_F(SnapshotCommandsTest, ADryRunMakesNone) {
    EXPECT_EQ(Run("update --dry-run"), kDone);
    EXPECT_EQ(Run("restore"), kDone);
    EXPECT_EQ(console.out, "");
}

TEST_F(SnapshotCommandsTest, AFullDiskDoesNotStopACommand) {
    QFile blocked(DatabasePath() + QStringLiteral("-snapshots"));
    ASSERT_TRUE(blocked.open(QIODevice::WriteOnly));  // a file where the folder should be
    EXPECT_EQ(Run("update"), kDone);
    EXPECT_THAT(console.error, HasSubstr("tavolo-cli: no snapshot was made: "));
    EXPECT_EQ(Scalar("Select Author from Tables where ID = 2"), "Its Author");
    test_support::FullDisk disk(*files, 0);
    EXPECT_EQ(Run({QStringLiteral("snapshot")}, &disk), kFailed);
}

}  // namespace
}  // namespace cli
