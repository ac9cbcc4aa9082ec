// Journal: the sister file (name of the database file + "-journal") that commits are written to
// before they reach the database file itself. Its life: made at the first commit; each commit
// appends one record with a plain write (that survives the death of the process); a checkpoint
// syncs it, writes the pages into the database file, syncs that and empties the journal; the last
// one to close removes it. Threads: calls that change it are made under the lock of the store; Sync
// may run beside them.
#pragma once

#include "jet/pages/commit_notes.h"
#include "jet/pages/file_system.h"
#include "jet/pages/journal_format.h"

#include <memory>
#include <unordered_map>

namespace jet {

// Where a journal can be continued.
struct JournalEnd {
    std::uint64_t offset = 0;  // 0: the journal is empty
    std::uint64_t chain = 0;   // checksum of the last record
    // That it tells something of: whole ones, or so many bytes of changes of what the database file
    // has. Recovery leaves them out: it empties the journal before anything is appended.
    std::unordered_map<PageNumber, std::size_t> pages;
    static constexpr std::size_t kWhole = 0;
    PageNumber first_new_page = 0;  // pages below were in the database file when it was begun
    std::uint64_t salt = 0;         // of the journal; 0: it is empty
    std::vector<CommitNote> notes;  // that no checkpoint has taken yet
};

class Journal {
public:
    Journal(FileSystem& files, std::filesystem::path path);

    static std::filesystem::path PathFor(const std::filesystem::path& database);

    // Continues behind what recovery found.
    void Resume(std::unique_ptr<File> file, JournalEnd end);

    bool empty() const { return end_.offset == 0; }
    std::uint64_t size_bytes() const { return end_.offset; }

    // Appends one transaction and in front of it its note, if that is not empty. `header` names the
    // database file and is written when the journal is empty. On failure the journal is as before,
    // unless is_in_doubt().
    base::Status AddTransaction(const PageTransaction::ChangedPages& pages, PageNumber page_count,
                                const JournalHeader& header, std::vector<std::byte> note);
    // Appends a record: a checkpoint begins that gives the database file this mark. Requires:
    // !empty().
    base::Status AddMark(std::uint64_t mark);

    // The notes that were not taken yet, the oldest first.
    std::size_t note_count() const { return end_.notes.size(); }
    std::vector<CommitNote> TakeNotes(std::size_t count);

    // The last AddTransaction failed and could not be taken back: recovery may or may not find it.
    bool is_in_doubt() const { return in_doubt_; }

    // Everything appended so far is on the disk when this returns ok. Systems may drop what a
    // failed sync could not write, so the next one writes it all again first.
    base::Status Sync();
    // Requires: all of it is in the database file, durably.
    base::Status Reset();
    // Requires: empty().
    void RemoveFile();

private:
    base::Status EnsureOpen();
    // The answer: the page's new place in JournalEnd::pages.
    std::size_t AppendChangeOf(PageNumber number, const PageTransaction::ChangedPage& page,
                               std::vector<std::byte>& bytes) const;
    base::Status Append(std::span<const std::byte> bytes, std::uint64_t chain);
    void TakeBack();
    base::Status WriteAnew();

    FileSystem& files_;
    std::filesystem::path path_;
    std::unique_ptr<File> file_;
    JournalEnd end_;
    bool folder_synced_ = false;
    bool sync_failed_ = false;
    bool in_doubt_ = false;
};

}  // namespace jet
