// The sound in a RIFF WAVE file: uncompressed samples of 8, 16, 24 or 32 bits or 32-bit floating
// point. Source of the format: RIFF WAVE (IBM
// and Microsoft, 1991), and for the extensible format tag "Multiple Channel Audio Data and WAVE
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
    // Little-endian samples, whole frames, the channels of a frame side by side.
    std::vector<std::byte> samples;

    std::size_t frame_bytes() const;
    std::int64_t duration_ms() const;
    bool operator==(const WaveSound&) const = default;
};

// kCorruption: no wave file. kUnsupported: one that is compressed, or has more than 8 channels or
// more than 192,000 frames in a second. A file that ends early gives the frames that it has.
// Samples of 24 bits come as 32.
base::Result<WaveSound> ReadWave(std::span<const std::byte> file);

}  // namespace platform
