#include "jet/check/check_system.h"

#include "base/unicode.h"
#include "jet/pages/rc4.h"

#include <algorithm>
#include <set>

namespace jet::check {
namespace {

constexpr PageNumber kAccessTable = 3;
constexpr PageNumber kRelationTable = 5;
constexpr std::uint32_t kRootId = 0x0F000000;
constexpr std::uint32_t kNotEnforced = 0x2;
constexpr std::uint8_t kForeignSide = 2;

// The users that every file knows have names of two bytes: engine, creator, users, admin. Others
// have longer ones, of a workgroup.
constexpr std::array<std::array<unsigned, 2>, 4> kUsers{{{2, 3}, {2, 4}, {2, 1}, {3, 1}}};

// Columns of the system tables are known by their numbers. nullopt: null, or no such column.
std::optional<std::span<const std::byte>> FieldOf(const Definition& definition, const Row& row,
                                                  std::uint16_t number) {
    const auto column =
        std::ranges::find(definition.columns, number, [](const Column& c) { return c.number; });
    std::string problem;
    if (column == definition.columns.end()) return std::nullopt;
    return row.Field(*column, problem);
}

std::optional<std::uint32_t> NumberOf(const Definition& definition, const Row& row,
                                      std::uint16_t number) {
    const auto field = FieldOf(definition, row, number);
    return field ? base::LittleAt<std::uint32_t>(*field, 0) : std::nullopt;
}

}  // namespace

void SystemRows::Take(const Definition& definition, PageNumber page, int row, const Row& parsed) {
    if (definition.page == kAccessTable) TakeAccess(definition, page, row, parsed);
    if (definition.page == kRelationTable) TakeRelation(definition, page, row, parsed);
}

void SystemRows::TakeAccess(const Definition& definition, PageNumber page, int row,
                            const Row& parsed) {
    const auto object = NumberOf(definition, parsed, 0);
    const auto user = FieldOf(definition, parsed, 1);
    if (!object || !user) return run_.Fault(page, row, "the permission names no object or no user");
    if (user->size() == 2 && !IsKnownUser(*user))
        run_.Fault(page, row, "the user of the permission is unknown");
    access_.push_back({page, row, *object});
}

bool SystemRows::IsKnownUser(std::span<const std::byte> stored) const {
    std::array<std::byte, 2> name{stored[0], stored[1]};
    if (run_.format().jet4()) ApplyRc4(key_, name);
    return std::ranges::any_of(kUsers, [&](const auto& known) {
        return std::to_integer<unsigned>(name[0]) == known[0] &&
               std::to_integer<unsigned>(name[1]) == known[1];
    });
}

void SystemRows::TakeRelation(const Definition& definition, PageNumber page, int row,
                              const Row& parsed) {
    const auto text = [&](std::uint16_t number) {
        const auto field = FieldOf(definition, parsed, number);
        return field ? run_.text().DecodeValue(*field) : std::u16string();
    };
    relations_.push_back(
        {page, row, text(0), text(4), text(6), NumberOf(definition, parsed, 1).value_or(0)});
}

void SystemRows::Check(const Catalogue& catalogue, const std::map<PageNumber, Definition>& tables) {
    run_.SetTable("MSysACEs");
    CheckAccess(catalogue);
    run_.SetTable("MSysRelationships");
    CheckRelations(catalogue, tables);
    run_.SetTable("");
}

void SystemRows::CheckAccess(const Catalogue& catalogue) {
    std::set<std::uint32_t> objects;
    for (const Access& access : access_) {
        objects.insert(access.object);
        if (access.object != kRootId && !catalogue.ids.contains(access.object))
            run_.Warn(access.page, access.row,
                      "is a permission of object " + std::to_string(access.object) +
                          ", which is not there");
    }
    for (const TableEntry& table : catalogue.tables)
        if (!objects.contains(table.definition))
            run_.Warn(kAccessTable, -1,
                      "nobody has permissions for table " + base::ToUtf8(table.name));
}

// Engines keep a relation by the indexes that name each other; the rows tell it to programs.
void SystemRows::CheckRelations(const Catalogue& catalogue,
                                const std::map<PageNumber, Definition>& tables) {
    std::map<std::u16string, PageNumber, NameLess> pages;
    for (const TableEntry& table : catalogue.tables)
        pages.emplace(table.name, table.definition);
    std::map<PageNumber, NameSet> told;  // by the table that refers
    for (const Relation& relation : relations_) {
        const auto from = pages.find(relation.table);
        const auto to = pages.find(relation.referenced_table);
        const auto definition = from == pages.end() ? tables.end() : tables.find(from->second);
        const bool is_kept =
            definition != tables.end() && to != pages.end() &&
            std::ranges::any_of(definition->second.logical, [&](const LogicalIndex& index) {
                return index.side == kForeignSide && SameName(index.name, relation.name) &&
                       index.partner_table == to->second;
            });
        if (is_kept) told[from->second].insert(relation.name);
        if (!is_kept && (relation.flags & kNotEnforced) == 0)
            run_.Warn(relation.page, relation.row,
                      "relation " + base::ToUtf8(relation.name) + " is kept by no index");
    }
    for (const auto& [page, definition] : tables)
        for (const LogicalIndex& index : definition.logical)
            if (index.side == kForeignSide && !told[page].contains(index.name))
                run_.Fault(page, -1,
                           "relation " + base::ToUtf8(index.name) + " is not in MSysRelationships");
}

}  // namespace jet::check
