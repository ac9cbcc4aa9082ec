// PageEncoding: an encoded database file has every page but page 0 XORed as a whole with a key
// stream (docs/formats/jet.md, "Page 0"). An obstacle, not a protection: page 0 names the key.
// Pages are encoded only where they lie in files, the journal among them; in memory they are plain.
#pragma once

#include "jet/pages/page_store.h"

#include <cstdint>
#include <span>

namespace jet {

class PageEncoding {
public:
    // `key` 0: the pages are plain, and nothing happens to them.
    explicit PageEncoding(std::uint32_t key = 0) : key_(key) {}

    bool is_plain() const { return key_ == 0; }
    // Encodes plain bytes of the page and decodes encoded ones. Requires: the whole page.
    void Apply(PageNumber page, std::span<std::byte> bytes) const;

private:
    std::uint32_t key_;
};

// The encoding that the file's page 0 asks for. Requires: the whole page, of a known version.
PageEncoding EncodingOf(std::span<const std::byte> first_page);

}  // namespace jet
