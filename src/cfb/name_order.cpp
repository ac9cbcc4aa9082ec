#include "cfb/name_order.h"

#include "base/letter_case.h"

#include <algorithm>

namespace cfb {

bool SameName(std::u16string_view a, std::u16string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char16_t x, char16_t y) { return base::ToUpper(x) == base::ToUpper(y); });
}

}  // namespace cfb
