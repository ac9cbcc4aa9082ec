// What a value is as a number or as a truth value, where it is one.
#pragma once

#include "jet/values/value.h"

#include <optional>
#include <string_view>

namespace jet {

// True, Yes, On, False, No, Off in any letter case.
std::optional<bool> TruthWord(std::u16string_view text);

// Of a number, a text that is one, True (-1) or a date (its days). nullopt: not a number.
std::optional<double> NumberOf(const Value& value);

}  // namespace jet
