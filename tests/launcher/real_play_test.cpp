// Plays with a native simulator: real processes, real windows.
#include "launcher/real_play_fixture.h"

#include <csignal>
#include <fstream>

namespace {

class RealPlayTest : public test_support::RealPlayFixture {
protected:
    void SetUp() override {
        RealPlayFixture::SetUp();
        values.VisualPinballExe = QStringLiteral(SIMULATOR);
    }
    // A program of the test's own in the place of the simulator.
    void UseProgram(const char* text, std::filesystem::perms permissions) {
        values.VisualPinballExe = folder.filePath(QStringLiteral("vp"));
        std::ofstream(values.VisualPinballExe.toStdString()) << text;
        std::filesystem::permissions(values.VisualPinballExe.toStdString(), permissions);
        waits_ = false;
    }
    QString OnlyMessage() const {
        return prompts.messages.size() == 1 ? prompts.messages[0].text : QStringLiteral("<none>");
    }
};

const QString kFoo = QStringLiteral("Foo's Ü [1]");
const QString kBar = QStringLiteral("Bar");

TEST_F(RealPlayTest, TheSimulatorIsStartedWatchedAndClosed) {
    events_.on_round = [this] {
        if (events_.rounds == 100) run_.EndPlay();
    };
    Play(kFoo);
    EXPECT_GE(events_.rounds, 100);
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
    EXPECT_EQ(run_.Count("argv[1]=/Play"), 1) << run_.LogText();
    EXPECT_EQ(run_.Count("argv[2]=-" + TablePath(kFoo).toStdString()), 1) << run_.LogText();
    EXPECT_EQ(run_.Count("cwd=" + tables_.toStdString()), 1) << run_.LogText();
    EXPECT_EQ(TimesPlayed(kFoo), QStringLiteral("1"));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(RealPlayTest, ASimulatorWithAQuoteInItsPathIsStarted) {
    const QString programs = folder.filePath(QStringLiteral("the \"vp\" \"x"));
    ASSERT_TRUE(QDir().mkpath(programs));
    values.VisualPinballExe = programs + QStringLiteral("/v\"p");
    ASSERT_TRUE(QFile::copy(QStringLiteral(SIMULATOR), values.VisualPinballExe));
    events_.on_round = [this] { run_.EndPlay(); };
    Play(QStringLiteral("A \"quoted\" table"));
    EXPECT_TRUE(prompts.messages.empty()) << prompts.messages[0].text.toStdString();
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
    EXPECT_EQ(
        run_.Count("argv[2]=-" + TablePath(QStringLiteral("A \"quoted\" table")).toStdString()), 1)
        << run_.LogText();
}

TEST_F(RealPlayTest, TheMainWindowIsMinimisedWhileTheTableIsPlayedAndMaximisedAsBefore) {
    values.MinimiseOnPlay = true;
    main_window_.showMaximized();
    ASSERT_TRUE(ProcessUntil([this] { return main_window_.isMaximized(); }));
    bool was_minimised = false;
    events_.on_round = [&] {
        was_minimised = was_minimised || main_window_.isMinimized();
        if (was_minimised) run_.EndPlay();
    };
    Play(kFoo);
    EXPECT_TRUE(was_minimised);
    EXPECT_TRUE(
        ProcessUntil([this] { return main_window_.isMaximized() && !main_window_.isMinimized(); }));
}

TEST_F(RealPlayTest, ASecondPlayInsideTheWatchOfTheFirst) {
    int rounds_of_both = 0;
    bool second_started = false;
    events_.on_round = [&] {
        if (!second_started) {
            second_started = true;
            Play(kBar);
            EXPECT_TRUE(run_.Logs("closed by request")) << "the inner one is over";
        } else if (HasWindow(Playing(kFoo)) && HasWindow(Playing(kBar)) && ++rounds_of_both == 20) {
            run_.EndPlay();
        }
    };
    Play(kFoo);
    EXPECT_TRUE(run_.Logs("closed by request", 2)) << run_.LogText();
    EXPECT_GE(rounds_of_both, 20);
    EXPECT_EQ(TimesPlayed(kFoo), QStringLiteral("1"));
    EXPECT_EQ(TimesPlayed(kBar), QStringLiteral("1"));
}

TEST_F(RealPlayTest, ATableThatIsOpenAlreadyIsWatched) {
    waits_ = true;
    ASSERT_TRUE(programs_
                    ->Start(QStringLiteral("\"%1\" /Play -\"/elsewhere/%2.vpt\"")
                                .arg(QStringLiteral(SIMULATOR), kFoo))
                    .ok());
    events_.on_round = [this] {
        if (run_.Count("already open") == 1) run_.EndPlay();
    };
    Play(kFoo);
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
}

TEST_F(RealPlayTest, ASimulatorThatIsKilledEndsTheWatch) {
    events_.on_round = [this] {
        if (events_.rounds == 10) kill(static_cast<pid_t>(launcher_.last_task_id()), SIGKILL);
    };
    Play(kFoo);
    EXPECT_GE(events_.rounds, 10);
    EXPECT_EQ(run_.Count("closed by request"), 0);
}

TEST_F(RealPlayTest, ASimulatorThatEndsAtOnceIsNotWatched) {
    UseProgram("#!/bin/sh\nexit 1\n", std::filesystem::perms::owner_all);
    Play(kFoo);
    EXPECT_EQ(events_.rounds, 0);
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(RealPlayTest, ASimulatorWithoutAWindowIsNotWatched) {
    // Runs until the test ends it: the launcher must come back without waiting.
    UseProgram("#!/bin/sh\nexec sleep 1000\n", std::filesystem::perms::owner_all);
    Play(kFoo);
    EXPECT_EQ(events_.rounds, 0);
    EXPECT_EQ(kill(static_cast<pid_t>(launcher_.last_task_id()), SIGKILL), 0);
}

TEST_F(RealPlayTest, AnExecutableThatIsAFolderIsToldSo) {
    values.VisualPinballExe = folder.path();
    waits_ = false;
    Play(kFoo);
    EXPECT_EQ(OnlyMessage(),
              QStringLiteral("Permission denied. A folder is not a program: ") + folder.path());
}

TEST_F(RealPlayTest, AnExecutableThatIsNotMarkedAsOneIsToldSo) {
    UseProgram("#!/bin/sh\n", std::filesystem::perms::owner_read);
    Play(kFoo);
    EXPECT_TRUE(OnlyMessage().startsWith(QStringLiteral("Permission denied")));
}

TEST_F(RealPlayTest, AnExecutableThatHasVanishedIsToldSo) {
    UseProgram("#!/bin/sh\n", std::filesystem::perms::owner_all);
    ASSERT_TRUE(QFile::remove(values.VisualPinballExe));
    Play(kFoo);
    EXPECT_EQ(OnlyMessage(), QStringLiteral("File not found: ") + values.VisualPinballExe);
}

TEST_F(RealPlayTest, AnExecutableWhoseFolderHasVanishedCouldNotBeFound) {
    values.VisualPinballExe = QStringLiteral("/no/such/folder/vp");
    waits_ = false;
    Play(kFoo);
    EXPECT_EQ(OnlyMessage(), QStringLiteral("The Visual Pinball Executable Could not Be Found!!"));
    EXPECT_EQ(TimesPlayed(kFoo), QStringLiteral("1"));
}

}  // namespace
