// The LIKE operator in its ANSI-92 form: % any run, _ one character, [a-z] and [^a-z] (also [!a-z])
// sets; letter case does not count. "*" and "?" stand for themselves.
#pragma once

#include <string>
#include <string_view>

namespace jet {

bool Like(std::u16string_view text, std::u16string_view pattern);

// A pattern as designs of tables have it ("*" any run, "?" one character, "#" one digit, "[!a-z]"),
// in the form that Like takes.
std::u16string PatternOfStars(std::u16string_view stars);
// The name by which a rule calls it for a pattern that is computed.
inline constexpr std::u16string_view kPatternOfStars = u"*?#";

}  // namespace jet
