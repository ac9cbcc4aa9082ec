// Names of files as UTF-16 texts, as the program and its catalogue keep them, and back. Where the
// system's names are bytes (mostly UTF-8), a byte that is not part of valid UTF-8 (an archive
// unpacked with the code page of another system leaves such names) becomes the lone surrogate
// U+DC00 + byte, as in Python's "surrogateescape" (PEP 383): whatever name a folder listing shows
// can be stored, read back and opened again. Nothing here looks at a disk or throws.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace base {

// Every text that DecodeFileName gives becomes the same bytes again in EncodeFileName. Any other
// lone surrogate becomes U+FFFD there.
std::u16string DecodeFileName(std::string_view bytes);
std::string EncodeFileName(std::u16string_view name);

// True for the surrogates that stand for a byte.
constexpr bool IsEscapedByte(char16_t c) {
    return c >= 0xDC80 && c <= 0xDCFF;
}

// The path that a text names on this system, and the text of a path. (The conversions of
// std::filesystem::path itself throw on a name that is not valid UTF.)
std::filesystem::path PathOf(std::u16string_view name);
std::u16string TextOf(const std::filesystem::path& path);
// The path for a message: its bytes where names are bytes, UTF-8 elsewhere.
std::string Utf8Of(const std::filesystem::path& path);

}  // namespace base
