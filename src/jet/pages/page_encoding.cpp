#include "jet/pages/page_encoding.h"

#include "base/byte_writer.h"
#include "jet/pages/page_header.h"
#include "jet/pages/rc4.h"

#include <array>

namespace jet {

void PageEncoding::Apply(PageNumber page, std::span<std::byte> bytes) const {
    if (is_plain() || page == 0) return;
    std::array<std::byte, 4> key{};
    base::StoreLittle(key.data(), key_ ^ page);
    ApplyRc4(key, bytes);
}

PageEncoding EncodingOf(std::span<const std::byte> first_page) {
    const auto header = ReadPageHeader(first_page, "");
    return PageEncoding(header.ok() ? header->encoding_key : 0);
}

}  // namespace jet
