// Creating and dropping relations. A relation is a pair of logical indexes that name each other:
// the one of the referenced table is hidden (".rB") and shares a unique index, the one of the
// table that refers has the relation's name. MSysRelationships has a row for each pair of columns,
// MSysObjects one for the relation.
#include "jet/errors.h"
#include "jet/tables/stored_database.h"
#include "jet/tables/system_rows.h"
#include "jet/tables/system_tables.h"
#include "jet/tables/table_designer.h"
#include "jet/text/names.h"

#include <algorithm>

namespace jet {
namespace {

enum RelationFlag : std::int32_t {
    kRelationUnique = 0x1,  // one row refers to one row
    kRelationCascadeUpdates = 0x100,
    kRelationCascadeDeletes = 0x1000,
};

// Numbers of the columns; both sides go together.
struct RelationColumns {
    std::vector<std::uint16_t> referring;
    std::vector<std::uint16_t> referenced;
};

base::Result<const ColumnDefinition*> ColumnNamed(const TableDefinition& definition,
                                                  std::u16string_view name,
                                                  std::u16string_view table) {
    const auto found =
        std::ranges::find_if(definition.columns, [&](const ColumnDefinition& column) {
            return SameName(column.name, name);
        });
    if (found == definition.columns.end()) return JetError(ErrorNumber::kNoSuchField, name, table);
    return &*found;
}

std::vector<std::uint16_t> PrimaryKeyOf(const TableDefinition& definition) {
    std::vector<std::uint16_t> columns;
    for (const LogicalIndex& index : definition.logical_indexes)
        if (index.kind == IndexKind::kPrimary)
            for (const RealIndexColumn& column : definition.real_indexes[index.real].columns)
                columns.push_back(column.column);
    return columns;
}

base::Result<RelationColumns> ResolveColumns(const RelationDesign& relation,
                                             const TableDefinition& referring,
                                             const TableDefinition& referenced) {
    RelationColumns columns;
    for (const std::u16string& name : relation.columns) {
        ASSIGN_OR_RETURN(const auto* column, ColumnNamed(referring, name, relation.table));
        columns.referring.push_back(column->number);
    }
    for (const std::u16string& name : relation.referenced_columns) {
        ASSIGN_OR_RETURN(const auto* column,
                         ColumnNamed(referenced, name, relation.referenced_table));
        columns.referenced.push_back(column->number);
    }
    if (relation.referenced_columns.empty()) columns.referenced = PrimaryKeyOf(referenced);
    if (columns.referenced.empty()) return JetError(ErrorNumber::kNoUniqueIndex);
    if (columns.referring.size() != columns.referenced.size())
        return JetError(ErrorNumber::kUnlikeFieldsInRelation);
    for (std::size_t i = 0; i < columns.referring.size(); ++i)
        if (referring.FindColumn(columns.referring[i])->type !=
            referenced.FindColumn(columns.referenced[i])->type)
            return JetError(ErrorNumber::kUnlikeFieldsInRelation);
    return columns;
}

bool HasColumns(const RealIndex& index, const std::vector<std::uint16_t>& numbers) {
    return std::ranges::equal(index.columns, numbers, {}, &RealIndexColumn::column);
}

// The unique index of exactly these columns, which are brought into its order; the primary key
// before others.
std::optional<std::uint32_t> FindUniqueIndex(const TableDefinition& definition,
                                             RelationColumns& columns) {
    const auto primary = PrimaryKeyOf(definition);
    std::optional<std::uint32_t> found;
    for (std::uint32_t real = 0; real < definition.real_indexes.size(); ++real) {
        const RealIndex& index = definition.real_indexes[real];
        const bool same_columns =
            index.columns.size() == columns.referenced.size() &&
            std::ranges::all_of(index.columns, [&](const RealIndexColumn& column) {
                return std::ranges::count(columns.referenced, column.column) == 1;
            });
        if (!index.unique() || !same_columns) continue;
        if (!found || HasColumns(index, primary)) found = real;
    }
    if (!found) return found;
    RelationColumns ordered;
    for (const RealIndexColumn& column : definition.real_indexes[*found].columns) {
        const auto at = std::ranges::find(columns.referenced, column.column);
        ordered.referenced.push_back(column.column);
        ordered.referring.push_back(
            columns.referring[static_cast<std::size_t>(at - columns.referenced.begin())]);
    }
    columns = std::move(ordered);
    return found;
}

// ".rB" for the index with number 1.
std::u16string HiddenName(std::uint32_t number) {
    std::u16string letters;
    do {
        letters.insert(letters.begin(), static_cast<char16_t>(u'A' + number % 26));
        number /= 26;
    } while (number > 0);
    return u".r" + letters;
}

LogicalIndex RelationSideIndex(const RelationDesign& relation, RelationSide side,
                               std::uint32_t real) {
    LogicalIndex index;
    index.kind = IndexKind::kRelation;
    index.side = side;
    index.real = real;
    index.cascade_updates = static_cast<std::uint8_t>(relation.on_update);
    index.cascade_deletes = static_cast<std::uint8_t>(relation.on_delete);
    return index;
}

// Adds the index of each side; `referenced` may be the same definition.
void AddPair(const RelationDesign& relation, TableDefinition& referring, std::uint32_t real,
             TableDefinition& referenced, std::uint32_t referenced_real) {
    LogicalIndex foreign = RelationSideIndex(relation, RelationSide::kForeign, real);
    foreign.name = relation.name;
    foreign.number = NextIndexNumber(referring);
    foreign.other_table = referenced.page;
    referring.logical_indexes.push_back(foreign);
    LogicalIndex primary = RelationSideIndex(relation, RelationSide::kPrimary, referenced_real);
    primary.number = NextIndexNumber(referenced);
    primary.name = HiddenName(primary.number);
    primary.other_table = referring.page;
    primary.partner = static_cast<std::int32_t>(foreign.number);
    referring.logical_indexes.back().partner = static_cast<std::int32_t>(primary.number);
    referenced.logical_indexes.push_back(std::move(primary));
}

bool UsesIndex(const TableDefinition& definition, std::size_t real) {
    return std::ranges::any_of(definition.logical_indexes,
                               [&](const LogicalIndex& index) { return index.real == real; });
}

// Room for the index that each side of the relation gets, and its name free among those of the
// referring table. One table may be both sides.
base::Status CheckIndexesOfRelation(const RelationDesign& relation,
                                    const TableDefinition& definition,
                                    const TableDefinition& referenced) {
    for (const LogicalIndex& known : definition.logical_indexes)
        if (SameName(known.name, relation.name))
            return JetError(ErrorNumber::kIndexExists, relation.table, relation.name);
    const std::size_t added = &definition == &referenced ? 2 : 1;
    for (const TableDefinition* side : {&definition, &referenced})
        if (side->logical_indexes.size() + added > kMaxIndexes)
            return JetError(ErrorNumber::kTooManyIndexes,
                            side == &definition ? relation.table : relation.referenced_table);
    return base::Status::Ok();
}

// Requires: `definition` has all of the columns `numbers`.
std::vector<std::u16string> NamesOf(const std::vector<std::uint16_t>& numbers,
                                    const TableDefinition& definition) {
    std::vector<std::u16string> names;
    names.reserve(numbers.size());
    for (const std::uint16_t number : numbers)
        names.push_back(definition.FindColumn(number)->name);
    return names;
}

// What MSysRelationships tells of a relation whose referring side is kept by the index `real`.
std::int32_t RelationFlags(const RelationDesign& relation, const TableDefinition& definition,
                           std::uint32_t real) {
    std::int32_t flags = 0;
    if (definition.real_indexes[real].unique()) flags |= kRelationUnique;
    if (relation.on_update == RelationRule::kCascade) flags |= kRelationCascadeUpdates;
    if (relation.on_delete == RelationRule::kCascade) flags |= kRelationCascadeDeletes;
    return flags;
}

}  // namespace

base::Status StoredDatabase::CreateRelation(const RelationDesign& wanted) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(wanted.table));
    ASSIGN_OR_RETURN(const CatalogEntry referenced_entry, RequireTable(wanted.referenced_table));
    RelationDesign relation = wanted;
    ASSIGN_OR_RETURN(relation.name, NameOfRelation(wanted));
    ASSIGN_OR_RETURN(const bool exists, RelationExists(relation.name));
    if (exists) return JetError(ErrorNumber::kObjectExists, relation.name);

    const bool to_itself = entry.id == referenced_entry.id;
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    TableDefinition other;
    if (!to_itself) {
        ASSIGN_OR_RETURN(other, ReadDefinition(referenced_entry));
    }
    TableDefinition& referenced = to_itself ? definition : other;
    ASSIGN_OR_RETURN(RelationColumns columns, ResolveColumns(relation, definition, referenced));
    const auto referenced_real = FindUniqueIndex(referenced, columns);
    if (!referenced_real) return JetError(ErrorNumber::kNoUniqueIndex);
    RETURN_IF_ERROR(CheckIndexesOfRelation(relation, definition, referenced));

    ASSIGN_OR_RETURN(const ReferringIndex index,
                     FindOrAddIndex(definition, columns.referring, relation.name));
    AddPair(relation, definition, index.real, referenced, *referenced_real);
    RETURN_IF_ERROR(FinishChange(entry, definition));
    if (!to_itself) RETURN_IF_ERROR(FinishChange(referenced_entry, referenced));
    if (index.is_new) RETURN_IF_ERROR(BuildIndex(definition, index.real));

    ASSIGN_OR_RETURN(StoredTable * table, TableAt(definition.page));
    ASSIGN_OR_RETURN(const std::vector<RowId> rows, AllRows(definition));
    RETURN_IF_ERROR(table->CheckRelation(relation.name, rows));

    relation.table = entry.name;
    relation.referenced_table = referenced_entry.name;
    relation.columns = NamesOf(columns.referring, definition);
    relation.referenced_columns = NamesOf(columns.referenced, referenced);
    RETURN_IF_ERROR(AddRelationRows(relation, RelationFlags(relation, definition, index.real)));
    ASSIGN_OR_RETURN(const std::int32_t id, NextObjectId());
    return AddToCatalog(relation.name, id, kObjectIsRelation, kRelationsContainer);
}

base::Result<StoredDatabase::ReferringIndex>
StoredDatabase::FindOrAddIndex(TableDefinition& definition,
                               const std::vector<std::uint16_t>& columns,
                               const std::u16string& relation) {
    ReferringIndex found;
    const auto count = static_cast<std::uint32_t>(definition.real_indexes.size());
    while (found.real < count && !HasColumns(definition.real_indexes[found.real], columns))
        ++found.real;
    if (found.real < count) return found;
    RealIndex index;
    for (const std::uint16_t number : columns)
        index.columns.push_back({number, true});
    if (!IsMaintainable(file_, definition, index))
        return JetError(ErrorNumber::kInvalidIndexField, relation);
    if (file_.format.jet4()) index.flags = kIndexJet4;
    MapRows maps(file_, definition);
    RETURN_IF_ERROR(AddRealIndex(definition, std::move(index), maps));
    found.is_new = true;
    return found;
}

// Without a name of its own: those of the tables, the referenced one first.
base::Result<std::u16string> StoredDatabase::NameOfRelation(const RelationDesign& relation) {
    if (!relation.name.empty()) {
        if (!IsValidName(relation.name))
            return JetError(ErrorNumber::kNotAValidName, relation.name);
        return relation.name;
    }
    constexpr std::size_t kRoomForDigits = 6;
    std::u16string base = relation.referenced_table + relation.table;
    base.resize(std::min(base.size(), kMaxNameLength - kRoomForDigits));
    std::u16string name = base;
    for (unsigned number = 1;; ++number) {
        ASSIGN_OR_RETURN(const bool exists, RelationExists(name));
        if (!exists) return name;
        name = base;
        for (const char digit : std::to_string(number))
            name += static_cast<char16_t>(digit);
    }
}

base::Result<bool> StoredDatabase::RelationExists(std::u16string_view name) {
    ASSIGN_OR_RETURN(const auto* entries, catalog_.Entries());
    return std::ranges::any_of(*entries, [&](const CatalogEntry& entry) {
        return entry.parent == kRelationsContainer && SameName(entry.name, name);
    });
}

base::Status StoredDatabase::AddRelationRows(const RelationDesign& relation, std::int32_t flags) {
    ASSIGN_OR_RETURN(StoredTable * table, TableAt(kRelationsPage));
    const auto count = static_cast<std::int32_t>(relation.columns.size());
    for (std::int32_t i = 0; i < count; ++i) {
        const auto at = static_cast<std::size_t>(i);
        std::vector<Value> values = InShownOrder(
            *table, {{kRelationName, Value::Text(relation.name)},
                     {kRelationFlags, Value::Long(flags)},
                     {kRelationColumnCount, Value::Long(count)},
                     {kRelationColumnPosition, Value::Long(i)},
                     {kRelationTable, Value::Text(relation.table)},
                     {kRelationColumn, Value::Text(relation.columns[at])},
                     {kRelationReferencedTable, Value::Text(relation.referenced_table)},
                     {kRelationReferencedColumn, Value::Text(relation.referenced_columns[at])}});
        RETURN_IF_ERROR(table->Insert(values).status());
    }
    return {};
}

base::Status StoredDatabase::RemoveRelationRows(std::u16string_view name) {
    ASSIGN_OR_RETURN(StoredTable * table, TableAt(kRelationsPage));
    std::vector<RowId> rows;
    RETURN_IF_ERROR(
        ForEachRow(*table, {kRelationName}, [&](RowId row, const std::vector<Value>& values) {
            const auto* known = values[0].get_if<std::u16string>();
            if (known != nullptr && SameName(*known, name)) rows.push_back(row);
        }));
    for (const RowId row : rows)
        RETURN_IF_ERROR(table->Delete(row));
    return {};
}

base::Status StoredDatabase::RemoveUnusedIndexes(TableDefinition& definition) {
    MapRows maps(file_, definition);
    for (std::size_t real = definition.real_indexes.size(); real-- > 0;)
        if (!UsesIndex(definition, real)) RETURN_IF_ERROR(RemoveRealIndex(definition, real, maps));
    return {};
}

base::Status StoredDatabase::DropRelation(std::u16string_view table, std::u16string_view relation) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(table));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    const auto found =
        std::ranges::find_if(definition.logical_indexes, [&](const LogicalIndex& index) {
            return index.side == RelationSide::kForeign && SameName(index.name, relation);
        });
    if (found == definition.logical_indexes.end())
        return JetError(ErrorNumber::kNoSuchIndex, relation, table);
    const LogicalIndex foreign = *found;
    definition.logical_indexes.erase(found);

    ASSIGN_OR_RETURN(const auto* entries, catalog_.Entries());
    std::optional<CatalogEntry> referenced_entry;
    std::optional<CatalogEntry> object;
    for (const CatalogEntry& known : *entries) {
        if (known.is_table() && known.definition_page() == foreign.other_table)
            referenced_entry = known;
        if (known.parent == kRelationsContainer && SameName(known.name, foreign.name))
            object = known;
    }
    const bool to_itself = foreign.other_table == definition.page;
    TableDefinition other;
    if (!to_itself && referenced_entry) {
        ASSIGN_OR_RETURN(other, ReadDefinition(*referenced_entry));
    }
    TableDefinition& referenced = to_itself ? definition : other;
    const LogicalIndex* const partner = referenced.FindIndex(foreign.partner);
    if (partner != nullptr && partner->kind == IndexKind::kRelation)
        referenced.logical_indexes.erase(referenced.logical_indexes.begin() +
                                         (partner - referenced.logical_indexes.data()));
    RETURN_IF_ERROR(RemoveUnusedIndexes(definition));
    RETURN_IF_ERROR(FinishChange(entry, definition));
    if (!to_itself && referenced_entry) {
        RETURN_IF_ERROR(RemoveUnusedIndexes(referenced));
        RETURN_IF_ERROR(FinishChange(*referenced_entry, referenced));
    }
    RETURN_IF_ERROR(RemoveRelationRows(foreign.name));
    return object ? RemoveFromCatalog(*object) : base::Status();
}

}  // namespace jet
