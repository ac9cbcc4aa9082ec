// "Provider=...;Data Source=path;Mode=Read": key=value pairs with semicolons between them. A value
// in quotes of either kind may hold semicolons, and its quote doubled.
#pragma once

#include "base/status.h"

#include <string>
#include <string_view>

namespace jet {

struct ConnectionSettings {
    std::u16string data_source;
    bool read_only = false;
    bool operator==(const ConnectionSettings&) const = default;
};

// Keys in any letter case; unknown ones are ignored. kInvalidArgument: no
// pairs, or no data source.
base::Result<ConnectionSettings> ParseConnectionString(std::u16string_view text);

}  // namespace jet
