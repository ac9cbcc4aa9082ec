#include "launcher/play_table.h"

#include "launcher/update_play_count.h"
#include "platform/files.h"
#include "support/catalogue_fixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <filesystem>

namespace {

using launcher::Launcher;
using launcher::MainWindowActions;
using platform::Message;
using platform::MessageIcon;

// Everything that a launch does, in its order, as texts.
using Steps = QStringList;

class RecordingWindows final : public platform::WindowControl {
public:
    explicit RecordingWindows(Steps& steps) : steps_(steps) {}
    QStringList open_titles;

    std::optional<platform::WindowHandle> Find(const QString& window_class,
                                               const QString& title) override {
        steps_ << QStringLiteral("find %1 '%2'").arg(window_class, title);
        if (!open_titles.contains(title)) return std::nullopt;
        return platform::WindowHandle{static_cast<std::uint64_t>(open_titles.indexOf(title)) + 1};
    }
    void RequestClose(platform::WindowHandle window) override {
        const QString title = open_titles.takeAt(static_cast<qsizetype>(window) - 1);
        steps_ << QStringLiteral("close '%1'").arg(title);
    }

private:
    Steps& steps_;
};

class RecordingPrograms final : public platform::ProcessStarter {
public:
    explicit RecordingPrograms(Steps& steps) : steps_(steps) {}
    base::Status failure;
    QString folder;  // the current one at the last start
    bool is_running = true;
    bool IsRunning(std::int64_t process_id) override {
        EXPECT_EQ(process_id, 4711);
        return is_running;
    }

    base::Result<std::int64_t> Start(const QString& command_line) override {
        steps_ << QStringLiteral("start ") + command_line;
        folder = QDir::currentPath();
        if (!failure.ok()) return failure;
        return std::int64_t{4711};
    }
    base::Result<std::int64_t> StartTool(const QString&) override { return std::int64_t{0}; }

private:
    Steps& steps_;
};

class RecordingSounds final : public platform::SoundPlayer {
public:
    explicit RecordingSounds(Steps& steps) : steps_(steps) {}
    void PlaySynchronously(const QString& wave_file) override {
        steps_ << QStringLiteral("sound ") + wave_file;
    }

private:
    Steps& steps_;
};

class RecordingStatus final : public platform::StatusDisplay {
public:
    explicit RecordingStatus(Steps& steps) : steps_(steps) {}
    std::function<void()> on_show;

    void Show(const QString& text) override {
        steps_ << QStringLiteral("splash ") + text;
        if (on_show) on_show();
    }
    void Unload() override { steps_ << QStringLiteral("splash unloaded"); }

private:
    Steps& steps_;
};

class LauncherTest : public test_support::CatalogueFixture {
protected:
    LauncherTest() : before_(std::filesystem::current_path()) {}
    ~LauncherTest() override { std::filesystem::current_path(before_); }

    void SetUp() override {
        CatalogueFixture::SetUp();
        // On Windows each drive has a current folder: a play changes that of the table's drive.
        std::filesystem::current_path(folder.path().toStdU16String());
        ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("my tables")));
        Execute(QStringLiteral("insert into Tables (DisplayName, FileName) values ('Foo', 'x')"));
        Execute(QStringLiteral("insert into Tables (DisplayName, FileName) values ('Bar', 'y')"));
        values.VisualPinballExe = QStringLiteral("/opt/my vp/VPinball.exe");
    }

    qint64 Id(const QString& display_name) {
        return Scalar(QStringLiteral("select ID from Tables where DisplayName = '%1'")
                          .arg(display_name))
            .toLongLong();
    }
    QString TimesPlayed(const QString& display_name) {
        return Scalar(QStringLiteral("select TimesPlayed from Tables where DisplayName = '%1'")
                          .arg(display_name));
    }
    QString LastPlayed(const QString& display_name) {
        return Scalar(QStringLiteral("select LastPlayed from Tables where DisplayName = '%1'")
                          .arg(display_name));
    }
    QString TablePath(const QString& name) const {
        return folder.filePath(QStringLiteral("my tables/") + name);
    }
    void PlayFoo() {
        launcher_.PlayTable(TablePath(QStringLiteral("Foo.vpt")), QStringLiteral("Foo"),
                            Id(QStringLiteral("Foo")));
    }
    // The steps that begin so.
    Steps StepsOf(const QString& kind) const {
        return steps_.filter(QRegularExpression(QStringLiteral("^") + kind));
    }
    int Position(const QString& kind) const {
        return static_cast<int>(
            steps_.indexOf(QRegularExpression(QStringLiteral("^%1.*").arg(kind))));
    }
    MainWindowActions Actions() {
        return {[this] {
                    steps_ << QStringLiteral("state");
                    return state_;
                },
                [this] {
                    steps_ << QStringLiteral("minimise");
                    state_ = Qt::WindowMinimized;
                },
                [this](Qt::WindowStates state) {
                    steps_ << QStringLiteral("restore");
                    state_ = state;
                },
                [this] { steps_ << QStringLiteral("settings"); },
                [this](const QString& text) { told_ << text; }};
    }

    static QString Playing(const QString& name) {
        return QStringLiteral("Visual Pinball - [%1*]").arg(name);
    }
    static QString Ended(const QString& name) {
        return QStringLiteral("Visual Pinball - [%1]").arg(name);
    }
    // What the simulator does when a play ends.
    void EndPlay(const QString& name) {
        windows_.open_titles.replace(windows_.open_titles.indexOf(Playing(name)), Ended(name));
    }

    std::filesystem::path before_;
    Steps steps_;
    QStringList told_;
    Qt::WindowStates state_ = Qt::WindowNoState;
    RecordingWindows windows_{steps_};
    RecordingPrograms programs_{steps_};
    RecordingSounds sounds_{steps_};
    RecordingStatus status_{steps_};
    test_support::FakeEvents events_;
    Launcher launcher_{{catalogue, windows_, programs_, sounds_, events_, status_, prompts},
                       Actions()};
};

// With the option to wait.

TEST_F(LauncherTest, ASimulatorThatNeedsLongerIsWaitedForAndWatched) {
    values.WaitForSimulator = true;
    values.MinimiseOnPlay = true;
    events_.on_round = [this] {
        if (events_.rounds == 20) windows_.open_titles = {Playing(QStringLiteral("Foo"))};
        if (events_.rounds == 30) EndPlay(QStringLiteral("Foo"));
        EXPECT_EQ(state_, Qt::WindowMinimized);
    };
    PlayFoo();
    EXPECT_EQ(events_.rounds, 30);
    EXPECT_EQ(events_.waited_ms, 30 * 100) << "ten times a second";
    EXPECT_EQ(StepsOf(QStringLiteral("close")).size(), 1);
    EXPECT_EQ(state_, Qt::WindowNoState);
    EXPECT_TRUE(told_.isEmpty());
}

TEST_F(LauncherTest, ASimulatorThatEndsAtOnceIsTold) {
    values.WaitForSimulator = true;
    events_.on_round = [this] { programs_.is_running = events_.rounds < 5; };
    PlayFoo();
    EXPECT_EQ(events_.rounds, 5);
    EXPECT_EQ(told_, QStringList{QStringLiteral("The simulator has ended without playing Foo")});
    EXPECT_EQ(StepsOf(QStringLiteral("restore")).size(), 1);
}

TEST_F(LauncherTest, PatienceEndsAfterThirtySeconds) {
    values.WaitForSimulator = true;
    PlayFoo();
    EXPECT_EQ(events_.waited_ms, 30'000);
    EXPECT_EQ(told_, QStringList{QStringLiteral("The simulator shows no window of Foo")});
}

TEST_F(LauncherTest, TheEndOfTheProgramEndsTheWaiting) {
    values.WaitForSimulator = true;
    events_.on_round = [this] {
        if (events_.rounds == 3) launcher_.EndWatches();
    };
    PlayFoo();
    EXPECT_EQ(events_.rounds, 3);
    EXPECT_TRUE(told_.isEmpty());
}

TEST_F(LauncherTest, APlayTakesItsStepsInOrder) {
    values.SoundOn = true;
    values.MinimiseOnPlay = true;
    PlayFoo();
    const Steps expected = {
        QStringLiteral("state"),
        QStringLiteral("splash Foo"),
        QStringLiteral("sound ") + folder.filePath(QStringLiteral("Pinball.wav")),
        QStringLiteral("start \"/opt/my vp/VPinball.exe\" /Play -\"%1\"")
            .arg(TablePath(QStringLiteral("Foo.vpt"))),
        QStringLiteral("minimise"),
        QStringLiteral("splash unloaded"),
        QStringLiteral("find VPinball 'Visual Pinball - [Foo*]'"),
        QStringLiteral("find VPinball 'Visual Pinball - [Foo]'"),
        QStringLiteral("restore"),
    };
    EXPECT_EQ(steps_, expected);
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(LauncherTest, ThePlayIsCountedBeforeTheStart) {
    QString count_at_splash;
    status_.on_show = [&] { count_at_splash = TimesPlayed(QStringLiteral("Foo")); };
    PlayFoo();
    EXPECT_EQ(count_at_splash, QStringLiteral("1"));
}

TEST_F(LauncherTest, EachPlayCountsOneMore) {
    PlayFoo();
    PlayFoo();
    PlayFoo();
    EXPECT_EQ(TimesPlayed(QStringLiteral("Foo")), QStringLiteral("3"));
}

TEST_F(LauncherTest, TheLastPlayIsNow) {
    clock.now = QDateTime(QDate(2026, 2, 3), QTime(16, 5, 6));
    PlayFoo();
    EXPECT_EQ(LastPlayed(QStringLiteral("Foo")), QStringLiteral("2/3/2026 4:05:06 PM"));
}

TEST_F(LauncherTest, OtherTablesKeepTheirCounts) {
    PlayFoo();
    EXPECT_EQ(TimesPlayed(QStringLiteral("Bar")), QStringLiteral("0"));
    EXPECT_EQ(LastPlayed(QStringLiteral("Bar")), QString());
}

TEST_F(LauncherTest, AnIdWithoutARowIsPlayedAndNotCounted) {
    launcher_.PlayTable(TablePath(QStringLiteral("Foo.vpt")), QStringLiteral("Foo"), 9999);
    EXPECT_EQ(StepsOf(QStringLiteral("start")).size(), 1);
    EXPECT_EQ(TimesPlayed(QStringLiteral("Foo")), QStringLiteral("0"));
}

TEST_F(LauncherTest, TheSimulatorStartsInTheFolderOfTheTable) {
    PlayFoo();
    EXPECT_EQ(platform::Identity(programs_.folder),
              platform::Identity(folder.filePath(QStringLiteral("my tables"))))
        << programs_.folder.toStdString();
}

TEST_F(LauncherTest, TheTaskIdIsKept) {
    EXPECT_EQ(launcher_.last_task_id(), 0);
    PlayFoo();
    EXPECT_EQ(launcher_.last_task_id(), 4711);
}

TEST_F(LauncherTest, WithoutAnExecutableTheUserIsSentToTheSettings) {
    values.VisualPinballExe.clear();
    PlayFoo();
    Message expected;
    expected.text = QStringLiteral("Please Set the location of the VP executable");
    expected.icon = MessageIcon::kInformation;
    EXPECT_EQ(prompts.messages, std::vector<Message>{expected});
    EXPECT_EQ(steps_, Steps{QStringLiteral("settings")});
}

TEST_F(LauncherTest, WithoutAnExecutableThePlayIsCountedAllTheSame) {
    values.VisualPinballExe.clear();
    PlayFoo();
    EXPECT_EQ(TimesPlayed(QStringLiteral("Foo")), QStringLiteral("1"));
    EXPECT_EQ(LastPlayed(QStringLiteral("Foo")), QStringLiteral("11/20/2026 3:04:05 PM"));
}

TEST_F(LauncherTest, WithoutSoundThereIsNone) {
    PlayFoo();
    EXPECT_TRUE(StepsOf(QStringLiteral("sound")).isEmpty());
}

TEST_F(LauncherTest, WithoutTheOptionTheWindowIsNotMinimised) {
    state_ = Qt::WindowMaximized;
    PlayFoo();
    EXPECT_TRUE(StepsOf(QStringLiteral("minimise")).isEmpty());
    EXPECT_EQ(state_, Qt::WindowMaximized);
}

TEST_F(LauncherTest, AMaximisedWindowComesBackMaximised) {
    values.MinimiseOnPlay = true;
    state_ = Qt::WindowMaximized;
    PlayFoo();
    EXPECT_EQ(StepsOf(QStringLiteral("minimise")).size(), 1);
    EXPECT_EQ(state_, Qt::WindowMaximized);
}

class LaunchedPath : public LauncherTest, public testing::WithParamInterface<const char*> {};

TEST_P(LaunchedPath, FollowsTheMinusWithoutABlank) {
    const QString path = TablePath(QString::fromUtf8(GetParam()));
    launcher_.PlayTable(path, QStringLiteral("Foo"), Id(QStringLiteral("Foo")));
    EXPECT_EQ(StepsOf(QStringLiteral("start")),
              Steps{QStringLiteral("start \"/opt/my vp/VPinball.exe\" /Play -\"%1\"").arg(path)});
}

INSTANTIATE_TEST_SUITE_P(LauncherTest, LaunchedPath,
                         testing::Values("Foo.vpt", "two  blanks .vpt", "Tom's.vpt", "Grüße.vpt",
                                         "100%1.vpt", "a&b|c.vpt"));

// Names that Windows does not know, so that its simulator's contract says nothing about them.
TEST_F(LauncherTest, AQuoteInAFileNameIsEscaped) {
    launcher_.PlayTable(TablePath(QStringLiteral("The \"King\".vpt")), QStringLiteral("Foo"),
                        Id(QStringLiteral("Foo")));
    EXPECT_EQ(StepsOf(QStringLiteral("start")),
              Steps{QStringLiteral("start \"/opt/my vp/VPinball.exe\" /Play -\"%1\"")
                        .arg(TablePath(QStringLiteral("The \\\"King\\\".vpt")))});
}

struct TitleCase {
    const char* name;
    const char* file;
    const char* title_key;
};

class WatchedTitle : public LauncherTest, public testing::WithParamInterface<TitleCase> {};

TEST_P(WatchedTitle, IsTheFileNameLessFourCharacters) {
    launcher_.PlayTable(TablePath(QString::fromUtf8(GetParam().file)), QStringLiteral("other"),
                        Id(QStringLiteral("Foo")));
    const QString key = QString::fromUtf8(GetParam().title_key);
    const Steps expected = {QStringLiteral("find VPinball '%1'").arg(Playing(key)),
                            QStringLiteral("find VPinball '%1'").arg(Ended(key))};
    EXPECT_EQ(StepsOf(QStringLiteral("find")), expected);
}

INSTANTIATE_TEST_SUITE_P(LauncherTest, WatchedTitle,
                         testing::Values(TitleCase{"Plain", "Foo.vpt", "Foo"},
                                         TitleCase{"UpperCase", "FOO.VPT", "FOO"},
                                         TitleCase{"TwoDots", "Game.final.vpt", "Game.final"},
                                         TitleCase{"FourCharacters", ".vpt", ""},
                                         TitleCase{"Brackets", "a [b]*.vpt", "a [b]*"}),
                         [](const auto& of) { return of.param.name; });

TEST_F(LauncherTest, ASimulatorThatIsNotThereYetIsNotWaitedFor) {
    PlayFoo();
    EXPECT_EQ(events_.rounds, 0);
    EXPECT_TRUE(StepsOf(QStringLiteral("close")).isEmpty());
}

TEST_F(LauncherTest, EventsAreHandledOnceForEachSearch) {
    windows_.open_titles = {Playing(QStringLiteral("Foo"))};
    events_.on_round = [this] {
        if (events_.rounds == 5) EndPlay(QStringLiteral("Foo"));
    };
    PlayFoo();
    EXPECT_EQ(events_.rounds, 5);
    EXPECT_EQ(StepsOf(QStringLiteral("find VPinball 'Visual Pinball - \\[Foo\\*")).size(), 6);
}

TEST_F(LauncherTest, TheSimulatorIsClosedWhenThePlayEndsAndThenTheWindowRestored) {
    windows_.open_titles = {Playing(QStringLiteral("Foo")), Ended(QStringLiteral("Bar"))};
    events_.on_round = [this] { EndPlay(QStringLiteral("Foo")); };
    PlayFoo();
    EXPECT_EQ(StepsOf(QStringLiteral("close")),
              Steps{QStringLiteral("close 'Visual Pinball - [Foo]'")});
    EXPECT_LT(Position(QStringLiteral("close")), Position(QStringLiteral("restore")));
    EXPECT_EQ(windows_.open_titles, QStringList{Ended(QStringLiteral("Bar"))});
}

TEST_F(LauncherTest, ASimulatorThatTheUserClosedIsNotClosedAgain) {
    windows_.open_titles = {Playing(QStringLiteral("Foo"))};
    events_.on_round = [this] { windows_.open_titles.clear(); };
    PlayFoo();
    EXPECT_TRUE(StepsOf(QStringLiteral("close")).isEmpty());
    EXPECT_EQ(steps_.last(), QStringLiteral("restore"));
}

TEST_F(LauncherTest, ASecondPlayIsWatchedInsideTheFirst) {
    windows_.open_titles = {Playing(QStringLiteral("Foo"))};
    events_.on_round = [this] {
        if (events_.rounds == 1) {
            windows_.open_titles << Playing(QStringLiteral("Bar"));
            launcher_.PlayTable(TablePath(QStringLiteral("Bar.vpt")), QStringLiteral("Bar"),
                                Id(QStringLiteral("Bar")));
        } else if (events_.rounds == 2) {
            EndPlay(QStringLiteral("Foo"));  // the outer play ends first ...
        } else if (events_.rounds == 3) {
            EndPlay(QStringLiteral("Bar"));  // ... and is noticed when the inner one has
        }
    };
    PlayFoo();
    const Steps expected = {QStringLiteral("close 'Visual Pinball - [Bar]'"),
                            QStringLiteral("close 'Visual Pinball - [Foo]'")};
    EXPECT_EQ(StepsOf(QStringLiteral("close")), expected);
    EXPECT_EQ(StepsOf(QStringLiteral("restore")).size(), 2);
    EXPECT_EQ(TimesPlayed(QStringLiteral("Bar")), QStringLiteral("1"));
}

TEST_F(LauncherTest, EachNestedPlayRestoresTheStateThatItFound) {
    values.MinimiseOnPlay = true;
    state_ = Qt::WindowMaximized;
    windows_.open_titles = {Playing(QStringLiteral("Foo"))};
    Qt::WindowStates after_inner;
    events_.on_round = [&] {
        state_ = Qt::WindowNoState;  // the user brings the window back to choose another table
        launcher_.PlayTable(TablePath(QStringLiteral("Bar.vpt")), QStringLiteral("Bar"),
                            Id(QStringLiteral("Bar")));
        after_inner = state_;
        EndPlay(QStringLiteral("Foo"));
    };
    PlayFoo();
    EXPECT_EQ(after_inner, Qt::WindowNoState);
    EXPECT_EQ(state_, Qt::WindowMaximized);
}

TEST_F(LauncherTest, AWatchEndsWithTheMainWindowAndLeavesTheSimulatorAlone) {
    windows_.open_titles = {Playing(QStringLiteral("Foo")), Ended(QStringLiteral("Foo"))};
    events_.on_round = [this] { launcher_.EndWatches(); };
    PlayFoo();
    EXPECT_EQ(events_.rounds, 1);
    EXPECT_TRUE(StepsOf(QStringLiteral("close")).isEmpty());
    EXPECT_TRUE(StepsOf(QStringLiteral("restore")).isEmpty());
}

TEST_F(LauncherTest, AMissingFolderOfTheExecutableIsAMissingExecutable) {
    programs_.failure = {base::StatusCode::kNotFound, "Path not found: /opt/my vp", 76};
    PlayFoo();
    Message expected;
    expected.text = QStringLiteral("The Visual Pinball Executable Could not Be Found!!");
    expected.icon = MessageIcon::kCritical;
    EXPECT_EQ(prompts.messages, std::vector<Message>{expected});
}

TEST_F(LauncherTest, AnyOtherFailureIsToldInItsOwnWords) {
    programs_.failure = {base::StatusCode::kNotFound, "File not found: /opt/vp", 53};
    PlayFoo();
    Message expected;
    expected.text = QStringLiteral("File not found: /opt/vp");
    expected.icon = MessageIcon::kCritical;
    EXPECT_EQ(prompts.messages, std::vector<Message>{expected});
}

TEST_F(LauncherTest, AFailedStartMinimisesAndWatchesNothing) {
    values.MinimiseOnPlay = true;
    state_ = Qt::WindowMaximized;
    programs_.failure = {base::StatusCode::kIoError, "no"};
    PlayFoo();
    EXPECT_TRUE(StepsOf(QStringLiteral("minimise|find|close")).isEmpty());
    EXPECT_EQ(steps_.last(), QStringLiteral("restore"));
    EXPECT_EQ(state_, Qt::WindowMaximized);
}

TEST_F(LauncherTest, AFailedStartLeavesNoSplash) {
    programs_.failure = {base::StatusCode::kIoError, "no"};
    PlayFoo();
    EXPECT_EQ(StepsOf(QStringLiteral("splash unloaded")).size(), 1);
}

TEST_F(LauncherTest, AFailedStartStaysCounted) {
    programs_.failure = {base::StatusCode::kIoError, "no"};
    PlayFoo();
    EXPECT_EQ(TimesPlayed(QStringLiteral("Foo")), QStringLiteral("1"));
}

class LostFolder : public LauncherTest, public testing::WithParamInterface<const char*> {};

TEST_P(LostFolder, OfTheTableIsReportedAsAMissingExecutable) {
    launcher_.PlayTable(QString::fromUtf8(GetParam()), QStringLiteral("Foo"),
                        Id(QStringLiteral("Foo")));
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("The Visual Pinball Executable Could not Be Found!!"));
    EXPECT_EQ(steps_, Steps());
    EXPECT_EQ(TimesPlayed(QStringLiteral("Foo")), QStringLiteral("1"));
}

INSTANTIATE_TEST_SUITE_P(LauncherTest, LostFolder,
                         testing::Values("/no/such/folder/Foo.vpt", "C:\\Tables\\Foo.vpt",
                                         "Foo.vpt"));

TEST_F(LauncherTest, ANameTooShortForAnExtensionIsAnInvalidArgument) {
    launcher_.PlayTable(TablePath(QStringLiteral("abc")), QStringLiteral("Foo"),
                        Id(QStringLiteral("Foo")));
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Invalid procedure call or argument"));
    EXPECT_EQ(prompts.messages[0].icon, MessageIcon::kCritical);
    EXPECT_TRUE(StepsOf(QStringLiteral("start")).isEmpty());
}

TEST_F(LauncherTest, AMissingTableFileIsLeftToTheSimulator) {
    ASSERT_FALSE(QFile::exists(TablePath(QStringLiteral("Foo.vpt"))));
    PlayFoo();
    EXPECT_EQ(StepsOf(QStringLiteral("start")).size(), 1);
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(LauncherTest, ADatabaseFailureIsToldAndNothingIsStarted) {
    ASSERT_TRUE(connection->Close().ok());
    const auto failure = launcher::UpdatePlayCount(*connection, 1);
    ASSERT_FALSE(failure.ok());
    launcher_.PlayTable(TablePath(QStringLiteral("Foo.vpt")), QStringLiteral("Foo"), 1);
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text.toStdString(), failure.message());
    EXPECT_EQ(steps_, Steps());
}

TEST_F(LauncherTest, AFileThatThePathMapFindsIsPlayedThere) {
    MapTablesHere();
    QFile file(TablePath(QStringLiteral("Foo.vpt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    launcher_.PlayTable(QStringLiteral("c:\\TABLES\\my tables\\Foo.vpt"), QStringLiteral("Foo"),
                        Id(QStringLiteral("Foo")));
    EXPECT_EQ(StepsOf(QStringLiteral("start ")),
              QStringList{QStringLiteral("start \"/opt/my vp/VPinball.exe\" /Play -\"%1\"")
                              .arg(QDir::toNativeSeparators(file.fileName()))});
    EXPECT_EQ(QDir(programs_.folder), QDir(folder.filePath(QStringLiteral("my tables"))));
    EXPECT_EQ(TimesPlayed(QStringLiteral("Foo")), QStringLiteral("1"));
}

}  // namespace
