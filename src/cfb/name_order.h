// How the format compares the names of storages and streams: without regard to letter case.
#pragma once

#include <string_view>

namespace cfb {

bool SameName(std::u16string_view a, std::u16string_view b);

}  // namespace cfb
