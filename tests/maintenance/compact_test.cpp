#include "maintenance/compact.h"

#include "jet/pages/lock_file.h"
#include "maintenance/command_fixture.h"
#include "support/check_database.h"
#include "support/forwarding_files.h"
#include "support/full_disk.h"

#include <QtCore/QFileInfo>

namespace maintenance {
namespace {

class CompactTest : public test_support::CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        for (int i = 0; i < 60; ++i)
            AddTable(QStringLiteral("/t%1.vpt").arg(i));
        Execute(QStringLiteral("update Tables set Notes = String(1800, 'n')"));
        Execute(QStringLiteral("delete from Tables where ID > 10"));
        ASSERT_TRUE(connection->Flush().ok());
    }

    void Compact() { Compact(*files); }
    void Compact(jet::FileSystem& other_files) {
        done = CompactData(Context(), other_files, {},
                           [this](const QString& text) { results.append(text); });
    }
    qint64 Size() { return QFileInfo(DatabasePath()).size(); }
    QByteArray Content() {
        QFile file(DatabasePath());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    QStringList Spares() { return QDir(folder.path()).entryList({QStringLiteral("*-new")}); }
    static QString Shown(qint64 bytes) {
        return QLocale(QLocale::English, QLocale::UnitedStates)
            .formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
    }

    QStringList results;
    base::Status done;
};

TEST_F(CompactTest, SaysWhatItWillBringAndWhatItHasBrought) {
    const qint64 before = Size();
    Compact();
    const qint64 after = Size();
    EXPECT_LT(after, before);
    EXPECT_EQ(prompts.messages, std::vector{(platform::Message{
                                    QStringLiteral("The catalogue takes %1 and will take %2.\n"
                                                   "Are you sure you want to continue?")
                                        .arg(Shown(before), Shown(after)),
                                    QStringLiteral("Compact"), platform::MessageIcon::kExclamation,
                                    platform::MessageButtons::kYesNo})});
    EXPECT_EQ(results, QStringList{QStringLiteral("Catalogue compacted: %1 before, %2 now")
                                       .arg(Shown(before), Shown(after))});
    ASSERT_FALSE(runner.progress.empty());
    EXPECT_EQ(runner.progress.back().first, runner.progress.back().second);
}

TEST_F(CompactTest, TheCatalogueGoesOnWithIdsAndNumbers) {
    Compact();
    EXPECT_EQ(RowCount(), QStringLiteral("10"));
    AddTable(QStringLiteral("/next.vpt"));
    EXPECT_EQ(Scalar(QStringLiteral("select max(ID) from Tables")), QStringLiteral("61"));
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_TRUE(test_support::DatabaseIsSound(DatabasePath().toStdString()));
}

TEST_F(CompactTest, StoppedItAsksNothing) {
    runner.stops_at = 0;
    const QByteArray before = Content();
    Compact();
    EXPECT_TRUE(base::IsStopped(done));
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(Content(), before);
}

// The old file stays, and is open again.
TEST_F(CompactTest, StoppedWhileItWritesItLeavesTheOldFile) {
    const QByteArray before = Content();
    runner.stops_at = 0;
    runner.stops_after_runs = 1;  // the first finds out what it would bring
    Compact();
    EXPECT_TRUE(base::IsStopped(done));
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(Content(), before);
    EXPECT_EQ(Spares(), QStringList());
    EXPECT_TRUE(results.isEmpty());
    EXPECT_EQ(RowCount(), QStringLiteral("10"));
}

TEST_F(CompactTest, NoChangesNothing) {
    const QByteArray before = Content();
    prompts.answers = {platform::MessageAnswer::kNo};
    Compact();
    EXPECT_EQ(Content(), before);
    EXPECT_TRUE(results.empty());
}

TEST_F(CompactTest, WithoutUnusedSpaceThereIsNothingToDo) {
    Compact();
    const QByteArray compacted = Content();
    prompts.messages.clear();
    Compact();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("The catalogue takes %1 and has no unused space.").arg(Shown(Size())));
    EXPECT_EQ(prompts.messages[0].buttons, platform::MessageButtons::kOk);
    EXPECT_EQ(Content(), compacted);
    EXPECT_EQ(results.size(), 1);
}

TEST_F(CompactTest, AFullDiskIsToldAndChangesNothing) {
    const QByteArray before = Content();
    for (int writes = 0; writes < 2; ++writes) {
        prompts.messages.clear();
        test_support::FullDisk disk(*files, writes);
        Compact(disk);
        ASSERT_EQ(prompts.messages.size(), 2U);
        EXPECT_EQ(prompts.messages[1].icon, platform::MessageIcon::kExclamation);
        EXPECT_FALSE(prompts.messages[1].text.isEmpty());
        EXPECT_TRUE(results.empty());
        EXPECT_EQ(Content(), before);
        EXPECT_TRUE(Spares().empty());
        EXPECT_EQ(RowCount(), QStringLiteral("10")) << "the catalogue is open again";
    }
}

TEST_F(CompactTest, ADamagedCatalogueIsLeftAsItIs) {
    DamagePageWith(QStringLiteral("nnnnnnnn"));
    const QByteArray before = Content();
    Compact();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(Content(), before);
    EXPECT_TRUE(connection->is_open());
}

// Another program takes the file as soon as it is free.
class TakenFiles final : public test_support::ForwardingFiles {
public:
    TakenFiles(jet::FileSystem& system, std::filesystem::path database)
        : ForwardingFiles(system), system_(system), database_(std::move(database)) {}
    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (path == database_ && !holder_) {
            holder_ = system_.Open(path, jet::OpenMode::kReadWrite).value();
            EXPECT_TRUE(holder_->Lock(jet::FileLock::kExclusive, jet::kBehindContent).ok());
        }
        return ForwardingFiles::Open(path, mode);
    }
    void LetGo() { holder_.reset(); }

private:
    jet::FileSystem& system_;
    std::filesystem::path database_;
    std::unique_ptr<jet::File> holder_;
};

TEST_F(CompactTest, AFileThatAnotherProgramHasTakenIsToldAndTheNextAttemptOpensIt) {
    const QByteArray before = Content();
    TakenFiles taken(*files, DatabasePath().toStdString());
    Compact(taken);
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_TRUE(prompts.messages[1].text.startsWith(
        QStringLiteral("The catalogue was closed for compacting and cannot be opened again: ")));
    EXPECT_FALSE(connection->is_open());
    EXPECT_EQ(Content(), before);
    taken.LetGo();
    Compact();
    EXPECT_EQ(prompts.messages.size(), 2U) << "it was wanted already";
    EXPECT_EQ(RowCount(), QStringLiteral("10"));
    EXPECT_EQ(results.size(), 1);
}

}  // namespace
}  // namespace maintenance
