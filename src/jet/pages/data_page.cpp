#include "jet/pages/data_page.h"

#include <algorithm>
#include <cassert>
#include <cstring>

namespace jet {

std::optional<DataPage> DataPage::Parse(std::span<const std::byte> bytes, const Format& format) {
    if (bytes.size() != format.page_size || !HasType(bytes, PageType::kData)) return std::nullopt;
    const std::size_t count =
        base::LoadLittle<std::uint16_t>(bytes.data() + format.slot_count_offset);
    if (count > kMaxSlots + 1 || format.slots_offset + 2 * count > bytes.size())
        return std::nullopt;
    return DataPage(bytes, format, count);
}

std::optional<std::span<const std::byte>> DataPage::Bytes(std::size_t slot) const {
    if (slot >= slot_count_) return std::nullopt;
    const std::size_t start = Word(slot) & kSlotOffsetMask;
    const std::size_t end = slot == 0 ? bytes_.size() : Word(slot - 1) & kSlotOffsetMask;
    if (start > end || end > bytes_.size() || start < format_->slots_offset + 2 * slot_count_)
        return std::nullopt;
    return bytes_.subspan(start, end - start);
}

std::size_t DataPage::free_bytes() const {
    const std::size_t table_end = format_->slots_offset + 2 * slot_count_;
    const std::size_t rows =
        slot_count_ == 0 ? bytes_.size() : Word(slot_count_ - 1) & kSlotOffsetMask;
    return rows > table_end ? rows - table_end : 0;
}

bool DataPage::AnyLiveSlot() const {
    for (std::size_t slot = 0; slot < slot_count_; ++slot)
        if (Flags(slot) != kSlotDeleted) return true;
    return false;
}

std::optional<DataPageEditor> DataPageEditor::Open(std::span<std::byte> bytes,
                                                   const Format& format) {
    const auto page = DataPage::Parse(bytes, format);
    if (!page) return std::nullopt;
    for (std::size_t slot = 0; slot < page->slot_count(); ++slot)
        if (!page->Bytes(slot)) return std::nullopt;
    return DataPageEditor(bytes, format, page->slot_count());
}

DataPageEditor DataPageEditor::Create(std::span<std::byte> bytes, const Format& format,
                                      std::uint32_t owner) {
    std::ranges::fill(bytes, std::byte{0});
    StoreType(bytes, PageType::kData);
    base::StoreLittle(bytes.data() + kPageOwner, owner);
    DataPageEditor editor(bytes, format, 0);
    editor.UpdateHead();
    return editor;
}

std::size_t DataPageEditor::Start(std::size_t slot) const {
    return base::LoadLittle<std::uint16_t>(bytes_.data() + format_->slots_offset + 2 * slot) &
           kSlotOffsetMask;
}

std::size_t DataPageEditor::End(std::size_t slot) const {
    return slot == 0 ? bytes_.size() : Start(slot - 1);
}

std::uint16_t DataPageEditor::Flags(std::size_t slot) const {
    return base::LoadLittle<std::uint16_t>(bytes_.data() + format_->slots_offset + 2 * slot) &
           kSlotFlags;
}

std::size_t DataPageEditor::SlotBytes(std::size_t slot) const {
    return End(slot) - Start(slot);
}

std::size_t DataPageEditor::free_bytes() const {
    return End(slot_count_) - (format_->slots_offset + 2 * slot_count_);
}

void DataPageEditor::SetWord(std::size_t slot, std::size_t start, std::uint16_t flags) {
    base::StoreLittle(bytes_.data() + format_->slots_offset + 2 * slot,
                      static_cast<std::uint16_t>(start | flags));
}

void DataPageEditor::UpdateHead() {
    base::StoreLittle(bytes_.data() + format_->slot_count_offset,
                      static_cast<std::uint16_t>(slot_count_));
    base::StoreLittle(bytes_.data() + kPageFreeBytes, static_cast<std::uint16_t>(free_bytes()));
}

std::uint8_t DataPageEditor::Append(std::span<const std::byte> row, std::uint16_t flags) {
    assert(HasRoomFor(row.size()));
    const std::size_t start = End(slot_count_) - row.size();
    if (!row.empty()) std::memcpy(bytes_.data() + start, row.data(), row.size());
    SetWord(slot_count_, start, flags);
    ++slot_count_;
    UpdateHead();
    return static_cast<std::uint8_t>(slot_count_ - 1);
}

void DataPageEditor::Replace(std::size_t slot, std::span<const std::byte> row,
                             std::uint16_t flags) {
    assert(slot < slot_count_ && row.size() <= SlotBytes(slot) + free_bytes());
    const std::size_t old_start = Start(slot);
    const std::size_t new_start = End(slot) - row.size();
    const std::size_t lowest = End(slot_count_);
    // The rows of all later slots lie below this one and move as a block.
    if (new_start != old_start) {
        std::memmove(bytes_.data() + lowest + new_start - old_start, bytes_.data() + lowest,
                     old_start - lowest);
        for (std::size_t later = slot + 1; later < slot_count_; ++later)
            SetWord(later, Start(later) + new_start - old_start, Flags(later));
    }
    if (!row.empty()) std::memcpy(bytes_.data() + new_start, row.data(), row.size());
    SetWord(slot, new_start, flags);
    UpdateHead();
}

// The rows that stay move up, each once.
void DataPageEditor::Delete(std::span<const std::uint8_t> slots) {
    if (slots.empty()) return;
    std::size_t old_end = End(slots.front());
    std::size_t end = old_end;
    std::size_t next = 0;  // of `slots`
    for (std::size_t slot = slots.front(); slot < slot_count_; ++slot) {
        const std::size_t start = Start(slot);
        const std::size_t size = old_end - start;
        old_end = start;
        if (next < slots.size() && slots[next] == slot) {
            ++next;
            SetWord(slot, end, kSlotDeleted);
            continue;
        }
        end -= size;
        if (end != start) std::memmove(bytes_.data() + end, bytes_.data() + start, size);
        SetWord(slot, end, Flags(slot));
    }
    UpdateHead();
}

}  // namespace jet
