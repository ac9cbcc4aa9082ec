#include "platform/linux/file_names.h"

#include <QtCore/QStringDecoder>

namespace platform {
namespace {

constexpr char16_t kEscapedByte = 0xDC00;

bool IsEscapedByte(QChar c) {
    return c.unicode() >= kEscapedByte + 0x80 && c.unicode() <= kEscapedByte + 0xFF;
}

// Length of the valid UTF-8 sequence at the start of `bytes`; 0: there is none.
std::size_t ValidSequence(std::string_view bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((at(i) & 0xC0) != 0x80) return 0;
    const bool overlong = (lead == 0xE0 && at(1) < 0xA0) || (lead == 0xF0 && at(1) < 0x90);
    const bool surrogate = lead == 0xED && at(1) > 0x9F;
    const bool too_high = lead == 0xF4 && at(1) > 0x8F;
    return overlong || surrogate || too_high ? 0 : length;
}

}  // namespace

QString DecodeFileName(std::string_view bytes) {
    QString name;
    name.reserve(static_cast<qsizetype>(bytes.size()));
    std::size_t valid = 0;  // length of the valid text not yet taken over
    const auto take_valid = [&] {
        name += QString::fromUtf8(bytes.data(), static_cast<qsizetype>(valid));
        bytes.remove_prefix(valid);
        valid = 0;
    };
    while (valid < bytes.size()) {
        if (const std::size_t length = ValidSequence(bytes.substr(valid)); length != 0) {
            valid += length;
            continue;
        }
        take_valid();
        name += QChar(static_cast<char16_t>(kEscapedByte + static_cast<unsigned char>(bytes[0])));
        bytes.remove_prefix(1);
    }
    take_valid();
    return name;
}

std::string EncodeFileName(const QString& name) {
    std::string bytes;
    qsizetype start = 0;
    const auto take_until = [&](qsizetype end) {
        bytes += QStringView(name).sliced(start, end - start).toUtf8().toStdString();
        start = end;
    };
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i].isHighSurrogate() && i + 1 < name.size() && name[i + 1].isLowSurrogate()) {
            ++i;
        } else if (IsEscapedByte(name[i])) {
            take_until(i);
            bytes += static_cast<char>(name[i].unicode() - kEscapedByte);
            start = i + 1;
        }
    }
    take_until(name.size());
    return bytes;
}

bool IsForeignPath(const QString& path) {
    const bool is_share = path.startsWith(QLatin1String("\\\\"));
    if (is_share || path.size() < 3) return is_share;
    const char16_t drive = path[0].toLower().unicode();
    return drive >= u'a' && drive <= u'z' && path[1] == u':' &&
           (path[2] == u'\\' || path[2] == u'/');
}

std::string SystemPath(const QString& path) {
    if (path.isEmpty() || path.contains(QChar(0)) || IsForeignPath(path)) return {};
    return EncodeFileName(path);
}

}  // namespace platform
