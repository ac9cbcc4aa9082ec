// The four tables of every database file that hold its catalog: their definitions in a new file.
#pragma once

#include "jet/pages/format.h"
#include "jet/rows/table_definition.h"

namespace jet {

// Where things lie in a new file, page 6 and later.
struct SystemPages {
    struct MapPage {
        PageNumber page;
        std::uint8_t rows;
    };
    // Pages of page maps, in the order in which the maps of the four tables fill them.
    std::span<const MapPage> maps;
    // The indexes of the four tables, one page each.
    std::span<const PageNumber> index_roots;
    PageNumber objects_rows;
    PageNumber access_rows;
    PageNumber page_count;
};
// Requires: version is 3 or 4.
const SystemPages& SystemPagesOf(int version);

// Column numbers of MSysACEs.
enum AccessColumn : std::uint16_t {
    kAccessObject = 0,
    kAccessSid = 1,
    kAccessMask = 2,
    kAccessInheritable = 3,
};
// Column numbers of MSysRelationships.
enum RelationColumn : std::uint16_t {
    kRelationName = 0,
    kRelationFlags = 1,
    kRelationColumnCount = 2,
    kRelationColumnPosition = 3,
    kRelationTable = 4,
    kRelationColumn = 5,
    kRelationReferencedTable = 6,
    kRelationReferencedColumn = 7,
};

// MSysObjects, MSysACEs, MSysQueries, MSysRelationships of a new file of the version: no rows yet.
std::vector<TableDefinition> SystemTables(int version);

inline constexpr std::int32_t kRootContainer = 0x0F000000;
inline constexpr std::int32_t kDatabasesContainer = 0x0F000002;
inline constexpr std::int32_t kDatabaseDocument = 0x10000000;
// The flags of objects that are the engine's own.
inline constexpr auto kEngineObject = static_cast<std::int32_t>(0x80000000);

// What MSysObjects of every file has.
struct StandardObject {
    std::int32_t id;
    std::int32_t parent;
    const char16_t* name;
    std::int16_t type;
    std::uint16_t owner;  // a user, below
};
std::span<const StandardObject> StandardObjects();

// The two-byte names of the users every file knows.
inline constexpr std::uint16_t kSidEngine = 0x0302;  // bytes 02 03
inline constexpr std::uint16_t kSidCreator = 0x0402;
inline constexpr std::uint16_t kSidUsers = 0x0102;
inline constexpr std::uint16_t kSidAdmin = 0x0103;
Bytes SidBytes(std::uint16_t sid);

}  // namespace jet
