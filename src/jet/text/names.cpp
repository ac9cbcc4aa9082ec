#include "jet/text/names.h"

#include "jet/ids.h"
#include "jet/text/collation.h"

#include <algorithm>

namespace jet {

bool SameName(std::u16string_view a, std::u16string_view b) {
    return a == b || CompareText(a, b) == std::weak_ordering::equivalent;
}

bool NameBefore(std::u16string_view a, std::u16string_view b) {
    return CompareText(a, b) == std::weak_ordering::less;
}

bool IsValidName(std::u16string_view name) {
    if (name.empty() || name.size() > kMaxNameLength || name.front() == u' ') return false;
    return std::ranges::none_of(name, [](char16_t unit) {
        return unit < 0x20 || std::u16string_view(u".!`[]").find(unit) != std::u16string_view::npos;
    });
}

}  // namespace jet
