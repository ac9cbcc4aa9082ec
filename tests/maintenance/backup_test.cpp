#include "maintenance/backup.h"

#include "catalogue/field_text.h"
#include "maintenance/command_fixture.h"
#include "maintenance/failing_files.h"
#include "support/forwarding_files.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

namespace maintenance {
namespace {

class BackupTest : public test_support::CommandFixture {
protected:
    QString BackupPath() const { return folder.filePath(QStringLiteral("pinball.BU")); }
    base::Status TryBackup() { return BackupData(Context(), QStringLiteral("the caption")); }
    void Backup() {
        const auto made = TryBackup();
        EXPECT_TRUE(made.ok()) << made.message();
    }

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
                  QStringLiteral("Database copied to:%1pinball.BU\r\nRename to %1pinball.mdb "
                                 "WHILE TAVOLO IS NOT RUNNING to restore.")
                      .arg(folder.prefix()),
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

TEST_F(BackupTest, AFolderInItsPlaceEndsItWithoutABox) {
    QDir(folder.path()).mkpath(QStringLiteral("pinball.BU/inside"));
    EXPECT_FALSE(TryBackup().ok());
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
        const base::Status made = BackupData(Context(), failing, QString());
        EXPECT_EQ(made.ok(), !failing.failed()) << made.message();
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

TEST_F(BackupTest, AClosedCatalogueEndsItWithoutABox) {
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(TryBackup().ok());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_FALSE(QFile::exists(BackupPath()));
}

// Notes in which order a copy is synced and renamed.
class RecordingFiles final : public test_support::ForwardingFiles {
public:
    explicit RecordingFiles(jet::FileSystem& system) : ForwardingFiles(system) {}
    std::vector<std::string> calls;

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = ForwardingFiles::Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<Recorded>(std::move(file).value(), *this, path.filename().string()));
    }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        calls.push_back("rename " + from.filename().string() + " to " + to.filename().string());
        return ForwardingFiles::Rename(from, to);
    }
    base::Status SyncFolder(const std::filesystem::path& folder) override {
        calls.emplace_back("sync folder");
        return ForwardingFiles::SyncFolder(folder);
    }

private:
    class Recorded final : public test_support::ForwardingFile {
    public:
        Recorded(std::unique_ptr<jet::File> file, RecordingFiles& files, std::string name)
            : ForwardingFile(std::move(file)), files_(files), name_(std::move(name)) {}
        ~Recorded() override { Note("close"); }
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            Note("write");
            return ForwardingFile::WriteAt(offset, bytes);
        }
        base::Status Sync() override {
            Note("sync");
            return ForwardingFile::Sync();
        }

    private:
        void Note(const char* call) {
            const std::string text = std::string(call) + ' ' + name_;
            if (name_ == "pinball.BU.new" && (files_.calls.empty() || files_.calls.back() != text))
                files_.calls.push_back(text);
        }
        RecordingFiles& files_;
        std::string name_;
    };
};

TEST_F(BackupTest, TheCopyIsOnTheDiskBeforeItTakesThePlaceOfTheOldOne) {
    RecordingFiles recording(*files);
    EXPECT_TRUE(BackupData(Context(), recording, QString()).ok());
    EXPECT_EQ(recording.calls,
              (std::vector<std::string>{"write pinball.BU.new", "sync pinball.BU.new",
                                        "close pinball.BU.new",
                                        "rename pinball.BU.new to pinball.BU", "sync folder"}));
}

}  // namespace
}  // namespace maintenance
