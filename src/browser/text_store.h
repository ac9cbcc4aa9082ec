// TextStore: stores many short texts in a few large blocks. A text takes its characters and an
// 8-byte reference. Adding a text never copies the others, so reading a catalogue of 100,000 tables
// has no peak of memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace browser {

class TextStore {
public:
    // The place of a text in the store that returned it.
    struct Reference {
        std::uint32_t start = 0;   // upper 16 bits: block; lower 16 bits: unit in the block
        std::uint32_t length = 0;  // in UTF-16 units
    };

    Reference Add(std::u16string_view text);
    // Valid as long as the store exists.
    std::u16string_view Get(Reference reference) const;

private:
    static constexpr unsigned kBlockBits = 16;
    static constexpr std::size_t kBlockSize = std::size_t{1} << kBlockBits;

    // The capacity of each is kBlockSize, except for a longer text, which has a block of its own.
    std::vector<std::u16string> blocks_;
};

}  // namespace browser
