// The rows of MSysACEs and MSysRelationships, against the objects and the relations that there are.
#pragma once

#include "jet/check/check_catalog.h"
#include "jet/check/check_definition.h"
#include "jet/check/check_row.h"

#include <array>
#include <map>
#include <string>
#include <vector>

namespace jet::check {

class SystemRows {
public:
    // `key`: of the stream that the names of users are scrambled with in Jet 4.
    SystemRows(CheckRun& run, std::array<std::byte, 4> key) : run_(run), key_(key) {}

    // A row of the table whose definition it is; those of other tables are ignored.
    void Take(const Definition& definition, PageNumber page, int row, const Row& parsed);
    // Call after the rows of all tables.
    void Check(const Catalogue& catalogue, const std::map<PageNumber, Definition>& tables);

private:
    struct Access {
        PageNumber page = 0;
        int row = -1;
        std::uint32_t object = 0;
    };
    struct Relation {
        PageNumber page = 0;
        int row = -1;
        std::u16string name;
        std::u16string table;
        std::u16string referenced_table;
        std::uint32_t flags = 0;
    };
    void TakeAccess(const Definition& definition, PageNumber page, int row, const Row& parsed);
    void TakeRelation(const Definition& definition, PageNumber page, int row, const Row& parsed);
    bool IsKnownUser(std::span<const std::byte> stored) const;
    void CheckAccess(const Catalogue& catalogue);
    void CheckRelations(const Catalogue& catalogue, const std::map<PageNumber, Definition>& tables);

    CheckRun& run_;
    std::array<std::byte, 4> key_;
    std::vector<Access> access_;
    std::vector<Relation> relations_;
};

}  // namespace jet::check
