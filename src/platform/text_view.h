// Qt's texts for functions that know the standard library's only, and back. Neither changes a unit.
#pragma once

#include <QtCore/QString>

#include <string_view>

namespace platform {

// Valid as long as the text that `text` is a view of.
inline std::u16string_view View(QStringView text) {
    return {text.utf16(), static_cast<std::size_t>(text.size())};
}

// Unlike QString::fromUtf16, which drops a U+FEFF at the start for a byte order mark.
inline QString ToQString(std::u16string_view text) {
    return QString(reinterpret_cast<const QChar*>(text.data()),
                   static_cast<qsizetype>(text.size()));
}

}  // namespace platform
