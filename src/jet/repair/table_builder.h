// TableBuilder: one table of a new file, from what another file of the same version says of it and
// from its rows in the order in which they are to be stored. Data pages and index pages are filled
// from front to back. Column numbers that are no longer in use are given out again.
// The steps: Start, AddRow for each row, BuildIndexes, WriteDefinition.
#pragma once

#include "jet/index/index_set.h"
#include "jet/repair/copied_row.h"
#include "jet/rows/long_value_store.h"
#include "jet/rows/row_encoder.h"
#include "jet/tables/map_rows.h"

#include <map>

namespace jet {

class TableBuilder {
public:
    // `file` must outlive the builder. `source`: the definition in the other file; maps, index
    // roots and counters of rows in it do not matter. `page`: the first page of the new definition.
    TableBuilder(FileContext& file, TableDefinition source, PageNumber page);
    TableBuilder(const TableBuilder&) = delete;
    TableBuilder& operator=(const TableBuilder&) = delete;

    // The new definition. Its columns stand as those of the source do. Relations may be changed in
    // it until WriteDefinition, and flags of indexes.
    TableDefinition& definition() { return definition_; }

    // `maps`: where the table's page maps go; several tables may share them.
    base::Status Start(MapRows& maps);

    // The keys of a row in the indexes that are computed; nullopt in all others.
    base::Result<IndexSet::Keys> KeysOf(const CopiedRow& row);
    // Whether the engine knows how the index sorts. The entries of others are copied: AddEntry.
    bool IsComputed(std::size_t index) const { return computed_[index]; }
    // Stores the row. `keys`: its entries in the indexes. 3047: it does not fit a page.
    base::Result<RowId> AddRow(const CopiedRow& row, IndexSet::Keys keys);
    void AddEntry(std::size_t index, Bytes key, RowId row);

    bool IsPrimary(std::size_t index) const;
    // Lets an index go, with all names that it has.
    void DropIndex(std::size_t index) { dropped_[index] = true; }
    bool IsDropped(std::size_t index) const { return dropped_[index]; }

    // Makes the trees. 3047: a key is too long.
    base::Status BuildIndexes();
    base::Status WriteDefinition();

private:
    struct Entry {
        Bytes key;
        RowId row;
        auto operator<=>(const Entry&) const = default;
    };

    LongValueStore* LongValuesOf(const ColumnDefinition& column);
    base::Result<Bytes> Encode(const CopiedRow& row);
    Bytes EncodeShort(std::span<const RowField> fields) const;
    base::Result<RowId> Append(std::span<const std::byte> row);
    base::Status LeavePage();
    base::Status BuildIndex(std::size_t index);
    void EraseDroppedIndexes();

    FileContext& file_;
    TableDefinition definition_;
    MapRows* maps_ = nullptr;
    std::vector<std::vector<std::size_t>> index_columns_;  // positions, by index
    std::vector<bool> computed_;
    std::vector<bool> dropped_;
    std::vector<std::vector<Entry>> entries_;
    std::map<std::uint16_t, LongValueStore> long_values_;  // by column number
    PageNumber page_ = 0;                                  // that rows are put into; 0: none yet
};

}  // namespace jet
