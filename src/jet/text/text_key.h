// Text keys of Jet 3 files (LCID 0x0409, code page 1252); those of Jet 4 are in jet/collation.h.
#pragma once

#include "jet/values/value.h"

#include <span>

namespace jet {

// Ascending key of a text in code page 1252, without the leading flag byte; only the first 255
// bytes count.
void AppendTextKeyJet3(std::span<const std::byte> text, Bytes& key);

}  // namespace jet
