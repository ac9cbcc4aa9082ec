// Compound files by another hand than ours, which writes what the tests read and reads it as the
// second opinion: libgsf on Linux, the system itself (ole32) on Windows.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace test_support {

// A storage or a stream that is to be written; a stream has no members. `bytes` is borrowed.
struct CompoundNode {
    bool is_storage = true;
    const std::vector<std::byte>* bytes = nullptr;  // null: none
    std::vector<std::pair<std::u16string, std::unique_ptr<CompoundNode>>> members;
};

// Replaces a file that is there. `sector_size`: 512 (version 3) or 4096 bytes.
base::Status WriteCompoundFile(const std::filesystem::path& path, const CompoundNode& root,
                               unsigned sector_size);

// Every stream by its path, names joined by "/" (in UTF-8), with its bytes; storages have a "/" at
// the end and no bytes.
using CompoundContents = std::map<std::string, std::vector<std::byte>>;

// nullopt: the other hand does not open the file.
std::optional<CompoundContents> ReadCompoundFile(const std::filesystem::path& path);

}  // namespace test_support
