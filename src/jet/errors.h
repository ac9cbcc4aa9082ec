// The engine's error numbers and their texts.
#pragma once

#include "base/status.h"

#include <cstdint>
#include <string_view>

namespace jet {

// The Status of error `number`; `name` (and `second`) stand where the text names a thing.
// Requires: the number is one that errors.cpp lists.
base::Status JetError(std::int32_t number, std::u16string_view name = {},
                      std::u16string_view second = {});

}  // namespace jet
