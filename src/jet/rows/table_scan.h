// TableScan: the live rows of a table in physical order (page, slot), a page at a time.
#pragma once

#include "jet/pages/data_page.h"
#include "jet/rows/row_fetch.h"
#include "jet/rows/table_definition.h"

namespace jet {

class TableScan {
public:
    static base::Result<TableScan> Start(FileContext& file, const TableDefinition& table);

    // False: the end.
    base::Result<bool> Next();
    // Of the current row.
    RowId row() const { return row_; }
    std::span<const std::byte> bytes() const { return bytes_; }

private:
    TableScan(FileContext& file, PageNumber table, std::vector<PageNumber> pages)
        : file_(&file), table_(table), pages_(std::move(pages)),
          pages_freed_(file.allocator.pages_freed()) {}
    base::Status OpenPage(PageNumber number);

    FileContext* file_;
    PageNumber table_;
    std::vector<PageNumber> pages_;
    std::uint64_t pages_freed_;
    std::size_t next_page_ = 0;
    PageView view_;
    std::optional<DataPage> page_;
    std::size_t next_slot_ = 0;
    StoredRow moved_;
    RowId row_;
    std::span<const std::byte> bytes_;
};

}  // namespace jet
