// ObjectIds: the id of a table is the page of its definition, so every table has another one in a
// new file. This finds the ids in rows that name tables by them.
#pragma once

#include "jet/repair/copied_row.h"

#include <map>
#include <set>
#include <string_view>

namespace jet {

class ObjectIds {
public:
    // To be called for each table, and for each other object of the catalogue.
    void AddTable(PageNumber old_page, PageNumber new_page) { tables_[old_page] = new_page; }
    void AddObject(std::uint32_t id) { objects_.insert(id); }

    // 0: the table is not in the new file.
    PageNumber NewPage(PageNumber old_page) const;

    // Puts new ids in place of old ones in a row of `table`, of this name. False: the row is about
    // an object that is not there, and is to be left out: its id may be that of another one now.
    bool Renew(const TableDefinition& table, std::u16string_view name, CopiedRow& row) const;

private:
    bool RenewTableId(CopiedField& id) const;
    bool RenewPermission(CopiedField& id) const;

    std::map<PageNumber, PageNumber> tables_;
    std::set<std::uint32_t> objects_;
};

// The number in a field of four or two bytes; nullopt: null, or the column is not there.
std::optional<std::int32_t> LongOf(const TableDefinition& table, const CopiedRow& row,
                                   std::uint16_t column);
std::optional<std::int16_t> ShortOf(const TableDefinition& table, const CopiedRow& row,
                                    std::uint16_t column);

}  // namespace jet
