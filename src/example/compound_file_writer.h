// CompoundFileWriter: makes the bytes of a compound file (docs/formats/compound-file.md) of version
// 3, for the table files of the example collection. The same members give the same bytes.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace example {

class CompoundFileWriter {
public:
    CompoundFileWriter();

    // Puts a stream at `path`, whose parts are separated by "/"; storages are made on the way.
    // Requires: no other stream has this path, and no part is longer than 31 units.
    void Add(std::u16string_view path, std::vector<std::byte> bytes);
    // The whole file. kUnsupported: it would be larger than 6.9 MB, the reach of the header's list
    // of FAT sectors.
    base::Result<std::vector<std::byte>> Bytes() const;

private:
    struct Entry {
        std::u16string name;
        bool is_storage = true;
        std::vector<std::byte> bytes{};
        std::vector<std::size_t> members{};  // indexes of entries
    };
    class Layout;

    std::size_t StorageIn(std::size_t storage, std::u16string_view name);

    std::vector<Entry> entries_;  // the first is the root
};

}  // namespace example
