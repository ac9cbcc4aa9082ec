// DataPage: the rows of one data page. A slot is a row's place in the offset table; its number
// never changes. Rows fill the page from its end downwards in slot order. Layout:
// docs/formats/jet.md, "Data pages". Every offset is checked when it is used: bytes from a file are
// never trusted.
#pragma once

#include "base/status.h"
#include "jet/pages/format.h"

#include <optional>

namespace jet {

inline constexpr std::uint16_t kSlotOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kSlotReserved = 0x2000;  // 0
inline constexpr std::uint16_t kSlotFlags = 0xC000;
inline constexpr std::uint16_t kSlotMoved = 0x4000;   // the bytes start with a pointer to the row
inline constexpr std::uint16_t kSlotTarget = 0x8000;  // only reached through such a pointer
inline constexpr std::uint16_t kSlotDeleted = 0xC000;

// Looks at a page; borrows its bytes.
class DataPage {
public:
    // nullopt: not a data page, or its head is invalid.
    static std::optional<DataPage> Parse(std::span<const std::byte> bytes, const Format& format);

    std::uint32_t owner() const { return LoadOwner(bytes_); }
    std::size_t slot_count() const { return slot_count_; }
    // Requires: slot < slot_count().
    std::uint16_t Flags(std::size_t slot) const { return Word(slot) & kSlotFlags; }
    // The slot's bytes, whatever its flags; nullopt: its offsets leave the page.
    std::optional<std::span<const std::byte>> Bytes(std::size_t slot) const;
    // True when a row or a row's target lives here.
    bool AnyLiveSlot() const;
    // The gap between slots and rows; the field on the page is not used.
    std::size_t free_bytes() const;

private:
    DataPage(std::span<const std::byte> bytes, const Format& format, std::size_t slot_count)
        : bytes_(bytes), format_(&format), slot_count_(slot_count) {}
    std::uint16_t Word(std::size_t slot) const {
        return base::LoadLittle<std::uint16_t>(bytes_.data() + format_->slots_offset + 2 * slot);
    }

    std::span<const std::byte> bytes_;
    const Format* format_;
    std::size_t slot_count_;
};

// Changes a page; borrows its bytes. The whole offset table is checked once, when the editor is
// made.
class DataPageEditor {
public:
    // nullopt: the page's offsets contradict each other.
    static std::optional<DataPageEditor> Open(std::span<std::byte> bytes, const Format& format);
    // Makes an empty data page of `bytes`.
    static DataPageEditor Create(std::span<std::byte> bytes, const Format& format,
                                 std::uint32_t owner);

    std::size_t slot_count() const { return slot_count_; }
    std::size_t free_bytes() const;
    bool HasRoomFor(std::size_t row_bytes) const {
        return slot_count_ < kMaxSlots && free_bytes() >= row_bytes + 2;
    }
    std::size_t SlotBytes(std::size_t slot) const;
    std::uint16_t Flags(std::size_t slot) const;

    // Requires: HasRoomFor(row.size()).
    std::uint8_t Append(std::span<const std::byte> row, std::uint16_t flags);
    // Gives a slot new bytes and flags. Requires: row.size() <= SlotBytes(slot) + free_bytes().
    void Replace(std::size_t slot, std::span<const std::byte> row, std::uint16_t flags);
    // Requires: slots of the page, ascending.
    void Delete(std::span<const std::uint8_t> slots);
    void Delete(std::uint8_t slot) { Delete(std::span(&slot, 1)); }

private:
    DataPageEditor(std::span<std::byte> bytes, const Format& format, std::size_t slot_count)
        : bytes_(bytes), format_(&format), slot_count_(slot_count) {}
    std::size_t Start(std::size_t slot) const;
    std::size_t End(std::size_t slot) const;
    void SetWord(std::size_t slot, std::size_t start, std::uint16_t flags);
    void UpdateHead();

    std::span<std::byte> bytes_;
    const Format* format_;
    std::size_t slot_count_;
};

}  // namespace jet
