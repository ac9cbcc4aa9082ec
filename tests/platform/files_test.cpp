#include "platform/files.h"

#include "platform/application_folder.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <fstream>
#include <sys/stat.h>
#include <vector>

namespace {

class FilesTest : public testing::Test {
protected:
    QString In(const QString& name) const { return folder_.filePath(name); }
    void WriteFile(const QString& name, const char* text = "x") const {
        std::ofstream(platform::ToPath(In(name))) << text;
    }
    std::vector<QString> Listed(const QString& folder) const {
        std::vector<QString> names;
        const auto status = platform::ListFolder(folder, [&](const platform::FolderEntry& entry) {
            names.push_back(entry.name + (entry.is_folder ? QStringLiteral("/") : QString()));
        });
        EXPECT_TRUE(status.ok()) << status.message();
        std::sort(names.begin(), names.end());
        return names;
    }

    QTemporaryDir folder_;
    std::filesystem::path before_ = std::filesystem::current_path();
    ~FilesTest() override { std::filesystem::current_path(before_); }
};

TEST_F(FilesTest, AFileExists) {
    WriteFile(QStringLiteral("Über alles 'x'.vpt"));
    EXPECT_TRUE(platform::FileExists(In(QStringLiteral("Über alles 'x'.vpt"))));
}

TEST_F(FilesTest, AFolderIsNoFile) {
    EXPECT_FALSE(platform::FileExists(folder_.path()));
}

TEST_F(FilesTest, TheEmptyTextIsNoFile) {
    EXPECT_FALSE(platform::FileExists({}));
}

TEST_F(FilesTest, ATextWithANulIsNoFile) {
    WriteFile(QStringLiteral("a"));
    EXPECT_FALSE(platform::FileExists(In(QStringLiteral("a")) + QChar(0) + u'b'));
}

TEST_F(FilesTest, AWindowsPathNamesNothingEvenWhenAFileHasThatName) {
    std::filesystem::current_path(folder_.path().toStdString());
    std::ofstream("C:\\Foo.vpt") << "x";
    EXPECT_FALSE(platform::FileExists(QStringLiteral("C:\\Foo.vpt")));
    EXPECT_FALSE(platform::FileExists(QStringLiteral("\\\\server\\share\\Foo.vpt")));
}

TEST_F(FilesTest, APipeIsNoFileAndIsNotListed) {
    ASSERT_EQ(mkfifo(In(QStringLiteral("pipe.vpt")).toUtf8().constData(), 0600), 0);
    EXPECT_FALSE(platform::FileExists(In(QStringLiteral("pipe.vpt"))));
    EXPECT_TRUE(Listed(folder_.path()).empty());
}

TEST_F(FilesTest, SizeIsInBytes) {
    WriteFile(QStringLiteral("a"), "12345");
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("a"))).value_or(-1), 5);
}

TEST_F(FilesTest, SizeOfAMissingFileIsNotFound) {
    const auto size = platform::FileSize(In(QStringLiteral("a")));
    EXPECT_EQ(size.status().code(), base::StatusCode::kNotFound);
    EXPECT_EQ(size.status().number(), 53);
}

TEST_F(FilesTest, LastModifiedIsLocalTime) {
    WriteFile(QStringLiteral("a"));
    const QDateTime time(QDate(2003, 7, 9), QTime(23, 1, 2));
    QFile file(In(QStringLiteral("a")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(time, QFileDevice::FileModificationTime));
    EXPECT_EQ(platform::LastModified(file.fileName()), time);
    EXPECT_EQ(platform::LastModified(file.fileName()).timeSpec(), Qt::LocalTime);
}

TEST_F(FilesTest, LastModifiedOfAMissingFileIsInvalid) {
    EXPECT_FALSE(platform::LastModified(In(QStringLiteral("a"))).isValid());
}

TEST_F(FilesTest, AListingTellsFilesFromFoldersAndFollowsLinks) {
    WriteFile(QStringLiteral("a.vpt"));
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("sub")));
    ASSERT_TRUE(QFile::link(In(QStringLiteral("sub")), In(QStringLiteral("to sub"))));
    ASSERT_TRUE(QFile::link(In(QStringLiteral("a.vpt")), In(QStringLiteral("to a"))));
    ASSERT_TRUE(QFile::link(In(QStringLiteral("gone")), In(QStringLiteral("to nothing"))));
    const std::vector<QString> expected = {QStringLiteral("a.vpt"), QStringLiteral("sub/"),
                                           QStringLiteral("to a"), QStringLiteral("to sub/")};
    EXPECT_EQ(Listed(folder_.path() + u'/'), expected);
}

TEST_F(FilesTest, AListedNameThatIsNotUtf8CanBeOpenedAgain) {
    const std::string raw = folder_.path().toStdString() + "/S\xFC"
                                                           "d\xF0\x9F\x98\x80.vpt";
    std::ofstream(raw) << "x";
    const auto names = Listed(folder_.path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_TRUE(platform::FileExists(In(names[0])));
    EXPECT_EQ(platform::ToPath(In(names[0])).native(), raw);
    std::filesystem::remove(raw);
}

TEST_F(FilesTest, AMissingFolderCannotBeListed) {
    bool called = false;
    const auto status = platform::ListFolder(In(QStringLiteral("gone")),
                                             [&](const platform::FolderEntry&) { called = true; });
    EXPECT_EQ(status.code(), base::StatusCode::kNotFound);
    EXPECT_FALSE(called);
}

TEST_F(FilesTest, AFileCannotBeListed) {
    WriteFile(QStringLiteral("a"));
    EXPECT_FALSE(platform::ListFolder(In(QStringLiteral("a")), [](const auto&) {}).ok());
}

TEST_F(FilesTest, TwoNamesOfAFolderHaveOneIdentity) {
    ASSERT_TRUE(QFile::link(folder_.path(), In(QStringLiteral("loop"))));
    const QString identity = platform::FolderIdentity(folder_.path());
    EXPECT_FALSE(identity.isEmpty());
    EXPECT_EQ(platform::FolderIdentity(In(QStringLiteral("loop/loop"))), identity);
    EXPECT_NE(platform::FolderIdentity(QStringLiteral("/")), identity);
}

TEST_F(FilesTest, AFileAndAMissingFolderHaveNoIdentity) {
    WriteFile(QStringLiteral("a"));
    EXPECT_TRUE(platform::FolderIdentity(In(QStringLiteral("a"))).isEmpty());
    EXPECT_TRUE(platform::FolderIdentity(In(QStringLiteral("gone"))).isEmpty());
}

TEST_F(FilesTest, ChangingTheDirectoryMovesTheProcess) {
    EXPECT_TRUE(platform::ChangeDirectory(folder_.path() + u'/').ok());
    EXPECT_TRUE(
        std::filesystem::equivalent(std::filesystem::current_path(), folder_.path().toStdString()));
}

class NoSuchFolder : public FilesTest, public testing::WithParamInterface<const char*> {};

TEST_P(NoSuchFolder, IsPathNotFound) {
    const auto status = platform::ChangeDirectory(QString::fromUtf8(GetParam()));
    EXPECT_EQ(status.code(), base::StatusCode::kNotFound);
    EXPECT_EQ(status.number(), 76);
}

INSTANTIATE_TEST_SUITE_P(FilesTest, NoSuchFolder,
                         testing::Values("", "/no/such/folder", "C:\\Tables\\", "/etc/passwd"));

TEST(ApplicationFolderTest, TheProgramFolderHoldsThisProgram) {
    EXPECT_TRUE(platform::FileExists(
        platform::FileIn(platform::ProgramFolder(), QStringLiteral("platform_tests"))));
}

TEST(ApplicationFolderTest, TheUserDataFolderFollowsTheDesktop) {
    qputenv("XDG_DATA_HOME", "/tmp/data home");
    EXPECT_EQ(platform::UserDataFolder(), QStringLiteral("/tmp/data home/tavolo"));
    qunsetenv("XDG_DATA_HOME");
}

TEST(ApplicationFolderTest, OnlyAnExistingFolderIsWritable) {
    const QTemporaryDir folder;
    EXPECT_TRUE(platform::IsWritableFolder(folder.path()));
    EXPECT_FALSE(platform::IsWritableFolder(folder.filePath(QStringLiteral("gone"))));
    EXPECT_FALSE(platform::IsWritableFolder(QStringLiteral("/dev/null")));
}

TEST(ApplicationFolderTest, TheRootNeedsNoSecondSeparator) {
    EXPECT_EQ(platform::FileIn(QStringLiteral("/"), QStringLiteral("a")), QStringLiteral("/a"));
    EXPECT_EQ(platform::FileIn(QStringLiteral("/b"), QStringLiteral("a")), QStringLiteral("/b/a"));
}

}  // namespace
