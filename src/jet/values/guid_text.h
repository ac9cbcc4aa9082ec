// GUIDs as people write them: {33221100-5544-7766-8899-AABBCCDDEEFF}.
#pragma once

#include "jet/values/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace jet {

// Upper case, in braces.
std::u16string GuidText(const Guid& guid);
// With or without braces, also inside "{guid ...}". nullopt: not a GUID.
std::optional<Guid> ParseGuid(std::u16string_view text);

}  // namespace jet
