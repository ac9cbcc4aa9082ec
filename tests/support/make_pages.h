// MakePages: a file that the page store takes for a database: a header page and pages of zeros.
#pragma once

#include "jet/pages/page_store.h"

#include <cstring>
#include <vector>

namespace test_support {

// Where the files of page store tests lie.
inline constexpr const char* kDatabasePath = "folder/tables.mdb";

// Page 0 is masked here; these bytes stand for a zero.
inline constexpr std::size_t kEncodingKeyAt = 0x3E;
inline constexpr unsigned char kEncodingKeyMask[] = {0xFB, 0x8A, 0xBC, 0x4E};

// Version 0: Jet 3, 1: Jet 4.
inline std::vector<std::byte> MakePages(std::uint32_t version, jet::PageNumber count) {
    const std::size_t page_size = version == 0 ? 2048 : 4096;
    std::vector<std::byte> file(page_size * count);
    file[1] = std::byte{1};
    std::memcpy(file.data() + 4, "Standard Jet DB", 16);
    file[0x14] = static_cast<std::byte>(version);
    for (std::size_t i = 0; i < 4; ++i)
        file[kEncodingKeyAt + i] = std::byte{kEncodingKeyMask[i]};
    const std::size_t commit_words = version == 0 ? 0x600 : 0xE00;
    for (std::size_t at = commit_words; at < commit_words + 512; at += 2)
        file[at + 1] = std::byte{1};
    return file;
}

}  // namespace test_support
