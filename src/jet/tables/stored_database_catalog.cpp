// What changes of designs write into the catalog.
#include "jet/errors.h"
#include "jet/tables/stored_database.h"
#include "jet/tables/system_rows.h"
#include "jet/tables/system_tables.h"

#include <algorithm>
#include <limits>

namespace jet {
namespace {

constexpr std::int32_t kFullAccess = 0xFFEFF;

}  // namespace

base::Status StoredDatabase::CheckWritable() const {
    return read_only() ? JetError(ErrorNumber::kReadOnly) : base::Status();
}

base::Result<CatalogEntry> StoredDatabase::RequireTable(std::u16string_view name) {
    RETURN_IF_ERROR(CheckWritable());
    ASSIGN_OR_RETURN(const CatalogEntry* entry, catalog_.FindTable(name));
    if (entry == nullptr) return JetError(ErrorNumber::kNoSuchTable, name);
    if (entry->name.starts_with(u"MSys")) return JetError(ErrorNumber::kReadOnly);
    return *entry;
}

base::Result<TableDefinition> StoredDatabase::ReadDefinition(const CatalogEntry& entry) {
    return ReadTableDefinition(file_.store, file_.format, file_.text, entry.definition_page());
}

void StoredDatabase::ForgetTable(PageNumber definition) {
    if (recorder_) recorder_->ForgetTable(definition);
    tables_.erase(definition);
    changed_.insert(definition);
}

base::Status StoredDatabase::FinishChange(const CatalogEntry& entry, TableDefinition& definition) {
    RETURN_IF_ERROR(
        WriteTableDefinition(file_.store, file_.format, file_.text, file_.allocator, definition));
    ForgetTable(entry.definition_page());
    return Redate(entry);
}

base::Status StoredDatabase::Redate(const CatalogEntry& entry) {
    ASSIGN_OR_RETURN(StoredTable * objects, TableAt(kObjectsPage));
    const ColumnChange change{objects->ShownPosition(kObjectUpdated), Value::DateTime(clock_())};
    return objects->Update(entry.row, std::span(&change, 1));
}

base::Status StoredDatabase::SetProperties(const CatalogEntry& entry,
                                           const PropertyBlob& properties) {
    ASSIGN_OR_RETURN(StoredTable * objects, TableAt(kObjectsPage));
    const ColumnChange change{objects->ShownPosition(kObjectProperties),
                              properties.empty() ? Value::Null()
                                                 : Value::Binary(properties.Serialize())};
    RETURN_IF_ERROR(objects->Update(entry.row, std::span(&change, 1)));
    ForgetTable(entry.definition_page());
    return {};
}

base::Status StoredDatabase::AddToCatalog(std::u16string_view name, std::int32_t id,
                                          std::int16_t type, std::int32_t container) {
    ASSIGN_OR_RETURN(StoredTable * objects, TableAt(kObjectsPage));
    const Value now = Value::DateTime(clock_());
    std::vector<Value> values =
        InShownOrder(*objects, {{kObjectId, Value::Long(id)},
                                {kObjectParent, Value::Long(container)},
                                {kObjectName, Value::Text(name)},
                                {kObjectType, Value::Short(type)},
                                {kObjectCreated, now},
                                {kObjectUpdated, now},
                                {kObjectOwner, Value::Binary(SidBytes(kSidAdmin))},
                                {kObjectFlags, Value::Long(0)}});
    RETURN_IF_ERROR(objects->Insert(values).status());
    catalog_.Forget();
    // So that a rollback forgets the catalog again.
    changed_.insert(type == kObjectIsTable ? static_cast<PageNumber>(id) : kObjectsPage);
    return AddPermissions(id, container);
}

// Objects that are not tables are numbered from the smallest number upwards.
base::Result<std::int32_t> StoredDatabase::NextObjectId() {
    ASSIGN_OR_RETURN(const auto* entries, catalog_.Entries());
    std::int32_t next = std::numeric_limits<std::int32_t>::min();
    for (const CatalogEntry& entry : *entries)
        if (entry.id < 0) next = std::max(next, entry.id + 1);
    return next;
}

// What everything in the container inherits; "creator" there means the owner.
base::Status StoredDatabase::AddPermissions(std::int32_t id, std::int32_t container) {
    ASSIGN_OR_RETURN(StoredTable * access, TableAt(kAccessPage));
    std::vector<std::pair<Bytes, std::int32_t>> inherited;
    RETURN_IF_ERROR(ForEachRow(
        *access, {kAccessObject, kAccessSid, kAccessMask, kAccessInheritable},
        [&](RowId, const std::vector<Value>& values) {
            const auto* object = values[0].get_if<std::int32_t>();
            const auto* sid = values[1].get_if<Bytes>();
            const auto* mask = values[2].get_if<std::int32_t>();
            if (object == nullptr || *object != container || sid == nullptr || mask == nullptr ||
                values[3] != Value::Boolean(true))
                return;
            const Bytes owner = *sid == SidBytes(kSidCreator) ? SidBytes(kSidAdmin) : *sid;
            for (auto& [known, rights] : inherited)
                if (known == owner) {
                    rights |= *mask;
                    return;
                }
            inherited.emplace_back(owner, *mask);
        }));
    if (inherited.empty())
        inherited = {{SidBytes(kSidAdmin), kFullAccess}, {SidBytes(kSidUsers), kFullAccess}};
    for (const auto& [sid, mask] : inherited) {
        std::vector<Value> values =
            InShownOrder(*access, {{kAccessObject, Value::Long(id)},
                                   {kAccessSid, Value::Binary(sid)},
                                   {kAccessMask, Value::Long(mask)},
                                   {kAccessInheritable, Value::Boolean(false)}});
        RETURN_IF_ERROR(access->Insert(values).status());
    }
    return {};
}

base::Status StoredDatabase::RemoveFromCatalog(const CatalogEntry& entry) {
    ASSIGN_OR_RETURN(StoredTable * access, TableAt(kAccessPage));
    std::vector<RowId> rows;
    RETURN_IF_ERROR(
        ForEachRow(*access, {kAccessObject}, [&](RowId row, const std::vector<Value>& values) {
            if (values[0] == Value::Long(entry.id)) rows.push_back(row);
        }));
    for (const RowId row : rows)
        RETURN_IF_ERROR(access->Delete(row));
    ASSIGN_OR_RETURN(StoredTable * objects, TableAt(kObjectsPage));
    RETURN_IF_ERROR(objects->Delete(entry.row));
    catalog_.Forget();
    if (entry.is_table())
        ForgetTable(entry.definition_page());
    else
        changed_.insert(kObjectsPage);
    return {};
}

}  // namespace jet
