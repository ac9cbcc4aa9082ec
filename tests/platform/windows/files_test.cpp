// What the system's calls do is tested without Qt (disk_test.cpp); here is what Qt's texts become.
#include "platform/files.h"

#include "platform/application_folder.h"
#include "platform/error_numbers.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

namespace {

class FilesTest : public testing::Test {
protected:
    ~FilesTest() override { std::filesystem::current_path(before_); }

    QString In(const QString& name) const { return platform::FileIn(folder_, name); }
    void Write(const QString& name, QByteArrayView text) const {
        const base::Status saved = platform::SaveFile(In(name), text);
        ASSERT_TRUE(saved.ok()) << saved.message();
    }

    QTemporaryDir temporary_;
    const QString folder_ = platform::RealPath(temporary_.path());
    const std::filesystem::path before_ = std::filesystem::current_path();
};

TEST_F(FilesTest, AFileOfAnyNameIsFoundInAnyLetterCase) {
    // A byte order mark and letters of three scripts are a name.
    const QString name = QChar(0xFEFF) + QStringLiteral("Über 漢.vpt");
    Write(name, "12345");
    EXPECT_TRUE(platform::FileExists(In(name)));
    EXPECT_TRUE(platform::FileExists(In(name.toUpper())));
    EXPECT_EQ(platform::FileSize(In(name)).value_or(-1), 5);
    EXPECT_TRUE(platform::LastModified(In(name)).isValid());
    EXPECT_EQ(platform::LastModified(In(name)).timeSpec(), Qt::LocalTime);
    QStringList names;
    ASSERT_TRUE(platform::ListFolder(folder_, [&](const platform::FolderEntry& entry) {
                    names.append(entry.name);
                }).ok());
    EXPECT_EQ(names, QStringList{name});
    QFile file;
    ASSERT_TRUE(platform::OpenFile(file, In(name), QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("12345"));
}

TEST_F(FilesTest, SlashesSeparateToo) {
    ASSERT_TRUE(platform::MakeFolder(In(QStringLiteral("a/b"))).ok());
    Write(QStringLiteral("a\\b\\c.vpt"), "1");
    EXPECT_TRUE(platform::FileExists(In(QStringLiteral("a/b/c.vpt"))));
    EXPECT_EQ(platform::AbsolutePath(In(QStringLiteral("a/../a/b/"))), In(QStringLiteral("a\\b")));
}

// The system would look for them on the drive that is current by chance.
TEST_F(FilesTest, APathOfAnotherSystemNamesNothing) {
    std::filesystem::current_path(L"C:\\");
    const QString path = QStringLiteral("/windows/win.ini");
    ASSERT_TRUE(platform::FileExists(QStringLiteral("C:\\windows\\win.ini")));
    EXPECT_FALSE(platform::FileExists(path));
    EXPECT_FALSE(platform::FolderExists(QStringLiteral("/windows")));
    EXPECT_EQ(platform::AbsolutePath(path), path);
    EXPECT_TRUE(platform::RealPath(path).isEmpty());
    EXPECT_TRUE(platform::Identity(path).isEmpty());
    EXPECT_TRUE(platform::ToPath(path).empty());
    QFile file;
    EXPECT_FALSE(platform::OpenFile(file, path, QIODevice::ReadOnly));
    EXPECT_FALSE(file.errorString().isEmpty());
    EXPECT_FALSE(platform::SaveFile(QStringLiteral("/tavolo-test.txt"), "x").ok());
    EXPECT_FALSE(platform::FileExists(QStringLiteral("C:\\tavolo-test.txt")));
}

TEST_F(FilesTest, ATextWithANulIsNoFile) {
    Write(QStringLiteral("a"), "x");
    EXPECT_FALSE(platform::FileExists(In(QStringLiteral("a")) + QChar(0) + u'b'));
}

TEST_F(FilesTest, FailuresHaveTheNumbersThatAreKnown) {
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("gone"))).status().number(),
              platform::kFileNotFound);
    const auto listed =
        platform::ListFolder(In(QStringLiteral("gone")), [](const platform::FolderEntry&) {});
    EXPECT_EQ(listed.number(), platform::kPathNotFound);
    for (const QString& folder :
         {QString(), In(QStringLiteral("gone")), QStringLiteral("/no/such/folder")})
        EXPECT_EQ(platform::ChangeDirectory(folder).number(), platform::kPathNotFound);
}

TEST_F(FilesTest, ACacheFileMakesItsFolders) {
    ASSERT_TRUE(platform::SaveCacheFile(In(QStringLiteral("a\\b\\c.png")), "1").ok());
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("a\\b\\c.png"))).value_or(-1), 1);
    platform::RemoveFile(In(QStringLiteral("a\\b\\c.png")));
    EXPECT_FALSE(platform::FileExists(In(QStringLiteral("a\\b\\c.png"))));
}

TEST_F(FilesTest, ACopyOverwritesNothing) {
    Write(QStringLiteral("a"), "1");
    Write(QStringLiteral("b"), "22");
    EXPECT_EQ(platform::CopyNewFile(In(QStringLiteral("a")), In(QStringLiteral("b"))).code(),
              base::StatusCode::kAlreadyExists);
    EXPECT_TRUE(platform::CopyNewFile(In(QStringLiteral("a")), In(QStringLiteral("c"))).ok());
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("c"))).value_or(-1), 1);
}

TEST(ApplicationFolderTest, TheProgramFolderHoldsThisProgram) {
    EXPECT_TRUE(platform::FileExists(
        platform::FileIn(platform::ProgramFolder(), QStringLiteral("platform_tests.exe"))));
}

TEST(ApplicationFolderTest, TheUsersFoldersAreTheSystems) {
    EXPECT_TRUE(platform::UserDataFolder().endsWith(QStringLiteral("\\Tavolo")));
    EXPECT_TRUE(platform::FolderExists(QFileInfo(platform::UserDataFolder()).path()));
    EXPECT_EQ(platform::UserCacheFolder(), platform::UserDataFolder() + QStringLiteral("\\Cache"));
    EXPECT_FALSE(platform::PicturesFolder().contains(u'/'));
    EXPECT_TRUE(platform::SharedThumbnailFolder().isEmpty());
}

TEST(ApplicationFolderTest, OnlyAnExistingFolderIsWritable) {
    const QTemporaryDir folder;
    EXPECT_TRUE(platform::IsWritableFolder(platform::RealPath(folder.path())));
    EXPECT_FALSE(platform::IsWritableFolder(QStringLiteral("C:\\no such folder")));
    EXPECT_FALSE(platform::IsWritableFolder(QStringLiteral("/")));
}

TEST(ApplicationFolderTest, TheRootNeedsNoSecondSeparator) {
    EXPECT_EQ(platform::FileIn(QStringLiteral("C:\\"), QStringLiteral("a")),
              QStringLiteral("C:\\a"));
    EXPECT_EQ(platform::FileIn(QStringLiteral("C:\\b"), QStringLiteral("a")),
              QStringLiteral("C:\\b\\a"));
}

}  // namespace
