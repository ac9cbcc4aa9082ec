#include "exchange/wtf8.h"

#include "base/unicode.h"

namespace exchange {
namespace {

constexpr bool IsSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

constexpr bool IsPair(std::u16string_view text, std::size_t at) {
    return text[at] < 0xDC00 && at + 1 < text.size() && text[at + 1] >= 0xDC00 &&
           text[at + 1] <= 0xDFFF;
}

void AppendCode(std::string& bytes, char32_t code) {
    const auto tail = [&](int shift) { bytes += char(0x80 | (code >> shift & 0x3F)); };
    if (code < 0x80) {
        bytes += char(code);
    } else if (code < 0x800) {
        bytes += char(0xC0 | code >> 6);
        tail(0);
    } else if (code < 0x10000) {
        bytes += char(0xE0 | code >> 12);
        tail(6);
        tail(0);
    } else {
        bytes += char(0xF0 | code >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

// The surrogate at the start of `bytes`; 0: there is none.
char16_t LoneSurrogate(std::string_view bytes) {
    if (bytes.size() < 3) return 0;
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    if (byte(0) != 0xED || byte(1) < 0xA0 || byte(1) > 0xBF || (byte(2) & 0xC0) != 0x80) return 0;
    return static_cast<char16_t>(0xD000 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F));
}

}  // namespace

void AppendWtf8(std::string& bytes, std::u16string_view text) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char16_t c = text[at];
        if (c < 0x80) {
            bytes += char(c);
        } else if (IsSurrogate(c) && IsPair(text, at)) {
            ++at;
            AppendCode(bytes,
                       0x10000 + ((char32_t(c) - 0xD800) << 10) + (char32_t(text[at]) - 0xDC00));
        } else {
            AppendCode(bytes, c);
        }
    }
}

std::optional<std::u16string> FromWtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        if (static_cast<unsigned char>(bytes.front()) < 0x80) {
            text += static_cast<char16_t>(bytes.front());
            bytes.remove_prefix(1);
            continue;
        }
        std::size_t length = base::ValidUtf8Sequence(bytes);
        if (length > 0) {
            text += base::ToUtf16(bytes.substr(0, length));
        } else if (const char16_t surrogate = LoneSurrogate(bytes); surrogate != 0) {
            // Two that make a pair would have been written as their character.
            const bool joins = surrogate >= 0xDC00 && !text.empty() && text.back() >= 0xD800 &&
                               text.back() < 0xDC00;
            if (joins) return std::nullopt;
            text += surrogate;
            length = 3;
        } else {
            return std::nullopt;
        }
        bytes.remove_prefix(length);
    }
    return text;
}

}  // namespace exchange
