// The start in a folder that is not there, from half an installation, and of the example
// collection.
#include "app/first_start.h"

#include "support/fakes.h"
#include "support/qt_text.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace app {
namespace {

using test_support::S;

class FirstStartTest : public testing::Test {
protected:
    void SetUp() override {
        folders = {root.filePath(S(u"bin")), root.filePath(S(u"share/tavolo")),
                   root.filePath(S(u"home/tavolo"))};
        QDir().mkpath(folders.program);
        QDir().mkpath(folders.delivered + S(u"/example/tables"));
        QDir().mkpath(folders.delivered + S(u"/example/pictures"));
        Write(folders.delivered + S(u"/pinball.mdb"));
    }
    static void Write(const QString& path) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("x");
    }
    bool Prepare(const Arguments& arguments) {
        return PrepareFolder(FolderOf(arguments, folders), arguments, folders, prompts);
    }

    test_support::TemporaryDir root;
    catalogue::KnownFolders folders;
    test_support::FakePrompts prompts;
    QString nowhere = root.filePath(S(u"deep/down"));
};

TEST_F(FirstStartTest, AFolderThatIsNotThereIsOffered) {
    EXPECT_TRUE(Prepare({.folder = nowhere}));
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_TRUE(prompts.messages[0].text.contains(nowhere));
    EXPECT_EQ(prompts.messages[0].buttons, platform::MessageButtons::kYesNo);
    EXPECT_TRUE(QFile::exists(nowhere + S(u"/pinball.mdb")));
}

TEST_F(FirstStartTest, AFolderThatIsNotWantedIsNotMade) {
    prompts.answers = {platform::MessageAnswer::kNo};
    EXPECT_FALSE(Prepare({.folder = nowhere}));
    EXPECT_FALSE(QDir(root.filePath(S(u"deep"))).exists());
}

TEST_F(FirstStartTest, AFolderThatIsThereIsNoQuestion) {
    QDir().mkpath(nowhere);
    EXPECT_TRUE(Prepare({.folder = nowhere}));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(FirstStartTest, HalfAnInstallationSaysWhatItLacks) {
    QFile::remove(folders.delivered + S(u"/pinball.mdb"));
    const QString empty = root.filePath(S(u"empty"));
    QDir().mkpath(empty);
    EXPECT_FALSE(Prepare({.folder = empty}));
    EXPECT_FALSE(Prepare({.folder = nowhere}));
    ASSERT_EQ(prompts.messages.size(), 2U);
    for (const platform::Message& message : prompts.messages)
        EXPECT_TRUE(message.text.contains(
            QDir::toNativeSeparators(folders.delivered + S(u"/pinball.mdb"))));
    EXPECT_TRUE(QDir(empty).isEmpty());
    EXPECT_FALSE(QDir(nowhere).exists());
}

TEST_F(FirstStartTest, TheExampleHasAFolderOfItsOwn) {
    EXPECT_EQ(FolderOf({.demo = true}, folders),
              QDir::toNativeSeparators(folders.user_data + S(u"/Example Collection")));
    EXPECT_EQ(FolderOf({.folder = nowhere, .demo = true}, folders), nowhere);
}

TEST_F(FirstStartTest, TheExampleIsCopiedWithoutAQuestion) {
    Write(folders.delivered + S(u"/example/pinball.mdb"));
    Write(folders.delivered + S(u"/example/tables/a.vpt"));
    EXPECT_TRUE(Prepare({.folder = nowhere, .demo = true}));
    EXPECT_TRUE(QFile::exists(nowhere + S(u"/tables/a.vpt")));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(FirstStartTest, AnExampleThatIsNotInstalledIsTold) {
    EXPECT_FALSE(Prepare({.folder = nowhere, .demo = true}));
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_FALSE(QDir(nowhere).exists());
}

}  // namespace
}  // namespace app
