#include "platform/process_starter.h"

#include "platform/command_line.h"
#include "platform/linux/windows_program.h"
#include "platform/script_folder.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using test_support::WaitFor;

class ProcessStarterTest : public testing::Test, protected test_support::ScriptFolder {
protected:
    ProcessStarterTest() { std::filesystem::create_directory(Path("my programs")); }
    ~ProcessStarterTest() override { std::filesystem::current_path(before_); }

    // Writes a program with the content `text` and returns its path.
    std::string Program(const std::string& name, const std::string& text, bool runnable = true) {
        std::ofstream(Path(name)) << text;
        using std::filesystem::perms;
        std::filesystem::permissions(Path(name), runnable ? perms::owner_all
                                                          : perms::owner_read | perms::owner_write);
        return Path(name);
    }
    // A script that writes what `body` prints to the file "out", complete when that exists.
    std::string Script(const std::string& name, const std::string& body) {
        return Program(name, "#!/bin/sh\n{\n" + body + "\n} >'" + Path("part") + "' 2>&1\nmv '" +
                                 Path("part") + "' '" + Path("out") + "'\n");
    }
    base::Result<std::int64_t> Start(const std::string& command_line) {
        return starter_->Start(QString::fromStdString(command_line));
    }

    std::filesystem::path before_ = std::filesystem::current_path();
    std::unique_ptr<platform::ProcessStarter> starter_ = platform::MakeProcessStarter();
};

TEST_F(ProcessStarterTest, AScriptGetsTheArgumentsOfTheLine) {
    const auto script =
        Script("my programs/vp", "for a in \"$@\"; do printf '<%s>\\n' \"$a\"; done");
    const auto started = Start("\"" + script + "\" /Play -\"/t/Tom's \xC3\x9C table $HOME.vpt\"");
    ASSERT_TRUE(started.ok()) << started.status().message();
    EXPECT_EQ(Output(), "</Play>\n<-/t/Tom's \xC3\x9C table $HOME.vpt>\n");
}

TEST_F(ProcessStarterTest, AProgramWithQuotesInItsNameIsStarted) {
    const auto script = Script("my programs/the \"vp\"", "echo \"$1\"");
    const QString line =
        platform::QuoteProgramName(QString::fromStdString(script)) + QStringLiteral(" /Play");
    ASSERT_TRUE(starter_->Start(line).ok());
    EXPECT_EQ(Output(), "/Play\n");
}

TEST_F(ProcessStarterTest, AProgramRunsInTheCurrentDirectory) {
    const auto script = Script("vp", "pwd");
    std::filesystem::current_path(Path("my programs"));
    ASSERT_TRUE(Start("\"" + script + "\"").ok());
    EXPECT_EQ(Output(), Path("my programs") + "\n");
}

TEST_F(ProcessStarterTest, TheResultIsTheIdOfTheProgram) {
    const auto started = Start("\"" + Script("vp", "echo $$") + "\"");
    ASSERT_TRUE(started.ok());
    EXPECT_EQ(Output(), std::to_string(*started) + "\n");
}

TEST_F(ProcessStarterTest, WhetherAProgramStillRunsIsKnown) {
    const auto started = Start(
        "\"" +
        Program("vp", "#!/bin/sh\nwhile [ ! -e '" + Path("end") + "' ]; do sleep 0.02; done\n") +
        "\"");
    ASSERT_TRUE(started.ok());
    EXPECT_TRUE(starter_->IsRunning(*started));
    std::ofstream(Path("end")) << "x";
    EXPECT_TRUE(WaitFor([&] { return !starter_->IsRunning(*started); }));
}

TEST_F(ProcessStarterTest, TheProgramHasNoneOfOurFilesAndNoTerminal) {
    const int ours = open(Program("secret", "x").c_str(), O_RDONLY);  // stays open across exec()
    ASSERT_TRUE(Start("\"" + Script("vp", "ls -l /proc/$$/fd") + "\"").ok());
    const std::string files = Output();
    close(ours);
    EXPECT_EQ(files.find("secret"), std::string::npos) << files;
    EXPECT_NE(files.find("0 -> /dev/null"), std::string::npos) << files;
}

TEST_F(ProcessStarterTest, AnEndedProgramLeavesNoZombie) {
    const auto started = Start("\"" + Script("vp", "true") + "\"");
    ASSERT_TRUE(started.ok());
    Output();
    errno = 0;
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

TEST_F(ProcessStarterTest, TheCallDoesNotWaitForTheProgram) {
    // Runs until the test ends it; the call would not return before.
    const auto started = Start("\"" + Program("vp", "#!/bin/sh\nexec sleep 1000\n") + "\"");
    ASSERT_TRUE(started.ok());
    EXPECT_EQ(kill(static_cast<pid_t>(*started), SIGKILL), 0);
}

TEST_F(ProcessStarterTest, AMissingFolderIsNumber76) {
    const auto started = Start("\"" + Path("gone/vp") + "\" /Play");
    EXPECT_EQ(started.status().code(), base::StatusCode::kNotFound);
    EXPECT_EQ(started.status().number(), 76);
}

TEST_F(ProcessStarterTest, AWindowsPathIsAMissingFolder) {
    EXPECT_EQ(Start(R"("C:\VP\VPinball.exe" /Play)").status().number(), 76);
}

TEST_F(ProcessStarterTest, AnEmptyLineStartsNothing) {
    EXPECT_FALSE(Start("").ok());
}

TEST_F(ProcessStarterTest, AScriptWhoseInterpreterIsMissingSaysSo) {
    const auto script = Program("vp", "#! /nowhere/bash\t-e\necho\n");
    const auto started = Start("\"" + script + "\"");
    EXPECT_EQ(started.status().number(), 53);
    EXPECT_EQ(started.status().message(),
              "The program that this script needs, /nowhere/bash, is not installed: " + script);
}

TEST_F(ProcessStarterTest, AMissingFileIsNumber53) {
    const auto started = Start("\"" + Path("vp") + "\" /Play");
    EXPECT_EQ(started.status().code(), base::StatusCode::kNotFound);
    EXPECT_EQ(started.status().number(), 53);
    EXPECT_EQ(started.status().message(), "File not found: " + Path("vp"));
}

TEST_F(ProcessStarterTest, AFolderIsNoProgram) {
    const auto started = Start("\"" + Path("my programs") + "\"");
    EXPECT_EQ(started.status().code(), base::StatusCode::kPermissionDenied);
    EXPECT_NE(started.status().number(), 76);
}

TEST_F(ProcessStarterTest, AFileThatIsNotMarkedAsAProgramIsRefused) {
    const auto started = Start("\"" + Program("vp", "#!/bin/sh\n", false) + "\"");
    EXPECT_EQ(started.status().code(), base::StatusCode::kPermissionDenied);
}

TEST_F(ProcessStarterTest, ATextIsNotRunAsAScript) {
    const auto started =
        Start("\"" + Program("notes.txt", "touch '" + Path("touched") + "'\n") + "\"");
    EXPECT_EQ(started.status().code(), base::StatusCode::kUnsupported);
    EXPECT_FALSE(std::filesystem::exists(Path("touched")));
}

TEST_F(ProcessStarterTest, AScriptWithoutItsInterpreterIsNotFound) {
    EXPECT_EQ(Start("\"" + Program("vp", "#!/no/such/shell\n") + "\"").status().number(), 53);
}

TEST_F(ProcessStarterTest, AToolIsStartedWithoutArguments) {
    const auto script = Script("my programs/info tool", "echo $#");
    ASSERT_TRUE(starter_->StartTool(QString::fromStdString(script)).ok());
    EXPECT_EQ(Output(), "0\n");
}

// A script instead of Wine's loader records what it is asked to run.
class WineLoader : public ProcessStarterTest {
protected:
    void SetUp() override { SetPath(Path("bin") + ":" + before_path_.toStdString()); }
    void TearDown() override { qputenv("PATH", before_path_); }
    static void SetPath(const std::string& path) { qputenv("PATH", path.c_str()); }
    void InstallLoader() {
        std::filesystem::create_directory(Path("bin"));
        Script("bin/wine", "for a in \"$@\"; do printf '<%s>\\n' \"$a\"; done");
    }
    QByteArray before_path_ = qgetenv("PATH");
};

TEST_F(WineLoader, RunsAWindowsProgramOnPathsOfItsDriveZ) {
    InstallLoader();
    const auto program = Program("my programs/VPinball.exe", "MZ\x90", false);
    ASSERT_TRUE(Start("\"" + program + "\" /Play -\"/t/a b/F\xC3\xBC.vpt\"").ok());
    EXPECT_EQ(Output(), "<" + program + ">\n</Play>\n<-Z:\\t\\a b\\F\xC3\xBC.vpt>\n");
}

TEST_F(WineLoader, HasALocaleThatKnowsEveryFileName) {
    const QByteArray before = qgetenv("LC_ALL");
    std::filesystem::create_directory(Path("bin"));
    Script("bin/wine", "echo $LC_ALL");
    const auto program = Program("vp.exe", "MZ");
    qputenv("LC_ALL", "C");
    ASSERT_TRUE(Start("\"" + program + "\"").ok());
    EXPECT_EQ(Output(), "C.UTF-8\n");
    std::filesystem::remove(Path("out"));
    qputenv("LC_ALL", "de_DE.utf8");
    ASSERT_TRUE(Start("\"" + program + "\"").ok());
    EXPECT_EQ(Output(), "de_DE.utf8\n");
    qputenv("LC_ALL", before);
}

TEST_F(WineLoader, IsKnownToBeMissing) {
    std::filesystem::create_directory(Path("bin"));
    SetPath(Path("bin"));
    const auto started = Start("\"" + Program("vp.exe", "MZ") + "\"");
    EXPECT_EQ(started.status().code(), base::StatusCode::kUnsupported);
    EXPECT_NE(started.status().message().find("Wine"), std::string::npos);
}

TEST_F(WineLoader, IsNotUsedForAScriptThatIsCalledExe) {
    InstallLoader();
    ASSERT_TRUE(Start("\"" + Script("vp.exe", "echo native") + "\"").ok());
    EXPECT_EQ(Output(), "native\n");
}

TEST_F(WineLoader, IsUsedForAWindowsProgramOfAnyName) {
    InstallLoader();
    const auto program = Program("VPinball.EXE.old", "MZ\x90");
    ASSERT_TRUE(Start("\"" + program + "\"").ok());
    EXPECT_EQ(Output(), "<" + program + ">\n");
}

TEST(WindowsArgumentTest, OnlyPathsAreRewritten) {
    const auto rewritten = [](const char* text) {
        return platform::ArgumentForWindows(QString::fromUtf8(text)).toStdString();
    };
    EXPECT_EQ(rewritten("/Play"), "/Play");
    EXPECT_EQ(rewritten("-/Foo.vpt"), "-Z:\\Foo.vpt");
    EXPECT_EQ(rewritten("/home/user/Foo.vpt"), "Z:\\home\\user\\Foo.vpt");
    EXPECT_EQ(rewritten("-C:\\Tables\\Foo.vpt"), "-C:\\Tables\\Foo.vpt");
    EXPECT_EQ(rewritten("-"), "-");
    EXPECT_EQ(rewritten(""), "");
}

}  // namespace
