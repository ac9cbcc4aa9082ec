#include "jet/text/text_codec.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/text/code_pages.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

constexpr std::byte kCompressed0{0xFF};
constexpr std::byte kCompressed1{0xFE};
// What the engine compresses: texts of at least 3 characters.
constexpr std::size_t kMinCompressed = 3;

void DecodeWide(std::span<const std::byte> bytes, std::u16string& text) {
    text.resize(bytes.size() / 2);
    char16_t* const to = text.data();
    for (std::size_t i = 0; i < text.size(); ++i)
        to[i] = base::LoadLittle<char16_t>(bytes.data() + 2 * i);
}

// Bytes with the switches between one and two bytes a character among them.
void DecodeMixed(std::span<const std::byte> bytes, std::u16string& text) {
    text.clear();
    text.reserve(bytes.size());
    bool wide = false;
    for (std::size_t i = 0; i < bytes.size();) {
        if (bytes[i] == std::byte{0}) {
            wide = !wide;
            ++i;
        } else if (!wide) {
            text += std::to_integer<char16_t>(bytes[i++]);
        } else {
            if (bytes.size() - i < 2) break;
            text += base::LoadLittle<char16_t>(bytes.data() + i);
            i += 2;
        }
    }
}

// One byte a character; a zero byte switches to two bytes a character and back.
void DecodeCompressed(std::span<const std::byte> bytes, std::u16string& text) {
    const bool has_switch = !bytes.empty() && std::memchr(bytes.data(), 0, bytes.size()) != nullptr;
    if (has_switch) return DecodeMixed(bytes, text);
    text.resize(bytes.size());
    std::ranges::transform(bytes, text.begin(),
                           [](std::byte b) { return std::to_integer<char16_t>(b); });
}

Bytes EncodeWide(std::u16string_view text) {
    Bytes bytes(2 * text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
        base::StoreLittle(bytes.data() + 2 * i, text[i]);
    return bytes;
}

// A text that begins with U+FEFF would be read as a compressed one. It is stored compressed, in
// wide mode throughout; if it holds a character that wide mode cannot store, the leading U+FEFF,
// which is invisible, is dropped instead.
Bytes EncodeMarked(std::u16string_view text) {
    const auto holds = [](char16_t unit) { return (unit & 0xFF) != 0 && unit >> 8 != 0; };
    const auto narrow = [](char16_t unit) { return unit >= 1 && unit <= 0xFF; };
    Bytes bytes{kCompressed0, kCompressed1};
    bool wide = false;
    for (const char16_t unit : text) {
        if (!holds(unit) && !narrow(unit)) {
            text.remove_prefix(text.find_first_not_of(u'\xFEFF'));
            return EncodeWide(text);
        }
        if (narrow(unit) == wide) {
            bytes.push_back(std::byte{0});
            wide = !wide;
        }
        bytes.push_back(static_cast<std::byte>(unit & 0xFF));
        if (wide) bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    return bytes;
}

}  // namespace

TextCodec::TextCodec(int version, std::uint16_t code_page)
    : version_(version), code_page_(code_page), characters_(CodePageCharacters(code_page)) {}

void TextCodec::DecodeName(std::span<const std::byte> bytes, std::u16string& text) const {
    if (jet4()) return DecodeWide(bytes, text);
    text.resize(bytes.size());
    std::ranges::transform(bytes, text.begin(), [this](std::byte b) {
        return characters_[std::to_integer<std::size_t>(b)];
    });
}

std::u16string TextCodec::DecodeName(std::span<const std::byte> bytes) const {
    std::u16string text;
    DecodeName(bytes, text);
    return text;
}

void TextCodec::DecodeValue(std::span<const std::byte> bytes, std::u16string& text) const {
    if (jet4() && bytes.size() >= 2 && bytes[0] == kCompressed0 && bytes[1] == kCompressed1)
        return DecodeCompressed(bytes.subspan(2), text);
    DecodeName(bytes, text);
}

std::u16string TextCodec::DecodeValue(std::span<const std::byte> bytes) const {
    std::u16string text;
    DecodeValue(bytes, text);
    return text;
}

std::optional<std::string_view> TextCodec::NarrowValue(std::span<const std::byte> bytes) const {
    const auto text_of = [](std::span<const std::byte> narrow) {
        return std::string_view(reinterpret_cast<const char*>(narrow.data()), narrow.size());
    };
    if (!jet4()) {
        // Only ASCII is the same in all code pages.
        const bool is_ascii = std::ranges::all_of(
            bytes, [](std::byte b) { return b > std::byte{0} && b < std::byte{0x80}; });
        return is_ascii ? std::optional(text_of(bytes)) : std::nullopt;
    }
    if (bytes.size() < 2 || bytes[0] != kCompressed0 || bytes[1] != kCompressed1)
        return std::nullopt;
    bytes = bytes.subspan(2);
    if (!bytes.empty() && std::memchr(bytes.data(), 0, bytes.size()) != nullptr)
        return std::nullopt;
    return text_of(bytes);
}

std::optional<Bytes> TextCodec::EncodeName(std::u16string_view text) const {
    if (jet4()) return EncodeWide(text);
    Bytes bytes(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto unit = text[i];
        // Most characters of the western code pages equal their byte.
        if (unit < 0x80 || (unit < characters_.size() && characters_[unit] == unit)) {
            bytes[i] = static_cast<std::byte>(unit);
            continue;
        }
        const auto found = std::ranges::find(characters_, unit);
        if (found == characters_.end()) return std::nullopt;
        bytes[i] = static_cast<std::byte>(found - characters_.begin());
    }
    return bytes;
}

std::optional<Bytes> TextCodec::EncodeValue(std::u16string_view text, bool compress) const {
    const auto narrow = [](char16_t unit) { return unit >= 1 && unit <= 0xFF; };
    if (!jet4() || !compress || text.size() < kMinCompressed ||
        !std::ranges::all_of(text, narrow)) {
        if (jet4() && !text.empty() && text[0] == 0xFEFF) return EncodeMarked(text);
        return EncodeName(text);
    }
    Bytes bytes(text.size() + 2);
    bytes[0] = kCompressed0;
    bytes[1] = kCompressed1;
    std::ranges::transform(text, bytes.begin() + 2,
                           [](char16_t unit) { return static_cast<std::byte>(unit); });
    return bytes;
}

}  // namespace jet
