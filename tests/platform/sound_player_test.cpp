// Plays through a real sound server and records from its monitor.
#include "platform/sound_player.h"

#include "support/sound_recording.h"

#include <gtest/gtest.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>
#include <QtNetwork/QLocalServer>

namespace {

using test_support::Holds;
using test_support::Loudest;
using test_support::SamplesOfWave;
using test_support::SoundRecording;

const QString kPinball = QStringLiteral(SOUNDS "/Pinball.wav");
const QString kSlingshot = QStringLiteral(SOUNDS "/slingshot.wav");

TEST(SoundPlayerTest, TheWholeSoundReachesTheDevice) {
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    platform::MakeSoundPlayer()->PlaySynchronously(kPinball);
    EXPECT_TRUE(Holds(recording.TakeUntil(0.3), SamplesOfWave(kPinball)));
}

TEST(SoundPlayerTest, TheCallReturnsWhenTheSoundHasEnded) {
    const auto player = platform::MakeSoundPlayer();
    QElapsedTimer time;
    time.start();
    player->PlaySynchronously(kPinball);
    const auto seconds = static_cast<double>(SamplesOfWave(kPinball).size()) / 22050;
    EXPECT_GE(static_cast<double>(time.elapsed()), seconds * 1000);
    EXPECT_LT(static_cast<double>(time.elapsed()), seconds * 1000 + 3000);
}

TEST(SoundPlayerTest, OneSoundFollowsAnother) {
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    const auto player = platform::MakeSoundPlayer();
    player->PlaySynchronously(kSlingshot);
    player->PlaySynchronously(kPinball);
    const auto heard = recording.TakeUntil(0.3);
    EXPECT_TRUE(Holds(heard, SamplesOfWave(kSlingshot)));
    EXPECT_TRUE(Holds(heard, SamplesOfWave(kPinball)));
}

TEST(SoundPlayerTest, AMissingFileIsSilent) {
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    platform::MakeSoundPlayer()->PlaySynchronously(QStringLiteral("/no/such/file.wav"));
    EXPECT_EQ(Loudest(recording.TakeUntil(0.3)), 0);
}

TEST(SoundPlayerTest, AFileThatIsNoSoundIsSilent) {
    SoundRecording recording;
    ASSERT_TRUE(recording.is_running());
    platform::MakeSoundPlayer()->PlaySynchronously(QStringLiteral("/proc/self/exe"));
    EXPECT_EQ(Loudest(recording.TakeUntil(0.3)), 0);
}

// A player connects to the server at its first sound, so this process can be given another server
// here. ctest runs each test in a process of its own.
TEST(SoundPlayerTest, WithoutASoundServerTheCallReturnsAtOnce) {
    qputenv("PULSE_SERVER", "unix:/no/such/socket");
    QElapsedTimer time;
    time.start();
    platform::MakeSoundPlayer()->PlaySynchronously(kPinball);
    EXPECT_LT(time.elapsed(), 3000);
}

TEST(SoundPlayerTest, AServerThatDoesNotAnswerCostsSomeSecondsOnceAndNoHang) {
    const QTemporaryDir folder;
    QLocalServer server;
    ASSERT_TRUE(server.listen(folder.filePath(QStringLiteral("native"))));
    qputenv("PULSE_SERVER", "unix:" + folder.filePath(QStringLiteral("native")).toUtf8());
    QElapsedTimer time;
    time.start();
    auto player = platform::MakeSoundPlayer();
    player->PlaySynchronously(kSlingshot);
    EXPECT_LT(time.elapsed(), 8000);
    time.restart();
    player->PlaySynchronously(kSlingshot);
    player.reset();
    EXPECT_LT(time.elapsed(), 1000);
}

}  // namespace
