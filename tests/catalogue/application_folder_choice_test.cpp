#include "catalogue/application_folder_choice.h"

#include "platform/files.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <filesystem>

namespace catalogue {
namespace {

class ApplicationFolderTest : public testing::Test {
protected:
    void SetUp() override {
        folders = {Made(QStringLiteral("bin")), Made(QStringLiteral("share/tavolo")),
                   root.filePath(QStringLiteral("home/data/tavolo"))};
    }
    QString Made(const QString& name) {
        const QString path = root.filePath(name);
        EXPECT_TRUE(QDir().mkpath(path));
        return path;
    }
    static void Write(const QString& path, const QByteArray& content) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    static QByteArray Read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    void Deliver() {
        Write(folders.delivered + QStringLiteral("/pinball.mdb"), "empty catalogue");
        Write(folders.delivered + QStringLiteral("/Pinball.wav"), "sound");
    }

    test_support::TemporaryDir root;
    KnownFolders folders;
};

TEST_F(ApplicationFolderTest, TheCommandLineComesFirst) {
    EXPECT_EQ(ChooseApplicationFolder(root.path() + QStringLiteral("//x/"), folders),
              root.filePath(QStringLiteral("x")));
    EXPECT_EQ(ChooseApplicationFolder(QStringLiteral("x"), folders),
              QDir::toNativeSeparators(QDir::currentPath() + QStringLiteral("/x")));
}

TEST_F(ApplicationFolderTest, TheProgramsFolderIsTheUsualOne) {
    Deliver();
    Write(folders.program + QStringLiteral("/pinball.mdb"), "mine");
    EXPECT_EQ(ChooseApplicationFolder({}, folders), folders.program);
}

TEST_F(ApplicationFolderTest, AFolderWithoutACatalogueIsKeptWhenThereIsNothingToStartFrom) {
    EXPECT_EQ(ChooseApplicationFolder({}, folders), folders.program);
}

TEST_F(ApplicationFolderTest, AnInstalledProgramUsesTheUsersFolder) {
    Deliver();
    EXPECT_EQ(ChooseApplicationFolder({}, folders), folders.user_data);
}

TEST_F(ApplicationFolderTest, AnUnreachableProgramFolderLeavesTheUsersFolder) {
    folders.program = QStringLiteral("/proc/1/no such folder");
    EXPECT_EQ(ChooseApplicationFolder({}, folders), folders.user_data);
}

TEST_F(ApplicationFolderTest, AFirstStartFillsTheUsersFolder) {
    Deliver();
    Write(folders.program + QStringLiteral("/slingshot.wav"), "beside the program");
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/pinball.mdb")), "empty catalogue");
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/Pinball.wav")), "sound");
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/slingshot.wav")), "beside the program");
}

TEST_F(ApplicationFolderTest, ACopyCanBeWrittenEvenIfTheDeliveredFileCannot) {
    Deliver();
    QFile::setPermissions(folders.delivered + QStringLiteral("/pinball.mdb"),
                          QFileDevice::ReadOwner | QFileDevice::ReadOther);
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_TRUE(QFile::permissions(folders.user_data + QStringLiteral("/pinball.mdb")) &
                QFileDevice::WriteOwner);
}

TEST_F(ApplicationFolderTest, AnEmptyFolderOfTheCommandLineIsFilledToo) {
    Deliver();
    const QString folder = Made(QStringLiteral("chosen"));
    PrepareFirstStart(folder, folders);
    EXPECT_EQ(Read(folder + QStringLiteral("/pinball.mdb")), "empty catalogue");
}

TEST_F(ApplicationFolderTest, AFolderThatHoldsAnythingIsLeftAlone) {
    Deliver();
    const QString folder = Made(QStringLiteral("chosen"));
    Write(folder + QStringLiteral("/.hidden"), "");
    PrepareFirstStart(folder, folders);
    EXPECT_EQ(Read(folder + QStringLiteral("/pinball.mdb")), "<missing>");
}

TEST_F(ApplicationFolderTest, AHalfInstalledProgramSaysWhatIsMissing) {
    const QString chosen = Made(QStringLiteral("chosen"));
    Write(folders.delivered + QStringLiteral("/Pinball.wav"), "sound");
    Write(folders.program + QStringLiteral("/slingshot.wav"), "beside the program");
    const QStringList missing = {root.filePath(QStringLiteral("share/tavolo/pinball.mdb")),
                                 root.filePath(QStringLiteral("share/tavolo/tavolo.chm"))};
    EXPECT_EQ(MissingForFirstStart(chosen, folders), missing);
    EXPECT_EQ(MissingForFirstStart(folders.user_data, folders), missing);
    EXPECT_FALSE(QDir(folders.user_data).exists());
    Deliver();
    EXPECT_TRUE(MissingForFirstStart(chosen, folders).isEmpty());
}

TEST_F(ApplicationFolderTest, AFolderInUseNeedsNothingDelivered) {
    const QString chosen = Made(QStringLiteral("chosen"));
    Write(chosen + QStringLiteral("/pinball.mdb"), "mine");
    EXPECT_TRUE(MissingForFirstStart(chosen, folders).isEmpty());
    EXPECT_TRUE(MissingForFirstStart(root.filePath(QStringLiteral("nowhere")), folders).isEmpty());
}

TEST_F(ApplicationFolderTest, AFolderThatDoesNotExistIsNotMade) {
    Deliver();
    const QString folder = root.filePath(QStringLiteral("nowhere"));
    PrepareFirstStart(folder, folders);
    EXPECT_FALSE(QDir(folder).exists());
}

TEST_F(ApplicationFolderTest, ACatalogueBesideTheProgramIsNeverGivenAway) {
    Write(folders.program + QStringLiteral("/pinball.mdb"), "mine");
    const QString folder = Made(QStringLiteral("chosen"));
    PrepareFirstStart(folder, folders);
    EXPECT_EQ(Read(folder + QStringLiteral("/pinball.mdb")), "<missing>");
}

TEST_F(ApplicationFolderTest, TheUsersDataFolderIsFilledBesideFilesOfOthers) {
    Deliver();
    ASSERT_TRUE(QDir().mkpath(folders.user_data));
    Write(folders.user_data + QStringLiteral("/note.txt"), "mine");
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/pinball.mdb")), "empty catalogue");
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/note.txt")), "mine");
}

// The files that an earlier start may leave, one at a time.
class LostCatalogue : public ApplicationFolderTest,
                      public testing::WithParamInterface<const char*> {};

TEST_P(LostCatalogue, IsNotReplacedByAnEmptyOne) {
    Deliver();
    ASSERT_TRUE(QDir().mkpath(folders.user_data));
    Write(folders.user_data + u'/' + QString::fromLatin1(GetParam()), "mine");
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/pinball.mdb")), "<missing>");
    EXPECT_EQ(Read(folders.user_data + u'/' + QString::fromLatin1(GetParam())), "mine");
}

INSTANTIATE_TEST_SUITE_P(ApplicationFolderTest, LostCatalogue,
                         testing::Values("pinball.BU", "pinball.BU.new", "pinball.bu",
                                         "pinball.mdb-journal", "pinball.ldb", "Pinball.wav",
                                         "slingshot.wav", "tavolo.chm", "temp.jpg", "temp.bmp"));

TEST_F(ApplicationFolderTest, ACatalogueOfTheUserGetsWhatCameWithLaterVersions) {
    Deliver();
    ASSERT_TRUE(QDir().mkpath(folders.user_data));
    Write(folders.user_data + QStringLiteral("/pinball.mdb"), "mine");
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/pinball.mdb")), "mine");
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/Pinball.wav")), "sound");
}

TEST_F(ApplicationFolderTest, AFirstStartThatCannotCopyTheCatalogueIsTriedAgain) {
    Write(folders.delivered + QStringLiteral("/Pinball.wav"), "sound");
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/Pinball.wav")), "<missing>");
    Deliver();
    PrepareFirstStart(folders.user_data, folders);
    EXPECT_EQ(Read(folders.user_data + QStringLiteral("/pinball.mdb")), "empty catalogue");
}

}  // namespace
}  // namespace catalogue
