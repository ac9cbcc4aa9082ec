// What a left-over journal holds: the transactions that were complete when the process or the
// machine died. Nothing here writes.
#pragma once

#include "jet/pages/journal.h"

namespace jet {

struct RecoveredJournal {
    JournalPages pages;         // content after the last complete transaction
    PageNumber page_count = 0;  // pages of the database file then
    JournalEnd end;             // where the journal can be continued; the notes of all transactions
    std::vector<std::uint64_t> marks;  // that the database file can carry
};

enum class JournalOwner : std::uint8_t {
    kNobody,  // it holds no complete transaction
    kThisFile,
    kAnotherFile,  // or this file in another state
};

struct LeftOverJournal {
    JournalOwner owner = JournalOwner::kNobody;
    RecoveredJournal content;  // kThisFile only
};

// Reads `journal` up to the first record that is torn or of another journal. `page_size` is that of
// the database file. kIoError: one of the files cannot be read.
base::Result<LeftOverJournal> ReadJournal(const File& journal, const File& database,
                                          std::uint32_t page_size);

}  // namespace jet
