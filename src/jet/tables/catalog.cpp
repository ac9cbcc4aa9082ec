#include "jet/tables/catalog.h"

#include "jet/errors.h"
#include "jet/rows/table_scan.h"
#include "jet/text/names.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint32_t kSystemFlags = 0x80000002;

base::Status ReadEntry(FileContext& file, const TableDefinition& objects, const RowView& row,
                       CatalogEntry& entry) {
    const auto read = [&](std::uint16_t number, Value& value) -> base::Status {
        const ColumnDefinition* column = objects.FindColumn(number);
        if (column == nullptr) return DamagedPage(kObjectsPage, "a column is missing");
        return DecodeField(file, *column, row, value);
    };
    Value value;
    RETURN_IF_ERROR(read(kObjectId, value));
    if (const auto* id = value.get_if<std::int32_t>()) entry.id = *id;
    RETURN_IF_ERROR(read(kObjectParent, value));
    if (const auto* parent = value.get_if<std::int32_t>()) entry.parent = *parent;
    RETURN_IF_ERROR(read(kObjectType, value));
    if (const auto* type = value.get_if<std::int16_t>()) entry.type = *type;
    RETURN_IF_ERROR(read(kObjectFlags, value));
    if (const auto* flags = value.get_if<std::int32_t>()) entry.flags = *flags;
    RETURN_IF_ERROR(read(kObjectName, value));
    if (const auto* name = value.get_if<std::u16string>()) entry.name = *name;
    return {};
}

}  // namespace

bool CatalogEntry::is_user_table() const {
    return is_table() && (static_cast<std::uint32_t>(flags) & kSystemFlags) == 0 &&
           !name.starts_with(u"MSys") && !name.starts_with(u"~");
}

base::Status Catalog::Load() {
    if (!definition_) {
        ASSIGN_OR_RETURN(definition_,
                         ReadTableDefinition(file_.store, file_.format, file_.text, kObjectsPage));
    }
    std::vector<CatalogEntry> entries;
    ASSIGN_OR_RETURN(TableScan scan, TableScan::Start(file_, *definition_));
    while (true) {
        ASSIGN_OR_RETURN(const bool found, scan.Next());
        if (!found) break;
        const auto row = RowView::Parse(scan.bytes(), file_.format);
        if (!row) return DamagedPage(scan.row().page, "a catalog row is unreadable");
        CatalogEntry& entry = entries.emplace_back();
        entry.row = scan.row();
        RETURN_IF_ERROR(ReadEntry(file_, *definition_, *row, entry));
    }
    entries_ = std::move(entries);
    return {};
}

base::Result<const std::vector<CatalogEntry>*> Catalog::Entries() {
    if (!entries_) RETURN_IF_ERROR(Load());
    return &*entries_;
}

base::Result<const CatalogEntry*> Catalog::FindTable(std::u16string_view name) {
    ASSIGN_OR_RETURN(const auto* entries, Entries());
    const auto found = std::ranges::find_if(*entries, [&](const CatalogEntry& entry) {
        return entry.is_table() && SameName(entry.name, name);
    });
    return found == entries->end() ? nullptr : &*found;
}

base::Result<PropertyBlob> Catalog::Properties(const CatalogEntry& entry) {
    if (!entries_) RETURN_IF_ERROR(Load());
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, kObjectsPage, entry.row));
    const auto row = RowView::Parse(stored.bytes, file_.format);
    const ColumnDefinition* column = definition_->FindColumn(kObjectProperties);
    if (!row || column == nullptr)
        return DamagedPage(entry.row.page, "a catalog row is unreadable");
    Value value;
    RETURN_IF_ERROR(DecodeField(file_, *column, *row, value));
    const Bytes* blob = value.get_if<Bytes>();
    return PropertyBlob::Parse(blob == nullptr ? std::span<const std::byte>() : *blob, file_.text);
}

void Catalog::Forget() {
    entries_.reset();
    definition_.reset();
}

}  // namespace jet
