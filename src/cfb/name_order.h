// How the format compares the names of storages and streams: without regard to letter case.
#pragma once

#include <string_view>

namespace cfb {

// One UTF-16 unit in upper case, by simple mapping: Latin with its extensions, Greek, Cyrillic,
// Armenian; others unchanged.
char16_t UpperCase(char16_t c);
bool SameName(std::u16string_view a, std::u16string_view b);

}  // namespace cfb
