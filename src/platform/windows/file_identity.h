// What makes two names one file: the volume and the number of the file on it.
#pragma once

#include "platform/windows/owned_handle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace platform {

struct FileIdentity {
    std::uint64_t volume = 0;
    std::array<std::byte, 16> number{};
    bool operator==(const FileIdentity&) const = default;
};

// Of an open file or folder.
std::optional<FileIdentity> IdentityOf(const OwnedHandle& file);

}  // namespace platform
