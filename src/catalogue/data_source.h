// DataSourceValue: a path as the value of a connection string, quoted only when it holds a
// semicolon, which would end the value.
#pragma once

#include <string>
#include <string_view>

namespace catalogue {

inline std::u16string DataSourceValue(std::u16string_view path) {
    if (path.find(u';') == std::u16string_view::npos) return std::u16string(path);
    std::u16string quoted = u"\"";
    for (const char16_t c : path) {
        if (c == u'"') quoted.push_back(c);
        quoted.push_back(c);
    }
    quoted.push_back(u'"');
    return quoted;
}

}  // namespace catalogue
