// Texts of the catalogue as bytes of a file and back, without loss. They are UTF-8. A surrogate
// without its other half, which is no character and which UTF-8 does not have (file names that are
// no valid UTF-8 are kept with such), is written as UTF-8 would write a character of its number:
// the encoding called WTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace exchange {

// What some programs put before a text in UTF-8; no character of it.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Appends the bytes of `text`.
void AppendWtf8(std::string& bytes, std::u16string_view text);

// nullopt: the bytes are not of this encoding.
std::optional<std::u16string> FromWtf8(std::string_view bytes);

}  // namespace exchange
