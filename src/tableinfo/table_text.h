// The texts inside a table file.
#pragma once

#include <QtCore/QString>

#include <cstddef>
#include <span>

namespace tableinfo {

// The simulator stores 16-bit little-endian Unicode; some tools stored one byte per character.
// Bytes that look like the former are decoded so; otherwise every byte is one character (U+0000 to
// U+00FF). All NULs are removed from the result.
QString DecodeTableText(std::span<const std::byte> bytes);

}  // namespace tableinfo
