// Qt's texts as the system's and back. Neither changes a unit.
#pragma once

#include <QtCore/QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace platform {

inline std::wstring Wide(QStringView text) {
    return {reinterpret_cast<const wchar_t*>(text.utf16()), static_cast<std::size_t>(text.size())};
}

// Unlike QString::fromStdWString, which drops a U+FEFF at the start for a byte order mark.
inline QString FromWide(std::wstring_view text) {
    return QString(reinterpret_cast<const QChar*>(text.data()),
                   static_cast<qsizetype>(text.size()));
}

// True for paths of other systems ("/data/Foo.vpt"), which name nothing on this one: the system
// would look for them on the drive that is current by chance.
inline bool IsForeignPath(QStringView path) {
    return path.startsWith(u'/');
}

// Empty when `path` is empty, foreign or contains a NUL.
inline std::filesystem::path DiskPath(QStringView path) {
    if (IsForeignPath(path) || path.contains(QChar(0))) return {};
    return Wide(path);
}

}  // namespace platform
