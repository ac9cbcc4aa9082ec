#include "dialogs/help.h"

#include "dialogs/program_version.h"
#include "dialogs/system_information.h"
#include "support/fakes.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace dialogs {
namespace {

QString MakeHelpFile(const QTemporaryDir& folder) {
    QFile file(folder.filePath(QStringLiteral("tavolo.chm")));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return file.fileName();
}

TEST(HelpTest, TheHelpFileOfTheApplicationFolderComesFirst) {
    const QTemporaryDir application;
    const QTemporaryDir program;
    const QString own = MakeHelpFile(application);
    MakeHelpFile(program);
    EXPECT_EQ(HelpFile(application.path(), program.path()), own);
}

TEST(HelpTest, AnApplicationFolderWithoutHelpUsesTheProgramsOwn) {
    const QTemporaryDir application;
    const QTemporaryDir program;
    const QString delivered = MakeHelpFile(program);
    EXPECT_EQ(HelpFile(application.path(), program.path()), delivered);
}

TEST(HelpTest, AnInstalledProgramHasItsHelpInTheSharedFolder) {
    const QTemporaryDir root;
    QDir(root.path()).mkpath(QStringLiteral("bin"));
    QDir(root.path()).mkpath(QStringLiteral("share/tavolo"));
    QFile file(root.filePath(QStringLiteral("share/tavolo/tavolo.chm")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(HelpFile(root.path(), root.filePath(QStringLiteral("bin"))), file.fileName());
}

TEST(HelpTest, WithoutAnyHelpFileTheOneOfTheApplicationFolderIsAskedFor) {
    const QTemporaryDir application;
    const QTemporaryDir program;
    EXPECT_EQ(HelpFile(application.path(), program.path()),
              application.filePath(QStringLiteral("tavolo.chm")));
}

TEST(HelpTest, TheShellOpensTheHelpFile) {
    const QTemporaryDir application;
    const QString own = MakeHelpFile(application);
    test_support::FakeShell shell;
    OpenHelp(shell, application.path());
    EXPECT_EQ(shell.opened, std::vector{own});
}

TEST(HelpTest, AMissingHelpFileReachesNobody) {
    const QTemporaryDir application;
    const QTemporaryDir program;
    test_support::FakeShell shell;
    OpenHelp(shell, application.path(), program.path());
    OpenHelpAtWindow(shell, application.path(), QStringLiteral("frmSettings"), program.path());
    EXPECT_TRUE(shell.opened.empty());
}

TEST(HelpTest, AShellThatCannotOpenItIsIgnored) {
    const QTemporaryDir application;
    MakeHelpFile(application);
    test_support::FakeShell shell;
    shell.answer = base::Status(base::StatusCode::kNotFound, "no viewer");
    OpenHelp(shell, application.path());
    EXPECT_EQ(shell.opened.size(), 1U);
}

class SystemInformationTest : public testing::Test {
protected:
    void ExpectUnavailable() {
        ASSERT_EQ(prompts.messages.size(), 1U);
        EXPECT_EQ(prompts.messages[0].text,
                  QStringLiteral("System Information Is Unavailable At This Time"));
        EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kNone);
    }

    test_support::FakeShell shell;
    test_support::FakeProcessStarter starter;
    test_support::FakePrompts prompts;
};

TEST_F(SystemInformationTest, TheDesktopsToolIsStarted) {
    shell.tool = QStringLiteral("/usr/bin/hardinfo");
    StartSysInfo(shell, starter, prompts);
    EXPECT_EQ(starter.tools, std::vector{shell.tool});
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(SystemInformationTest, WithoutAToolTheUserIsTold) {
    StartSysInfo(shell, starter, prompts);
    EXPECT_TRUE(starter.tools.empty());
    ExpectUnavailable();
}

TEST_F(SystemInformationTest, AToolThatDoesNotStartIsNoTool) {
    shell.tool = QStringLiteral("/usr/bin/hardinfo");
    starter.failure = base::Status(base::StatusCode::kNotFound, "gone");
    StartSysInfo(shell, starter, prompts);
    ExpectUnavailable();
}

TEST(ProgramVersionTest, TheTextHasMajorMinorAndRevision) {
    EXPECT_EQ(VersionText({1, 6, 12}), QStringLiteral("1.6.12"));
}

}  // namespace
}  // namespace dialogs
