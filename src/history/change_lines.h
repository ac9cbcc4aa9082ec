// ChangeLines: the fields that a change has changed, one a line, for showing: which lines pass a
// filter, and the texts of one line on demand. The cells stay as they are noted; a change of
// 100,000 rows takes eight bytes a line.
#pragma once

#include "history/folded_change.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace history {

struct ChangeLine {
    std::u16string row;  // what the row is called
    std::u16string field;
    std::u16string before;  // empty for a row that was inserted
    std::u16string after;   // empty for a row that was deleted
    bool operator==(const ChangeLine&) const = default;
};

class ChangeLines {
public:
    // What a row is called; empty: by its key.
    using RowNames = std::function<std::u16string(const jet::NoteTable&, const FoldedRow&)>;

    explicit ChangeLines(FoldedChange change, RowNames names = {});

    // The names of all fields that the change has touched, in alphabetical order.
    const std::vector<std::u16string>& fields() const { return fields_; }
    // Shows the lines of this field (empty: of all) in whose row's name or texts `text` occurs,
    // letter case apart (empty: all).
    void Filter(std::u16string_view text, std::u16string_view field);

    std::size_t size() const { return shown_.size(); }
    ChangeLine Line(std::size_t line) const;
    // Where the line comes from: a row of the change, and a column of its table.
    std::size_t RowOf(std::size_t line) const { return shown_[line].row; }
    std::size_t ColumnOf(std::size_t line) const;
    const FoldedChange& change() const { return change_; }

private:
    struct Place {
        std::uint32_t row = 0;
        std::uint32_t cell = 0;
    };
    ChangeLine LineAt(Place place) const;
    const FoldedRow::Cell& CellAt(Place place) const {
        return change_.rows()[place.row].cells[place.cell];
    }
    const std::u16string& FieldAt(Place place) const;

    FoldedChange change_;
    RowNames names_;
    std::vector<std::u16string> fields_;
    std::vector<Place> all_;
    std::vector<Place> shown_;
};

}  // namespace history
