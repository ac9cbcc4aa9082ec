// A play with a true Windows simulator, through Wine.
#include "launcher/real_play_fixture.h"
#include "support/wine_prefix.h"

namespace {

class WinePlayTest : public test_support::WithWine<test_support::RealPlayFixture> {
protected:
    void SetUp() override {
        WithWine::SetUp();
        values.VisualPinballExe = QStringLiteral(WINDOWS_SIMULATOR);
    }
};

const QString kFoo = QStringLiteral("Käpt'n Foo & Co");
const QString kBar = QStringLiteral("Bar");

TEST_F(WinePlayTest, TheSimulatorIsStartedWatchedAndClosed) {
    events_.on_round = [this] {
        if (events_.rounds == 20) run_.EndPlay();
    };
    Play(kFoo);
    EXPECT_GE(events_.rounds, 20);
    EXPECT_TRUE(run_.Logs("syscommand close")) << run_.LogText();
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
    EXPECT_EQ(run_.Count("table=12"), 1) << run_.LogText();
    EXPECT_EQ(TimesPlayed(kFoo), QStringLiteral("1"));
}

TEST_F(WinePlayTest, ASimulatorWithAQuoteInItsPathIsStarted) {
    const QString programs = folder.filePath(QStringLiteral("the \"vp\""));
    ASSERT_TRUE(QDir().mkpath(programs));
    values.VisualPinballExe = programs + QStringLiteral("/vpinball.exe");
    ASSERT_TRUE(QFile::copy(QStringLiteral(WINDOWS_SIMULATOR), values.VisualPinballExe));
    events_.on_round = [this] { run_.EndPlay(); };
    Play(kFoo);
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
    EXPECT_EQ(run_.Count("table=12"), 1) << run_.LogText();
}

TEST_F(WinePlayTest, ASecondPlayInsideTheWatchOfTheFirst) {
    bool second_started = false;
    events_.on_round = [&] {
        if (!second_started) {
            second_started = true;
            Play(kBar);
        } else if (HasWindow(Playing(kFoo)) && HasWindow(Playing(kBar))) {
            run_.EndPlay();
        }
    };
    Play(kFoo);
    EXPECT_TRUE(run_.Logs("closed by request", 2)) << run_.LogText();
}

}  // namespace
