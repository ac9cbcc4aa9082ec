#include "support/sound_recording.h"

#include <gtest/gtest.h>

namespace {

using test_support::Holds;
using test_support::Samples;
using test_support::SamplesOfWave;

const Samples kSound = SamplesOfWave(QStringLiteral(SOUNDS "/Pinball.wav"));

TEST(SoundRecordingTest, SilenceHoldsNoSound) {
    ASSERT_FALSE(kSound.empty());
    EXPECT_FALSE(Holds(Samples(60000, 0), kSound));
}

TEST(SoundRecordingTest, HalfASoundIsNotTheSound) {
    EXPECT_FALSE(Holds(Samples(kSound.begin(), kSound.begin() + 17000), kSound));
}

TEST(SoundRecordingTest, ASoundIsFoundAmongSilence) {
    Samples recording(1234, 0);
    recording.insert(recording.end(), kSound.begin(), kSound.end());
    recording.resize(recording.size() + 999);
    EXPECT_TRUE(Holds(recording, kSound));
}

}  // namespace
