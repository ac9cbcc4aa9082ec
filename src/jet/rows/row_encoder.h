// The bytes of a row from the bytes of its fields, in either format.
#pragma once

#include "jet/rows/table_definition.h"

namespace jet {

// A field as the row holds it. A boolean has no bytes: `set` is its value.
struct RowField {
    bool set = false;  // not null
    Bytes bytes;
};

// `fields` go with definition.columns. The row may be longer than a page holds: the caller
// checks.
Bytes EncodeRow(const Format& format, const TableDefinition& definition,
                std::span<const RowField> fields);

}  // namespace jet
