// KeyEncoder: the bytes by which an index orders values. Keys compare byte by byte.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/table_definition.h"
#include "jet/values/value.h"

namespace jet {

// False: the engine cannot make keys of this column (an unknown sort order, a type without
// keys).
bool CanEncodeKey(const FileContext& file, const ColumnDefinition& column);

// Appends the part of one column: a flag byte and the value's bytes, complemented in a descending
// column. Requires: CanEncodeKey(); the value is null or of the column's type.
void AppendKeyPart(const FileContext& file, const ColumnDefinition& column, bool ascending,
                   const Value& value, Bytes& key);

}  // namespace jet
