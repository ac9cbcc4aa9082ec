// LongValueStore: writes and frees the long values of one column.
#pragma once

#include "jet/rows/long_value.h"
#include "jet/rows/row_pages.h"
#include "jet/rows/table_definition.h"

namespace jet {

class LongValueStore {
public:
    LongValueStore(FileContext& file, const LongValueMaps& maps)
        : file_(file), maps_(maps), pages_(file, maps.owned, maps.free, kLongValueOwner) {}

    // Stores the value and returns the row's field that refers to it; a small value goes into the
    // field itself unless `allow_inline` is false. 3047: longer than a long value can be.
    base::Result<Bytes> Store(std::span<const std::byte> value, bool allow_inline);
    // Frees what `field` refers to. Missing pieces are skipped, so that a row with a damaged value
    // can still be deleted.
    base::Status Free(std::span<const std::byte> field);
    // The same for many fields, of which those that lie in a single row are only noted: FreeNoted
    // takes them from their pages, each page once.
    base::Status FreeOrNote(std::span<const std::byte> field);
    base::Status FreeNoted();
    void Forget() {
        pages_.Forget();
        noted_.clear();
    }

private:
    base::Result<RowId> StoreChain(std::span<const std::byte> value);

    FileContext& file_;
    LongValueMaps maps_;
    RowPages pages_;
    std::vector<RowId> noted_;
};

}  // namespace jet
