// ChangeLines: the fields that a change has changed, one a line, for showing: which lines pass a
// filter, and the texts of one line on demand. The cells stay as they are noted; a change of
// 100,000 rows takes eight bytes a line.
#pragma once

#include "history/folded_change.h"

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace history {

struct ChangeLine {
    std::u16string row;  // what the row is called
    std::u16string field;
    std::u16string before;  // empty for a row that was inserted
    std::u16string after;   // empty for a row that was deleted
    bool operator==(const ChangeLine&) const = default;
};

// Does not change: threads may share it.
class ChangeLines {
public:
    // What a row is called; empty: by its key. Called by whatever thread asks for lines.
    using RowNames = std::function<std::u16string(const jet::NoteTable&, const FoldedRow&)>;
    // A line: a row of the change, and one of its cells.
    struct Place {
        std::uint32_t row = 0;
        std::uint32_t cell = 0;
    };

    explicit ChangeLines(FoldedChange change, RowNames names = {});

    // The names of all fields that the change has touched, in alphabetical order.
    const std::vector<std::u16string>& fields() const { return fields_; }
    // All lines, in the order in which the rows were changed.
    const std::vector<Place>& all() const { return all_; }
    // The lines of this field (empty: of all) in whose row's name or texts `text` occurs, letter
    // case apart (empty: all). Ends early, with less, when a stop is requested.
    std::vector<Place> Matching(std::u16string_view text, std::u16string_view field,
                                const std::stop_token& stop = {}) const;

    ChangeLine Line(Place place) const;
    // The column of its table that a line shows.
    std::size_t ColumnOf(Place place) const { return CellAt(place).column; }
    const FoldedChange& change() const { return change_; }

private:
    const FoldedRow::Cell& CellAt(Place place) const {
        return change_.rows()[place.row].cells[place.cell];
    }
    const std::u16string& FieldAt(Place place) const;

    FoldedChange change_;
    RowNames names_;
    std::vector<std::u16string> fields_;
    std::vector<Place> all_;
};

}  // namespace history
