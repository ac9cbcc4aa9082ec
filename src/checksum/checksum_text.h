// The text form in which the catalogue keeps and compares checksums.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace checksum {

// Upper-case hexadecimal digits of the unsigned value without prefix or leading zeros, one to eight
// of them. No value (an empty file has none) gives "0".
std::u16string ChecksumText(std::optional<std::int32_t> value);

}  // namespace checksum
