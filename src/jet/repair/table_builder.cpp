#include "jet/repair/table_builder.h"

#include "jet/errors.h"
#include "jet/index/key_encoder.h"
#include "jet/pages/data_page.h"
#include "jet/tables/table_designer.h"

#include <algorithm>

namespace jet {
namespace {

// Whether the counts and places are those of a table that never lost a column.
bool IsDense(const TableDefinition& table) {
    const auto variables = std::ranges::count_if(table.columns, &ColumnDefinition::is_variable);
    return table.columns.size() == table.columns_ever && variables == table.variables_ever &&
           std::ranges::all_of(table.columns, [&](const ColumnDefinition& column) {
               return column.number < table.columns_ever &&
                      (!column.is_variable() || column.variable_index < table.variables_ever);
           });
}

// Gives the columns the numbers and places that they would have in a table made today. Those of the
// engine's own tables are fixed.
void Renumber(TableDefinition& table) {
    if (table.page <= kRelationsPage || IsDense(table)) return;
    std::vector<ColumnDefinition*> by_number;
    for (ColumnDefinition& column : table.columns)
        by_number.push_back(&column);
    std::ranges::sort(by_number, {}, &ColumnDefinition::number);
    std::map<std::uint16_t, std::uint16_t> new_numbers;
    std::uint16_t fixed_offset = 0;
    table.columns_ever = 0;
    table.variables_ever = 0;
    for (ColumnDefinition* column : by_number) {
        new_numbers[column->number] = table.columns_ever;
        column->number = table.columns_ever++;
        column->variable_index = table.variables_ever;
        if (column->is_variable()) ++table.variables_ever;
        if (!column->is_fixed()) continue;
        column->fixed_offset = fixed_offset;
        fixed_offset = static_cast<std::uint16_t>(fixed_offset + column->length);
    }
    for (RealIndex& index : table.real_indexes)
        for (RealIndexColumn& column : index.columns)
            column.column = new_numbers[column.column];
}

}  // namespace

TableBuilder::TableBuilder(FileContext& file, TableDefinition source, PageNumber page)
    : file_(file), definition_(std::move(source)), dropped_(definition_.real_indexes.size()),
      entries_(definition_.real_indexes.size()) {
    definition_.page = page;
    definition_.pages = {page};
    definition_.rows = 0;
    Renumber(definition_);
    for (const RealIndex& index : definition_.real_indexes) {
        auto& columns = index_columns_.emplace_back();
        for (const RealIndexColumn& column : index.columns)
            columns.push_back(static_cast<std::size_t>(definition_.FindColumn(column.column) -
                                                       definition_.columns.data()));
        computed_.push_back(IsMaintainable(file, definition_, index));
    }
}

base::Status TableBuilder::Start(MapRows& maps) {
    maps_ = &maps;
    ASSIGN_OR_RETURN(definition_.owned, maps.Add());
    ASSIGN_OR_RETURN(definition_.free, maps.Add());
    definition_.long_values.clear();
    for (const ColumnDefinition& column : definition_.columns) {
        if (!column.is_long_value()) continue;
        LongValueMaps& added = definition_.long_values.emplace_back();
        added.column = column.number;
        ASSIGN_OR_RETURN(added.owned, maps.Add());
        ASSIGN_OR_RETURN(added.free, maps.Add());
        long_values_.try_emplace(column.number, file_, added);
    }
    return {};
}

LongValueStore* TableBuilder::LongValuesOf(const ColumnDefinition& column) {
    const auto found = long_values_.find(column.number);
    return found == long_values_.end() ? nullptr : &found->second;
}

// ------------------------------------------------------------------------------------------ rows

base::Result<IndexSet::Keys> TableBuilder::KeysOf(const CopiedRow& row) {
    IndexSet::Keys keys(entries_.size());
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (!computed_[index] || dropped_[index]) continue;
        const RealIndex& real = definition_.real_indexes[index];
        Bytes key;
        bool all_null = true;
        for (std::size_t i = 0; i < index_columns_[index].size(); ++i) {
            const std::size_t position = index_columns_[index][i];
            const ColumnDefinition& column = definition_.columns[position];
            ASSIGN_OR_RETURN(const Value value, ValueOf(file_, column, row[position]));
            all_null = all_null && value.is_null();
            AppendKeyPart(file_, column, real.columns[i].ascending, value, key);
        }
        if (!real.ignore_nulls() || !all_null) keys[index] = std::move(key);
    }
    return keys;
}

base::Result<RowId> TableBuilder::AddRow(const CopiedRow& row, IndexSet::Keys keys) {
    ASSIGN_OR_RETURN(const Bytes bytes, Encode(row));
    ASSIGN_OR_RETURN(const RowId added, Append(bytes));
    ++definition_.rows;
    for (std::size_t index = 0; index < keys.size(); ++index)
        if (keys[index]) AddEntry(index, std::move(*keys[index]), added);
    return added;
}

void TableBuilder::AddEntry(std::size_t index, Bytes key, RowId row) {
    entries_[index].push_back({std::move(key), row});
}

// A row from before a column was added may be too long together with it. Then its inline long
// values go to pages of their own, and if that is not enough it ends with its last value again.
base::Result<Bytes> TableBuilder::Encode(const CopiedRow& row) {
    std::vector<RowField> fields(row.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[i];
        fields[i].set = row[i].set;
        if (!row[i].set || column.type == ColumnType::kBoolean) continue;
        LongValueStore* store = column.is_long_value() ? LongValuesOf(column) : nullptr;
        fields[i].bytes = row[i].bytes;
        if (store != nullptr) {
            ASSIGN_OR_RETURN(fields[i].bytes, store->Store(row[i].bytes, row[i].in_row));
        }
    }
    const std::size_t limit = file_.format.max_row_bytes;
    Bytes encoded = EncodeRow(file_.format, definition_, fields);
    for (std::size_t i = 0; i < fields.size() && encoded.size() > limit; ++i) {
        LongValueStore* store = LongValuesOf(definition_.columns[i]);
        if (store == nullptr || fields[i].bytes.size() <= kLongValueHead) continue;
        ASSIGN_OR_RETURN(fields[i].bytes, store->Store(row[i].bytes, false));
        encoded = EncodeRow(file_.format, definition_, fields);
    }
    if (encoded.size() > limit) encoded = EncodeShort(fields);
    if (encoded.size() > limit) return JetError(ErrorNumber::kRecordTooLarge);
    return encoded;
}

// As if the columns behind the last one that is not null were not there yet.
Bytes TableBuilder::EncodeShort(std::span<const RowField> fields) const {
    std::uint16_t count = 1;
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (fields[i].set)
            count = std::max<std::uint16_t>(
                count, static_cast<std::uint16_t>(definition_.columns[i].number + 1));
    TableDefinition older;
    older.columns_ever = count;
    std::vector<RowField> known;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const ColumnDefinition& column = definition_.columns[i];
        if (column.number >= count) continue;
        older.columns.push_back(column);
        known.push_back(fields[i]);
        if (column.is_variable())
            older.variables_ever = std::max<std::uint16_t>(
                older.variables_ever, static_cast<std::uint16_t>(column.variable_index + 1));
    }
    // The table's rows have a table of offsets, though it may be empty.
    if (definition_.variables_ever > 0)
        older.variables_ever = std::max<std::uint16_t>(older.variables_ever, 1);
    return EncodeRow(file_.format, older, known);
}

base::Result<RowId> TableBuilder::Append(std::span<const std::byte> row) {
    if (page_ != 0) {
        ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page_));
        auto editor = DataPageEditor::Open(bytes, file_.format);
        if (editor && editor->HasRoomFor(row.size())) return RowId{page_, editor->Append(row, 0)};
        RETURN_IF_ERROR(LeavePage());
    }
    ASSIGN_OR_RETURN(page_, file_.allocator.Allocate());
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page_));
    DataPageEditor editor = DataPageEditor::Create(bytes, file_.format, definition_.page);
    RETURN_IF_ERROR(file_.Map(definition_.owned).Add(page_, file_.allocator));
    return RowId{page_, editor.Append(row, 0)};
}

// A page with room for a later row is found again.
base::Status TableBuilder::LeavePage() {
    bool has_room = false;
    {
        ASSIGN_OR_RETURN(const PageView view, file_.store.Read(page_));
        const auto page = DataPage::Parse(view.bytes(), file_.format);
        has_room = page && page->slot_count() < kMaxSlots &&
                   page->free_bytes() >= file_.format.page_size / 8;
    }
    return has_room ? file_.Map(definition_.free).Add(page_, file_.allocator) : base::Status();
}

// --------------------------------------------------------------------------------------- indexes

base::Status TableBuilder::BuildIndex(std::size_t index) {
    RealIndex& real = definition_.real_indexes[index];
    ASSIGN_OR_RETURN(real.root, file_.allocator.Allocate());
    ASSIGN_OR_RETURN(real.map, maps_->Add(real.root));
    IndexTree tree(file_, definition_.page, real.root, real.map);
    RETURN_IF_ERROR(tree.Create());
    std::vector<Entry>& entries = entries_[index];
    std::ranges::sort(entries);
    real.entries_when_compacted = static_cast<std::uint32_t>(entries.size());
    real.distinct_keys = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i == 0 || entries[i].key != entries[i - 1].key) ++real.distinct_keys;
        RETURN_IF_ERROR(tree.Insert(entries[i].key, entries[i].row).status());
    }
    std::vector<Entry>().swap(entries);
    return {};
}

bool TableBuilder::IsPrimary(std::size_t index) const {
    return std::ranges::any_of(definition_.logical_indexes, [&](const LogicalIndex& logical) {
        return logical.real == index && logical.kind == IndexKind::kPrimary;
    });
}

base::Status TableBuilder::BuildIndexes() {
    if (page_ != 0) RETURN_IF_ERROR(LeavePage());
    for (std::size_t index = 0; index < dropped_.size(); ++index)
        if (!dropped_[index]) RETURN_IF_ERROR(BuildIndex(index));
    EraseDroppedIndexes();
    return {};
}

void TableBuilder::EraseDroppedIndexes() {
    std::vector<std::uint32_t> places(dropped_.size());
    std::vector<RealIndex> kept;
    for (std::size_t index = 0; index < dropped_.size(); ++index) {
        places[index] = static_cast<std::uint32_t>(kept.size());
        if (!dropped_[index]) kept.push_back(std::move(definition_.real_indexes[index]));
    }
    std::erase_if(definition_.logical_indexes,
                  [&](const LogicalIndex& logical) { return dropped_[logical.real]; });
    for (LogicalIndex& logical : definition_.logical_indexes)
        logical.real = places[logical.real];
    definition_.real_indexes = std::move(kept);
}

base::Status TableBuilder::WriteDefinition() {
    return WriteTableDefinition(file_.store, file_.format, file_.text, file_.allocator,
                                definition_);
}

}  // namespace jet
