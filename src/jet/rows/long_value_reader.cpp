#include "jet/errors.h"
#include "jet/pages/data_page.h"
#include "jet/rows/long_value.h"

#include <algorithm>

namespace jet {
namespace {

// Appends the bytes of one long value row; its page is pinned while they are copied.
base::Status AppendPiece(FileContext& file, RowPointer at, bool chained, RowPointer& next,
                         Bytes& value) {
    ASSIGN_OR_RETURN(const PageView view, file.store.Read(at.page));
    const auto page = DataPage::Parse(view.bytes(), file.format);
    const auto row = page && page->owner() == kLongValueOwner ? page->Bytes(at.row) : std::nullopt;
    if (!row || page->Flags(at.row) == kSlotDeleted)
        return DamagedPage(at.page, "a long value is missing");
    std::span<const std::byte> data = *row;
    next = {};
    if (chained) {
        if (data.size() < kLongValuePieceHead)
            return DamagedPage(at.page, "a long value is cut short");
        next = LoadRowPointer(data.data());
        data = data.subspan(kLongValuePieceHead);
        // A chain of empty pieces would never reach its length.
        if (data.empty() && !next.none())
            return DamagedPage(at.page, "a long value has an empty piece");
    }
    value.insert(value.end(), data.begin(), data.end());
    return {};
}

}  // namespace

base::Result<Bytes> ReadLongValue(FileContext& file, std::span<const std::byte> reference) {
    if (reference.size() < kLongValueHead)
        return Damaged("the reference to a long value is cut short");
    const auto word = base::LoadLittle<std::uint32_t>(reference.data());
    const std::size_t length = word & kLongValueLength;
    if ((word & kLongValueInline) != 0) {
        const auto data = reference.subspan(kLongValueHead);
        if (data.size() < length) return Damaged("an inline long value is cut short");
        return Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length));
    }
    RowPointer at = LoadRowPointer(reference.data() + kLongValuePlace);
    const bool chained = (word & kLongValueSingle) == 0;
    Bytes value;
    if (length == 0 && at.none()) return value;
    // A length beyond the size of the file is damage.
    if (length / file.format.page_size > file.store.page_count())
        return Damaged("a long value is longer than the file");
    value.reserve(std::min<std::size_t>(length, std::size_t{16} * file.format.page_size));
    do {
        RowPointer next;
        RETURN_IF_ERROR(AppendPiece(file, at, chained, next, value));
        at = next;
    } while (!at.none() && value.size() < length);
    if (value.size() < length) return Damaged("a long value is shorter than its length");
    value.resize(length);
    return value;
}

}  // namespace jet
