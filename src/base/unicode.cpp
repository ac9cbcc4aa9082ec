#include "base/unicode.h"

#include <cstddef>
#include <cstdint>

namespace base {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& out, char32_t c) {
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6));
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | (c >> 18));
        put(0x80 | ((c >> 12) & 0x3F));
        put(0x80 | ((c >> 6) & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

void AppendUtf16(std::u16string& out, char32_t c) {
    if (c < 0x10000) {
        out.push_back(static_cast<char16_t>(c));
        return;
    }
    out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
}

// The bytes of a character that starts with `lead`; 0: not a lead byte.
int SequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead < 0xE0) return 2;
    if (lead >= 0xE0 && lead < 0xF0) return 3;
    if (lead >= 0xF0 && lead < 0xF5) return 4;
    return 0;
}

bool IsValid(char32_t c, int length) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    return c >= kSmallest[length] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

// A character and its number of bytes; 0 bytes: the text does not start with a valid one.
struct Utf8Character {
    char32_t value = kReplacement;
    std::size_t bytes = 0;
};

Utf8Character FirstCharacter(std::string_view text) {
    if (text.empty()) return {};
    const auto lead = static_cast<unsigned char>(text[0]);
    const int length = SequenceLength(lead);
    if (length == 0 || text.size() < static_cast<std::size_t>(length)) return {};
    char32_t c = length == 1 ? lead : lead & (0xFFU >> (length + 1));
    for (int i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80) return {};
        c = (c << 6) | (next & 0x3FU);
    }
    if (!IsValid(c, length)) return {};
    return {c, static_cast<std::size_t>(length)};
}

// Decodes one character at `at` and moves `at` behind it; an invalid byte is skipped by itself.
char32_t NextUtf8(std::string_view text, std::size_t& at) {
    const Utf8Character character = FirstCharacter(text.substr(at));
    at += character.bytes == 0 ? 1 : character.bytes;
    return character.value;
}

}  // namespace

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        const bool high = c >= 0xD800 && c < 0xDC00;
        if (high && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (char32_t{text[i + 1]} - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c < 0xE000) {
            c = kReplacement;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::u16string ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();)
        AppendUtf16(out, NextUtf8(text, at));
    return out;
}

std::size_t ValidUtf8Sequence(std::string_view bytes) {
    return FirstCharacter(bytes).bytes;
}

}  // namespace base
