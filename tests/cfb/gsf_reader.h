// What libgsf finds in a compound file: the second opinion of the tests.
#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cfb_test {

// Every stream by its path, names joined by "/" (in UTF-8), with its bytes; storages have a "/" at
// the end and no bytes.
using Contents = std::map<std::string, std::vector<std::byte>>;

// nullopt: libgsf does not open the file.
std::optional<Contents> ReadWithGsf(const std::filesystem::path& path);

}  // namespace cfb_test
