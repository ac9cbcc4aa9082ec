#include "jet/check/check_long_values.h"

#include "jet/pages/data_page.h"
#include "jet/pages/long_value_layout.h"

#include <algorithm>

namespace jet::check {
namespace {

constexpr std::uint32_t kKindOf = ~kLongValueLength;
constexpr std::uint32_t kChain = 0;

}  // namespace

LongValues::LongValues(CheckRun& run, const LongValueMaps& maps, std::string column_name,
                       PageNumber definition_page)
    : run_(run), name_(std::move(column_name)) {
    const std::string what = "long values of " + name_;
    const auto owned = run.ReadMap(maps.owned, what);
    const auto free =
        maps.free.none() ? PageSet() : run.ReadMap(maps.free, "free space in " + what);
    if (!owned || !free) return;
    for (const PageNumber page : *free)
        if (!owned->contains(page))
            run.Fault(page, -1, "is in the map of free space in " + what + ", but not theirs");
    for (const PageNumber page : *owned) {
        if (!run.Claim(page, what)) continue;
        auto data = run.ReadDataPage(page, definition_page);
        if (!data) continue;
        if (data->owner != kLongValueOwner)
            run.Fault(page, -1, "belongs to " + what + ", but does not say so");
        pages_.emplace(page, std::move(*data));
    }
}

std::optional<LongValues::Taken> LongValues::Take(RowPointer pointer, PageNumber page, int row) {
    const auto found = pages_.find(pointer.page);
    const std::string target =
        "page " + std::to_string(pointer.page) + " row " + std::to_string(pointer.row);
    if (found == pages_.end()) {
        run_.Fault(page, row,
                   name_ + " points to " + target + ", which is no page of its long values");
        return std::nullopt;
    }
    const DataPage& data = found->second;
    if (pointer.row >= data.slots.size() || data.slots[pointer.row].flags != 0) {
        run_.Fault(page, row, name_ + " points to " + target + ", where no long value is");
        return std::nullopt;
    }
    if (!used_.insert({pointer.page, pointer.row}).second) {
        run_.Fault(page, row, name_ + " points to " + target + ", as another value does");
        return std::nullopt;
    }
    auto view = run_.Page(pointer.page, page);
    if (!view) return std::nullopt;
    const auto bytes = RowIn(*view, data, pointer.row);
    return Taken{std::move(*view), bytes, data.stamp};
}

Bytes LongValues::Follow(std::span<const std::byte> field, PageNumber page, int row) {
    Bytes content;
    if (field.size() < kLongValueHead) {
        run_.Fault(page, row, name_ + " is too short for a long value");
        return content;
    }
    ++run_.report().long_values;
    const auto word = base::LoadLittle<std::uint32_t>(field.data());
    const std::uint32_t kind = word & kKindOf;
    const std::uint32_t length = word & kLongValueLength;
    const RowPointer pointer = LoadRowPointer(field.data() + kLongValuePlace);
    const auto stamp = base::LoadLittle<std::uint32_t>(field.data() + kLongValueStamp);
    if (kind == kLongValueInline) {
        const auto bytes = field.subspan(kLongValueHead);
        if (length != bytes.size())
            run_.Fault(page, row, name_ + ": the length of the value is wrong");
        content.assign(bytes.begin(), bytes.end());
    } else if (kind == kLongValueSingle) {
        const auto taken = Take(pointer, page, row);
        if (!taken) return content;
        const auto bytes = taken->bytes;
        if (length != bytes.size())
            run_.Fault(page, row, name_ + ": the length of the value is wrong");
        content.assign(bytes.begin(), bytes.end());
    } else if (kind == kChain) {
        FollowChain(pointer, length, stamp, page, row, content);
    } else {
        run_.Fault(page, row, name_ + ": the kind of the value is unknown");
    }
    return content;
}

void LongValues::FollowChain(RowPointer first, std::uint32_t length, std::uint32_t stamp,
                             PageNumber page, int row, Bytes& content) {
    // Every piece is taken once, so a chain that turns back on itself ends.
    for (RowPointer next = first; !next.none();) {
        const auto taken = Take(next, page, row);
        if (!taken) return;
        const auto piece = taken->bytes;
        if (next == first && run_.format().jet4() && taken->stamp != stamp)
            run_.Fault(page, row, name_ + ": the stamp of the value is not that of its page");
        if (piece.size() < kLongValuePieceHead) {
            run_.Fault(next.page, next.row, "is too short for a piece of a long value");
            return;
        }
        content.insert(content.end(), piece.begin() + kLongValuePieceHead, piece.end());
        next = LoadRowPointer(piece.data());
    }
    if (content.size() != length)
        run_.Fault(page, row, name_ + ": the length of the value is wrong");
}

void LongValues::ReportUnused() {
    for (const auto& [page, data] : pages_)
        for (std::size_t slot = 0; slot < data.slots.size(); ++slot)
            if (data.slots[slot].flags != Slot::kDeleted &&
                !used_.contains({page, static_cast<std::uint8_t>(slot)}))
                run_.Warn(page, static_cast<int>(slot), "is a long value that no row has");
}

}  // namespace jet::check
