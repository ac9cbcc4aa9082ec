#include "platform/sound/wave_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace {

using platform::ReadWave;
using platform::SampleKind;

std::span<const std::byte> Bytes(const std::string& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

std::string Little(std::uint32_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> (8 * i) & 0xFF);
    return text;
}

std::string Chunk(const std::string& name, const std::string& body) {
    const std::string padding(body.size() % 2, '\0');
    return name + Little(static_cast<std::uint32_t>(body.size()), 4) + body + padding;
}

std::string Format(std::uint32_t tag, std::uint32_t channels, std::uint32_t rate,
                   std::uint32_t bits) {
    const std::uint32_t frame = channels * bits / 8;
    return Little(tag, 2) + Little(channels, 2) + Little(rate, 4) + Little(rate * frame, 4) +
           Little(frame, 2) + Little(bits, 2);
}

std::string Wave(const std::string& chunks) {
    return "RIFF" + Little(static_cast<std::uint32_t>(chunks.size() + 4), 4) + "WAVE" + chunks;
}

std::string Wave(const std::string& format, const std::string& samples) {
    return Wave(Chunk("fmt ", format) + Chunk("data", samples));
}

std::string Samples(const platform::WaveSound& sound) {
    return {reinterpret_cast<const char*>(sound.samples.data()), sound.samples.size()};
}

TEST(WaveFileTest, SixteenBitStereo) {
    const auto sound = ReadWave(Bytes(Wave(Format(1, 2, 44100, 16), "abcdefgh")));
    ASSERT_TRUE(sound.ok()) << sound.status().message();
    EXPECT_EQ(sound->channels, 2);
    EXPECT_EQ(sound->frames_per_second, 44100);
    EXPECT_EQ(sound->kind, SampleKind::kSigned16);
    EXPECT_EQ(Samples(*sound), "abcdefgh");
}

TEST(WaveFileTest, EightBitsAreUnsigned) {
    EXPECT_EQ(ReadWave(Bytes(Wave(Format(1, 1, 8000, 8), "abc")))->kind, SampleKind::kUnsigned8);
}

TEST(WaveFileTest, TwentyFourBitsBecomeThirtyTwo) {
    const auto sound = ReadWave(Bytes(Wave(Format(1, 1, 8000, 24), "abcdef")));
    ASSERT_TRUE(sound.ok());
    EXPECT_EQ(sound->kind, SampleKind::kSigned32);
    EXPECT_EQ(Samples(*sound), std::string("\0abc\0def", 8));
}

TEST(WaveFileTest, FloatingPoint) {
    EXPECT_EQ(ReadWave(Bytes(Wave(Format(3, 1, 8000, 32), "abcd")))->kind, SampleKind::kFloat32);
}

TEST(WaveFileTest, TheExtensibleTagHasItsSubFormat) {
    const std::string format =
        Format(0xFFFE, 1, 8000, 16) + Little(22, 2) + Little(16, 2) + Little(4, 4) + Little(1, 2);
    EXPECT_EQ(ReadWave(Bytes(Wave(format, "ab")))->kind, SampleKind::kSigned16);
}

TEST(WaveFileTest, OtherChunksArePassedOver) {
    const auto sound =
        ReadWave(Bytes(Wave(Chunk("LIST", "odd") + Chunk("fmt ", Format(1, 1, 8000, 8)) +
                            Chunk("fact", "1234") + Chunk("data", "xyz"))));
    ASSERT_TRUE(sound.ok());
    EXPECT_EQ(Samples(*sound), "xyz");
}

TEST(WaveFileTest, AnIncompleteFrameIsCutOff) {
    EXPECT_EQ(Samples(*ReadWave(Bytes(Wave(Format(1, 2, 8000, 16), "abcdef")))), "abcd");
}

TEST(WaveFileTest, TheDurationIsInMilliseconds) {
    EXPECT_EQ(
        ReadWave(Bytes(Wave(Format(1, 2, 1000, 16), std::string(4 * 250, 'x'))))->duration_ms(),
        250);
}

struct UnsupportedCase {
    const char* name;
    std::uint32_t tag, channels, rate, bits;
};

class UnsupportedWave : public testing::TestWithParam<UnsupportedCase> {};

TEST_P(UnsupportedWave, IsRefused) {
    const auto& c = GetParam();
    EXPECT_EQ(
        ReadWave(Bytes(Wave(Format(c.tag, c.channels, c.rate, c.bits), "abcd"))).status().code(),
        base::StatusCode::kUnsupported);
}

INSTANTIATE_TEST_SUITE_P(WaveFileTest, UnsupportedWave,
                         testing::Values(UnsupportedCase{"Compressed", 2, 1, 8000, 4},
                                         UnsupportedCase{"NoChannel", 1, 0, 8000, 16},
                                         UnsupportedCase{"ManyChannels", 1, 65535, 8000, 16},
                                         UnsupportedCase{"NoRate", 1, 1, 0, 16},
                                         UnsupportedCase{"HugeRate", 1, 1, 0xFFFFFFFF, 16},
                                         UnsupportedCase{"OddBits", 1, 1, 8000, 7}),
                         [](const auto& of) { return of.param.name; });

std::string OurSound() {
    std::ifstream file(SOUNDS "/slingshot.wav", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(WaveFileTest, OurSoundsAreRead) {
    const auto sound = ReadWave(Bytes(OurSound()));
    ASSERT_TRUE(sound.ok());
    EXPECT_EQ(sound->duration_ms(), 180);
}

TEST(WaveFileTest, AFileCutAtAnyPlaceIsReadOrRefused) {
    const std::string whole = OurSound().substr(0, 300);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const auto sound = ReadWave(Bytes(whole.substr(0, size)));
        EXPECT_EQ(sound.ok(), size >= 44) << size;
        if (sound.ok()) {
            EXPECT_LE(sound->samples.size(), size - 44);
        }
    }
}

TEST(WaveFileTest, AWrongByteAnywhereIsReadOrRefused) {
    const std::string whole = OurSound().substr(0, 120);
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const char value : {'\0', '\x01', '\x7F', '\x80', '\xFF'}) {
            std::string damaged = whole;
            damaged[at] = value;
            const auto sound = ReadWave(Bytes(damaged));
            if (!sound.ok()) continue;
            EXPECT_LE(sound->samples.size(), whole.size()) << at;
            EXPECT_EQ(sound->samples.size() % sound->frame_bytes(), 0U) << at;
        }
}

}  // namespace
