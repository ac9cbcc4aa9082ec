// PageHeader: page 0 of a database file: which version it is, whether its pages are plain, and the
// key under which owners and permissions are scrambled.
#pragma once

#include "base/status.h"
#include "jet/pages/format.h"

#include <array>
#include <string_view>
#include <vector>

namespace jet {

struct PageHeader {
    int version = 4;
    std::uint16_t code_page = 1252;  // of all text in a Jet 3 file
    // Key of the catalog's scrambled columns; unused in Jet 3, which stores them plain.
    std::array<std::byte, 4> scramble_key{};
    // 0: the pages are plain.
    std::uint32_t encoding_key = 0;
    bool has_password = false;
};

// The error kUnrecognizedFormat, which says what the file is if that is known. `head`: the
// first bytes of the file, 24 or more.
base::Status UnrecognizedFormat(std::span<const std::byte> head, std::string_view path);

// 3343: not a Jet 3 or Jet 4 file.
base::Result<PageHeader> ReadPageHeader(std::span<const std::byte> page,
                                        std::string_view path_for_messages);

// Page 0 of a new file of the version, 3 or 4. `created`: days since 1899-12-30, local time;
// version 3 has no place for it.
std::vector<std::byte> MakePageHeader(int version, double created);

}  // namespace jet
