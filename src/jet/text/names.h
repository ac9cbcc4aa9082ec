// Names of tables, columns and indexes compare as texts do, by the collation: letter case does not
// count. A statement finds whatever the catalogue takes for the same name.
#pragma once

#include <string_view>

namespace jet {

bool SameName(std::u16string_view a, std::u16string_view b);
bool NameBefore(std::u16string_view a, std::u16string_view b);

// 1 to 64 characters, none of them . ! ` [ ] or a control character, no blank in front.
bool IsValidName(std::u16string_view name);

}  // namespace jet
