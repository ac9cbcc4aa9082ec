// FilePageStore: a page store over a file, with a journal beside it.
//
// Where the newest committed content of a page is: in `pending_` if its commit has not reached the
// database file, else in the database file (and perhaps in `cache_`). A commit appends one record
// to the journal and puts its pages into `pending_`. A checkpoint, which the flusher runs half a
// second after a commit, works in this order:
//  1. append a fresh file mark to the journal;
//  2. sync the journal, then hand the notes of its commits on, and the mark;
//  3. write the pending pages and the mark into the database file;
//  4. sync the database file;
//  5. forget the pages written; if none was committed meanwhile, empty the journal.
// Until 5 is done the journal can repeat everything; until 2 is done the database file is not
// touched. Opening a file with a journal continues that journal and runs a checkpoint at once.
//
// Pages are plain in memory and encoded in the file and in the journal, where the file's page 0
// asks for that.
//
// A long scan reads ahead into `prefetch_`, which never holds a page that was committed since.
//
// Threads: everything that `mutex_` names is reached under it; `checkpoint_mutex_` keeps
// checkpoints apart and is taken first. The journal's bytes and the database file are written by a
// checkpoint without `mutex_`: the store's own thread never reads a pending page from the file.
#pragma once

#include "jet/pages/flusher.h"
#include "jet/pages/journal_recovery.h"
#include "jet/pages/lock_file.h"
#include "jet/pages/page_cache.h"
#include "jet/pages/page_encoding.h"
#include "jet/pages/page_store.h"
#include "jet/pages/page_transaction.h"
#include "jet/pages/prefetch.h"
#include "jet/pages/read_ahead.h"
#include "jet/pages/sectors.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace jet {

// Turns errors of the system into the engine's own; any other status is returned as it is.
base::Status EngineStatus(const base::Status& status);

class FilePageStore final : public PageStore {
public:
    // A database file that was opened, locked and recognised.
    struct Parts {
        std::unique_ptr<File> file;
        std::unique_ptr<LockFile> owner;  // null: read only
        std::uint32_t page_size = 0;
        PageNumber page_count = 0;
        PageEncoding encoding;
    };
    FilePageStore(FileSystem& files, const std::filesystem::path& path, Parts parts,
                  const PageStoreOptions& options);
    ~FilePageStore() override;

    // Takes over the content of a journal. `journal` null: read only, nothing is written.
    base::Status Recover(RecoveredJournal recovered, std::unique_ptr<File> journal);
    void StartFlusher(std::chrono::milliseconds delay);

    bool read_only() const override { return read_only_; }
    std::uint32_t page_size() const override { return page_size_; }
    PageNumber page_count() const override;
    bool in_transaction() const override { return transaction_.open(); }
    base::Result<PageView> Read(PageNumber page) override;
    base::Status Begin() override;
    using PageStore::Commit;
    base::Status Commit(std::vector<std::byte> note) override;
    bool takes_notes() const override { return notes_ != nullptr; }
    void Rollback() override { transaction_.End(); }
    base::Result<std::span<std::byte>> Change(PageNumber page) override;
    base::Result<PageNumber> Extend() override;
    base::Status Flush() override;
    base::Status Close() override;

private:
    // A committed page, and where it differs from the one in the file.
    struct PendingPage {
        SharedPage page;
        Sectors sectors = 0;
    };
    using PendingPages = std::map<PageNumber, PendingPage>;
    struct Snapshot {
        PendingPages pages;
        std::uint64_t mark = 0;
        std::size_t notes = 0;  // so many notes belong to commits up to here
    };
    class Writer;

    base::Status CheckUsable() const;
    base::Result<SharedPage> Load(PageNumber page);
    base::Result<SharedPage> Fetch(PageNumber page);
    SharedPage TakePrefetched(PageNumber page);
    SharedPage FindInMemory(PageNumber page);
    base::Result<JournalHeader> MakeJournalHeader();
    base::Status GiveFirstMark(PageBytes& first_page);
    base::Status CommitPages(std::vector<std::byte> note);
    // These two: under mutex_.
    base::Status AppendToJournal(std::vector<std::byte> note);
    PageTransaction::ChangedPages EncodedPages() const;
    void TakeIntoPending();

    base::Status Checkpoint();
    base::Result<std::optional<Snapshot>> BeginCheckpoint();
    void HandNotesOn(const Snapshot& snapshot);
    base::Status WriteSnapshot(const Snapshot& snapshot);
    base::Status WritePage(PageNumber number, const PendingPage& pending, std::uint64_t mark,
                           Writer& writer) const;
    base::Status EndCheckpoint(const Snapshot& snapshot);

    const std::filesystem::path path_;
    const std::uint32_t page_size_;
    const PageEncoding encoding_;
    const bool read_only_;
    CommitNotes* const notes_;  // null: nobody takes notes
    bool closed_ = false;
    bool is_in_doubt_ = false;  // a failed commit may come back at the next opening
    PageTransaction transaction_;
    PageNumber committed_count_;
    ReadAhead read_ahead_;
    Prefetch prefetch_;
    PageNumber last_prefetched_ = 0;  // the page of `prefetch_` that was asked for last

    std::mutex checkpoint_mutex_;
    std::mutex mutex_;
    std::unique_ptr<File> file_;
    std::unique_ptr<LockFile> owner_;
    Journal journal_;                    // mutex_
    PendingPages pending_;               // mutex_
    PageCache cache_;                    // mutex_
    PageNumber pages_in_file_;           // mutex_; page numbers below can be read from the file
    bool first_mark_is_durable_ = true;  // mutex_; false: giving it failed
    std::unique_ptr<Flusher> flusher_;
};

}  // namespace jet
