#include "platform/sound/wave_file.h"

#include "base/byte_reader.h"

#include <algorithm>
#include <optional>

namespace platform {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::uint32_t Tag(const char (&text)[5]) {
    std::uint32_t tag = 0;
    for (int i = 3; i >= 0; --i)
        tag = tag << 8 | static_cast<unsigned char>(text[i]);
    return tag;
}

constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;
constexpr std::uint16_t kExtensible = 0xFFFE;

struct Format {
    std::uint16_t tag = 0;
    std::uint16_t channels = 0;
    std::uint32_t frames_per_second = 0;
    std::uint16_t bits = 0;
};

base::Status NoWave() {
    return {base::StatusCode::kCorruption, "The file is no wave file."};
}

base::Status Unsupported() {
    return {base::StatusCode::kUnsupported, "The wave file has an unknown kind of samples."};
}

// The body of the first chunk with this name, cut at the end of the file.
std::optional<Bytes> FindChunk(Bytes file, std::uint32_t name) {
    constexpr std::size_t kHeader = 8;
    for (std::size_t at = 12; at + kHeader <= file.size();) {
        const std::size_t size = base::LoadLittle<std::uint32_t>(file.data() + at + 4);
        const std::size_t rest = file.size() - at - kHeader;
        if (base::LoadLittle<std::uint32_t>(file.data() + at) == name)
            return file.subspan(at + kHeader, std::min(size, rest));
        if (size >= rest) break;
        at += kHeader + size + size % 2;  // chunks begin at even offsets
    }
    return std::nullopt;
}

std::optional<Format> ReadFormat(Bytes chunk) {
    if (chunk.size() < 16) return std::nullopt;
    Format format{base::LoadLittle<std::uint16_t>(chunk.data()),
                  base::LoadLittle<std::uint16_t>(chunk.data() + 2),
                  base::LoadLittle<std::uint32_t>(chunk.data() + 4),
                  base::LoadLittle<std::uint16_t>(chunk.data() + 14)};
    // The actual tag is in the first two bytes of the sub-format.
    if (format.tag == kExtensible)
        format.tag = base::LittleAt<std::uint16_t>(chunk, 24).value_or(kExtensible);
    return format;
}

std::optional<SampleKind> KindOf(const Format& format) {
    if (format.channels == 0 || format.channels > 8) return std::nullopt;
    if (format.frames_per_second == 0 || format.frames_per_second > 192000) return std::nullopt;
    if (format.tag == kFloat && format.bits == 32) return SampleKind::kFloat32;
    if (format.tag != kPcm) return std::nullopt;
    switch (format.bits) {
    case 8:
        return SampleKind::kUnsigned8;
    case 16:
        return SampleKind::kSigned16;
    case 24:
    case 32:
        return SampleKind::kSigned32;
    default:
        return std::nullopt;
    }
}

// Samples of 24 bits as 32: a zero byte is put below each.
std::vector<std::byte> Widened(Bytes samples) {
    std::vector<std::byte> wide;
    wide.reserve(samples.size() / 3 * 4);
    for (std::size_t at = 0; at + 3 <= samples.size(); at += 3) {
        wide.push_back(std::byte{0});
        wide.insert(wide.end(), samples.data() + at, samples.data() + at + 3);
    }
    return wide;
}

}  // namespace

std::size_t WaveSound::frame_bytes() const {
    const std::size_t sample = kind == SampleKind::kUnsigned8  ? 1
                               : kind == SampleKind::kSigned16 ? 2
                                                               : 4;
    return sample * static_cast<std::size_t>(channels);
}

std::int64_t WaveSound::duration_ms() const {
    return static_cast<std::int64_t>(samples.size() / frame_bytes()) * 1000 / frames_per_second;
}

base::Result<WaveSound> ReadWave(Bytes file) {
    if (base::LittleAt<std::uint32_t>(file, 0) != Tag("RIFF") ||
        base::LittleAt<std::uint32_t>(file, 8) != Tag("WAVE"))
        return NoWave();
    const auto format_chunk = FindChunk(file, Tag("fmt "));
    const auto data = FindChunk(file, Tag("data"));
    if (!format_chunk || !data) return NoWave();
    const auto format = ReadFormat(*format_chunk);
    if (!format) return NoWave();
    const auto kind = KindOf(*format);
    if (!kind) return Unsupported();
    WaveSound sound{format->channels, static_cast<int>(format->frames_per_second), *kind, {}};
    if (format->bits == 24)
        sound.samples = Widened(*data);
    else
        sound.samples.assign(data->begin(), data->end());
    sound.samples.resize(sound.samples.size() / sound.frame_bytes() * sound.frame_bytes());
    return sound;
}

}  // namespace platform
