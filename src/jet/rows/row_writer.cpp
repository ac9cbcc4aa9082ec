#include "jet/rows/row_writer.h"

#include "jet/errors.h"
#include "jet/pages/bit_set_view.h"
#include "jet/pages/data_page.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"

#include <algorithm>

namespace jet {
namespace {

bool IsInline(const RowField& field) {
    return field.set && field.bytes.size() > kLongValueHead &&
           (base::LoadLittle<std::uint32_t>(field.bytes.data()) & kLongValueInline) != 0;
}

// Where a field's bytes stand in a row; as many as the new ones. nullopt: it is another number.
std::optional<std::span<const std::byte>>
PlaceOf(const RowView& row, const ColumnDefinition& column, const RowField& field) {
    if (column.number >= row.column_count()) return std::nullopt;
    if (column.type == ColumnType::kBoolean) return std::span<const std::byte>();
    if (column.is_fixed()) return row.Fixed(column.fixed_offset, column.length);
    if (row.Bit(column.number) != field.set) return std::nullopt;
    if (!field.set) return std::span<const std::byte>();
    const auto place = row.Variable(column.variable_index);
    return place && place->size() == field.bytes.size() ? place : std::nullopt;
}

void PatchField(std::span<std::byte> row, const RowView& view, const ColumnDefinition& column,
                std::span<const std::byte> place, const RowField& field) {
    AssignBit(row.last((view.column_count() + 7) / 8), column.number, field.set);
    if (place.empty()) return;
    const auto to = row.subspan(static_cast<std::size_t>(place.data() - row.data()), place.size());
    const auto kept = std::min(field.bytes.size(), to.size());
    std::ranges::copy(std::span(field.bytes).first(kept), to.begin());
    std::ranges::fill(to.subspan(kept), std::byte{0});
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

base::Status RowWriter::FreeLongValue(const ColumnDefinition& column, const RowView& row,
                                      bool at_once) {
    LongValueStore* store = column.is_long_value() ? LongValuesOf(column) : nullptr;
    if (store == nullptr || !row.Bit(column.number)) return {};
    const auto field = row.Field(column);
    if (!field) return {};
    return at_once ? store->Free(*field) : store->FreeOrNote(*field);
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
            RETURN_IF_ERROR(FreeLongValue(column, *old, true));
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

base::Result<bool> RowWriter::Patch(std::span<std::byte> row, std::span<const std::size_t> columns,
                                    std::span<const Value> values) {
    const auto view = RowView::Parse(row, file_.format);
    if (!view) return false;
    std::vector<RowField> fields(columns.size());
    std::vector<std::span<const std::byte>> places(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[columns[i]];
        if (column.is_long_value()) return false;
        ASSIGN_OR_RETURN(fields[i], MakeField(column, values[i]));
        const auto place = PlaceOf(*view, column, fields[i]);
        if (!place) return false;
        places[i] = *place;
    }
    for (std::size_t i = 0; i < columns.size(); ++i)
        PatchField(row, *view, definition_.columns[columns[i]], places[i], fields[i]);
    return true;
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

base::Status RowWriter::FreeLongValues(std::span<const std::byte> row, bool at_once) {
    if (long_values_.empty()) return {};
    const auto view = RowView::Parse(row, file_.format);
    if (!view) return {};
    for (const ColumnDefinition& column : definition_.columns)
        RETURN_IF_ERROR(FreeLongValue(column, *view, at_once));
    return {};
}

base::Status RowWriter::Delete(RowId row) {
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition_.page, row));
    RETURN_IF_ERROR(FreeLongValues(stored.bytes, true));
    if (stored.at != row) RETURN_IF_ERROR(pages_.Delete(stored.at));
    return pages_.Delete(row);
}

base::Result<std::size_t> RowWriter::Delete(const RowSet& rows) {
    std::size_t count = 0;
    std::vector<RowId> slots;  // of the rows, and where those are that were moved
    slots.reserve(rows.rows().size());
    RowFetcher fetcher(file_, definition_.page);
    for (const RowId row : rows.rows()) {
        const auto stored = fetcher.Fetch(row);
        if (Is(stored.status(), ErrorNumber::kRecordDeleted)) continue;
        if (!stored.ok()) return stored.status();
        RETURN_IF_ERROR(FreeLongValues(stored->bytes, false));
        ++count;
        slots.push_back(row);
        if (stored->at != row) slots.push_back(stored->at);
    }
    for (auto& [column, store] : long_values_)
        RETURN_IF_ERROR(store.FreeNoted());
    std::ranges::sort(slots);
    slots.erase(std::unique(slots.begin(), slots.end()), slots.end());
    RETURN_IF_ERROR(pages_.Delete(slots));
    return count;
}

}  // namespace jet
