// CheckRun: what all steps of one check share: the pages, the owner of each, the findings.
#pragma once

#include "jet/check/check.h"
#include "jet/pages/data_page.h"
#include "jet/pages/format.h"
#include "jet/text/names.h"
#include "jet/text/text_codec.h"

#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace jet::check {

// A slot of a data page: where its row lies and what its flags say.
struct Slot {
    static constexpr std::uint16_t kMoved = kSlotMoved;
    static constexpr std::uint16_t kTarget = kSlotTarget;
    static constexpr std::uint16_t kDeleted = kSlotDeleted;

    std::uint16_t start = 0;
    std::uint16_t size = 0;
    std::uint16_t flags = 0;
};

// A data page whose slot table was found to lie inside of it. Of all data pages of a table at a
// time the slots are held, and the bytes of none.
struct DataPage {
    std::uint32_t owner = 0;
    std::uint32_t stamp = 0;  // Jet 4
    std::vector<Slot> slots;
};

// The bytes of a page that is known as `page`, as long as `view` lives.
inline std::span<const std::byte> RowIn(const PageView& view, const DataPage& page,
                                        std::size_t slot) {
    return view.bytes().subspan(page.slots[slot].start, page.slots[slot].size);
}

using PageSet = std::set<PageNumber>;

// Names are equal where the engine takes them for equal.
struct NameLess {
    bool operator()(std::u16string_view a, std::u16string_view b) const { return NameBefore(a, b); }
};
using NameSet = std::set<std::u16string, NameLess>;

class CheckRun {
public:
    CheckRun(PageStore& store, const Format& format, TextCodec text, CheckOptions options);

    const Format& format() const { return format_; }
    const TextCodec& text() const { return text_; }
    const CheckOptions& options() const { return options_; }
    PageNumber page_count() const { return static_cast<PageNumber>(owners_.size()); }
    CheckReport& report() { return report_; }

    // An engine later than Jet 4 created or compacted the file.
    bool written_by_later_engine() const { return written_by_later_engine_; }
    void SetWrittenByLaterEngine() { written_by_later_engine_ = true; }

    // What a page says of its free space: too little costs space only, too much costs data.
    void CheckFreeBytes(PageNumber page, std::size_t said, std::size_t real);

    // The name goes into the findings that follow.
    void SetTable(std::string name) { table_ = std::move(name); }
    void Fault(PageNumber page, int row, std::string text);
    void Warn(PageNumber page, int row, std::string text);

    // nullopt (reported): no such page, or it cannot be read.
    std::optional<PageView> Page(PageNumber page, PageNumber asked_by);

    // Notes that `owner` uses the page. false (reported): it is in use already.
    bool Claim(PageNumber page, const std::string& owner);
    bool IsClaimed(PageNumber page) const { return !owners_[page].empty(); }

    // Reads a data page and checks its slot table. nullopt (reported): it makes no sense.
    std::optional<DataPage> ReadDataPage(PageNumber page, PageNumber asked_by);

    // Members of a usage map; the map pages and bitmap pages become claimed. `may_pass_the_end`:
    // bits for pages that the file does not have are normal. nullopt (reported): no map there.
    std::optional<PageSet> ReadMap(RowPointer row, const std::string& what,
                                   bool may_pass_the_end = false);

    // Warns when the map of free pages, which ReadMap has read, leaves pages of the file out: they
    // count as used.
    void CheckReach(RowPointer row);

private:
    struct MapBits;
    const DataPage* MapPage(PageNumber page, const std::string& what);
    void AddBits(std::span<const std::byte> bits, std::uint64_t first_page, const MapBits& map);

    PageStore& store_;
    const Format& format_;
    TextCodec text_;
    CheckOptions options_;
    CheckReport report_;
    std::string table_;
    bool written_by_later_engine_ = false;
    std::vector<std::string> owners_;
    std::map<PageNumber, DataPage> map_pages_;
    std::set<std::pair<PageNumber, std::uint8_t>> map_rows_;
};

}  // namespace jet::check
