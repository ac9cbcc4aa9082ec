// The names of column types in CREATE TABLE and ALTER TABLE.
#pragma once

#include "jet/values/schema.h"

#include <optional>
#include <string_view>

namespace jet::sql {

struct TypeName {
    std::u16string_view name;
    ColumnType type = ColumnType::kText;
    bool autonumber = false;
    bool fixed_text = false;
    // The type's size when none is written; 0: the type takes no size.
    std::uint16_t default_size = 0;
};

// In any letter case. nullptr: no such type.
const TypeName* FindTypeName(std::u16string_view name);

}  // namespace jet::sql
