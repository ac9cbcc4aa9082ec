// TextStore: stores many short texts in a few large blocks. A text takes its characters, of one
// byte each when none is above U+00FF, and an 8-byte reference. Adding a text never copies the
// others, so reading a catalogue of 100,000 tables has no peak of memory.
#pragma once

#include <QtCore/QString>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace browser {

class TextStore {
public:
    // The place of a text in the store that returned it.
    struct Reference {
        std::uint32_t start = 0;  // upper 16 bits: block; lower 16 bits: character in the block
        std::uint32_t length_and_width = 0;  // twice the number of characters, plus 1 for wide ones

        std::uint32_t length() const { return length_and_width / 2; }
        bool is_wide() const { return length_and_width % 2 != 0; }
    };

    // Requires: text.size() < 2^31.
    Reference Add(std::u16string_view text);
    QString Get(Reference reference) const;

private:
    static constexpr unsigned kBlockBits = 16;
    static constexpr std::size_t kBlockSize = std::size_t{1} << kBlockBits;

    // The capacity of each block is kBlockSize characters, except for a longer text, which has a
    // block of its own.
    template <typename Char>
    using Blocks = std::vector<std::basic_string<Char>>;
    template <typename Char>
    static std::uint32_t AddTo(Blocks<Char>& blocks, std::u16string_view text);
    template <typename Char>
    static std::basic_string_view<Char> In(const Blocks<Char>& blocks, Reference reference);

    Blocks<char> narrow_;
    Blocks<char16_t> wide_;
};

}  // namespace browser
