#include "checksum/checksum_text.h"

#include <algorithm>

namespace checksum {

std::u16string ChecksumText(std::optional<std::int32_t> value) {
    auto rest = static_cast<std::uint32_t>(value.value_or(0));
    std::u16string digits;
    do {
        digits.push_back(u"0123456789ABCDEF"[rest & 0xF]);
        rest >>= 4;
    } while (rest != 0);
    std::reverse(digits.begin(), digits.end());
    return digits;
}

}  // namespace checksum
