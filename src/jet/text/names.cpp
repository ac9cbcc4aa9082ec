#include "jet/text/names.h"

#include "jet/ids.h"
#include "jet/text/collation.h"
#include "jet/values/calendar_names.h"

#include <algorithm>
#include <optional>

namespace jet {

namespace {

constexpr bool IsPlain(char16_t unit) {
    return IsAsciiLetter(unit) || IsAsciiDigit(unit);
}

// What the letters A to Z and digits tell: each has one weight of its own, whatever stands around
// it, so that the first difference in them decides. nullopt: it takes the collation.
std::optional<bool> IsSamePlainly(std::u16string_view a, std::u16string_view b) {
    const std::size_t size = std::min({a.size(), b.size(), kMaxNameLength});
    for (std::size_t i = 0; i < size; ++i) {
        if (a[i] == b[i]) continue;
        if (!IsPlain(a[i]) || !IsPlain(b[i])) return std::nullopt;
        if (AsciiLower(a[i]) != AsciiLower(b[i])) return false;
    }
    if (a.size() == b.size() && a.size() == size) return true;
    const std::u16string_view longer = a.size() > b.size() ? a : b;
    if (longer.size() > size && size < kMaxNameLength && IsPlain(longer[size])) return false;
    return std::nullopt;
}

}  // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
    const std::optional<bool> plainly = IsSamePlainly(a, b);
    return plainly ? *plainly : CompareText(a, b) == std::weak_ordering::equivalent;
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
