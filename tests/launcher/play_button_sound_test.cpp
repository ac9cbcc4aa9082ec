// The play button and a real sound server, from whose monitor the sound is recorded.
#include "catalogue/process_values.h"
#include "launcher/play_button.h"
#include "platform/sound_player.h"
#include "support/sound_recording.h"

#include <gtest/gtest.h>

#include <QtTest/QTest>

namespace {

using test_support::Holds;
using test_support::Loudest;
using test_support::SamplesOfWave;
using test_support::SoundRecording;

class PlayButtonSoundTest : public testing::Test {
protected:
    PlayButtonSoundTest() {
        button_.SetSound([this](const QString& name) {
            player_->PlaySynchronously(QStringLiteral(SOUNDS "/") + name);
        });
    }

    catalogue::ProcessValues values_;
    launcher::PlayButton button_{values_};
    std::unique_ptr<platform::SoundPlayer> player_ = platform::MakeSoundPlayer();
};

TEST_F(PlayButtonSoundTest, ThePressIsHeardWhenSoundIsOn) {
    values_.SoundOn = true;
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    QTest::mousePress(&button_, Qt::LeftButton);
    EXPECT_TRUE(
        Holds(recording.TakeUntil(0.3), SamplesOfWave(QStringLiteral(SOUNDS "/slingshot.wav"))));
}

TEST_F(PlayButtonSoundTest, ThePressIsSilentWhenSoundIsOff) {
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    QTest::mousePress(&button_, Qt::LeftButton);
    EXPECT_EQ(Loudest(recording.TakeUntil(0.5)), 0);
}

}  // namespace
