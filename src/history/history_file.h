// HistoryFile: the file beside a database (its name + "-history") that keeps which rows were
// changed, by what, and what they were before. It takes the notes of the database's commits at each
// checkpoint. Made when the first note comes; what does not belong to the database file, by the
// file mark, is renamed aside and never applied. When it grows beyond its limit, the oldest changes
// leave it as wholes. Nothing here can fail a change of the database: what cannot be kept is lost
// history, which TakeFailure tells once. Threads: any; it has one lock.
#pragma once

#include "base/status.h"
#include "history/change_index.h"
#include "history/history_format.h"
#include "jet/pages/commit_notes.h"
#include "jet/pages/file_system.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace history {

inline constexpr std::uint64_t kDefaultLimitBytes = 200U << 20;

class HistoryFile final : public jet::CommitNotes {
public:
    // Requires: `files` outlives the object. Nothing is opened yet.
    HistoryFile(jet::FileSystem& files, std::filesystem::path database,
                std::uint64_t limit_bytes = kDefaultLimitBytes);
    ~HistoryFile() override;

    static std::filesystem::path PathFor(const std::filesystem::path& database);

    void Bind(std::vector<std::uint64_t> marks) override;
    void Keep(std::vector<jet::CommitNote> notes, std::uint64_t mark) override;

    // The oldest first. Of a database that is open, Connection::Flush brings what was changed last.
    // kIoError: the file cannot be read. Without a file there are none.
    base::Result<std::vector<Change>> Changes();
    // The notes of a change, the oldest first. kNotFound: there is no such change (any more).
    base::Result<std::vector<jet::Bytes>> NotesOf(std::uint64_t number);

    // What could not be kept since the last call, or that a foreign history was set aside; ok:
    // nothing to tell.
    base::Status TakeFailure();

    // The database file with the mark `before` is about to be replaced by one with the mark `after`
    // and the same rows, as compaction does it: its history goes on, whether that happens or not.
    // Does nothing when there is no history of a file with the mark `before`.
    static base::Status Rebind(jet::FileSystem& files, const std::filesystem::path& database,
                               std::uint64_t before, std::uint64_t after);

private:
    struct Loaded;

    base::Status EnsureLoaded();
    base::Status Load();
    base::Status SetAside();
    // Takes the notes over when it succeeds, and leaves them as they are when it fails.
    base::Status Append(std::vector<jet::CommitNote>& notes, std::uint64_t mark);
    base::Status WriteNew(std::span<const std::byte> bytes);
    base::Status PutInPlace(const std::filesystem::path& temporary);
    // The records of the changes from position `first` on in a file of their own.
    base::Status DropOldest(std::size_t first, std::uint64_t mark);
    base::Status TrimToLimit(std::uint64_t mark);
    void Fail(const base::Status& status);

    std::mutex mutex_;
    jet::FileSystem& files_;
    const std::filesystem::path database_;
    const std::filesystem::path path_;
    const std::uint64_t limit_;
    std::optional<std::vector<std::uint64_t>> marks_;  // nullopt: not bound; only read, then
    std::unique_ptr<Loaded> loaded_;                   // null: not looked at yet
    std::vector<jet::CommitNote> unsaved_;             // that a failed Keep left
    std::size_t unsaved_bytes_ = 0;
    base::Status failure_;
    bool has_failed_ = false;  // at the last Keep
};

}  // namespace history
