// Catalog: the objects of a database as MSysObjects lists them. Read once, when first asked for.
#pragma once

#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"
#include "jet/rows/table_definition.h"
#include "jet/tables/property_blob.h"

#include <optional>
#include <string>
#include <vector>

namespace jet {

// Column numbers of MSysObjects; the same in every file.
enum ObjectsColumn : std::uint16_t {
    kObjectId = 0,
    kObjectParent = 1,
    kObjectName = 2,
    kObjectType = 3,
    kObjectCreated = 4,
    kObjectUpdated = 5,
    kObjectOwner = 6,
    kObjectFlags = 7,
    kObjectProperties = 14,
};

inline constexpr std::int16_t kObjectIsTable = 1;
inline constexpr std::int16_t kObjectIsRelation = 8;
inline constexpr std::int32_t kTablesContainer = 0x0F000001;
inline constexpr std::int32_t kRelationsContainer = 0x0F000003;

struct CatalogEntry {
    RowId row;  // in MSysObjects
    std::int32_t id = 0;
    std::int32_t parent = 0;
    std::int16_t type = 0;
    std::int32_t flags = 0;
    std::u16string name;

    PageNumber definition_page() const { return static_cast<PageNumber>(id) & 0x00FFFFFF; }
    bool is_table() const { return type == kObjectIsTable && parent == kTablesContainer; }
    bool is_user_table() const;
};

class Catalog {
public:
    explicit Catalog(FileContext& file) : file_(file) {}

    // In physical order.
    base::Result<const std::vector<CatalogEntry>*> Entries();
    // nullptr: no such table; system tables are found, too.
    base::Result<const CatalogEntry*> FindTable(std::u16string_view name);
    base::Result<PropertyBlob> Properties(const CatalogEntry& entry);
    // To be called when MSysObjects was changed or rolled back.
    void Forget();

private:
    base::Status Load();

    FileContext& file_;
    std::optional<std::vector<CatalogEntry>> entries_;
    std::optional<TableDefinition> definition_;
};

}  // namespace jet
