// Finds the bytes of rows: follows the pointers of moved rows, checks that pages belong to the
// table.
#pragma once

#include "jet/ids.h"
#include "jet/rows/file_context.h"

namespace jet {

struct StoredRow {
    PageView page;  // keeps `bytes` alive
    std::span<const std::byte> bytes;
    RowId at;  // where the bytes are: the row's own slot, or where it was moved to
};

// 3167: no live row there.
base::Result<StoredRow> FetchRow(FileContext& file, PageNumber table, RowId row);

// Follows a moved row from its pointer bytes. Damage is kCorruption.
base::Result<StoredRow> FollowMovedRow(FileContext& file, PageNumber table,
                                       std::span<const std::byte> pointer);

}  // namespace jet
