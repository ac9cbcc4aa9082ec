// The note that a transaction carries about the rows that it changes (docs/formats/history.md): a
// label that says which change it belongs to, the tables, and of each row the cells before and
// after. Notes come from a file, so that everything read from them is checked.
#pragma once

#include "base/status.h"
#include "jet/rows/table_definition.h"
#include "jet/text/text_codec.h"
#include "jet/values/value.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

// Which change a transaction belongs to. Several transactions may belong to one.
struct ChangeLabel {
    std::uint64_t id = 0;      // random: the same for all transactions of the change
    std::uint64_t undoes = 0;  // the id of the change that this one takes back; 0: none
    double time = 0;           // days since 1899-12-30, local time, when the change began
    std::u16string name;       // for the user; empty: it has none
    bool operator==(const ChangeLabel&) const = default;
};

// A table as it was when its rows were changed.
struct NoteTable {
    struct Column {
        std::u16string name;
        ColumnType type = ColumnType::kText;
        std::uint8_t scale = 0;  // kNumeric
    };
    std::u16string name;
    std::vector<Column> columns;
    // Positions of the primary key among `columns`; empty: there is none.
    std::vector<std::size_t> key;
    std::shared_ptr<const TextCodec> text;  // shared by the tables of a note

    // nullopt as it is noted: Null. Damage is kCorruption.
    base::Result<Value> Decode(std::size_t column,
                               const std::optional<std::span<const std::byte>>& cell) const;
};

enum class RowChange : std::uint8_t { kInserted = 1, kDeleted = 2, kUpdated = 3 };

// A cell as it is noted: the bytes of its value; nullopt: Null.
using NotedCell = std::optional<std::span<const std::byte>>;
bool SameCell(const NotedCell& a, const NotedCell& b);

struct NotedRow {
    struct Cell {
        std::size_t column = 0;
        NotedCell before;  // kInserted: nothing
        NotedCell after;   // kDeleted: nothing
    };
    RowChange change = RowChange::kUpdated;
    std::size_t table = 0;  // position in NoteReader::tables()
    // kUpdated: the primary key before the change, in the order of NoteTable::key.
    std::vector<NotedCell> key;
    // kInserted, kDeleted: all columns in their order; kUpdated: those that differ, or all where
    // the table has no key.
    std::vector<Cell> cells;
};

// Reads the rows of one note in their order. The bytes must outlive the reader and what it gives.
class NoteReader {
public:
    // `known`: the tables that earlier notes of the same change have told, as their readers had
    // them at the end. kCorruption: not a note.
    static base::Result<NoteReader> Open(std::span<const std::byte> note,
                                         std::vector<NoteTable> known = {});

    const ChangeLabel& label() const { return label_; }
    // Rows whose content could not be read when they were changed; nothing is known of them.
    std::uint32_t missed_rows() const { return missed_rows_; }
    // Those met so far, the known ones first.
    const std::vector<NoteTable>& tables() const { return tables_; }
    // To be called at the end: for the next note of the change.
    std::vector<NoteTable> TakeTables() && { return std::move(tables_); }

    // False: the end. kCorruption: the rest cannot be read.
    base::Result<bool> Next(NotedRow& row);
    // How many bytes of the note have been read.
    std::size_t position() const { return note_.size() - rest_.size(); }

private:
    explicit NoteReader(std::span<const std::byte> note) : note_(note), rest_(note) {}
    base::Status ReadHead();
    base::Status ReadTable();
    base::Status ReadWholeRow(NotedRow& row);
    base::Status ReadUpdate(NotedRow& row);
    bool ReadNumber(std::uint64_t& number);
    bool ReadText(std::u16string& text);
    bool ReadCell(NotedCell& cell);

    std::span<const std::byte> note_;
    std::span<const std::byte> rest_;
    ChangeLabel label_;
    std::uint32_t missed_rows_ = 0;
    std::shared_ptr<const TextCodec> text_;
    std::vector<NoteTable> tables_;
};

// What stands between the rows of a note.
enum class NoteTag : std::uint8_t {
    kInserted = 1,  // as RowChange
    kDeleted = 2,
    kUpdated = 3,
    kTable = 4,  // a table that no note of the change has told yet
};

// A number in groups of seven bits, the lowest first, the highest bit of each byte set but in the
// last.
void AppendNoteNumber(Bytes& out, std::uint64_t number);
// Its size and its UTF-16 units, little endian.
void AppendNoteText(Bytes& out, std::u16string_view text);
// A cell: 0 for Null, otherwise its size and one, and its bytes.
void AppendNoteCell(Bytes& out, const NotedCell& cell);

// What a note begins with. Has room for `rows_size` bytes behind it.
Bytes NoteHead(const ChangeLabel& label, const TextCodec& text, std::uint32_t missed_rows,
               std::size_t rows_size = 0);

}  // namespace jet
