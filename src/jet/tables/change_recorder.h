// ChangeRecorder: writes down which rows the open transaction changes, as cells before and after.
// Tables tell it of each row; the database puts what it has into the note of the commit. A row
// that cannot be read is counted and left out: recording never makes a change fail.
#pragma once

#include "jet/rows/file_context.h"
#include "jet/rows/row_view.h"
#include "jet/tables/change_note.h"

#include <map>
#include <span>
#include <string>

namespace jet {

// What the recorder needs to know of a table. Borrowed.
struct RecordedTable {
    FileContext& file;
    const TableDefinition& definition;
    const std::u16string& name;
};

class ChangeRecorder {
public:
    ChangeRecorder() = default;
    ChangeRecorder(const ChangeRecorder&) = delete;
    ChangeRecorder& operator=(const ChangeRecorder&) = delete;

    // A row that is there, before it is deleted or after it was inserted.
    void AddRow(const RecordedTable& table, RowChange change, const RowView& row);
    // The two halves of an update of one row: before it is changed and after. `columns` are the
    // positions in definition.columns that may change, the same both times. Requires: no other row
    // in between. A second half without the first is a row that could not be read.
    void BeginUpdate(const RecordedTable& table, const RowView& row,
                     std::span<const std::size_t> columns);
    void FinishUpdate(const RecordedTable& table, const RowView& row,
                      std::span<const std::size_t> columns);
    // A row could not be read.
    void Miss() {
        ++missed_;
        update_is_readable_ = false;
    }

    // Of the open transaction: whether there is anything to tell, and how many rows.
    bool empty() const { return count_ == 0 && missed_ == 0; }
    std::size_t row_count() const { return count_; }
    // The rows so far, as they stand in a note behind its head.
    const Bytes& rows() const { return rows_; }
    std::uint32_t missed() const { return missed_; }
    // A transaction of the change with this id begins. Notes of one change tell each table once.
    void Begin(std::uint64_t change);
    // The note with what there is has been committed.
    void NoteCommitted();
    // The transaction has ended without a note.
    void Forget();
    // The table's design has changed.
    void ForgetTable(PageNumber definition) {
        tables_.erase(definition);
        last_ = tables_.end();
    }

private:
    struct Known {
        std::uint64_t number = 0;        // in the notes of this change
        std::vector<std::size_t> key;    // positions in definition.columns
        std::vector<std::size_t> every;  // all positions, where there is no key
    };
    const Known& TableOf(const RecordedTable& table);
    std::span<const std::size_t> Looked(const Known& known,
                                        std::span<const std::size_t> columns) const;
    void Clear();
    void AppendDifferences(const Known& known, std::span<const std::size_t> columns);

    Bytes rows_;
    std::uint64_t change_ = 0;
    std::map<PageNumber, Known> tables_;                          // by definition page
    std::map<PageNumber, Known>::iterator last_ = tables_.end();  // asked for last
    std::uint64_t next_number_ = 0;
    std::uint64_t told_numbers_ = 0;  // those below are told by notes that were committed
    std::size_t count_ = 0;
    std::uint32_t missed_ = 0;
    // Of the update that was begun: key cells, then the cells of its columns; whether they could be
    // read.
    Bytes key_before_;
    Bytes before_;
    Bytes after_;
    bool update_is_readable_ = false;
};

}  // namespace jet
