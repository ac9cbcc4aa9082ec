#include "checksum/crc_refresh.h"

#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"
#include "support/fakes.h"
#include "support/full_disk.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace checksum {
namespace {

class CrcRefreshTest : public test_support::CatalogueFixture {
protected:
    QString MakeFile(const QString& name, const QByteArray& bytes = "123456789") {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    void AddRow(const QString& display_name, const QString& path,
                const QString& crc = QStringLiteral("old")) {
        Execute(QStringLiteral(
                    "Insert into Tables (DisplayName, FileName, CRC) Values ('%1', '%2', '%3')")
                    .arg(catalogue::QuoteSql(display_name), catalogue::QuoteSql(path), crc));
    }
    void Refresh() {
        lines.clear();
        const auto done =
            RefreshCrcs(catalogue, events, [this](const QString& line) { lines.append(line); });
        ASSERT_TRUE(done.ok()) << done.message();
    }
    QString CrcOf(const QString& display_name) {
        return Scalar(QStringLiteral("Select CRC from Tables where DisplayName = '%1'")
                          .arg(catalogue::QuoteSql(display_name)));
    }

    test_support::FakeEvents events;
    QStringList lines;
};

TEST_F(CrcRefreshTest, EveryExistingFileGetsItsChecksum) {
    AddRow(QStringLiteral("One"), MakeFile(QStringLiteral("one.vpt")));
    AddRow(QStringLiteral("Two"), MakeFile(QStringLiteral("two.vpt"), "abc"),
           QStringLiteral("352441C2"));
    Refresh();
    EXPECT_EQ(CrcOf(QStringLiteral("One")), QStringLiteral("CBF43926"));
    EXPECT_EQ(CrcOf(QStringLiteral("Two")), QStringLiteral("352441C2"));
}

TEST_F(CrcRefreshTest, ARowWithoutItsFileKeepsWhatItHad) {
    AddRow(QStringLiteral("Gone"), folder.filePath(QStringLiteral("gone.vpt")),
           QStringLiteral("12AB"));
    AddRow(QStringLiteral("Folder"), folder.path(), QStringLiteral("34CD"));
    AddRow(QStringLiteral("Foreign"), QStringLiteral("C:\\Tables\\a.vpt"), QStringLiteral("56EF"));
    Execute(QStringLiteral("Insert into Tables (DisplayName) Values ('Null')"));
    Refresh();
    EXPECT_EQ(CrcOf(QStringLiteral("Gone")), QStringLiteral("12AB"));
    EXPECT_EQ(CrcOf(QStringLiteral("Folder")), QStringLiteral("34CD"));
    EXPECT_EQ(CrcOf(QStringLiteral("Foreign")), QStringLiteral("56EF"));
    EXPECT_EQ(CrcOf(QStringLiteral("Null")), QString());
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(CrcRefreshTest, AnEmptyFileIsStoredAsZero) {
    AddRow(QStringLiteral("Empty"), MakeFile(QStringLiteral("empty.vpt"), {}));
    Refresh();
    EXPECT_EQ(CrcOf(QStringLiteral("Empty")), QStringLiteral("0"));
}

TEST_F(CrcRefreshTest, RowsAreVisitedInTheOrderOfTheirNames) {
    for (const auto* name : {u"delta", u"Alpha", u"charlie", u"Bravo"})
        AddRow(QString::fromUtf16(name),
               MakeFile(QString::fromUtf16(name) + QStringLiteral(".vpt")));
    Refresh();
    EXPECT_EQ(lines, (QStringList{QStringLiteral("Processing: Alpha  CBF43926"),
                                  QStringLiteral("Processing: Bravo  CBF43926"),
                                  QStringLiteral("Processing: charlie  CBF43926"),
                                  QStringLiteral("Processing: delta  CBF43926")}));
}

TEST_F(CrcRefreshTest, EventsAreProcessedOncePerRow) {
    AddRow(QStringLiteral("One"), MakeFile(QStringLiteral("one.vpt")));
    AddRow(QStringLiteral("Gone"), folder.filePath(QStringLiteral("gone.vpt")));
    AddRow(QStringLiteral("Two"), MakeFile(QStringLiteral("two.vpt")));
    Refresh();
    EXPECT_EQ(events.rounds, 3);
}

TEST_F(CrcRefreshTest, ManyRowsAreAllReached) {
    const QString path = MakeFile(QStringLiteral("one.vpt"));
    for (int i = 0; i < 300; ++i)
        AddRow(QStringLiteral("Table %1").arg(i), path);
    Refresh();
    EXPECT_EQ(lines.size(), 300);
    EXPECT_EQ(Scalar(QStringLiteral("Select count(*) from Tables where CRC = 'CBF43926'")),
              QStringLiteral("300"));
}

TEST_F(CrcRefreshTest, AnEmptyCatalogueHasNothingToDo) {
    Refresh();
    EXPECT_TRUE(lines.isEmpty());
    EXPECT_EQ(events.rounds, 0);
}

TEST_F(CrcRefreshTest, AClosedCatalogueIsAFailure) {
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(RefreshCrcs(catalogue, events, [](const QString&) {}).ok());
}

TEST_F(CrcRefreshTest, AFullDiskEndsTheRunAndTheCatalogueStaysGood) {
    const QString path = MakeFile(QStringLiteral("one.vpt"));
    for (int i = 0; i < 12; ++i)
        AddRow(QStringLiteral("Table %1").arg(i), path);
    ASSERT_TRUE(connection->Close().ok());
    int full_disks = 0;
    for (int writes = 0; writes < 500; ++writes) {
        const test_support::TemporaryDir work;
        const QString copy = work.filePath(QStringLiteral("copy.mdb"));
        ASSERT_TRUE(QFile::copy(DatabasePath(), copy));
        const std::u16string source = (QStringLiteral("Data Source=") + copy).toStdU16String();
        test_support::FullDisk disk(*files, writes);
        base::Status done;
        {
            jet::Connection on_disk(disk);
            catalogue::Catalogue other = catalogue;
            other.CatalogueConnection = &on_disk;
            done = on_disk.Open(source);
            if (done.ok()) done = RefreshCrcs(other, events, [](const QString&) {});
            on_disk.Close().Ignore();
        }
        ASSERT_TRUE(connection->Open(source).ok()) << writes;
        const int refreshed =
            Scalar(QStringLiteral("Select count(*) from Tables where CRC = 'CBF43926'")).toInt();
        const int old =
            Scalar(QStringLiteral("Select count(*) from Tables where CRC = 'old'")).toInt();
        EXPECT_EQ(refreshed + old, 12) << writes;
        if (done.ok()) {
            EXPECT_EQ(refreshed, 12) << writes;
        }
        ASSERT_TRUE(connection->Close().ok());
        if (!disk.was_full()) break;
        ++full_disks;
    }
    EXPECT_GT(full_disks, 10);
    EXPECT_LT(full_disks, 500);
}

TEST(ConfirmCrcRefreshTest, AsksInTheProgramsOwnWords) {
    test_support::FakePrompts prompts;
    EXPECT_TRUE(ConfirmCrcRefresh(prompts));
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(prompts.messages[0].title, QStringLiteral("CRC"));
    EXPECT_EQ(prompts.messages[0].buttons, platform::MessageButtons::kOkCancel);
    EXPECT_EQ(
        prompts.messages[0].text,
        QStringLiteral(
            "This will function will update the database with the current CRC values of your "
            "tables.\r"
            "This is required ONLY for files added to your database with versions of Tavolo prior "
            "to 1.5.0 beta\r\r"
            "This may take a few minutes depending on the nuber of tables in your database.\r\r"
            "This utility facilites import of VBLauncher data"));
}

TEST(ConfirmCrcRefreshTest, AnyAnswerButOkIsNo) {
    for (const auto answer : {platform::MessageAnswer::kCancel, platform::MessageAnswer::kNo}) {
        test_support::FakePrompts prompts;
        prompts.answers = {answer};
        EXPECT_FALSE(ConfirmCrcRefresh(prompts));
    }
}

TEST_F(CrcRefreshTest, ProgressGoesUpToTheTotal) {
    const QString path = MakeFile(QStringLiteral("one.vpt"));
    for (int i = 0; i < 4; ++i)
        AddRow(QStringLiteral("Table %1").arg(i), path);
    std::vector<std::pair<std::int64_t, std::int64_t>> progress;
    const auto note = [&](std::int64_t done, std::int64_t total) {
        progress.emplace_back(done, total);
    };
    ASSERT_TRUE(RefreshCrcs(
                    catalogue, events, [](const QString&) {}, note)
                    .ok());
    EXPECT_EQ(progress,
              (std::vector<std::pair<std::int64_t, std::int64_t>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}}));
}

TEST_F(CrcRefreshTest, AFileThatThePathMapFindsGetsItsChecksum) {
    MakeFile(QStringLiteral("one.vpt"));
    AddRow(QStringLiteral("One"), QStringLiteral("C:\\Tables\\One.vpt"));
    MapTablesHere();
    Refresh();
    EXPECT_EQ(CrcOf(QStringLiteral("One")), QStringLiteral("CBF43926"));
    EXPECT_EQ(Scalar(QStringLiteral("Select FileName from Tables")),
              QStringLiteral("C:\\Tables\\One.vpt"));
}

}  // namespace
}  // namespace checksum
