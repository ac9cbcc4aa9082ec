// Reads RIFF WAVE files: uncompressed samples of 8, 16, 24 or 32 bits or 32-bit floating point.
// Source of the format: the RIFF format 1.0 of IBM and
// Microsoft (August 1991); for the extensible format tag "Multiple Channel Audio Data and WAVE
// Files" (Microsoft, 2001).
#pragma once

#include "base/status.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace platform {

enum class SampleKind : std::uint8_t { kUnsigned8, kSigned16, kSigned32, kFloat32 };

struct WaveSound {
    int channels = 0;
    int frames_per_second = 0;
    SampleKind kind = SampleKind::kSigned16;
    // Little-endian; whole frames; the channels of a frame are interleaved.
    std::vector<std::byte> samples;

    std::size_t frame_bytes() const;
    std::int64_t duration_ms() const;
    bool operator==(const WaveSound&) const = default;
};

// Samples of 24 bits are widened to 32. A file that is cut off gives the frames that it has.
// kCorruption: not a wave file. kUnsupported: compressed, more than 8 channels, or more than
// 192,000 frames per second.
base::Result<WaveSound> ReadWave(std::span<const std::byte> file);

}  // namespace platform
