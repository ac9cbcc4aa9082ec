// ChangeIndex: which changes a history has, how many rows and fields each of them changed, and
// where its notes lie. The notes themselves stay in the file.
#pragma once

#include "jet/tables/change_note.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace history {

// One change as the user knows it: what one command did.
struct Change {
    struct TableCount {
        std::u16string table;
        std::uint64_t rows = 0;  // that it inserted, changed or deleted, each counted once
        bool operator==(const TableCount&) const = default;
    };
    std::uint64_t number = 0;  // grows from change to change
    jet::ChangeLabel label;
    std::vector<TableCount> tables;
    std::uint64_t fields = 0;  // that differ; of an inserted or deleted row all that hold something
    std::uint64_t missed = 0;  // rows that could not be read when they were changed

    std::uint64_t rows() const;
    bool operator==(const Change&) const = default;
};

class ChangeIndex {
public:
    struct Place {
        std::uint64_t offset = 0;  // of the record in the file
        std::uint64_t size = 0;    // of the whole record
    };

    explicit ChangeIndex(std::uint64_t first_number = 1) : next_number_(first_number) {}

    // Takes a note in; notes of one change follow each other, and what the program did by itself
    // belongs to the change before. False: it is damaged, and left out.
    bool Add(std::span<const std::byte> note, Place place);
    // The oldest first. Counts the rows of the newest one, which takes some milliseconds for
    // 100,000.
    const std::vector<Change>& changes();
    // Goes with changes().
    const std::vector<std::vector<Place>>& places() const { return places_; }
    std::uint64_t next_number() const { return next_number_; }

private:
    // Rows that one change has met in one table, by checksums of their keys. Those from `sorted` on
    // may stand there twice, as a command's time is no time to look for each of them.
    struct MetRows {
        std::vector<std::uint64_t> hashes;
        std::size_t sorted = 0;
        void Add(std::uint64_t hash);
        // Afterwards each stands there once.
        void Settle();
    };
    void SettleNewest();
    void Count(const jet::NotedRow& row, const jet::NoteTable& table, Change& change);

    std::uint64_t next_number_;
    std::vector<Change> changes_;
    std::vector<std::vector<Place>> places_;
    std::uint64_t last_id_ = 0;           // in the label of the newest note
    std::vector<jet::NoteTable> tables_;  // that the notes with this id have told
    std::vector<MetRows> met_;            // goes with the tables of the newest change
};

}  // namespace history
