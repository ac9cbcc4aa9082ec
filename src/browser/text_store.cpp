#include "browser/text_store.h"

#include <algorithm>

namespace browser {

TextStore::Reference TextStore::Add(std::u16string_view text) {
    if (text.empty()) return {};
    // A text longer than a block fills its own block, so the next text begins another.
    if (blocks_.empty() || blocks_.back().size() + text.size() > kBlockSize)
        blocks_.emplace_back().reserve(std::max(text.size(), std::size_t{kBlockSize}));
    std::u16string& block = blocks_.back();
    const auto block_number = static_cast<std::uint32_t>(blocks_.size() - 1);
    const Reference reference{(block_number << kBlockBits) |
                                  static_cast<std::uint32_t>(block.size()),
                              static_cast<std::uint32_t>(text.size())};
    block += text;
    return reference;
}

std::u16string_view TextStore::Get(Reference reference) const {
    if (reference.length == 0) return {};
    const std::u16string& block = blocks_[reference.start >> kBlockBits];
    return std::u16string_view(block).substr(reference.start & (kBlockSize - 1), reference.length);
}

}  // namespace browser
