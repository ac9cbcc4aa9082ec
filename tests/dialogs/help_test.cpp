#include "dialogs/help.h"

#include "dialogs/program_version.h"
#include "dialogs/system_information.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace dialogs {
namespace {

QString MakeHelpFile(const test_support::TemporaryDir& folder) {
    const QString path = folder.filePath(QStringLiteral("tavolo.chm"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return path;
}

TEST(HelpTest, TheHelpFileOfTheApplicationFolderComesFirst) {
    const test_support::TemporaryDir application;
    const test_support::TemporaryDir program;
    const QString own = MakeHelpFile(application);
    MakeHelpFile(program);
    EXPECT_EQ(HelpFile(application.path(), program.path()), own);
}

TEST(HelpTest, AnApplicationFolderWithoutHelpUsesTheProgramsOwn) {
    const test_support::TemporaryDir application;
    const test_support::TemporaryDir program;
    const QString delivered = MakeHelpFile(program);
    EXPECT_EQ(HelpFile(application.path(), program.path()), delivered);
}

TEST(HelpTest, AnInstalledProgramHasItsHelpInTheSharedFolder) {
    const test_support::TemporaryDir root;
    QDir(root.path()).mkpath(QStringLiteral("bin"));
    QDir(root.path()).mkpath(QStringLiteral("share/tavolo"));
    const QString path = root.filePath(QStringLiteral("share/tavolo/tavolo.chm"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(HelpFile(root.path(), root.filePath(QStringLiteral("bin"))), path);
}

TEST(HelpTest, WithoutAnyHelpFileTheOneOfTheApplicationFolderIsAskedFor) {
    const test_support::TemporaryDir application;
    const test_support::TemporaryDir program;
    EXPECT_EQ(HelpFile(application.path(), program.path()),
              application.filePath(QStringLiteral("tavolo.chm")));
}

TEST(HelpTest, TheShellOpensTheHelpFile) {
    const test_support::TemporaryDir application;
    const QString own = MakeHelpFile(application);
    test_support::FakeShell shell;
    OpenHelp(shell, application.path());
    EXPECT_EQ(shell.opened, std::vector{own});
}

TEST(HelpTest, AMissingHelpFileReachesNobody) {
    const test_support::TemporaryDir application;
    const test_support::TemporaryDir program;
    test_support::FakeShell shell;
    OpenHelp(shell, application.path(), program.path());
    OpenHelpAtWindow(shell, application.path(), QStringLiteral("frmSettings"), program.path());
    EXPECT_TRUE(shell.opened.empty());
}

TEST(HelpTest, AShellThatCannotOpenItIsIgnored) {
    const test_support::TemporaryDir application;
    MakeHelpFile(application);
    test_support::FakeShell shell;
    shell.answer = base::Status(base::StatusCode::kNotFound, "no viewer");
    OpenHelp(shell, application.path());
    EXPECT_EQ(shell.opened.size(), 1U);
}

// The pages beside the help file, for desktops without a viewer of help files.
class HelpWithoutAViewerTest : public testing::Test {
protected:
    HelpWithoutAViewerTest() {
        QDir(application.path()).mkpath(QStringLiteral("help"));
        for (const char* const name : {"index.html", "settings.html"}) {
            QFile page(application.filePath(QStringLiteral("help/") + QString::fromLatin1(name)));
            EXPECT_TRUE(page.open(QIODevice::WriteOnly));
        }
    }
    void OpenAtSettings() {
        OpenHelpAtWindow(shell, application.path(), QStringLiteral("frmSettings"), program.path(),
                         viewer);
    }

    test_support::TemporaryDir application;
    test_support::TemporaryDir program;
    test_support::FakeShell shell;
    std::vector<QString> shown;
    ShowHelpPage viewer = [this](const QString& page) { shown.push_back(page); };
    QString settings_page = application.filePath(QStringLiteral("help/settings.html"));
};

TEST_F(HelpWithoutAViewerTest, AreShownWhereTheDesktopHasNoViewer) {
    MakeHelpFile(application);
    shell.has_help_viewer = false;
    OpenAtSettings();
    EXPECT_TRUE(shell.opened.empty());
    EXPECT_EQ(shown, std::vector{settings_page});
    OpenHelp(shell, application.path(), program.path(), viewer);
    EXPECT_EQ(shown.back(), application.filePath(QStringLiteral("help/index.html")));
}

TEST_F(HelpWithoutAViewerTest, AreShownWhereThereIsNoHelpFile) {
    OpenAtSettings();
    EXPECT_TRUE(shell.opened.empty());
    EXPECT_EQ(shown, std::vector{settings_page});
}

TEST_F(HelpWithoutAViewerTest, AreShownWhereTheViewerDoesNotStart) {
    MakeHelpFile(application);
    shell.answer = base::Status(base::StatusCode::kNotFound, "gone");
    OpenAtSettings();
    EXPECT_EQ(shell.opened.size(), 1U);
    EXPECT_EQ(shown, std::vector{settings_page});
}

TEST_F(HelpWithoutAViewerTest, LeaveTheHelpFileToTheDesktopsViewer) {
    MakeHelpFile(application);
    OpenAtSettings();
    EXPECT_EQ(shell.help_pages, std::vector{QStringLiteral("settings.html")});
    EXPECT_TRUE(shown.empty());
}

TEST_F(HelpWithoutAViewerTest, OfTheInstalledProgramAreInTheSharedFolder) {
    QDir(program.path()).mkpath(QStringLiteral("bin"));
    QDir(program.path()).mkpath(QStringLiteral("share/tavolo/help"));
    const QString path = program.filePath(QStringLiteral("share/tavolo/help/crc.html"));
    QFile page(path);
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    EXPECT_EQ(HelpPageFile(application.path(), program.filePath(QStringLiteral("bin")),
                           QStringLiteral("crc.html")),
              path);
    EXPECT_EQ(HelpPageFile(application.path(), program.path(), QStringLiteral("none.html")),
              QString());
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
