// The first byte chooses the scale; the rest is a JPEG file to decode.
#include "pictures/jpeg_codec.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const int scale = 1 << (data[0] % 4);
    pictures::cDIBSection section;
    const pictures::JpegOutcome outcome =
        pictures::JpegDecode({data + 1, size - 1}, scale, section);
    if (outcome.ok() == section.empty()) std::abort();
    return 0;
}
