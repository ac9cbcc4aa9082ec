// Coerce: a value as a column of a given type stores it, by the rules of an INSERT or UPDATE:
// numbers are rounded half to even, text becomes a number or a date where it is one, numbers and
// dates become text, Null stays Null (False for a boolean column). 3464: data type mismatch; 3349
// numeric overflow; 3163: text or bytes too long.
#pragma once

#include "base/status.h"
#include "jet/values/schema.h"
#include "jet/values/value.h"

namespace jet {

base::Result<Value> Coerce(const Value& value, const ColumnDesign& column);

}  // namespace jet
