// The texts inside a table file.
#pragma once

#include <QtCore/QString>

#include <cstddef>
#include <span>

namespace tableinfo {

// The simulator stores 16-bit little-endian Unicode; some tools stored one byte per character.
// Bytes that show themselves to be of the first kind are decoded as such, all others count as one
// character (U+0000 to U+00FF) each. NULs are removed from the result, wherever they stand.
QString DecodeTableText(std::span<const std::byte> bytes);

}  // namespace tableinfo
