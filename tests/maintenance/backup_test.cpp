#include "maintenance/backup.h"

#include "maintenance/command_fixture.h"
#include "maintenance/failing_files.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace maintenance {
namespace {

class BackupTest : public test_support::CommandFixture {
protected:
    QString BackupPath() const { return folder.filePath(QStringLiteral("pinball.BU")); }
    void Backup() { BackupData(Context(), QStringLiteral("the caption")); }

    // Number of rows of the backup, opened as a database of its own.
    QString RowsOfBackup() {
        const QString copy = folder.filePath(QStringLiteral("restored.mdb"));
        QFile::remove(copy);
        EXPECT_TRUE(QFile::copy(BackupPath(), copy));
        jet::Connection restored(*files);
        const auto opened =
            restored.Open((QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + copy)
                              .toStdU16String());
        EXPECT_TRUE(opened.ok()) << opened.message();
        auto rows = restored.Execute(u"select count(*) from Tables");
        if (!rows.ok()) return QStringLiteral("<error>");
        const auto value = rows->Fields(std::size_t{0});
        return value.ok() ? catalogue::FieldText(*value) : QStringLiteral("<error>");
    }
    static QByteArray Content(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    QStringList Entries() { return QDir(folder.path()).entryList({QStringLiteral("pinball.BU*")}); }
};

TEST_F(BackupTest, HoldsEveryRowThoughTheDatabaseIsOpen) {
    for (int i = 0; i < 100; ++i)
        AddTable(QStringLiteral("/t%1.vpt").arg(i));
    Backup();
    EXPECT_EQ(RowsOfBackup(), QStringLiteral("100"));
    AddTable(QStringLiteral("/later.vpt"));
    EXPECT_EQ(RowCount(), QStringLiteral("101")) << "the catalogue goes on working";
    EXPECT_EQ(RowsOfBackup(), QStringLiteral("100"));
}

TEST_F(BackupTest, TheMessageSaysWhereItIsAndHowToRestore) {
    Backup();
    EXPECT_EQ(prompts.messages,
              std::vector{(platform::Message{
                  QStringLiteral("Database copied to:%1/pinball.BU\r\nRename to %1/pinball.mdb "
                                 "WHILE TAVOLO IS NOT RUNNING to restore.")
                      .arg(folder.path()),
                  QStringLiteral("the caption"), platform::MessageIcon::kInformation,
                  platform::MessageButtons::kOk})});
    EXPECT_EQ(refreshes, 0);
}

TEST_F(BackupTest, ASecondBackupReplacesTheFirst) {
    Backup();
    AddTable(QStringLiteral("/t.vpt"));
    Backup();
    EXPECT_EQ(RowsOfBackup(), QStringLiteral("1"));
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("pinball.BU")});
}

TEST_F(BackupTest, AFolderInItsPlaceEndsItSilently) {
    QDir(folder.path()).mkpath(QStringLiteral("pinball.BU/inside"));
    Backup();
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_TRUE(QFileInfo(BackupPath()).isDir());
    EXPECT_EQ(Entries(), QStringList{QStringLiteral("pinball.BU")});
}

TEST_F(BackupTest, WhicheverCallFailsTheOldBackupStaysGood) {
    Backup();
    const QByteArray before = Content(BackupPath());
    for (int i = 0; i < 2000; ++i)
        AddTable(QStringLiteral("/some/longer/name/t%1.vpt").arg(i));
    prompts.messages.clear();
    int allowed = 0;
    for (;; ++allowed) {
        test_support::FailingFiles failing(*files, allowed);
        BackupData(Context(), failing, QString());
        if (!failing.failed()) break;
        EXPECT_TRUE(prompts.messages.empty()) << allowed;
        EXPECT_EQ(Content(BackupPath()), before) << allowed;
        EXPECT_EQ(Entries(), QStringList{QStringLiteral("pinball.BU")}) << allowed;
        ASSERT_LT(allowed, 100);
    }
    EXPECT_GE(allowed, 6) << "two opens, size, read, write, sync, rename";
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(RowsOfBackup(), QStringLiteral("2000"));
}

TEST_F(BackupTest, AClosedCatalogueEndsItSilently) {
    ASSERT_TRUE(connection->Close().ok());
    Backup();
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_FALSE(QFile::exists(BackupPath()));
}

}  // namespace
}  // namespace maintenance
