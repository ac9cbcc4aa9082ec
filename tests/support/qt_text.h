// S: short texts of tests as QString.
#pragma once

#include <QtCore/QString>

namespace test_support {

inline QString S(const char16_t* text) {
    return QString::fromUtf16(text);
}

// UTF-8.
inline QString S(const char* text) {
    return QString::fromUtf8(text);
}

}  // namespace test_support
