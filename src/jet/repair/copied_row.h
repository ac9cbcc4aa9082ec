// CopiedRow: a row on its way into another file of the same version. Fields keep the bytes that
// they are stored with, so that nothing is lost between two spellings of a text; a long value is
// whole.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/row_view.h"
#include "jet/rows/table_definition.h"

#include <vector>

namespace jet {

struct CopiedField {
    bool set = false;     // not null; of a boolean: its value
    bool in_row = false;  // a long value that lies in the row itself
    Bytes bytes;
};

// Goes with TableDefinition::columns.
using CopiedRow = std::vector<CopiedField>;

// Damage: the field leaves its row, or its long value cannot be read.
base::Status CopyField(FileContext& file, const ColumnDefinition& column, const RowView& row,
                       CopiedField& field);
base::Result<CopiedRow> CopyRow(FileContext& file, const TableDefinition& table,
                                const RowView& row);

// What the field means. Damage: it is shorter than its type.
base::Result<Value> ValueOf(FileContext& file, const ColumnDefinition& column,
                            const CopiedField& field);

}  // namespace jet
