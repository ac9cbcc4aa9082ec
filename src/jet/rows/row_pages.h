// RowPages: the data pages of one owner (a table, or the long values of a column): where rows are
// added, replaced and deleted. Pages with room are reused, also those that the map of free space
// misses; a page without a live row goes back to the file. All calls need an open
// transaction.
#pragma once

#include "jet/ids.h"
#include "jet/pages/data_page.h"
#include "jet/rows/file_context.h"

#include <optional>

namespace jet {

class RowPages {
public:
    // `owner`: the table's definition page, or kLongValueOwner.
    RowPages(FileContext& file, RowPointer owned, RowPointer free, std::uint32_t owner)
        : file_(file), owned_(owned), free_(free), owner_(owner) {}

    // Requires: the row fits a page.
    base::Result<RowId> Add(std::span<const std::byte> row, std::uint16_t flags);
    // Stores the row alone on a new page, as pieces of chains are.
    base::Result<RowId> AddAlone(std::span<const std::byte> row);
    // False: the page has no room for it; nothing was changed.
    base::Result<bool> Replace(RowId row, std::span<const std::byte> bytes, std::uint16_t flags);
    // Requires: they ascend, each once.
    base::Status Delete(std::span<const RowId> rows);
    base::Status Delete(RowId row) { return Delete(std::span(&row, 1)); }
    // Drops what is cached about pages with room. Call after a rollback.
    void Forget();

private:
    base::Result<bool> HasRoom(PageNumber page, std::size_t bytes, bool& worth_keeping);
    base::Result<std::optional<PageNumber>> FindKnownPage(std::size_t bytes);
    base::Result<std::optional<PageNumber>> FindForgottenPage(std::size_t bytes);
    base::Result<PageNumber> NewPage(bool with_room);
    base::Result<DataPageEditor> Edit(PageNumber page);
    // True: no row is left, and the page is given back.
    base::Result<bool> DeleteOnPage(PageNumber page, std::span<const std::uint8_t> slots);
    base::Status HintAtRoom(PageNumber page);
    base::Status GiveBack(PageNumber page);

    FileContext& file_;
    RowPointer owned_;
    RowPointer free_;
    std::uint32_t owner_;
    std::optional<std::vector<PageNumber>> candidates_;
    std::size_t candidate_ = 0;
    std::optional<std::vector<PageNumber>> unsearched_;  // owned pages not looked at since opening
};

}  // namespace jet
