// StoredTable: Table over the pages of a file. Rows go through RowWriter, indexes through IndexSet,
// relations through RelationRules; this class checks what a program gives and keeps the order of
// the steps.
#pragma once

#include "jet/database.h"
#include "jet/index_tree.h"
#include "jet/property_blob.h"
#include "jet/table_cursors.h"

namespace jet {

class StoredTable final : public Table {
public:
    static base::Result<std::unique_ptr<StoredTable>>
    Open(FileContext& file, PageNumber page, std::u16string name, const PropertyBlob& properties);

    const TableDesign& design() const override { return design_; }
    std::uint32_t row_count() const override;
    std::optional<base::Status> read_only_reason() const override { return read_only_reason_; }

    base::Result<std::unique_ptr<RowCursor>> Scan() override;
    base::Result<std::unique_ptr<RowCursor>> Range(std::size_t index, const KeyBound& from,
                                                   const KeyBound& to, bool backwards) override;
    base::Status Read(RowId row, std::span<const std::size_t> columns,
                      std::span<Value> values) override;
    base::Result<RowId> Insert(std::span<Value> values) override;
    base::Status Update(RowId row, std::span<const ColumnChange> changes) override;
    base::Status Delete(RowId row) override;

    const TableDefinition& definition() const { return definition_; }
    const std::vector<std::size_t>& positions() const { return positions_; }

private:
    StoredTable(FileContext& file, TableDefinition definition)
        : file_(file), definition_(std::move(definition)) {}
    CursorSource Source() const { return {&file_, &definition_, &positions_}; }
    base::Result<Bytes> BoundKey(const LogicalIndex& index, const KeyBound& bound) const;

    FileContext& file_;
    TableDefinition definition_;
    std::vector<std::size_t> positions_;
    TableDesign design_;
    std::vector<std::unique_ptr<IndexTree>> trees_;  // one per real index
    std::optional<base::Status> read_only_reason_;
};

}  // namespace jet
