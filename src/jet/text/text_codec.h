// TextCodec: text as the file stores it, to and from UTF-16. Jet 4: UTF-16, or "compressed": one
// byte a character where possible. Jet 3: one byte a character in the file's code page.
#pragma once

#include "jet/values/value.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace jet {

class TextCodec {
public:
    // `version` 3 or 4; the code page is used in Jet 3 only. An unknown one is read as 1252.
    TextCodec(int version, std::uint16_t code_page);

    // A value of a column. Damaged text is read as far as it goes.
    std::u16string DecodeValue(std::span<const std::byte> bytes) const;
    // The same into an existing string, to reuse its memory.
    void DecodeValue(std::span<const std::byte> bytes, std::u16string& text) const;
    // The characters of a value that is stored one byte each, U+0001 to U+00FF; nullopt: otherwise.
    std::optional<std::string_view> NarrowValue(std::span<const std::byte> bytes) const;
    // A name in the definition or catalog, never compressed.
    std::u16string DecodeName(std::span<const std::byte> bytes) const;

    // nullopt: a character that the code page does not hold (Jet 3).
    std::optional<Bytes> EncodeName(std::u16string_view text) const;
    // `compress`: the column allows it; done where possible and shorter.
    std::optional<Bytes> EncodeValue(std::u16string_view text, bool compress) const;

    bool jet4() const { return version_ == 4; }
    std::uint16_t code_page() const { return code_page_; }
    // Whether it is the codec of this version and code page.
    bool IsFor(int version, std::uint16_t code_page) const {
        return version == version_ && code_page == code_page_;
    }

private:
    void DecodeName(std::span<const std::byte> bytes, std::u16string& text) const;

    int version_;
    std::uint16_t code_page_;
    std::array<char16_t, 256> characters_{};  // of the code page
};

}  // namespace jet
