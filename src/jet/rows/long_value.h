// Long values: memos and OLE objects. The row holds a reference of 12 bytes: length, kind, where;
// small values follow it in the row ("inline"), larger ones lie in a row of a page of their own
// kind ("single") or in a chain of such rows.
#pragma once

#include "jet/pages/long_value_layout.h"
#include "jet/rows/file_context.h"
#include "jet/values/value.h"

namespace jet {

// The whole value behind the field `reference` of a row.
base::Result<Bytes> ReadLongValue(FileContext& file, std::span<const std::byte> reference);

}  // namespace jet
