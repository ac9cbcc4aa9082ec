// Any bytes as a sound file: refused, or whole frames that are no longer than the bytes allow.
#include "platform/sound/wave_file.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto sound = platform::ReadWave(std::as_bytes(std::span(data, size)));
    if (!sound.ok()) return 0;
    const bool is_whole = sound->samples.size() % sound->frame_bytes() == 0;
    const bool is_possible = sound->samples.size() <= size / 3 * 4 + 4 && sound->duration_ms() >= 0;
    if (!is_whole || !is_possible) std::abort();
    return 0;
}
