// TextStore: many short texts in a few large blocks. A text costs its characters and a 8-byte
// reference, and adding one never moves the others, so that a catalogue of 100,000 tables is read
// without a peak of memory.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace browser {

class TextStore {
public:
    // Where a text lies. Values; belong to the store that gave them.
    struct Reference {
        std::uint32_t start =
            0;  // block number in the upper bits, character within the block below
        std::uint32_t length = 0;  // UTF-16 units
    };

    Reference Add(std::u16string_view text);
    // Borrowed: until the store ends.
    std::u16string_view Get(Reference reference) const;

private:
    static constexpr unsigned kBlockBits = 16;
    static constexpr std::size_t kBlockSize = std::size_t{1} << kBlockBits;

    // Each with a fixed capacity of kBlockSize; a longer text has a block of its own.
    std::vector<std::u16string> blocks_;
};

}  // namespace browser
