// The LIKE operator in its ANSI-92 form: % any run, _ one character, [a-z] and [^a-z] (also [!a-z])
// sets; letter case does not count. "*" and "?" stand for themselves.
#pragma once

#include <string_view>

namespace jet::sql {

bool Like(std::u16string_view text, std::u16string_view pattern);

}  // namespace jet::sql
