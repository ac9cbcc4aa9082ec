#include "jet/tables/map_rows.h"

#include "jet/errors.h"
#include "jet/pages/data_page.h"

#include <algorithm>

namespace jet {
MapRows::MapRows(FileContext& file, const TableDefinition& definition) : file_(file) {
    Know(definition.owned);
    Know(definition.free);
    for (const LongValueMaps& maps : definition.long_values) {
        Know(maps.owned);
        Know(maps.free);
    }
    for (const RealIndex& index : definition.real_indexes)
        Know(index.map);
}

void MapRows::Know(RowPointer map) {
    // Page 1 holds the global maps and takes no others.
    if (map.page > 1 && std::ranges::find(pages_, map.page) == pages_.end())
        pages_.push_back(map.page);
}

base::Result<std::optional<RowPointer>> MapRows::AddOn(PageNumber page,
                                                       const std::vector<std::byte>& row) {
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    auto editor = DataPageEditor::Open(bytes, file_.format);
    if (!editor || LoadOwner(bytes) != kMapOwner) return std::optional<RowPointer>();
    for (std::size_t slot = 0; slot < editor->slot_count(); ++slot) {
        if (editor->Flags(slot) != kSlotDeleted) continue;
        if (row.size() > editor->SlotBytes(slot) + editor->free_bytes()) break;
        editor->Replace(slot, row, 0);
        return std::optional<RowPointer>({page, static_cast<std::uint8_t>(slot)});
    }
    if (!editor->HasRoomFor(row.size())) return std::optional<RowPointer>();
    return std::optional<RowPointer>({page, editor->Append(row, 0)});
}

base::Result<RowPointer> MapRows::Add(PageNumber only_member) {
    const std::vector<std::byte> row = MakeMapRow(file_.format, only_member);
    for (const PageNumber page : pages_) {
        ASSIGN_OR_RETURN(const auto added, AddOn(page, row));
        if (added) return *added;
    }
    ASSIGN_OR_RETURN(const PageNumber page, file_.allocator.Allocate());
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(page));
    DataPageEditor editor = DataPageEditor::Create(bytes, file_.format, kMapOwner);
    pages_.push_back(page);
    return RowPointer{page, editor.Append(row, 0)};
}

base::Status MapRows::Remove(RowPointer map) {
    if (map.none()) return {};
    RETURN_IF_ERROR(file_.Map(map).Release(file_.allocator));
    ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file_.store.Change(map.page));
    auto editor = DataPageEditor::Open(bytes, file_.format);
    if (!editor || map.row >= editor->slot_count())
        return DamagedPage(map.page, "a page map is unreadable");
    editor->Delete(map.row);
    return {};
}

base::Status MapRows::FreeEmptyPages() {
    for (const PageNumber page : pages_) {
        bool live = true;
        {
            ASSIGN_OR_RETURN(const PageView view, file_.store.Read(page));
            const auto parsed = DataPage::Parse(view.bytes(), file_.format);
            live = !parsed || parsed->owner() != kMapOwner || parsed->AnyLiveSlot();
        }
        if (!live) RETURN_IF_ERROR(file_.allocator.Free(page));
    }
    return {};
}

}  // namespace jet
