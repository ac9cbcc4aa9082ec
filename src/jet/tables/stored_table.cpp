#include "jet/tables/stored_table.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/rows/field_bytes.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"
#include "jet/tables/table_designer.h"
#include "jet/values/coerce.h"

#include <algorithm>

namespace jet {

base::Result<std::unique_ptr<StoredTable>> StoredTable::Open(FileContext& file, TableSource& tables,
                                                             PageNumber page, std::u16string name,
                                                             const PropertyBlob& properties) {
    ASSIGN_OR_RETURN(TableDefinition definition,
                     ReadTableDefinition(file.store, file.format, file.text, page));
    std::unique_ptr<StoredTable> table(new StoredTable(file, tables, std::move(definition)));
    const TableDefinition& known = table->definition_;
    table->positions_ = ShownOrder(known);
    table->design_ = DesignOf(file, known, table->positions_, properties, std::move(name));
    for (const RealIndex& index : known.real_indexes)
        if (!IsMaintainable(file, known, index))
            table->read_only_reason_ = ErrorBecause(
                ErrorNumber::kReadOnly, "Table '" + base::ToUtf8(table->design_.name) +
                                            "' has an index whose sort order is not supported.");
    return table;
}

void StoredTable::UseRules(const RowRuleMaker* maker) {
    if (!HasRules(design_)) return;
    base::Result<std::unique_ptr<RowRules>> made = base::Status(
        base::StatusCode::kUnsupported, "Table '" + base::ToUtf8(design_.name) +
                                            "' has validation rules, which nobody here can test.");
    if (maker != nullptr) made = maker->Make(design_);
    if (made.ok())
        rules_ = std::move(made).value();
    else if (!read_only_reason_)
        read_only_reason_ = ErrorBecause(ErrorNumber::kReadOnly, made.status().message());
}

std::size_t StoredTable::ShownPosition(std::uint16_t column_number) const {
    const auto found = std::ranges::find_if(positions_, [&](std::size_t position) {
        return definition_.columns[position].number == column_number;
    });
    return static_cast<std::size_t>(found - positions_.begin());
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
    std::vector<Value> values = bound.values;
    const auto& columns = indexes_.ColumnsOf(index.real);
    if (values.size() > columns.size()) values.resize(columns.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[columns[i]];
        if (IsOfType(values[i], column.type)) continue;
        const auto shown = std::ranges::find(positions_, columns[i]) - positions_.begin();
        ASSIGN_OR_RETURN(values[i],
                         Coerce(values[i], design_.columns[static_cast<std::size_t>(shown)]));
    }
    Bytes key = indexes_.KeyOf(index.real, values);
    if (bound.prefix) {
        // What ends the key of a plain text, and with it the difference to the longer ones.
        const bool ascending =
            definition_.real_indexes[index.real].columns[values.size() - 1].ascending;
        key.resize(key.size() - (!file_.format.jet4() ? 1 : ascending ? 2 : 3));
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
    return MakeRangeCursor(Source(), indexes_.tree(logical.real), std::move(range), backwards);
}

base::Status StoredTable::Read(RowId row, std::span<const std::size_t> columns,
                               std::span<Value> values) {
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition_.page, row));
    return DecodeFields(Source(), stored.bytes, columns, values);
}

base::Status StoredTable::VisitStored(std::span<const RowId> rows,
                                      std::span<const std::size_t> columns,
                                      const TakeStored& take) {
    RowFetcher fetcher(file_, definition_.page);
    FieldBytes fields;
    for (const std::uint32_t row : OrderByPage(rows)) {
        ASSIGN_OR_RETURN(const StoredRow stored, fetcher.Fetch(rows[row]));
        fields.Clear();
        RETURN_IF_ERROR(AppendStoredFields(Source(), stored.bytes, columns, fields));
        take(row, fields.bytes());
    }
    return {};
}

base::Status StoredTable::ReadStored(std::span<const std::byte> fields, std::size_t place,
                                     std::size_t column, Value& value) const {
    return DecodeStoredField(Source(), fields, place, column, value);
}

}  // namespace jet
