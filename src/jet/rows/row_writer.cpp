#include "jet/rows/row_writer.h"

#include "jet/errors.h"
#include "jet/pages/data_page.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"

namespace jet {
namespace {

bool IsInline(const RowField& field) {
    return field.set && field.bytes.size() > kLongValueHead &&
           (base::LoadLittle<std::uint32_t>(field.bytes.data()) & kLongValueInline) != 0;
}

}  // namespace

RowWriter::RowWriter(FileContext& file, const TableDefinition& definition)
    : file_(file), definition_(definition),
      pages_(file, definition.owned, definition.free, definition.page) {
    for (const LongValueMaps& maps : definition.long_values)
        long_values_.try_emplace(maps.column, file, maps);
}

void RowWriter::Forget() {
    pages_.Forget();
    for (auto& [column, store] : long_values_)
        store.Forget();
}

LongValueStore* RowWriter::LongValuesOf(const ColumnDefinition& column) {
    const auto found = long_values_.find(column.number);
    return found == long_values_.end() ? nullptr : &found->second;
}

base::Result<RowField> RowWriter::MakeField(const ColumnDefinition& column, const Value& value) {
    RowField field;
    if (column.type == ColumnType::kBoolean) {
        const bool* boolean = value.get_if<bool>();
        field.set = boolean != nullptr && *boolean;
        return field;
    }
    if (value.is_null()) return field;
    field.set = true;
    if (!column.is_long_value()) {
        ASSIGN_OR_RETURN(field.bytes, EncodeField(file_, column, value));
        return field;
    }
    LongValueStore* store = LongValuesOf(column);
    if (store == nullptr) return DamagedPage(definition_.page, "a long value column has no pages");
    ASSIGN_OR_RETURN(const Bytes bytes, EncodeLongValue(file_, column, value));
    ASSIGN_OR_RETURN(field.bytes, store->Store(bytes, true));
    return field;
}

// A row that is too long first loses its inline long values to pages of their own.
base::Result<Bytes> RowWriter::EncodeWithinLimit(std::vector<RowField>& fields) {
    Bytes row = EncodeRow(file_.format, definition_, fields);
    for (std::size_t i = 0; i < fields.size() && row.size() > file_.format.max_row_bytes; ++i) {
        const ColumnDefinition& column = definition_.columns[i];
        LongValueStore* store = column.is_long_value() ? LongValuesOf(column) : nullptr;
        if (store == nullptr || !IsInline(fields[i])) continue;
        const Bytes value(fields[i].bytes.begin() + kLongValueHead, fields[i].bytes.end());
        ASSIGN_OR_RETURN(fields[i].bytes, store->Store(value, false));
        row = EncodeRow(file_.format, definition_, fields);
    }
    if (row.size() > file_.format.max_row_bytes) return JetError(ErrorNumber::kRecordTooLarge);
    return row;
}

base::Result<RowId> RowWriter::Insert(std::span<const Value> values) {
    std::vector<RowField> fields(definition_.columns.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        ASSIGN_OR_RETURN(fields[i], MakeField(definition_.columns[i], values[i]));
    }
    ASSIGN_OR_RETURN(const Bytes row, EncodeWithinLimit(fields));
    return pages_.Add(row, 0);
}

base::Status RowWriter::FreeLongValue(const ColumnDefinition& column, const RowView& row) {
    LongValueStore* store = column.is_long_value() ? LongValuesOf(column) : nullptr;
    if (store == nullptr || !row.Bit(column.number)) return {};
    const auto field = row.Field(column);
    return field ? store->Free(*field) : base::Status();
}

base::Status RowWriter::Update(RowId row, std::span<const Value> values,
                               const std::vector<bool>& changed) {
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition_.page, row));
    const auto old = RowView::Parse(stored.bytes, file_.format);
    if (!old) return DamagedPage(row.page, "a row is unreadable");
    std::vector<RowField> fields(definition_.columns.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[i];
        if (changed[i]) {
            RETURN_IF_ERROR(FreeLongValue(column, *old));
            ASSIGN_OR_RETURN(fields[i], MakeField(column, values[i]));
            continue;
        }
        fields[i].set = old->Bit(column.number);
        if (!fields[i].set || column.type == ColumnType::kBoolean) continue;
        const auto bytes = old->Field(column);
        if (!bytes) return DamagedPage(row.page, "a row is unreadable");
        fields[i].bytes.assign(bytes->begin(), bytes->end());
    }
    ASSIGN_OR_RETURN(const Bytes bytes, EncodeWithinLimit(fields));
    return Place(row, stored.at, bytes);
}

// Puts the new bytes of a row where there is room: where they are, at home, or on another page, to
// which the row's own slot then points. Never more than one hop.
base::Status RowWriter::Place(RowId row, RowId at, std::span<const std::byte> bytes) {
    const bool was_moved = at != row;
    ASSIGN_OR_RETURN(const bool in_place,
                     pages_.Replace(at, bytes, was_moved ? kSlotTarget : std::uint16_t{0}));
    if (in_place) return {};
    bool at_home = false;
    if (was_moved) {
        ASSIGN_OR_RETURN(at_home, pages_.Replace(row, bytes, 0));
    }
    if (!at_home) {
        ASSIGN_OR_RETURN(const RowId target, pages_.Add(bytes, kSlotTarget));
        Bytes pointer(4);
        StoreRowPointer(pointer.data(), {target.page, target.slot});
        ASSIGN_OR_RETURN(const bool pointed, pages_.Replace(row, pointer, kSlotMoved));
        if (!pointed) return DamagedPage(row.page, "a row is shorter than a pointer");
    }
    return was_moved ? pages_.Delete(at) : base::Status();
}

base::Status RowWriter::Delete(RowId row) {
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition_.page, row));
    if (const auto view = RowView::Parse(stored.bytes, file_.format)) {
        for (const ColumnDefinition& column : definition_.columns)
            RETURN_IF_ERROR(FreeLongValue(column, *view));
    }
    if (stored.at != row) RETURN_IF_ERROR(pages_.Delete(stored.at));
    return pages_.Delete(row);
}

}  // namespace jet
