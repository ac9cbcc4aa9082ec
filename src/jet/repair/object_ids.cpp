#include "jet/repair/object_ids.h"

#include "jet/tables/catalog.h"
#include "jet/tables/system_tables.h"
#include "jet/text/names.h"

#include <algorithm>
#include <array>

namespace jet {
namespace {

// Tables in which Access keeps more about objects, by columns of these names.
constexpr std::array<std::u16string_view, 2> kTablesAboutObjects = {u"MSysNavPaneObjectIDs",
                                                                    u"MSysNameMap"};

std::size_t PositionOf(const TableDefinition& table, std::uint16_t column) {
    const ColumnDefinition* found = table.FindColumn(column);
    return found == nullptr ? table.columns.size()
                            : static_cast<std::size_t>(found - table.columns.data());
}

std::size_t PositionOf(const TableDefinition& table, std::u16string_view column) {
    const auto found = std::ranges::find_if(
        table.columns, [&](const ColumnDefinition& known) { return SameName(known.name, column); });
    return static_cast<std::size_t>(found - table.columns.begin());
}

template <typename T>
std::optional<T> NumberAt(const CopiedRow& row, std::size_t position) {
    if (position >= row.size() || !row[position].set || row[position].bytes.size() != sizeof(T))
        return std::nullopt;
    return base::LoadLittle<T>(row[position].bytes.data());
}

}  // namespace

std::optional<std::int32_t> LongOf(const TableDefinition& table, const CopiedRow& row,
                                   std::uint16_t column) {
    return NumberAt<std::int32_t>(row, PositionOf(table, column));
}

std::optional<std::int16_t> ShortOf(const TableDefinition& table, const CopiedRow& row,
                                    std::uint16_t column) {
    return NumberAt<std::int16_t>(row, PositionOf(table, column));
}

PageNumber ObjectIds::NewPage(PageNumber old_page) const {
    const auto found = tables_.find(old_page);
    return found == tables_.end() ? 0 : found->second;
}

bool ObjectIds::RenewTableId(CopiedField& id) const {
    if (!id.set || id.bytes.size() != sizeof(PageNumber)) return false;
    const PageNumber page = NewPage(base::LoadLittle<PageNumber>(id.bytes.data()));
    if (page != 0) base::StoreLittle(id.bytes.data(), page);
    return page != 0;
}

bool ObjectIds::RenewPermission(CopiedField& id) const {
    if (RenewTableId(id)) return true;
    if (!id.set || id.bytes.size() != sizeof(PageNumber)) return false;
    const auto object = base::LoadLittle<std::uint32_t>(id.bytes.data());
    return object == static_cast<std::uint32_t>(kRootContainer) || objects_.contains(object);
}

bool ObjectIds::Renew(const TableDefinition& table, std::u16string_view name,
                      CopiedRow& row) const {
    if (table.page == kObjectsPage) {
        const std::size_t id = PositionOf(table, std::uint16_t{kObjectId});
        return ShortOf(table, row, kObjectType) != kObjectIsTable ||
               (id < row.size() && RenewTableId(row[id]));
    }
    if (table.page == kAccessPage) {
        const std::size_t object = PositionOf(table, std::uint16_t{kAccessObject});
        return object < row.size() && RenewPermission(row[object]);
    }
    if (!std::ranges::any_of(kTablesAboutObjects,
                             [&](std::u16string_view known) { return SameName(known, name); }))
        return true;
    const std::size_t id = PositionOf(table, u"Id");
    const std::size_t type = PositionOf(table, u"Type");
    const bool is_of_table = NumberAt<std::int32_t>(row, type) == kObjectIsTable ||
                             NumberAt<std::int16_t>(row, type) == kObjectIsTable;
    return !is_of_table || id >= row.size() || RenewTableId(row[id]);
}

}  // namespace jet
