// The rows and indexes of one table.
#pragma once

#include "jet/check/check_definition.h"
#include "jet/check/check_row.h"

#include <functional>

namespace jet::check {

// A live row: what the catalogue step wants of the rows of MSysObjects.
using RowVisitor = std::function<void(PageNumber page, int row, const Row& parsed)>;
// The content of a long value, after the scan of the table (LvProp).
using LongValueVisitor =
    std::function<void(PageNumber page, int row, const Column& column, const Bytes& content)>;

// Checks maps, data pages, rows, values and indexes of the table; claims their pages. The visitors
// may be empty.
void CheckTable(CheckRun& run, const Definition& definition, const RowVisitor& visit_row = {},
                const LongValueVisitor& visit_long_value = {});

}  // namespace jet::check
