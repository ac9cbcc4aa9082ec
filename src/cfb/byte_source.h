// ByteSource: the bytes that a compound file is read from, by position. A file, or a block of
// memory. Errors: kNotFound, kUnsupported (a folder, a device), kIoError. Nothing here throws.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace cfb {

class ByteSource {
public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t size_bytes() const = 0;
    // Requires: offset + bytes.size() <= size_bytes(). On failure the content of `bytes` is
    // unspecified.
    virtual base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) = 0;
};

// Reads by position, unbuffered, so that only the bytes asked for are read. Opens ordinary files
// (and links to them) only: a pipe would block.
base::Result<std::unique_ptr<ByteSource>> OpenFileSource(const std::filesystem::path& path);

std::unique_ptr<ByteSource> MakeMemorySource(std::vector<std::byte> bytes);

}  // namespace cfb
