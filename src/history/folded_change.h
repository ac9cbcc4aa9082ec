// FoldedChange: what a change did to each row in the end. A row that was changed several times is
// one row here, with the cells that it had before the first time and after the last; one that was
// inserted and deleted again is none.
#pragma once

#include "jet/tables/change_note.h"

#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace history {

struct FoldedRow {
    struct Cell {
        std::size_t column = 0;  // position in NoteTable::columns
        jet::NotedCell before;
        jet::NotedCell after;
    };
    std::size_t table = 0;  // position in FoldedChange::tables()
    // nullopt: in the end nothing has changed.
    std::optional<jet::RowChange> change;
    // In the order of NoteTable::key. A row that was inserted has no key before, one that was
    // deleted none after.
    std::vector<jet::NotedCell> key_before;
    std::vector<jet::NotedCell> key_after;
    // Inserted and deleted rows, and updated ones without a key: all columns. Updated ones with a
    // key: those that differ.
    std::vector<Cell> cells;
};

class FoldedChange {
public:
    // `notes`: those of one change, the oldest first. kCorruption: one is damaged. Ends early, with
    // less, when a stop is requested.
    static base::Result<FoldedChange> Fold(std::vector<jet::Bytes> notes,
                                           const std::stop_token& stop = {});
    FoldedChange(FoldedChange&&) = default;
    FoldedChange& operator=(FoldedChange&&) = default;

    const std::vector<jet::NoteTable>& tables() const { return tables_; }
    // In the order in which they were changed first.
    const std::vector<FoldedRow>& rows() const { return rows_; }

    // The row of the table of this name that had this key before or has it now; nullptr: the change
    // did not touch it.
    const FoldedRow* FindAfter(std::u16string_view table,
                               const std::vector<jet::NotedCell>& key) const;

private:
    // A table of a note: which of tables_ it is, and which of its columns each of the note's is.
    struct Place {
        std::size_t table = 0;
        std::vector<std::size_t> columns;
    };
    using Rows = std::unordered_map<std::string, std::size_t>;  // by key, positions in rows_

    FoldedChange() = default;
    base::Status Add(std::span<const std::byte> note, std::vector<jet::NoteTable>& told,
                     const std::stop_token& stop);
    Place PlaceOf(const jet::NoteTable& table);
    void AddRow(const jet::NotedRow& row, const Place& place);
    void Insert(FoldedRow row);
    void Delete(FoldedRow row);
    void Update(FoldedRow row);
    void AddNew(FoldedRow row);

    std::vector<jet::Bytes> notes_;  // that all cells point into
    std::uint64_t last_id_ = 0;      // in the label of the note read last
    std::vector<jet::NoteTable> tables_;
    std::vector<FoldedRow> rows_;
    Rows present_;  // by the key that the row has now
    Rows deleted_;  // by the key that it had
};

}  // namespace history
