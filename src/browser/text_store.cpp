#include "browser/text_store.h"

#include "platform/text_view.h"

#include <algorithm>

namespace browser {
namespace {

// The first 256 characters of Unicode.
bool IsNarrow(std::u16string_view text) {
    char16_t bits = 0;
    for (const char16_t c : text)
        bits |= c;
    return bits <= 0xFF;
}

}  // namespace

TextStore::Reference TextStore::Add(std::u16string_view text) {
    if (text.empty()) return {};
    const auto twice = static_cast<std::uint32_t>(text.size() * 2);
    if (IsNarrow(text)) return {AddTo(narrow_, text), twice};
    return {AddTo(wide_, text), twice + 1};
}

QString TextStore::Get(Reference reference) const {
    if (reference.length() == 0) return {};
    if (reference.is_wide()) return platform::ToQString(In(wide_, reference));
    const std::string_view text = In(narrow_, reference);
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

// Returns the start of the added text.
template <typename Char>
std::uint32_t TextStore::AddTo(Blocks<Char>& blocks, std::u16string_view text) {
    // A text longer than a block fills its own block, so the next text begins another.
    if (blocks.empty() || blocks.back().size() + text.size() > kBlockSize)
        blocks.emplace_back().reserve(std::max(text.size(), std::size_t{kBlockSize}));
    std::basic_string<Char>& block = blocks.back();
    const auto block_number = static_cast<std::uint32_t>(blocks.size() - 1);
    const auto start = static_cast<std::uint32_t>(block.size());
    block.resize(start + text.size());
    std::transform(text.begin(), text.end(), block.begin() + start,
                   [](char16_t c) { return static_cast<Char>(c); });
    return (block_number << kBlockBits) | start;
}

template <typename Char>
std::basic_string_view<Char> TextStore::In(const Blocks<Char>& blocks, Reference reference) {
    const std::basic_string<Char>& block = blocks[reference.start >> kBlockBits];
    return std::basic_string_view<Char>(block).substr(reference.start & (kBlockSize - 1),
                                                      reference.length());
}

}  // namespace browser
