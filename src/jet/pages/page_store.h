// PageStore: the pages of one database file, with atomic and durable groups of changes
// (transactions). Units: a PageNumber counts pages from 0, never bytes. The store knows nothing of
// what the pages hold, except that page 0 says how large a page is. A transaction is open from
// Begin to Commit or Rollback; pages are changed only inside of one. Readers inside the transaction
// see its changes. When Commit has returned ok, the death of the process loses nothing; a power cut
// loses at most the last second and never leaves half a transaction. A failed Commit leaves the
// state before Begin. Errors: kIoError, kNoSpace, kCorruption, kBusy (held by another process,
// which the message names), kPermissionDenied. After a failed Rollback or a failure that leaves
// memory and disk in doubt, every call fails. Threads: one PageStore belongs to one thread (its own
// flusher excepted).
#pragma once

#include "base/status.h"
#include "jet/ids.h"
#include "jet/pages/commit_notes.h"
#include "jet/pages/file_system.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace jet {

// A page for reading. Keeps its bytes valid and unchanged as long as it lives, even when the page
// is written in the meantime (the view then shows the old content).
class PageView {
public:
    PageView() = default;
    explicit PageView(std::shared_ptr<const std::vector<std::byte>> bytes)
        : bytes_(std::move(bytes)) {}
    std::span<const std::byte> bytes() const { return *bytes_; }
    const std::byte* data() const { return bytes_->data(); }
    explicit operator bool() const { return bytes_ != nullptr; }

private:
    std::shared_ptr<const std::vector<std::byte>> bytes_;
};

struct PageStoreOptions {
    bool read_only = false;
    std::size_t cache_bytes = 32U << 20;
    // Delay after which a thread of the store makes a commit durable. 0: no thread; only Flush and
    // Close do it.
    std::chrono::milliseconds flush_delay{500};
    // Takes the notes of commits on; null: nobody does. Borrowed; outlives the store. An encoded
    // file has no notes, as they would lie in the clear.
    CommitNotes* notes = nullptr;
};

class PageStore {
public:
    virtual ~PageStore() = default;  // Close() without its Status

    virtual bool read_only() const = 0;
    virtual std::uint32_t page_size() const = 0;
    // Pages in the file, the ones added by the open transaction included.
    virtual PageNumber page_count() const = 0;

    // kCorruption: no such page.
    virtual base::Result<PageView> Read(PageNumber page) = 0;

    // Requires: no open transaction. kPermissionDenied: the store is read only.
    virtual base::Status Begin() = 0;
    // `note` comes into the journal with the transaction, even if that changes no page, and is
    // handed on to CommitNotes later; empty: none. Dropped unless takes_notes().
    virtual base::Status Commit(std::vector<std::byte> note) = 0;
    base::Status Commit() { return Commit({}); }
    virtual bool takes_notes() const { return false; }
    // Puts memory back to the state before Begin. Nothing happens without an open transaction.
    virtual void Rollback() = 0;
    virtual bool in_transaction() const = 0;

    // Inside a transaction: the page's bytes for changing, page_size() of them; valid until the
    // next call of the store with the same page, Commit or Rollback. The page must exist.
    virtual base::Result<std::span<std::byte>> Change(PageNumber page) = 0;
    // Inside a transaction: a new page of zeros at the end of the file.
    virtual base::Result<PageNumber> Extend() = 0;

    // Makes everything committed so far durable and visible in the database file itself (other
    // programs read it there); leaves an empty journal.
    virtual base::Status Flush() = 0;
    // Flush, then gives the file and its lock back. Every later call fails.
    virtual base::Status Close() = 0;
};

// Opens `path`; if a journal of this file was left behind, the file is brought to the state of its
// last committed transaction. A writer locks the file exclusively. Requires: `files` outlives the
// store.
base::Result<std::unique_ptr<PageStore>> OpenPageStore(FileSystem& files,
                                                       const std::filesystem::path& path,
                                                       const PageStoreOptions& options);

// A page store in memory, for building files and for tests; `pages` is its first content (whole
// pages).
std::unique_ptr<PageStore> MakeMemoryPageStore(std::uint32_t page_size,
                                               const std::vector<std::byte>& pages);

// Where the pages of a database are that is only read and lies in no file of its own.
struct PageSource {
    std::uint32_t page_size = 0;
    PageNumber page_count = 0;
    // Fills `bytes`, page_size of them, with a page below page_count as the file has it.
    std::function<base::Status(PageNumber page, std::span<std::byte> bytes)> read;
};

// The whole pages of `bytes`, which is borrowed.
PageSource PagesOf(std::span<const std::byte> bytes, std::uint32_t page_size);

// Keeps some pages in memory and reads the others again when they are asked for. Whatever would
// change them is kPermissionDenied. Requires: there is a page. Threads: one.
std::unique_ptr<PageStore> MakeReadOnlyPageStore(PageSource source,
                                                 std::size_t cache_bytes = 4U << 20);

}  // namespace jet
