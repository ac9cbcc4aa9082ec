// The sound of a launch, recorded from a real sound server's monitor.
#include "launcher/play_table.h"
#include "platform/sound_player.h"
#include "support/catalogue_fixture.h"
#include "support/sound_recording.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <filesystem>

namespace {

using test_support::Holds;
using test_support::Loudest;
using test_support::SamplesOfWave;
using test_support::SoundRecording;

class PlaySoundTest : public test_support::CatalogueFixture {
protected:
    ~PlaySoundTest() override { std::filesystem::current_path(before_); }

    void SetUp() override {
        CatalogueFixture::SetUp();
        values.VisualPinballExe = QStringLiteral("/opt/vp");
        ASSERT_TRUE(QFile::copy(QStringLiteral(SOUNDS "/Pinball.wav"),
                                folder.filePath(QStringLiteral("Pinball.wav"))));
    }
    void Play() {
        launcher_.PlayTable(folder.filePath(QStringLiteral("Foo.vpt")), QStringLiteral("Foo"), 1);
    }

    std::filesystem::path before_ = std::filesystem::current_path();
    test_support::FakeWindows windows_;
    test_support::FakeProcessStarter programs_;
    test_support::FakeEvents events_;
    test_support::FakeStatusDisplay status_;
    std::unique_ptr<platform::SoundPlayer> sounds_ = platform::MakeSoundPlayer();
    launcher::Launcher launcher_{
        {catalogue, windows_, programs_, *sounds_, events_, status_, prompts},
        {[] { return Qt::WindowStates(); }, [] {}, [](Qt::WindowStates) {}, [] {}}};
};

TEST_F(PlaySoundTest, ALaunchIsHeardWhenSoundIsOn) {
    values.SoundOn = true;
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    Play();
    EXPECT_TRUE(
        Holds(recording.TakeUntil(0.3), SamplesOfWave(QStringLiteral(SOUNDS "/Pinball.wav"))));
    EXPECT_EQ(programs_.started.size(), 1U);
}

TEST_F(PlaySoundTest, ALaunchIsSilentWhenSoundIsOff) {
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    Play();
    EXPECT_EQ(Loudest(recording.TakeUntil(1.0)), 0);
    EXPECT_EQ(programs_.started.size(), 1U);
}

TEST_F(PlaySoundTest, AMissingSoundStopsNoLaunch) {
    values.SoundOn = true;
    ASSERT_TRUE(QFile::remove(folder.filePath(QStringLiteral("Pinball.wav"))));
    Play();
    EXPECT_EQ(programs_.started.size(), 1U);
    EXPECT_TRUE(prompts.messages.empty());
}

}  // namespace
