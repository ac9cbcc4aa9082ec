// The long values (memo, OLE) of one column: follows what rows point to, and finds what no row
// points to.
#pragma once

#include "jet/check/check_definition.h"
#include "jet/pages/data_page.h"

#include <map>
#include <set>
#include <string>

namespace jet::check {

class LongValues {
public:
    // Reads the column's maps and pages. `run` must outlive it.
    LongValues(CheckRun& run, const LongValueMaps& maps, std::string column_name,
               PageNumber definition_page);

    // The content of the value that a row's field refers to; damage is reported at that row.
    Bytes Follow(std::span<const std::byte> field, PageNumber page, int row);

    // Call after all rows: reports live long values that no row refers to.
    void ReportUnused();

private:
    using Place = std::pair<PageNumber, std::uint8_t>;
    // A piece of a value that was found.
    struct Taken {
        PageView view;
        std::span<const std::byte> bytes;  // in `view`
        std::uint32_t stamp;               // of its page
    };
    // nullopt (reported): there is none, or it was taken before.
    std::optional<Taken> Take(RowPointer pointer, PageNumber page, int row);
    void FollowChain(RowPointer first, std::uint32_t length, std::uint32_t stamp, PageNumber page,
                     int row, Bytes& content);

    CheckRun& run_;
    std::string name_;
    std::map<PageNumber, DataPage> pages_;
    std::set<Place> used_;
};

}  // namespace jet::check
