// Creating and dropping indexes.
#include "jet/errors.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/table_scan.h"
#include "jet/tables/column_maker.h"
#include "jet/tables/stored_database.h"
#include "jet/tables/table_designer.h"
#include "jet/text/names.h"

#include <algorithm>

namespace jet {
namespace {

base::Status CheckIndex(const TableDefinition& definition, const IndexDesign& index) {
    if (!IsValidName(index.name)) return JetError(ErrorNumber::kNotAValidName, index.name);
    if (index.columns.empty() || index.columns.size() > kMaxIndexColumns)
        return JetError(ErrorNumber::kInvalidIndexField, index.name);
    if (definition.logical_indexes.size() >= kMaxIndexes)
        return JetError(ErrorNumber::kTooManyIndexes, index.name);
    for (const LogicalIndex& known : definition.logical_indexes) {
        if (SameName(known.name, index.name))
            return JetError(ErrorNumber::kIndexExists, index.name, index.name);
        if (index.primary && known.kind == IndexKind::kPrimary)
            return JetError(ErrorNumber::kPrimaryKeyExists);
    }
    return {};
}

bool IsReferenced(const TableDefinition& definition, std::uint32_t real) {
    return std::ranges::any_of(definition.logical_indexes, [&](const LogicalIndex& index) {
        return index.real == real && index.side == RelationSide::kPrimary;
    });
}

struct IndexEntry {
    Bytes key;
    RowId row;
    bool all_null = false;
    auto operator<=>(const IndexEntry&) const = default;
};

// Of all rows, in physical order.
base::Result<std::vector<IndexEntry>> CollectEntries(FileContext& file,
                                                     const TableDefinition& definition,
                                                     const IndexSet& indexes, std::size_t real) {
    const RealIndex& index = definition.real_indexes[real];
    std::vector<IndexEntry> entries;
    std::vector<Value> values(index.columns.size());
    ASSIGN_OR_RETURN(TableScan scan, TableScan::Start(file, definition));
    while (true) {
        ASSIGN_OR_RETURN(const bool found, scan.Next());
        if (!found) return entries;
        const auto row = RowView::Parse(scan.bytes(), file.format);
        if (!row) return DamagedPage(scan.row().page, "a row is unreadable");
        for (std::size_t i = 0; i < values.size(); ++i)
            RETURN_IF_ERROR(
                DecodeField(file, definition.columns[indexes.ColumnsOf(real)[i]], *row, values[i]));
        const bool any_null = std::ranges::any_of(values, &Value::is_null);
        const bool all_null = std::ranges::all_of(values, &Value::is_null);
        if (index.required() && any_null) return JetError(ErrorNumber::kNullInIndex);
        if (index.ignore_nulls() && all_null) continue;
        entries.push_back({indexes.KeyOf(real, values), scan.row(), all_null});
    }
}

}  // namespace

base::Status StoredDatabase::AddIndex(TableDefinition& definition, const IndexDesign& index,
                                      const std::vector<std::size_t>& positions, MapRows& maps) {
    RETURN_IF_ERROR(CheckIndex(definition, index));
    RealIndex real;
    for (const IndexColumn& column : index.columns) {
        if (column.column >= positions.size())
            return JetError(ErrorNumber::kInvalidIndexField, index.name);
        const RealIndexColumn added{definition.columns[positions[column.column]].number,
                                    column.ascending};
        for (const RealIndexColumn& known : real.columns)
            if (known.column == added.column)
                return JetError(ErrorNumber::kInvalidIndexField, index.name);
        real.columns.push_back(added);
    }
    if (!IsMaintainable(file_, definition, real))
        return JetError(ErrorNumber::kInvalidIndexField, index.name);
    real.flags = IndexFlagsOf(file_, index);

    LogicalIndex logical;
    logical.name = index.name;
    logical.real = static_cast<std::uint32_t>(definition.real_indexes.size());
    logical.kind = index.primary ? IndexKind::kPrimary : IndexKind::kPlain;
    logical.number = NextIndexNumber(definition);
    definition.logical_indexes.push_back(std::move(logical));
    return AddRealIndex(definition, std::move(real), maps);
}

base::Status StoredDatabase::AddRealIndex(TableDefinition& definition, RealIndex real,
                                          MapRows& maps) {
    ASSIGN_OR_RETURN(real.root, file_.allocator.Allocate());
    ASSIGN_OR_RETURN(real.map, maps.Add(real.root));
    RETURN_IF_ERROR(IndexTree(file_, definition.page, real.root, real.map).Create());
    definition.real_indexes.push_back(std::move(real));
    return {};
}

base::Status StoredDatabase::BuildIndex(const TableDefinition& definition, std::size_t real) {
    IndexSet indexes(file_, definition);
    ASSIGN_OR_RETURN(std::vector<IndexEntry> entries,
                     CollectEntries(file_, definition, indexes, real));
    std::ranges::sort(entries);
    std::uint32_t distinct = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const bool repeated = i > 0 && entries[i].key == entries[i - 1].key;
        if (!repeated) ++distinct;
        // Keys of nothing but nulls may repeat.
        if (repeated && definition.real_indexes[real].unique() && !entries[i].all_null)
            return JetError(ErrorNumber::kDuplicateKey);
    }
    for (const IndexEntry& entry : entries)
        RETURN_IF_ERROR(indexes.tree(real).Insert(entry.key, entry.row).status());
    ASSIGN_OR_RETURN(const std::span<std::byte> page, file_.store.Change(definition.page));
    WriteDistinctKeys(page, file_.format, real, distinct);
    return {};
}

base::Status StoredDatabase::RemoveRealIndex(TableDefinition& definition, std::size_t real,
                                             MapRows& maps) {
    const RealIndex& index = definition.real_indexes[real];
    IndexTree tree(file_, definition.page, index.root, index.map);
    RETURN_IF_ERROR(tree.Clear());
    RETURN_IF_ERROR(file_.allocator.Free(index.root));
    RETURN_IF_ERROR(maps.Remove(index.map));
    definition.real_indexes.erase(definition.real_indexes.begin() +
                                  static_cast<std::ptrdiff_t>(real));
    for (LogicalIndex& logical : definition.logical_indexes)
        if (logical.real > real) --logical.real;
    return {};
}

base::Status StoredDatabase::CreateIndex(std::u16string_view table, const IndexDesign& index) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(table));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    MapRows maps(file_, definition);
    RETURN_IF_ERROR(AddIndex(definition, index, ShownOrder(definition), maps));
    RETURN_IF_ERROR(FinishChange(entry, definition));
    return BuildIndex(definition, definition.real_indexes.size() - 1);
}

base::Status StoredDatabase::DropIndex(std::u16string_view table, std::u16string_view index) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(table));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    const auto found =
        std::ranges::find_if(definition.logical_indexes, [&](const LogicalIndex& known) {
            return SameName(known.name, index);
        });
    if (found == definition.logical_indexes.end())
        return JetError(ErrorNumber::kNoSuchIndex, index, table);
    const std::uint32_t real = found->real;
    // What a relation refers to must stay unique.
    if (found->kind == IndexKind::kRelation || IsReferenced(definition, real))
        return JetError(ErrorNumber::kUsedInRelation);
    definition.logical_indexes.erase(found);
    const bool shared = std::ranges::any_of(
        definition.logical_indexes, [&](const LogicalIndex& other) { return other.real == real; });
    if (!shared) {
        MapRows maps(file_, definition);
        RETURN_IF_ERROR(RemoveRealIndex(definition, real, maps));
    }
    return FinishChange(entry, definition);
}

}  // namespace jet
