#include "tableinfo/table_text.h"

#include "base/byte_reader.h"

namespace tableinfo {
namespace {

bool IsControl(std::byte byte) {
    const auto c = static_cast<unsigned char>(byte);
    return c != 0 && c < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

// In 16-bit text of Western languages most upper bytes are NUL, and in that of other alphabets they
// are small numbers; text of one byte per character has few of either. NULs at the end are padding
// in both kinds and do not count.
bool LooksLikeUtf16(std::span<const std::byte> bytes) {
    while (bytes.size() >= 2 && bytes[bytes.size() - 1] == std::byte{0} &&
           bytes[bytes.size() - 2] == std::byte{0})
        bytes = bytes.first(bytes.size() - 2);
    if (bytes.empty() || bytes.size() % 2 != 0) return false;
    std::size_t small_upper_bytes = 0;
    for (std::size_t i = 1; i < bytes.size(); i += 2)
        if (bytes[i] == std::byte{0} || IsControl(bytes[i])) ++small_upper_bytes;
    return small_upper_bytes > bytes.size() / 4;
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
