// RebuiltCatalogue: the rows of MSysObjects in a repaired file: those that can be read and are
// about something that is there, those that every file has, and new ones for tables that nothing
// names.
#pragma once

#include "jet/repair/salvage.h"

namespace jet {

struct RebuiltCatalogue {
    struct Object {
        RowId at;  // {0, 0}: made here
        CopiedRow row;
        std::int32_t id = 0;
        std::int32_t parent = 0;
        std::int16_t type = 0;
        std::u16string name;
    };
    TableDefinition definition;  // of MSysObjects
    std::vector<Object> objects;

    // The table's name; empty: it is none of the catalogue.
    std::u16string NameOf(PageNumber definition_page) const;
};

struct RepairLimits {
    // Tables, by the pages of their definitions.
    std::set<PageNumber> excluded;  // not brought over
    std::set<PageNumber> without_indexes;
    bool without_properties = false;
};

// The definition of a system table: the file's own where it is as in every file.
TableDefinition SystemDefinition(const Survey& survey, const Format& format, PageNumber page);

base::Result<RebuiltCatalogue> RebuildCatalogue(FileContext& file, const Survey& survey,
                                                const RepairLimits& limits, RepairReport& report,
                                                std::uint64_t& budget);

}  // namespace jet
