// MapRow: the row in which a page map lies, and its bitmap pages. UsageMap and PageAllocator, which
// say what the bits mean, read and write them through this class. Layout: docs/formats/jet.md, "Map
// rows".
#pragma once

#include "base/status.h"
#include "jet/pages/format.h"
#include "jet/pages/map_row_layout.h"

#include <string_view>
#include <vector>

namespace jet {

class MapRow {
public:
    // The row for reading; its bytes stay valid as long as the view lives.
    struct View {
        PageView page;
        std::span<const std::byte> bytes;

        bool is_inline() const { return bytes[0] == kMapInline; }
        // Of an inline map.
        PageNumber first_page() const {
            return base::LoadLittle<std::uint32_t>(bytes.data() + kMapFirstPage);
        }
        std::span<const std::byte> inline_bits() const { return bytes.subspan(kInlineHead); }
        std::size_t inline_count() const { return inline_bits().size() * 8; }
        bool InlineReaches(PageNumber number) const {
            return number >= first_page() && number - first_page() < inline_count();
        }
        // Of the other form. 0: the range has no bitmap page.
        std::size_t pointers() const { return MapPointerCount(bytes); }
        PageNumber pointer(std::size_t range) const {
            return range < pointers() ? LoadMapPointer(bytes, range) : PageNumber{0};
        }
    };
    // The bit of a page among others, for changing; no bits: the map does not reach the page.
    struct Bit {
        std::span<std::byte> bits;
        std::size_t position = 0;
        bool exists() const { return !bits.empty(); }
        void Assign(bool value) const;
    };

    // Store and format must outlive it. `name` says in messages what the map is.
    MapRow(PageStore& store, const Format& format, RowPointer at, std::string_view name)
        : store_(store), format_(format), at_(at), name_(name) {}

    RowPointer at() const { return at_; }
    base::Result<View> Load() const;
    base::Result<PageView> ReadBitmap(PageNumber bitmap) const;
    // False as well for what the map does not reach.
    base::Result<bool> IsSet(PageNumber page) const;

    // Changes; they need an open transaction.
    base::Result<Bit> ChangeBit(PageNumber page);
    // False: the map page has no room for a row of this length.
    base::Result<bool> Write(std::span<const std::byte> row);
    // The row becomes an empty inline one.
    base::Status Clear();
    // The row becomes one of pointers, all 0.
    base::Status MakeReference();
    // Makes page `bitmap` the bitmap page of a range of a row of pointers; returns its bits,
    // which keep their values.
    base::Result<std::span<std::byte>> AddBitmap(std::size_t range, PageNumber bitmap);

private:
    base::Status MustWrite(std::span<const std::byte> row);
    base::Status Damage(std::string_view what) const;

    PageStore& store_;
    const Format& format_;
    RowPointer at_;
    std::string_view name_;
};

// An empty map row as the engine makes them. For one page: the map that holds just this page.
std::vector<std::byte> MakeMapRow(const Format& format, PageNumber only_member = 0);

}  // namespace jet
