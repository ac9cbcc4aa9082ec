// Creating and dropping tables.
#include "jet/errors.h"
#include "jet/tables/column_maker.h"
#include "jet/tables/stored_database.h"
#include "jet/tables/table_designer.h"
#include "jet/text/names.h"

#include <algorithm>

namespace jet {
namespace {

base::Status CheckDesign(const FileContext& file, const TableDesign& design) {
    if (!IsValidName(design.name)) return JetError(ErrorNumber::kNotAValidName, design.name);
    if (design.columns.empty()) return JetError(ErrorNumber::kNoFieldDefined);
    if (design.columns.size() > kMaxColumns) return JetError(ErrorNumber::kTooManyFields);
    for (std::size_t i = 0; i < design.columns.size(); ++i) {
        RETURN_IF_ERROR(CheckColumn(file, design.columns[i]));
        for (std::size_t j = 0; j < i; ++j)
            if (SameName(design.columns[i].name, design.columns[j].name))
                return JetError(ErrorNumber::kFieldExists, design.columns[i].name, design.name);
    }
    return {};
}

}  // namespace

base::Status StoredDatabase::CreateTable(const TableDesign& design) {
    RETURN_IF_ERROR(CheckWritable());
    RETURN_IF_ERROR(CheckDesign(file_, design));
    ASSIGN_OR_RETURN(const CatalogEntry* existing, catalog_.FindTable(design.name));
    if (existing != nullptr) return JetError(ErrorNumber::kTableExists, design.name);

    TableDefinition definition;
    definition.kind = kUserTable;
    ASSIGN_OR_RETURN(definition.page, file_.allocator.Allocate());
    definition.pages = {definition.page};
    MapRows maps(file_);
    ASSIGN_OR_RETURN(definition.owned, maps.Add());
    ASSIGN_OR_RETURN(definition.free, maps.Add());
    PropertyBlob properties(file_.text);
    for (const ColumnDesign& column : design.columns) {
        RETURN_IF_ERROR(AppendColumn(file_, column, definition));
        WriteColumnProperties(column, properties);
        if (!definition.columns.back().is_long_value()) continue;
        LongValueMaps long_values{definition.columns.back().number, {}, {}};
        ASSIGN_OR_RETURN(long_values.owned, maps.Add());
        ASSIGN_OR_RETURN(long_values.free, maps.Add());
        definition.long_values.push_back(long_values);
    }
    WriteRule({}, design.validation_rule, design.validation_text, properties);
    const std::vector<std::size_t> positions = ShownOrder(definition);
    for (const IndexDesign& index : design.indexes)
        RETURN_IF_ERROR(AddIndex(definition, index, positions, maps));
    RETURN_IF_ERROR(
        WriteTableDefinition(file_.store, file_.format, file_.text, file_.allocator, definition));
    RETURN_IF_ERROR(AddToCatalog(design.name, static_cast<std::int32_t>(definition.page),
                                 kObjectIsTable, kTablesContainer));
    if (properties.empty()) return {};
    ASSIGN_OR_RETURN(const CatalogEntry* entry, catalog_.FindTable(design.name));
    if (entry == nullptr) return JetError(ErrorNumber::kNoSuchTable, design.name);
    return SetProperties(CatalogEntry(*entry), properties);
}

base::Status StoredDatabase::DropTable(std::u16string_view name) {
    ASSIGN_OR_RETURN(const CatalogEntry entry, RequireTable(name));
    ASSIGN_OR_RETURN(TableDefinition definition, ReadDefinition(entry));
    for (const LogicalIndex& index : definition.logical_indexes)
        if (index.kind == IndexKind::kRelation) return JetError(ErrorNumber::kUsedInRelation);
    MapRows maps(file_, definition);
    while (!definition.real_indexes.empty())
        RETURN_IF_ERROR(RemoveRealIndex(definition, definition.real_indexes.size() - 1, maps));
    std::vector<RowPointer> owned{definition.owned};
    std::vector<RowPointer> all{definition.owned, definition.free};
    for (const LongValueMaps& long_values : definition.long_values) {
        owned.push_back(long_values.owned);
        all.insert(all.end(), {long_values.owned, long_values.free});
    }
    for (const RowPointer map : owned) {
        ASSIGN_OR_RETURN(const std::vector<PageNumber> pages, file_.Map(map).Members());
        for (const PageNumber page : pages)
            RETURN_IF_ERROR(file_.allocator.Free(page));
    }
    for (const RowPointer map : all)
        RETURN_IF_ERROR(maps.Remove(map));
    RETURN_IF_ERROR(maps.FreeEmptyPages());
    for (const PageNumber page : definition.pages)
        RETURN_IF_ERROR(file_.allocator.Free(page));
    return RemoveFromCatalog(entry);
}

}  // namespace jet
