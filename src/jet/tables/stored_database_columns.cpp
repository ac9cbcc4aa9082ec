// Adding, changing and dropping columns.
#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/table_scan.h"
#include "jet/tables/column_maker.h"
#include "jet/tables/stored_database.h"
#include "jet/tables/table_designer.h"
#include "jet/text/names.h"
#include "jet/values/coerce.h"

#include <algorithm>

namespace jet {
namespace {

std::optional<std::size_t> FindByName(const TableDefinition& definition, std::u16string_view name) {
    for (std::size_t i = 0; i < definition.columns.size(); ++i)
        if (SameName(definition.columns[i].name, name)) return i;
    return std::nullopt;
}

bool IsIndexed(const TableDefinition& definition, std::uint16_t number) {
    return std::ranges::any_of(definition.real_indexes, [&](const RealIndex& index) {
        return std::ranges::any_of(
            index.columns, [&](const RealIndexColumn& column) { return column.column == number; });
    });
}

bool IsInRelation(const TableDefinition& definition, std::uint16_t number) {
    return std::ranges::any_of(definition.logical_indexes, [&](const LogicalIndex& index) {
        return index.kind == IndexKind::kRelation &&
               std::ranges::any_of(definition.real_indexes[index.real].columns,
                                   [&](const RealIndexColumn& c) { return c.column == number; });
    });
}

}  // namespace

base::Result<std::vector<RowId>> StoredDatabase::AllRows(const TableDefinition& definition) {
    std::vector<RowId> rows;
    ASSIGN_OR_RETURN(TableScan scan, TableScan::Start(file_, definition));
    while (true) {
        ASSIGN_OR_RETURN(const bool found, scan.Next());
        if (!found) return rows;
        rows.push_back(scan.row());
    }
}

// Gives every row the layout of the definition.
base::Status StoredDatabase::RewriteRows(const TableDefinition& definition) {
    ASSIGN_OR_RETURN(const std::vector<RowId> rows, AllRows(definition));
    RowWriter writer(file_, definition);
    const std::vector<Value> values(definition.columns.size());
    const std::vector<bool> unchanged(definition.columns.size());
    for (const RowId row : rows)
        RETURN_IF_ERROR(writer.Update(row, values, unchanged));
    return {};
}

base::Status StoredDatabase::AddColumn(std::u16string_view table, const ColumnDesign& column) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(table));
    RETURN_IF_ERROR(CheckColumn(file_, column));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    if (FindByName(definition, column.name))
        return JetError(ErrorNumber::kFieldExists, column.name, entry.name);
    const bool first_variable = definition.variables_ever == 0;
    RETURN_IF_ERROR(AppendColumn(file_, column, definition));
    if (definition.columns.back().is_long_value()) {
        MapRows maps(file_, definition);
        LongValueMaps added{definition.columns.back().number, {}, {}};
        ASSIGN_OR_RETURN(added.owned, maps.Add());
        ASSIGN_OR_RETURN(added.free, maps.Add());
        definition.long_values.push_back(added);
    }
    RETURN_IF_ERROR(FinishChange(entry, definition));
    // Rows of a table without variable columns have no table of offsets; other readers expect one
    // in every row as soon as the table has such a column.
    if (first_variable && definition.variables_ever > 0) RETURN_IF_ERROR(RewriteRows(definition));
    ASSIGN_OR_RETURN(PropertyBlob properties, catalog_.Properties(entry));
    const Bytes before = properties.Serialize();
    properties.RemoveColumn(column.name);  // left by a column of this name that was dropped
    WriteColumnProperties(column, properties);
    return properties.Serialize() == before ? base::Status() : SetProperties(entry, properties);
}

base::Status StoredDatabase::AlterColumn(std::u16string_view table, const ColumnDesign& column) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(table));
    RETURN_IF_ERROR(CheckColumn(file_, column));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    const auto position = FindByName(definition, column.name);
    if (!position) return JetError(ErrorNumber::kNoSuchField, column.name, entry.name);
    const ColumnDefinition& old = definition.columns[*position];
    const bool same_kind = old.type == column.type && old.is_autonumber() == column.autonumber;
    const bool resizable =
        column.type == ColumnType::kText && old.is_variable() && !column.fixed_text;
    const bool same_layout = same_kind && (resizable || (column.type != ColumnType::kText &&
                                                         column.type != ColumnType::kBinary &&
                                                         column.type != ColumnType::kNumeric));
    if (same_layout)
        RETURN_IF_ERROR(ResizeText(entry, definition, *position, column));
    else
        RETURN_IF_ERROR(ConvertColumn(entry, definition, *position, column));
    ASSIGN_OR_RETURN(PropertyBlob properties, catalog_.Properties(entry));
    const Bytes before = properties.Serialize();
    WriteColumnProperties(column, properties);
    return properties.Serialize() == before ? base::Status() : SetProperties(entry, properties);
}

// The type stays; at most the length of a text changes, which no stored value may exceed.
base::Status StoredDatabase::ResizeText(const CatalogEntry& entry, TableDefinition& definition,
                                        std::size_t position, const ColumnDesign& design) {
    ColumnDefinition& column = definition.columns[position];
    if (column.type == ColumnType::kText) {
        const auto length =
            static_cast<std::uint16_t>(file_.format.jet4() ? 2 * design.size : design.size);
        if (length < column.length) {
            ASSIGN_OR_RETURN(TableScan scan, TableScan::Start(file_, definition));
            while (true) {
                ASSIGN_OR_RETURN(const bool found, scan.Next());
                if (!found) break;
                const auto row = RowView::Parse(scan.bytes(), file_.format);
                if (!row) return DamagedPage(scan.row().page, "a row is unreadable");
                Value value;
                RETURN_IF_ERROR(DecodeField(file_, column, *row, value));
                const auto* text = value.get_if<std::u16string>();
                if (text != nullptr && text->size() > design.size)
                    return JetError(ErrorNumber::kFieldTooSmall);
            }
        }
        column.length = length;
    }
    return FinishChange(entry, definition);
}

// A column of another type is a new column in the old one's place: it gets a number of its own, the
// values are copied row by row, and the old column goes.
base::Status StoredDatabase::ConvertColumn(const CatalogEntry& entry, TableDefinition& definition,
                                           std::size_t position, const ColumnDesign& design) {
    const std::uint16_t old_number = definition.columns[position].number;
    const std::uint16_t ordinal = definition.columns[position].ordinal;
    if (IsInRelation(definition, old_number))
        return ErrorBecause(ErrorNumber::kFieldInUse, base::ToUtf8(design.name));
    MapRows maps(file_, definition);
    RETURN_IF_ERROR(AppendColumn(file_, design, definition));
    const std::uint16_t new_number = definition.columns.back().number;
    if (definition.columns.back().is_long_value()) {
        LongValueMaps added{new_number, {}, {}};
        ASSIGN_OR_RETURN(added.owned, maps.Add());
        ASSIGN_OR_RETURN(added.free, maps.Add());
        definition.long_values.push_back(added);
    }
    definition.columns.back().ordinal = ordinal;
    RETURN_IF_ERROR(ConvertValues(definition, design, old_number, new_number));
    std::vector<std::size_t> rebuilt;
    for (std::size_t real = 0; real < definition.real_indexes.size(); ++real)
        for (RealIndexColumn& column : definition.real_indexes[real].columns)
            if (column.column == old_number) {
                column.column = new_number;
                rebuilt.push_back(real);
            }
    RETURN_IF_ERROR(RemoveColumn(definition, old_number, maps));
    for (const std::size_t real : rebuilt)
        if (!IsMaintainable(file_, definition, definition.real_indexes[real]))
            return ErrorBecause(ErrorNumber::kFieldInUse, base::ToUtf8(design.name));
    RETURN_IF_ERROR(FinishChange(entry, definition));
    for (const std::size_t real : rebuilt) {
        const RealIndex& index = definition.real_indexes[real];
        RETURN_IF_ERROR(IndexTree(file_, definition.page, index.root, index.map).Clear());
        RETURN_IF_ERROR(BuildIndex(definition, real));
    }
    return {};
}

base::Status StoredDatabase::ConvertValues(const TableDefinition& definition,
                                           const ColumnDesign& design, std::uint16_t from,
                                           std::uint16_t to) {
    ASSIGN_OR_RETURN(const std::vector<RowId> rows, AllRows(definition));
    RowWriter writer(file_, definition);
    std::vector<Value> values(definition.columns.size());
    std::vector<bool> changed(definition.columns.size());
    const auto old_at =
        static_cast<std::size_t>(definition.FindColumn(from) - definition.columns.data());
    const auto new_at =
        static_cast<std::size_t>(definition.FindColumn(to) - definition.columns.data());
    changed[old_at] = true;
    changed[new_at] = true;
    for (const RowId row : rows) {
        Value old;
        {
            ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition.page, row));
            const auto view = RowView::Parse(stored.bytes, file_.format);
            if (!view) return DamagedPage(row.page, "a row is unreadable");
            RETURN_IF_ERROR(DecodeField(file_, definition.columns[old_at], *view, old));
        }
        const auto converted = Coerce(old, design);
        values[new_at] = converted.ok() ? converted.value() : Value::Null();
        RETURN_IF_ERROR(writer.Update(row, values, changed));
    }
    return {};
}

// Takes the column out of the definition. Its long values' pages go back to the file.
base::Status StoredDatabase::RemoveColumn(TableDefinition& definition, std::uint16_t number,
                                          MapRows& maps) {
    for (const LongValueMaps& long_values : definition.long_values) {
        if (long_values.column != number) continue;
        ASSIGN_OR_RETURN(const std::vector<PageNumber> pages,
                         file_.Map(long_values.owned).Members());
        for (const PageNumber page : pages)
            RETURN_IF_ERROR(file_.allocator.Free(page));
        RETURN_IF_ERROR(maps.Remove(long_values.owned));
        RETURN_IF_ERROR(maps.Remove(long_values.free));
    }
    std::erase_if(definition.long_values,
                  [&](const LongValueMaps& known) { return known.column == number; });
    std::erase_if(definition.columns,
                  [&](const ColumnDefinition& known) { return known.number == number; });
    return {};
}

// True: a rule other than the column's own would not be understood any more.
bool StoredDatabase::RulesNeed(const TableDesign& design, std::u16string_view column) const {
    if (rule_maker_ == nullptr || !HasRules(design) || !rule_maker_->Make(design).ok())
        return false;
    TableDesign rest = design;
    std::erase_if(rest.columns,
                  [&](const ColumnDesign& known) { return SameName(known.name, column); });
    return !rule_maker_->Make(rest).ok();
}

base::Status StoredDatabase::DropColumn(std::u16string_view table, std::u16string_view column) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(table));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    const auto position = FindByName(definition, column);
    if (!position) return JetError(ErrorNumber::kNoSuchField, column, entry.name);
    const std::uint16_t number = definition.columns[*position].number;
    if (definition.columns.size() == 1) return JetError(ErrorNumber::kNoFieldDefined);
    if (IsIndexed(definition, number))
        return ErrorBecause(ErrorNumber::kFieldInUse, base::ToUtf8(column));
    ASSIGN_OR_RETURN(const StoredTable* open, OpenTable(entry));
    if (RulesNeed(open->design(), column))
        return ErrorBecause(ErrorNumber::kFieldInUse, base::ToUtf8(column));
    MapRows maps(file_, definition);
    RETURN_IF_ERROR(RemoveColumn(definition, number, maps));
    RETURN_IF_ERROR(FinishChange(entry, definition));
    ASSIGN_OR_RETURN(PropertyBlob properties, catalog_.Properties(entry));
    const Bytes before = properties.Serialize();
    properties.RemoveColumn(column);
    return properties.Serialize() == before ? base::Status() : SetProperties(entry, properties);
}

}  // namespace jet
