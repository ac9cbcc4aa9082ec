#include "history/change_lines.h"

#include "history/put_back.h"

#include "base/letter_case.h"

#include <algorithm>
#include <set>
#include <utility>

namespace history {
namespace {

std::u16string Lowered(std::u16string_view text) {
    return base::ToLower(text);
}

bool Holds(std::u16string_view text, std::u16string_view lowered) {
    return Lowered(text).find(lowered) != std::u16string::npos;
}

}  // namespace

// Fields that hold nothing before and after, as those that a new row leaves empty, are no lines.
ChangeLines::ChangeLines(FoldedChange change, RowNames names)
    : change_(std::move(change)), names_(std::move(names)) {
    std::set<std::u16string> fields;
    std::set<std::pair<std::size_t, std::size_t>> met;  // tables and their columns
    for (std::size_t row = 0; row < change_.rows().size(); ++row) {
        const FoldedRow& changed = change_.rows()[row];
        if (!changed.change) continue;
        for (std::size_t cell = 0; cell < changed.cells.size(); ++cell) {
            if (jet::SameCell(changed.cells[cell].before, changed.cells[cell].after)) continue;
            all_.push_back({static_cast<std::uint32_t>(row), static_cast<std::uint32_t>(cell)});
            if (met.insert({changed.table, changed.cells[cell].column}).second)
                fields.insert(FieldAt(all_.back()));
        }
    }
    fields_.assign(fields.begin(), fields.end());
}

const std::u16string& ChangeLines::FieldAt(Place place) const {
    const FoldedRow& row = change_.rows()[place.row];
    return change_.tables()[row.table].columns[row.cells[place.cell].column].name;
}

ChangeLine ChangeLines::Line(Place place) const {
    const FoldedRow& row = change_.rows()[place.row];
    const jet::NoteTable& table = change_.tables()[row.table];
    const FoldedRow::Cell& cell = CellAt(place);
    ChangeLine line;
    if (names_) line.row = names_(table, row);
    if (line.row.empty()) line.row = RowName(table, row);
    line.field = FieldAt(place);
    if (row.change != jet::RowChange::kInserted)
        line.before = CellText(table, cell.column, cell.before);
    if (row.change != jet::RowChange::kDeleted)
        line.after = CellText(table, cell.column, cell.after);
    return line;
}

std::vector<ChangeLines::Place> ChangeLines::Matching(std::u16string_view text,
                                                      std::u16string_view field,
                                                      const std::stop_token& stop) const {
    if (text.empty() && field.empty()) return all_;
    const std::u16string lowered = Lowered(text);
    std::vector<Place> matching;
    for (const Place place : all_) {
        if (stop.stop_requested()) break;
        if (!field.empty() && FieldAt(place) != field) continue;
        if (!lowered.empty()) {
            const ChangeLine line = Line(place);
            if (!Holds(line.row, lowered) && !Holds(line.before, lowered) &&
                !Holds(line.after, lowered))
                continue;
        }
        matching.push_back(place);
    }
    return matching;
}

}  // namespace history
