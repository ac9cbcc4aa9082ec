// JpegDecode and JpegEncode: libjpeg-turbo between bytes in memory and the rows of a cDIBSection,
// without a copy of the pixels on the way. The library's error jumps end here; the memory that it
// takes is bounded by kMaxPixels.
#pragma once

#include "pictures/dib_section.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace pictures {

// Which step of the codec failed.
enum class JpegStep : std::uint8_t { kNone, kInitialise, kReadParameters, kReadData, kWrite };

struct JpegOutcome {
    JpegStep failed = JpegStep::kNone;
    int code = 0;      // the codec's message number
    std::string text;  // the codec's own text, English
    bool ok() const { return failed == JpegStep::kNone; }
};

// The side of a picture that is decoded at 1/`scale`: rounded up for 2, 4 and 8; unchanged for any
// other scale.
int ReducedSide(int side, int scale);

// Decodes into `target`, which becomes a new picture of the reduced size: 3 channels for grey and
// three-channel files, 4 for four-channel ones. The reduction happens in the decoder. On failure
// `target` is empty.
JpegOutcome JpegDecode(std::span<const std::uint8_t> jpeg, int scale, cDIBSection& target);

// Encodes at `quality` (1..100). `jpeg` receives the file's bytes.
JpegOutcome JpegEncode(const cDIBSection& source, int quality, std::vector<std::uint8_t>& jpeg);

}  // namespace pictures
