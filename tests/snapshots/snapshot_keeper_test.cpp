// The snapshots of a running program, on real files and with its connection open.
#include "snapshots/snapshot_keeper.h"

#include "snapshots/restore_catalogue.h"
#include "support/catalogue_fixture.h"
#include "support/full_disk.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace snapshots {
namespace {

class SnapshotKeeperTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        Execute(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('Alpha')"));
        keeper = std::make_unique<SnapshotKeeper>(*files, DatabaseOf(catalogue), clock);
    }
    std::vector<RestoreEntry> Entries() {
        auto entries = RestoreEntries(*files, keeper->store(), values.ApplicationFolder);
        EXPECT_TRUE(entries.ok()) << entries.status().message();
        return entries.value_or({});
    }
    QString Names() { return Scalar(QStringLiteral("Select First(DisplayName) from Tables")); }

    std::unique_ptr<SnapshotKeeper> keeper;
};

TEST_F(SnapshotKeeperTest, MakesOneBeforeACommandAndChecksItBeside) {
    keeper->MakeBefore(QStringLiteral("Purge Missing Tables"));
    Execute(QStringLiteral("Delete from Tables"));
    keeper->WaitUntilIdle();
    const auto list = keeper->store().List();
    ASSERT_TRUE(list.ok() && list->size() == 1U);
    EXPECT_EQ(list->front().state, SnapshotState::kGood);
    EXPECT_EQ(list->front().head.label, "Purge Missing Tables");
    EXPECT_EQ(ToDateTime(list->front().head.time), clock.now);
}

TEST_F(SnapshotKeeperTest, TheCatalogueHoldsNothingOfIt) {
    ASSERT_TRUE(connection->Flush().ok());
    QFile file(DatabasePath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    keeper->MakeBefore(QStringLiteral("Import"));
    keeper->WaitUntilIdle();
    file.seek(0);
    EXPECT_EQ(file.readAll(), before);
}

TEST_F(SnapshotKeeperTest, TheClockMakesOneEveryHourInWhichSomethingChanged) {
    const auto tick = [&] {
        ASSERT_TRUE(QMetaObject::invokeMethod(keeper.get(), "MakeByClock"));
        keeper->WaitUntilIdle();
    };
    tick();
    EXPECT_EQ(keeper->store().List()->size(), 1U);
    Execute(QStringLiteral("Update Tables set Notes = 'first'"));
    clock.now = clock.now.addSecs(3599);
    tick();
    EXPECT_EQ(keeper->store().List()->size(), 1U);
    clock.now = clock.now.addSecs(1);
    tick();
    EXPECT_EQ(keeper->store().List()->size(), 2U);
    clock.now = clock.now.addSecs(3600);
    tick();
    EXPECT_EQ(keeper->store().List()->size(), 2U);  // nothing changed
    EXPECT_EQ(Entries().front().occasion.toStdString(), "hourly");
}

TEST_F(SnapshotKeeperTest, AFullDiskIsToldOnceAndTheCommandGoesOn) {
    test_support::FullDisk disk(*files, 0);
    keeper = std::make_unique<SnapshotKeeper>(disk, DatabaseOf(catalogue), clock);
    QSignalSpy told(keeper.get(), &SnapshotKeeper::Failed);
    std::string text;
    QObject::connect(keeper.get(), &SnapshotKeeper::Failed,
                     [&](const base::Status& failure) { text = failure.message(); });
    keeper->MakeBefore(QStringLiteral("Import"));
    keeper->MakeBefore(QStringLiteral("Import"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !text.empty(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(told.count(), 1);
    EXPECT_EQ(text, "No snapshot was made: The disk is full.");
}

TEST_F(SnapshotKeeperTest, ADamagedCatalogueIsTold) {
    ASSERT_TRUE(connection->Flush().ok());
    QFile file(DatabasePath());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(qint64{2} * 4096));
    file.write("\x55");
    file.close();
    std::string text;
    QObject::connect(keeper.get(), &SnapshotKeeper::Failed,
                     [&](const base::Status& failure) { text = failure.message(); });
    keeper->MakeBefore(QStringLiteral("Import"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !text.empty(); }));
    EXPECT_TRUE(text.starts_with("No snapshot was kept: the catalogue is damaged (page 2")) << text;
    keeper->WaitUntilIdle();
    EXPECT_TRUE(keeper->store().List()->empty());
}

TEST_F(SnapshotKeeperTest, EndsWhileThereIsWorkLeft) {
    keeper->MakeBefore(QStringLiteral("Import"));
    keeper.reset();
    SnapshotStore store(*files, DatabaseOf(catalogue));
    const auto list = store.List();
    ASSERT_TRUE(list.ok());
    EXPECT_EQ(list->size(), 1U);
}

TEST_F(SnapshotKeeperTest, TheBackupIsInTheListToo) {
    keeper->MakeBefore(QStringLiteral("Import"));
    ASSERT_TRUE(QFile::copy(DatabasePath(), folder.filePath(QStringLiteral("pinball.BU"))));
    const auto entries = Entries();
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(std::count_if(entries.begin(), entries.end(),
                            [](const RestoreEntry& entry) { return !entry.snapshot; }),
              1);
}

TEST_F(SnapshotKeeperTest, TheCatalogueIsRestoredAndOpenAgain) {
    keeper->MakeBefore(QStringLiteral("Purge Missing Tables"));
    Execute(QStringLiteral("Update Tables set DisplayName = 'Beta'"));
    const RestoreEntry entry = Entries().front();
    const auto differences = CompareEntry(*files, keeper->store(), entry);
    ASSERT_TRUE(differences.ok());
    EXPECT_EQ(DifferenceText(differences->front()).toStdString(), "0 more, 0 fewer, 1 different");
    const auto restored = RestoreCatalogue(catalogue, *files, keeper->store(), entry);
    ASSERT_TRUE(restored.ok()) << restored.status().message();
    EXPECT_EQ(Names().toStdString(), "Alpha");
    EXPECT_EQ(RestoredText(*restored).toStdString(),
              "The catalogue was restored. The state before is snapshot 2.");
    ASSERT_TRUE(RestoreCatalogue(catalogue, *files, keeper->store(), Entries().front()).ok());
    EXPECT_EQ(Names().toStdString(), "Beta");
}

TEST_F(SnapshotKeeperTest, WhatCannotBeRestoredLeavesTheCatalogueOpen) {
    RestoreEntry missing;
    missing.snapshot = 17;
    const auto restored = RestoreCatalogue(catalogue, *files, keeper->store(), missing);
    EXPECT_EQ(restored.status().code(), base::StatusCode::kNotFound);
    EXPECT_EQ(Names().toStdString(), "Alpha");
    QFile copy(folder.filePath(QStringLiteral("copy")));
    ASSERT_TRUE(copy.open(QIODevice::WriteOnly));
    copy.write("no database");
    copy.close();
    RestoreEntry entry;
    entry.copy = copy.fileName().toStdU16String();
    EXPECT_FALSE(RestoreCatalogue(catalogue, *files, keeper->store(), entry).ok());
    EXPECT_EQ(Names().toStdString(), "Alpha");
}

class OfferTest : public SnapshotKeeperTest {
protected:
    void Damage() {
        keeper->MakeBefore(QStringLiteral("Import"));
        keeper->WaitUntilIdle();
        ASSERT_TRUE(connection->Close().ok());
        QFile file(DatabasePath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("no database any more");
        file.close();
        failure = catalogue::Main(catalogue);
        ASSERT_FALSE(failure.ok());
    }
    base::Status failure;
};

TEST_F(OfferTest, TheNewestGoodSnapshotIsOfferedWhenTheCatalogueCannotBeOpened) {
    Damage();
    EXPECT_TRUE(OfferNewestSnapshot(catalogue, *files, prompts, failure));
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[0].text.toStdString(),
              "The newest good snapshot of the catalogue is of 11/20/2026 3:04:05 PM (before "
              "Import).\n\nDo you want to restore it? The file as it is now is kept under a name "
              "of its own.");
    EXPECT_EQ(prompts.messages[1].text.toStdString(),
              "The catalogue was restored. The damaged file is kept as "
              "pinball.damaged-20261120-150405.mdb.");
    EXPECT_EQ(Names().toStdString(), "Alpha");
    QFile kept(folder.filePath(QStringLiteral("pinball.damaged-20261120-150405.mdb")));
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll().toStdString(), "no database any more");
}

TEST_F(OfferTest, WithNoNothingHappens) {
    Damage();
    prompts.answers = {platform::MessageAnswer::kNo};
    EXPECT_FALSE(OfferNewestSnapshot(catalogue, *files, prompts, failure));
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(QFile(DatabasePath()).size(), 20);
}

TEST_F(OfferTest, WithoutASnapshotNothingIsAsked) {
    EXPECT_FALSE(OfferNewestSnapshot(catalogue, *files, prompts,
                                     {base::StatusCode::kCorruption, "damaged"}));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(OfferTest, ACatalogueInUseIsNotReplaced) {
    keeper->MakeBefore(QStringLiteral("Import"));
    keeper->WaitUntilIdle();
    EXPECT_FALSE(
        OfferNewestSnapshot(catalogue, *files, prompts, {base::StatusCode::kBusy, "in use"}));
    EXPECT_TRUE(prompts.messages.empty());
}

}  // namespace
}  // namespace snapshots
