#include "jet/check/check_run.h"

#include "jet/pages/data_page.h"
#include "jet/pages/map_row_layout.h"

#include <algorithm>

namespace jet::check {

struct CheckRun::MapBits {
    PageNumber page;
    int row;
    bool may_pass_the_end;
    const std::string& what;
    PageSet& members;
};

CheckRun::CheckRun(PageStore& store, const Format& format, TextCodec text, CheckOptions options)
    : store_(store), format_(format), text_(text), options_(options), owners_(store.page_count()) {
    report_.pages = owners_.size();
}

void CheckRun::Fault(PageNumber page, int row, std::string text) {
    ++report_.faults;
    if (report_.findings.size() < CheckReport::kMaxFindings)
        report_.findings.push_back({Severity::kFault, page, row, table_, std::move(text)});
}

void CheckRun::Warn(PageNumber page, int row, std::string text) {
    ++report_.warnings;
    if (report_.findings.size() < CheckReport::kMaxFindings)
        report_.findings.push_back({Severity::kWarning, page, row, table_, std::move(text)});
}

void CheckRun::CheckFreeBytes(PageNumber page, std::size_t said, std::size_t real) {
    if (said == real) return;
    std::string text = "says that " + std::to_string(said) + " bytes are free, but " +
                       std::to_string(real) + " are";
    if (said < real)
        Warn(page, -1, std::move(text));
    else
        Fault(page, -1, std::move(text));
}

std::optional<PageView> CheckRun::Page(PageNumber page, PageNumber asked_by) {
    if (page >= page_count()) {
        Fault(asked_by, -1,
              "points to page " + std::to_string(page) + ", past the end of the file");
        return std::nullopt;
    }
    auto view = store_.Read(page);
    if (view.ok()) return std::move(view).value();
    Fault(page, -1, "cannot be read: " + view.status().message());
    return std::nullopt;
}

bool CheckRun::Claim(PageNumber page, const std::string& owner) {
    if (page >= page_count()) {
        Fault(page, -1, owner + " uses it, but it is past the end of the file");
        return false;
    }
    if (owners_[page].empty()) {
        owners_[page] = owner;
        return true;
    }
    Fault(page, -1, owner + " uses it, but so does " + owners_[page]);
    return false;
}

std::optional<DataPage> CheckRun::ReadDataPage(PageNumber page, PageNumber asked_by) {
    const auto view = Page(page, asked_by);
    if (!view) return std::nullopt;
    DataPage data;
    const auto bytes = view->bytes();
    if (!HasType(bytes, PageType::kData) || bytes[kSecondByteAt] != kSecondByte) {
        Fault(page, -1, "is not a data page");
        return std::nullopt;
    }
    data.owner = LoadOwner(bytes);
    if (format_.jet4()) data.stamp = base::LoadLittle<std::uint32_t>(bytes.data() + kPageStamp);
    const auto count = base::LoadLittle<std::uint16_t>(bytes.data() + format_.slot_count_offset);
    const std::size_t table_end = format_.slots_offset + std::size_t{2} * count;
    if (count > kMaxSlots || table_end > bytes.size()) {
        Fault(page, -1, "has " + std::to_string(count) + " rows");
        return std::nullopt;
    }
    std::size_t end = bytes.size();
    for (std::size_t i = 0; i < count; ++i) {
        const auto word =
            base::LoadLittle<std::uint16_t>(bytes.data() + format_.slots_offset + 2 * i);
        const std::uint16_t start = word & kSlotOffsetMask;
        if (start > end || start < table_end) {
            Fault(page, static_cast<int>(i), "the row's place is wrong");
            return std::nullopt;
        }
        if ((word & kSlotReserved) != 0) Fault(page, static_cast<int>(i), "has an unknown flag");
        data.slots.push_back({start, static_cast<std::uint16_t>(end - start),
                              static_cast<std::uint16_t>(word & kSlotFlags)});
        end = start;
    }
    const auto free = base::LoadLittle<std::uint16_t>(bytes.data() + kPageFreeBytes);
    CheckFreeBytes(page, free, end - table_end);
    return data;
}

const DataPage* CheckRun::MapPage(PageNumber page, const std::string& what) {
    const auto known = map_pages_.find(page);
    if (known != map_pages_.end()) return &known->second;
    auto data = ReadDataPage(page, page);
    if (!data) return nullptr;
    if (page != 1 && !Claim(page, "the map of " + what)) return nullptr;
    const std::uint32_t owner = page == 1 ? 1 : 0;
    if (data->owner != owner)
        Fault(page, -1, "holds maps, but its owner field is " + std::to_string(data->owner));
    return &map_pages_.emplace(page, std::move(*data)).first->second;
}

void CheckRun::AddBits(std::span<const std::byte> bits, std::uint64_t first_page,
                       const MapBits& map) {
    for (std::size_t byte = 0; byte < bits.size(); ++byte) {
        if (bits[byte] == std::byte{0}) continue;
        for (unsigned bit = 0; bit < 8; ++bit) {
            if ((std::to_integer<unsigned>(bits[byte]) >> bit & 1U) == 0) continue;
            const std::uint64_t page = first_page + 8 * byte + bit;
            if (page < page_count())
                map.members.insert(static_cast<PageNumber>(page));
            else if (!map.may_pass_the_end)
                Fault(map.page, map.row,
                      map.what + " names page " + std::to_string(page) +
                          ", past the end of the file");
        }
    }
}

std::optional<PageSet> CheckRun::ReadMap(RowPointer row, const std::string& what,
                                         bool may_pass_the_end) {
    const DataPage* page = MapPage(row.page, what);
    if (page == nullptr) return std::nullopt;
    if (row.row >= page->slots.size() || page->slots[row.row].flags != 0) {
        Fault(row.page, row.row, "the map of " + what + " is not there");
        return std::nullopt;
    }
    if (!map_rows_.insert({row.page, row.row}).second)
        Fault(row.page, row.row, "is used as the map of " + what + " and of something else");
    const auto view = Page(row.page, row.page);
    if (!view) return std::nullopt;
    const auto bytes = RowIn(*view, *page, row.row);
    PageSet members;
    const MapBits bits{row.page, row.row, may_pass_the_end, what, members};
    if (bytes.size() >= kInlineHead && bytes[0] == kMapInline) {
        const auto first = base::LoadLittle<std::uint32_t>(bytes.data() + kMapFirstPage);
        AddBits(bytes.subspan(kInlineHead), first, bits);
        return members;
    }
    if (bytes.empty() || bytes[0] != kMapReference) {
        Fault(row.page, row.row, "the map of " + what + " has an unknown form");
        return std::nullopt;
    }
    for (std::size_t i = 0; i < MapPointerCount(bytes); ++i) {
        const std::uint32_t number = LoadMapPointer(bytes, i);
        if (number == 0) continue;
        const auto bitmap = Page(number, row.page);
        if (!bitmap || !Claim(number, "the map of " + what)) continue;
        if (!HasType(bitmap->bytes(), PageType::kBitmap) ||
            bitmap->bytes()[kSecondByteAt] != kSecondByte)
            Fault(number, -1, "is not a bitmap page");
        else
            AddBits(bitmap->bytes().subspan(kBitmapHead), i * format_.bits_per_bitmap_page(), bits);
    }
    return members;
}

void CheckRun::CheckReach(RowPointer row) {
    const auto view = Page(row.page, row.page);
    if (!view) return;
    const auto bytes = RowIn(*view, map_pages_.at(row.page), row.row);
    std::uint64_t first = 0;
    std::uint64_t end = MapPointerCount(bytes) * format_.bits_per_bitmap_page();
    if (bytes[0] == kMapInline) {
        first = base::LoadLittle<std::uint32_t>(bytes.data() + kMapFirstPage);
        end = first + 8 * (bytes.size() - kInlineHead);
    }
    if (first > 0 || end < page_count())
        Warn(row.page, row.row, "the map of free pages does not reach every page of the file");
}

}  // namespace jet::check
