// EncodeFile: an encoded database file out of a plain one, with code of its own and not the
// engine's. The same call makes it plain again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace test_support {

// XORs `bytes` with the RC4 stream of the four bytes of `key`, the lowest first.
void ApplyKeyStream(std::uint32_t key, std::span<std::byte> bytes);

// XORs the key in page 0 with `key`, and every other page with its stream. Requires: whole pages of
// a file of version 3 or 4; key != 0.
void EncodeFile(std::span<std::byte> file, std::uint32_t key);

}  // namespace test_support
