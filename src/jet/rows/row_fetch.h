// Finds the bytes of rows: follows the pointers of moved rows, checks that pages belong to the
// table.
#pragma once

#include "jet/ids.h"
#include "jet/pages/data_page.h"
#include "jet/rows/file_context.h"

namespace jet {

struct StoredRow {
    PageView page;  // keeps `bytes` alive
    std::span<const std::byte> bytes;
    RowId at;  // where the bytes are: the row's own slot, or where it was moved to
};

// 3167: no live row there.
base::Result<StoredRow> FetchRow(FileContext& file, PageNumber table, RowId row);

// The same for many rows, of which those on one page come one after the other. Requires: nothing
// changes the table's pages meanwhile.
class RowFetcher {
public:
    RowFetcher(FileContext& file, PageNumber table) : file_(file), table_(table) {}
    base::Result<StoredRow> Fetch(RowId row);

private:
    FileContext& file_;
    PageNumber table_;
    PageNumber number_ = 0;  // of the page at hand; 0: none
    PageView view_;
    std::optional<DataPage> page_;  // nullopt: not one of the table
};

// The places of `rows` in the order of their pages.
std::vector<std::uint32_t> OrderByPage(std::span<const RowId> rows);

// Follows a moved row from its pointer bytes. Damage is kCorruption.
base::Result<StoredRow> FollowMovedRow(FileContext& file, PageNumber table,
                                       std::span<const std::byte> pointer);

}  // namespace jet
