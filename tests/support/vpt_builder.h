// VptBuilder: writes table files for tests, by another hand than ours
// (support/other_compound_files.h).
//
//     VptBuilder().Text(u"TableName", u"Attack").Screenshot(jpeg).Filler(300000).Write(path);
//
// A file has a storage TableInfo as soon as something is put into it (or by WithTableInfo), and a
// storage GameStg with a short stream Version, as the simulator's editor writes it. Members appear
// in the order in which the library sorts them.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

std::vector<std::byte> Utf16Bytes(std::u16string_view text);  // little endian, no mark, no end
std::vector<std::byte> BytesOf(std::string_view bytes);
// The same bytes for the same seed on every machine.
std::vector<std::byte> FillerBytes(std::size_t size_bytes, std::uint32_t seed = 1);

class VptBuilder {
public:
    // A stream of TableInfo that holds `text` as 16-bit little-endian Unicode.
    VptBuilder& Text(std::u16string_view stream, std::u16string_view text);
    // A stream of TableInfo that holds these bytes.
    VptBuilder& Bytes(std::u16string_view stream, std::vector<std::byte> bytes);
    VptBuilder& Screenshot(std::vector<std::byte> picture_file);
    // TableInfo is there, even if nothing is put into it.
    VptBuilder& WithTableInfo();
    // A stream anywhere: path parts separated by "/", storages are made on the way
    // ("GameStg/GameData").
    VptBuilder& Stream(std::u16string_view path, std::vector<std::byte> bytes);
    VptBuilder& Storage(std::u16string_view path);
    // GameStg/GameData of this size, so that the file weighs what a real one does.
    VptBuilder& Filler(std::size_t size_bytes, std::uint32_t seed = 1);
    // 512 (version 3) or 4096 bytes.
    VptBuilder& SectorSize(unsigned size_bytes);

    // Replaces a file that is there.
    base::Status Write(const std::filesystem::path& path) const;

private:
    struct Item {
        std::u16string path;
        bool is_storage = false;
        std::vector<std::byte> bytes;
    };

    std::vector<Item> items_;
    unsigned sector_size_ = 512;
};

}  // namespace test_support
