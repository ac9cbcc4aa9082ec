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
        std::ofstream(In(name).toStdString()) << text;
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
    const QString identity = platform::Identity(folder_.path());
    EXPECT_FALSE(identity.isEmpty());
    EXPECT_EQ(platform::Identity(In(QStringLiteral("loop/loop"))), identity);
    EXPECT_NE(platform::Identity(QStringLiteral("/")), identity);
}

TEST_F(FilesTest, TwoNamesOfAFileHaveOneIdentity) {
    WriteFile(QStringLiteral("a"));
    WriteFile(QStringLiteral("b"));
    ASSERT_TRUE(QFile::link(In(QStringLiteral("a")), In(QStringLiteral("to a"))));
    EXPECT_EQ(platform::Identity(In(QStringLiteral("to a"))),
              platform::Identity(In(QStringLiteral("a"))));
    EXPECT_NE(platform::Identity(In(QStringLiteral("b"))),
              platform::Identity(In(QStringLiteral("a"))));
}

TEST_F(FilesTest, WhatIsMissingHasNoIdentity) {
    EXPECT_TRUE(platform::Identity(In(QStringLiteral("gone"))).isEmpty());
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

// Letter case: catalogues of Windows on a case-sensitive file system.

TEST_F(FilesTest, ANameInOtherLetterCaseIsFound) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("Tables")));
    WriteFile(QStringLiteral("Tables/Grün.vpt"), "12345");
    const QString other = In(QStringLiteral("TABLES/GRÜN.VPT"));
    EXPECT_EQ(platform::ExistingName(other), In(QStringLiteral("Tables/Grün.vpt")));
    EXPECT_TRUE(platform::FileExists(other));
    EXPECT_EQ(platform::FileSize(other).value_or(-1), 5);
    EXPECT_TRUE(platform::LastModified(other).isValid());
    QFile file;
    ASSERT_TRUE(platform::OpenFile(file, other, QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("12345"));
    EXPECT_TRUE(platform::ChangeDirectory(In(QStringLiteral("tables"))).ok());
    EXPECT_EQ(Listed(In(QStringLiteral("tABLES/"))), std::vector{QStringLiteral("Grün.vpt")});
}

TEST_F(FilesTest, TheExactNameComesFirst) {
    WriteFile(QStringLiteral("a.vpt"), "1");
    WriteFile(QStringLiteral("A.vpt"), "22");
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("a.vpt"))).value_or(-1), 1);
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("A.vpt"))).value_or(-1), 2);
    EXPECT_EQ(platform::ExistingName(In(QStringLiteral("a.VPT"))), In(QStringLiteral("A.vpt")));
}

TEST_F(FilesTest, WhatIsWrittenGetsTheNameThatWasAskedFor) {
    WriteFile(QStringLiteral("a.jpg"), "old");
    QFile file;
    ASSERT_TRUE(platform::OpenFile(file, In(QStringLiteral("A.jpg")), QIODevice::WriteOnly));
    file.close();
    EXPECT_TRUE(platform::SaveFile(In(QStringLiteral("A.JPG")), "new").ok());
    EXPECT_EQ(Listed(folder_.path()).size(), 3U);
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("a.jpg"))).value_or(-1), 3);
}

TEST_F(FilesTest, AMissingNameStaysAsItIs) {
    WriteFile(QStringLiteral("a.vpt"));
    for (const QString& name :
         {In(QStringLiteral("b.vpt")), In(QStringLiteral("gone/a.vpt")),
          In(QStringLiteral("a.vpt/x")), QStringLiteral("C:\\T\\a.vpt"), QString()}) {
        EXPECT_EQ(platform::ExistingName(name), name);
        EXPECT_FALSE(platform::FileExists(name));
    }
}

// The names of a folder are cached.
TEST_F(FilesTest, AFileThatComesOrGoesIsNoticedAtOnce) {
    for (int round = 0; round < 20; ++round) {
        const QString name = QStringLiteral("New%1.vpt").arg(round);
        EXPECT_FALSE(platform::FileExists(In(name.toUpper())));
        WriteFile(name);
        EXPECT_TRUE(platform::FileExists(In(name.toUpper()))) << round;
        ASSERT_TRUE(QFile::remove(In(name)));
        EXPECT_FALSE(platform::FileExists(In(name.toUpper()))) << round;
    }
}

// Names that are not UTF-8.

class RawNameTest : public FilesTest {
protected:
    const std::string raw_ = folder_.path().toStdString() + "/S\xFC"
                                                            "d";
    const QString name_ = In(QStringLiteral("S")) + QChar(0xDCFC) + u'd';
    ~RawNameTest() override { std::filesystem::remove_all(raw_); }
    static std::string Content(const std::string& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

TEST_F(RawNameTest, IsOpenedForReadingAndWriting) {
    QFile out;
    ASSERT_TRUE(platform::OpenFile(out, name_, QIODevice::WriteOnly));
    EXPECT_EQ(out.write("12345"), 5);
    out.close();
    EXPECT_EQ(Content(raw_), "12345");
    QFile in;
    ASSERT_TRUE(platform::OpenFile(in, name_, QIODevice::ReadOnly));
    EXPECT_EQ(in.size(), 5);
    EXPECT_EQ(in.readAll(), QByteArray("12345"));
}

TEST_F(RawNameTest, IsSavedCopiedAndRemoved) {
    EXPECT_TRUE(platform::SaveFile(name_, "old").ok());
    EXPECT_TRUE(platform::SaveFile(name_, "new").ok());
    EXPECT_EQ(Content(raw_), "new");
    EXPECT_TRUE(platform::CopyNewFile(name_, In(QStringLiteral("copy"))).ok());
    EXPECT_EQ(Content(folder_.path().toStdString() + "/copy"), "new");
    platform::RemoveFile(name_);
    EXPECT_FALSE(std::filesystem::exists(raw_));
}

TEST_F(RawNameTest, IsAFolderThatIsMadeAndMadeAbsolute) {
    EXPECT_TRUE(platform::MakeFolder(name_).ok());
    EXPECT_TRUE(std::filesystem::is_directory(raw_));
    EXPECT_TRUE(platform::FolderExists(name_));
    std::filesystem::current_path(raw_);
    EXPECT_EQ(platform::AbsolutePath(QStringLiteral("a/../b/")), name_ + QStringLiteral("/b"));
    EXPECT_EQ(platform::RealPath(name_ + QStringLiteral("/..")), folder_.path());
}

TEST_F(FilesTest, AFileThatCannotBeOpenedSaysWhy) {
    QFile file;
    EXPECT_FALSE(platform::OpenFile(file, In(QStringLiteral("gone")), QIODevice::ReadOnly));
    EXPECT_FALSE(file.errorString().isEmpty());
    EXPECT_FALSE(
        platform::OpenFile(file, In(QStringLiteral("go")) + QChar(0xDCFC), QIODevice::ReadOnly));
}

TEST_F(FilesTest, AFileIsReadToItsEndOrToTheGivenLength) {
    WriteFile(QStringLiteral("a"), "12345");
    EXPECT_EQ(platform::ReadFile(In(QStringLiteral("a")), 5).value_or({}), QByteArray("12345"));
    EXPECT_EQ(platform::ReadFile(In(QStringLiteral("a")), 4).value_or({}), QByteArray("1234"));
    for (const QString& name : {In(QStringLiteral("gone")), folder_.path()}) {
        const auto read = platform::ReadFile(name, 5);
        EXPECT_EQ(read.status().code(), base::StatusCode::kIoError);
        EXPECT_EQ(read.status().message().find(name.toStdString()), 0U) << read.status().message();
    }
}

TEST_F(FilesTest, SavingKeepsALinkAndThePermissions) {
    WriteFile(QStringLiteral("real"), "old");
    std::filesystem::permissions(platform::ToPath(In(QStringLiteral("real"))),
                                 std::filesystem::perms{0640});
    ASSERT_TRUE(QFile::link(In(QStringLiteral("real")), In(QStringLiteral("link"))));
    EXPECT_TRUE(platform::SaveFile(In(QStringLiteral("link")), "new").ok());
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("real"))).value_or(-1), 3);
    EXPECT_TRUE(std::filesystem::is_symlink(platform::ToPath(In(QStringLiteral("link")))));
    const auto facts = std::filesystem::status(platform::ToPath(In(QStringLiteral("real"))));
    EXPECT_EQ(facts.permissions(), std::filesystem::perms{0640});
    EXPECT_EQ(Listed(folder_.path()).size(), 2U);
}

TEST_F(FilesTest, SavingWhereNothingCanBeSavedNamesTheFile) {
    const base::Status saved = platform::SaveFile(In(QStringLiteral("gone/a")), "x");
    ASSERT_FALSE(saved.ok());
    EXPECT_NE(saved.message().find("gone/a"), std::string::npos) << saved.message();
    EXPECT_FALSE(platform::SaveFile(folder_.path(), "x").ok());
    EXPECT_FALSE(platform::SaveFile(QStringLiteral("C:\\a.jpg"), "x").ok());
}

TEST_F(FilesTest, ACopyOverwritesNothing) {
    WriteFile(QStringLiteral("a"), "1");
    WriteFile(QStringLiteral("b"), "22");
    EXPECT_EQ(platform::CopyNewFile(In(QStringLiteral("a")), In(QStringLiteral("b"))).code(),
              base::StatusCode::kAlreadyExists);
    EXPECT_EQ(platform::FileSize(In(QStringLiteral("b"))).value_or(-1), 2);
    EXPECT_FALSE(platform::CopyNewFile(In(QStringLiteral("gone")), In(QStringLiteral("c"))).ok());
    EXPECT_EQ(Listed(folder_.path()).size(), 2U) << "no beginning of a copy is left";
}

TEST(PseudoFileSystemTest, ProcessesAndDevicesAreNoFolders) {
    EXPECT_TRUE(platform::IsPseudoFileSystem(QStringLiteral("/proc")));
    EXPECT_TRUE(platform::IsPseudoFileSystem(QStringLiteral("/proc/self/fd")));
    EXPECT_TRUE(platform::IsPseudoFileSystem(QStringLiteral("/sys")));
    QTemporaryDir folder;
    EXPECT_FALSE(platform::IsPseudoFileSystem(folder.path()));
    EXPECT_FALSE(platform::IsPseudoFileSystem(QStringLiteral("/no such folder")));
    ASSERT_TRUE(QFile::link(QStringLiteral("/proc/self"), folder.filePath(QStringLiteral("me"))));
    EXPECT_TRUE(platform::IsPseudoFileSystem(folder.filePath(QStringLiteral("me"))));
}

// A catalogue names tables and pictures in turn: their folders are not read again for each.
TEST_F(FilesTest, NamesOfOtherLetterCaseInTwoFoldersInTurnAreFoundQuickly) {
    constexpr int kFiles = 2000;
    for (const char16_t* const name : {u"Tables", u"Pictures"}) {
        const QString made = In(QString::fromUtf16(name));
        ASSERT_TRUE(QDir().mkpath(made));
        for (int i = 0; i < kFiles; ++i)
            WriteFile(QString::fromUtf16(name) + QStringLiteral("/File %1.x").arg(i));
        // A folder that was just changed is read anew each time.
        const std::filesystem::path path = made.toStdString();
        std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) -
                                                   std::chrono::hours(1));
    }
    const auto before = std::chrono::steady_clock::now();
    for (int i = 0; i < kFiles; ++i)
        for (const char16_t* const name : {u"tables", u"pictures"})
            ASSERT_TRUE(platform::FileExists(
                In(QString::fromUtf16(name) + QStringLiteral("/FILE %1.X").arg(i))));
    // To read the folders each time takes half a minute, a sanitizer's or a busy machine's second
    // is far from that.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(5));
}

}  // namespace
