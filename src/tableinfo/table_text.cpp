#include "tableinfo/table_text.h"

#include "base/byte_reader.h"

namespace tableinfo {
namespace {

bool IsControl(std::byte byte) {
    const auto c = static_cast<unsigned char>(byte);
    return c != 0 && c < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

// Text of one byte per character has no control characters and few NULs; in 16-bit text of Western
// languages most upper bytes are NUL, and in that of other languages they are small numbers.
bool LooksLikeUtf16(std::span<const std::byte> bytes) {
    if (bytes.size() % 2 != 0) return false;
    std::size_t zero_upper_bytes = 0;
    std::size_t controls = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % 2 == 1 && bytes[i] == std::byte{0}) ++zero_upper_bytes;
        if (IsControl(bytes[i])) ++controls;
    }
    return zero_upper_bytes > bytes.size() / 4 || controls > 0;
}

QString FromUtf16(std::span<const std::byte> bytes) {
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size() / 2));
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2)
        text.append(QChar(base::LoadLittle<char16_t>(bytes.data() + at)));
    return text;
}

QString FromSingleBytes(std::span<const std::byte> bytes) {
    return QString::fromLatin1(reinterpret_cast<const char*>(bytes.data()),
                               static_cast<qsizetype>(bytes.size()));
}

}  // namespace

QString DecodeTableText(std::span<const std::byte> bytes) {
    QString text = LooksLikeUtf16(bytes) ? FromUtf16(bytes) : FromSingleBytes(bytes);
    return text.remove(QChar(u'\0'));
}

}  // namespace tableinfo
