#include "platform/shell.h"

#include "platform/script_folder.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

namespace {

using test_support::WaitFor;

// Only the programs of this test are in PATH.
class ShellTest : public testing::Test, protected test_support::ScriptFolder {
protected:
    void SetUp() override { qputenv("PATH", Folder().toUtf8()); }
    void TearDown() override {
        qputenv("PATH", before_path_);
        EXPECT_TRUE(HasNoChildren());
    }

    // Neither running ones nor zombies. Reaps none.
    static bool HasNoChildren() {
        return WaitFor([] {
            siginfo_t facts{};
            return waitid(P_ALL, 0, &facts, WEXITED | WNOHANG | WNOWAIT) == -1 && errno == ECHILD;
        });
    }

    void Install(const std::string& name) {
        std::ofstream(Path(name)) << "#!/bin/sh\nPATH=/usr/bin:/bin\nprintf '%s<%s>' $# \"$1\" >'" +
                                         Path("part") + "'\nmv '" + Path("part") + "' '" +
                                         Path("out") + "'\n";
        std::filesystem::permissions(Path(name), std::filesystem::perms::owner_all);
    }
    void Write(const std::string& name, const std::string& script) {
        std::ofstream(Path(name)) << "#!/bin/sh\nPATH=/usr/bin:/bin\n" << script << "\n";
        std::filesystem::permissions(Path(name), std::filesystem::perms::owner_all);
    }

    QByteArray before_path_ = qgetenv("PATH");
    std::unique_ptr<platform::Shell> shell_ = platform::MakeShell();
};

class OpenedTarget : public ShellTest, public testing::WithParamInterface<const char*> {};

TEST_P(OpenedTarget, IsOneArgumentAsItStands) {
    Install("xdg-open");
    ASSERT_TRUE(shell_->Open(QString::fromUtf8(GetParam())).ok());
    EXPECT_EQ(Output(), std::string("1<") + GetParam() + ">");
}

INSTANTIATE_TEST_SUITE_P(ShellTest, OpenedTarget,
                         testing::Values("http://example.org/a?b=c&d=e", "mailto:a@example.org",
                                         "/app/my folder/tavolo.chm", "http://x/; touch /tmp/owned",
                                         "$(touch /tmp/owned)", "`id`", "a\nb", "\"'|&<>*?~#%s",
                                         "Grüße"));

TEST_F(ShellTest, ATargetThatLooksLikeAnOptionIsNone) {
    Install("xdg-open");
    ASSERT_TRUE(shell_->Open(QStringLiteral("--version")).ok());
    EXPECT_EQ(Output(), "1<./--version>");
}

TEST_F(ShellTest, TheSchemeOfAnAddressIsGivenInLowerCase) {
    Install("xdg-open");
    ASSERT_TRUE(shell_->Open(QStringLiteral("Mailto:Anna@B.org?subject=A: B")).ok());
    EXPECT_EQ(Output(), "1<mailto:Anna@B.org?subject=A: B>");
}

TEST_F(ShellTest, NothingCannotBeOpened) {
    Install("xdg-open");
    EXPECT_EQ(shell_->Open({}).code(), base::StatusCode::kInvalidArgument);
    EXPECT_EQ(shell_->Open(QString(QChar(0))).code(), base::StatusCode::kInvalidArgument);
}

class FailingOpener : public ShellTest, public testing::WithParamInterface<int> {};

// Exit codes of xdg-open: syntax error, no such file, no tool, action failed.
TEST_P(FailingOpener, IsAFailure) {
    Write("xdg-open", "exit " + std::to_string(GetParam()));
    const auto opened = shell_->Open(QStringLiteral("http://example.org"));
    EXPECT_EQ(opened.code(), base::StatusCode::kNotFound);
    EXPECT_NE(opened.message().find(std::to_string(GetParam())), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(ShellTest, FailingOpener, testing::Values(1, 2, 3, 4));

TEST_F(ShellTest, AnOpenerThatCrashesIsAFailure) {
    Write("xdg-open", "kill -SEGV $$");
    EXPECT_FALSE(shell_->Open(QStringLiteral("http://example.org")).ok());
}

// The real xdg-open, on a desktop without any programs.
TEST_F(ShellTest, TheRealOpenerWithoutAHandlerIsAFailure) {
    ASSERT_TRUE(std::filesystem::exists("/usr/bin/xdg-open")) << "xdg-utils is not installed";
    Write("xdg-open", "unset DISPLAY WAYLAND_DISPLAY XDG_CURRENT_DESKTOP DESKTOP_SESSION\n"
                      "export HOME='" +
                          Path("home") + "' XDG_DATA_HOME='" + Path("data") + "' XDG_DATA_DIRS='" +
                          Path("dirs") + "' BROWSER='" + Path("gone") +
                          "'\nexec /usr/bin/xdg-open \"$@\"");
    for (const char* target :
         {"mailto:a@example.org?subject=Attack", "http://www.example.org", "no such file"})
        EXPECT_FALSE(shell_->Open(QString::fromLatin1(target)).ok()) << target;
}

// A process that runs on has become the viewer; its exit code does not matter.
TEST_F(ShellTest, AnOpenerThatStaysIsNoFailureAndIsNotWaitedFor) {
    Write("xdg-open", "while [ ! -e '" + Path("close") + "' ]; do sleep 0.05; done\nexit 4");
    EXPECT_TRUE(shell_->Open(QStringLiteral("http://example.org")).ok());
    std::ofstream(Path("close")) << "x";
}

TEST_F(ShellTest, AnOpenerThatEndsLeavesNoZombie) {
    Write("xdg-open", "exit 3");
    EXPECT_FALSE(shell_->Open(QStringLiteral("a")).ok());
    EXPECT_TRUE(HasNoChildren());
}

TEST_F(ShellTest, WithoutADesktopNothingIsOpened) {
    EXPECT_EQ(shell_->Open(QStringLiteral("a")).code(), base::StatusCode::kUnsupported);
}

class ShellHelpTest : public ShellTest {
protected:
    // xdg-mime prints the desktop entry of the viewer; each program writes its arguments, one per
    // line.
    void InstallViewer(const std::string& desktop_entry, const std::string& program) {
        Write("xdg-mime", "echo " + desktop_entry);
        Write(program, "for a in \"$@\"; do echo \"$a\"; done > '" + Path("part") + "'\nmv '" +
                           Path("part") + "' '" + Path("out") + "'");
    }
    const QString file_ = QStringLiteral("/app/my folder/tavolo.chm");
    const QString page_ = QStringLiteral("settings.html");
};

TEST_F(ShellHelpTest, AViewerThatCanBeToldAPageIsToldIt) {
    InstallViewer("kchmviewer.desktop", "kchmviewer");
    ASSERT_TRUE(shell_->OpenHelp(file_, page_).ok());
    EXPECT_EQ(Output(), "-showPage\n/settings.html\n/app/my folder/tavolo.chm\n");
}

TEST_F(ShellHelpTest, AnyOtherViewerOpensTheFile) {
    InstallViewer("okularApplication_chm.desktop", "xdg-open");
    ASSERT_TRUE(shell_->OpenHelp(file_, page_).ok());
    EXPECT_EQ(Output(), "/app/my folder/tavolo.chm\n");
}

TEST_F(ShellHelpTest, AViewerThatIsNotInstalledAnyMoreIsLeftToTheDesktop) {
    InstallViewer("kchmviewer.desktop", "xdg-open");
    ASSERT_TRUE(shell_->OpenHelp(file_, page_).ok());
    EXPECT_EQ(Output(), "/app/my folder/tavolo.chm\n");
}

TEST_F(ShellHelpTest, ADesktopThatDoesNotSayItsViewerOpensTheFile) {
    Install("xdg-open");
    ASSERT_TRUE(shell_->OpenHelp(file_, page_).ok());
    EXPECT_EQ(Output(), "1</app/my folder/tavolo.chm>");
}

TEST_F(ShellTest, ThereIsNoInformationToolWhenNoneIsInstalled) {
    EXPECT_TRUE(shell_->SystemInformationTool().isEmpty());
}

class InformationTool : public ShellTest, public testing::WithParamInterface<const char*> {};

TEST_P(InformationTool, IsFoundWhenInstalled) {
    Install(GetParam());
    EXPECT_EQ(shell_->SystemInformationTool().toStdString(), Path(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(ShellTest, InformationTool,
                         testing::Values("hardinfo", "kinfocenter", "gnome-system-monitor"));

}  // namespace
