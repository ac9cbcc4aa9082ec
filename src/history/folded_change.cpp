#include "history/folded_change.h"

#include <algorithm>
#include <cstring>

namespace history {
namespace {

using jet::NotedCell;
using jet::RowChange;

void AppendCell(std::string& text, const NotedCell& cell) {
    const std::uint64_t size = cell ? cell->size() + 1 : 0;
    text.append(reinterpret_cast<const char*>(&size), sizeof size);
    if (cell) text.append(reinterpret_cast<const char*>(cell->data()), cell->size());
}

// Of a key, or of all cells where a table has none.
std::string IdentityOf(const FoldedRow& row, const std::vector<NotedCell>& key, bool before) {
    std::string text(reinterpret_cast<const char*>(&row.table), sizeof row.table);
    for (const NotedCell& cell : key)
        AppendCell(text, cell);
    for (std::size_t i = 0; key.empty() && i < row.cells.size(); ++i)
        AppendCell(text, before ? row.cells[i].before : row.cells[i].after);
    return text;
}

FoldedRow::Cell* FindCell(std::vector<FoldedRow::Cell>& cells, std::size_t column) {
    const auto found = std::ranges::find(cells, column, &FoldedRow::Cell::column);
    return found == cells.end() ? nullptr : &*found;
}

// Without a key all cells are needed to find the row.
void DropEqualCells(FoldedRow& row, bool has_key) {
    const auto is_equal = [](const FoldedRow::Cell& cell) {
        return jet::SameCell(cell.before, cell.after);
    };
    if (std::ranges::all_of(row.cells, is_equal)) row.change.reset();
    if (has_key || !row.change) std::erase_if(row.cells, is_equal);
}

}  // namespace

base::Result<FoldedChange> FoldedChange::Fold(std::vector<jet::Bytes> notes,
                                              const std::stop_token& stop) {
    FoldedChange folded;
    folded.notes_ = std::move(notes);
    std::vector<jet::NoteTable> told;
    for (const jet::Bytes& note : folded.notes_)
        RETURN_IF_ERROR(folded.Add(note, told, stop));
    return folded;
}

// `told`: the tables of the notes before, and then those of this one as well.
base::Status FoldedChange::Add(std::span<const std::byte> note, std::vector<jet::NoteTable>& told,
                               const std::stop_token& stop) {
    ASSIGN_OR_RETURN(jet::NoteReader reader, jet::NoteReader::Open(note, std::move(told)));
    // What the program did by itself afterwards tells its tables anew.
    if (std::exchange(last_id_, reader.label().id) != reader.label().id) {
        ASSIGN_OR_RETURN(reader, jet::NoteReader::Open(note));
    }
    std::vector<Place> places;
    jet::NotedRow row;
    for (;;) {
        if (stop.stop_requested()) return {};
        ASSIGN_OR_RETURN(const bool more, reader.Next(row));
        if (!more) {
            told = std::move(reader).TakeTables();
            return {};
        }
        while (places.size() < reader.tables().size())
            places.push_back(PlaceOf(reader.tables()[places.size()]));
        AddRow(row, places[row.table]);
    }
}

// The design may have changed between two notes: a column of another type is another column.
FoldedChange::Place FoldedChange::PlaceOf(const jet::NoteTable& table) {
    const auto key_names = [](const jet::NoteTable& of) {
        std::vector<std::u16string> names;
        for (const std::size_t column : of.key)
            names.push_back(of.columns[column].name);
        return names;
    };
    const auto same = std::ranges::find_if(tables_, [&](const jet::NoteTable& known) {
        return known.name == table.name && key_names(known) == key_names(table);
    });
    Place place;
    place.table = static_cast<std::size_t>(same - tables_.begin());
    if (same == tables_.end()) tables_.push_back(table);
    jet::NoteTable& known = tables_[place.table];
    for (const jet::NoteTable::Column& column : table.columns) {
        const auto found = std::ranges::find_if(known.columns, [&](const auto& other) {
            return other.name == column.name && other.type == column.type &&
                   other.scale == column.scale;
        });
        place.columns.push_back(static_cast<std::size_t>(found - known.columns.begin()));
        if (found == known.columns.end()) known.columns.push_back(column);
    }
    return place;
}

void FoldedChange::AddRow(const jet::NotedRow& row, const Place& place) {
    FoldedRow folded;
    folded.table = place.table;
    folded.change = row.change;
    for (const jet::NotedRow::Cell& cell : row.cells)
        folded.cells.push_back({place.columns[cell.column], cell.before, cell.after});
    const std::vector<std::size_t>& key = tables_[place.table].key;
    if (row.change == RowChange::kUpdated) {
        folded.key_before = folded.key_after = row.key;
        for (std::size_t i = 0; i < key.size(); ++i)
            if (const auto* cell = FindCell(folded.cells, key[i]))
                folded.key_after[i] = cell->after;
        return Update(std::move(folded));
    }
    const bool is_new = row.change == RowChange::kInserted;
    for (const std::size_t column : key)
        if (const auto* cell = FindCell(folded.cells, column))
            (is_new ? folded.key_after : folded.key_before)
                .push_back(is_new ? cell->after : cell->before);
    is_new ? Insert(std::move(folded)) : Delete(std::move(folded));
}

void FoldedChange::AddNew(FoldedRow row) {
    const bool is_gone = row.change == RowChange::kDeleted;
    const auto& key = is_gone ? row.key_before : row.key_after;
    (is_gone ? deleted_ : present_)[IdentityOf(row, key, is_gone)] = rows_.size();
    rows_.push_back(std::move(row));
}

// A row of the same key that the change had deleted has been replaced.
void FoldedChange::Insert(FoldedRow row) {
    const auto found = deleted_.find(IdentityOf(row, row.key_after, false));
    if (found == deleted_.end()) return AddNew(std::move(row));
    FoldedRow& known = rows_[found->second];
    for (FoldedRow::Cell& cell : row.cells) {
        if (FoldedRow::Cell* const old = FindCell(known.cells, cell.column))
            old->after = cell.after;
        else
            known.cells.push_back(cell);
    }
    known.change = RowChange::kUpdated;
    known.key_after = row.key_after;
    DropEqualCells(known, !row.key_after.empty());
    if (!row.key_after.empty()) present_[IdentityOf(row, row.key_after, false)] = found->second;
    deleted_.erase(found);
}

void FoldedChange::Delete(FoldedRow row) {
    const auto found = present_.find(IdentityOf(row, row.key_before, true));
    if (found == present_.end()) return AddNew(std::move(row));
    const std::size_t position = found->second;
    present_.erase(found);
    FoldedRow& known = rows_[position];
    if (known.change == RowChange::kInserted) {
        known.change.reset();
        known.cells.clear();
        return;
    }
    // What the row held before the change, as far as it is known; else what it held to the end.
    for (FoldedRow::Cell& cell : row.cells) {
        if (const auto* old = FindCell(known.cells, cell.column)) cell.before = old->before;
        cell.after.reset();
    }
    row.key_before = known.key_before;
    known = std::move(row);
    deleted_[IdentityOf(known, known.key_before, true)] = position;
}

void FoldedChange::Update(FoldedRow row) {
    const auto found = present_.find(IdentityOf(row, row.key_before, true));
    if (found == present_.end()) return AddNew(std::move(row));
    const std::size_t position = found->second;
    FoldedRow& known = rows_[position];
    for (FoldedRow::Cell& cell : row.cells) {
        if (FoldedRow::Cell* const old = FindCell(known.cells, cell.column))
            old->after = cell.after;
        else
            known.cells.push_back(cell);
    }
    if (!known.change) known.change = RowChange::kUpdated;
    if (known.change == RowChange::kUpdated) DropEqualCells(known, !row.key_after.empty());
    known.key_after = row.key_after;
    present_.erase(found);
    present_[IdentityOf(row, row.key_after, false)] = position;
}

const FoldedRow* FoldedChange::FindAfter(std::u16string_view table,
                                         const std::vector<NotedCell>& key) const {
    for (std::size_t i = 0; i < tables_.size(); ++i) {
        if (tables_[i].name != table) continue;
        FoldedRow row;
        row.table = i;
        const std::string identity = IdentityOf(row, key, false);
        for (const Rows* const rows : {&present_, &deleted_})
            if (const auto found = rows->find(identity); found != rows->end())
                return &rows_[found->second];
    }
    return nullptr;
}

}  // namespace history
