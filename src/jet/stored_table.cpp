#include "jet/stored_table.h"

#include "base/unicode.h"
#include "jet/coerce.h"
#include "jet/key_encoder.h"
#include "jet/row_fetch.h"
#include "jet/storage_errors.h"
#include "jet/table_designer.h"

namespace jet {

base::Result<std::unique_ptr<StoredTable>> StoredTable::Open(FileContext& file, PageNumber page,
                                                             std::u16string name,
                                                             const PropertyBlob& properties) {
    ASSIGN_OR_RETURN(TableDefinition definition,
                     ReadTableDefinition(file.store, file.format, file.text, page));
    std::unique_ptr<StoredTable> table(new StoredTable(file, std::move(definition)));
    const TableDefinition& known = table->definition_;
    table->positions_ = ShownOrder(known);
    table->design_ = DesignOf(file, known, table->positions_, properties, std::move(name));
    for (const RealIndex& index : known.real_indexes) {
        table->trees_.push_back(std::make_unique<IndexTree>(file, page, index.root, index.map));
        if (!IsMaintainable(file, known, index))
            table->read_only_reason_ =
                errors::ReadOnlyBecause("table '" + base::ToUtf8(table->design_.name) +
                                        "' has an index whose sort order is not supported");
    }
    return table;
}

std::uint32_t StoredTable::row_count() const {
    const auto page = file_.store.Read(definition_.page);
    return page.ok() ? ReadDefinitionCounters(page.value().bytes(), file_.format).rows : 0;
}

base::Result<std::unique_ptr<RowCursor>> StoredTable::Scan() {
    ASSIGN_OR_RETURN(TableScan scan, TableScan::Start(file_, definition_));
    return MakeScanCursor(Source(), std::move(scan));
}

base::Result<Bytes> StoredTable::BoundKey(const LogicalIndex& index, const KeyBound& bound) const {
    const RealIndex& real = definition_.real_indexes[index.real];
    Bytes key;
    for (std::size_t i = 0; i < bound.values.size() && i < real.columns.size(); ++i) {
        const ColumnDefinition& column = *definition_.FindColumn(real.columns[i].column);
        AppendKeyPart(file_, column, real.columns[i].ascending, bound.values[i], key);
    }
    return key;
}

base::Result<std::unique_ptr<RowCursor>> StoredTable::Range(std::size_t index, const KeyBound& from,
                                                            const KeyBound& to, bool backwards) {
    const LogicalIndex& logical = definition_.logical_indexes[index];
    KeyRange range;
    ASSIGN_OR_RETURN(range.from, BoundKey(logical, from));
    ASSIGN_OR_RETURN(range.to, BoundKey(logical, to));
    range.from_inclusive = from.inclusive;
    range.to_inclusive = to.inclusive;
    return MakeRangeCursor(Source(), *trees_[logical.real], std::move(range), backwards);
}

base::Status StoredTable::Read(RowId row, std::span<const std::size_t> columns,
                               std::span<Value> values) {
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition_.page, row));
    return DecodeFields(Source(), stored.bytes, columns, values);
}

base::Result<RowId> StoredTable::Insert(std::span<Value>) {
    return errors::ReadOnly();
}
base::Status StoredTable::Update(RowId, std::span<const ColumnChange>) {
    return errors::ReadOnly();
}
base::Status StoredTable::Delete(RowId) {
    return errors::ReadOnly();
}

}  // namespace jet
