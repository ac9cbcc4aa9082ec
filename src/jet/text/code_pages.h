// The single-byte code pages in which Jet 3 files store text.
#pragma once

#include <array>
#include <cstdint>

namespace jet {

// UTF-16 units of the 256 bytes; those of 1252 when the code page is not one of the known ones.
std::array<char16_t, 256> CodePageCharacters(std::uint16_t code_page);

}  // namespace jet
