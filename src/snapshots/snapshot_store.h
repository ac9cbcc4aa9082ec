// SnapshotStore: earlier states of a database file, in a folder beside it (its name and
// "-snapshots"; docs/formats/snapshots.md). A snapshot is what the last commit left, all of it,
// made without a lock of the database and while its user goes on; it takes the room of the pages
// that differ from the snapshot before. It counts when it was read back and the checker found no
// fault. Whatever stops the process leaves the earlier snapshots whole; what was begun is removed
// by the next call of Make or Keep. Errors: kBusy: another process is at work on the snapshots;
// kCorruption; kIoError, kNoSpace, kPermissionDenied of the file system. After a failure everything
// is as it was. Memory: while a snapshot is made or read, as many bytes as the database has.
// Threads: any; calls wait for each other, but not for a checker that is at work.
#pragma once

#include "base/run_steps.h"
#include "jet/pages/file_system.h"
#include "jet/pages/page_store.h"
#include "snapshots/snapshot_format.h"

#include <functional>
#include <memory>
#include <mutex>

namespace snapshots {

class PackSet;
struct KeepCandidate;

enum class SnapshotState : std::uint8_t {
    kGood,
    kUnchecked,  // not offered yet
    kDamaged,    // never offered: something that it needs is not as it was written
};

struct SnapshotInfo {
    SnapshotNumber number = 0;
    SnapshotState state = SnapshotState::kDamaged;
    SnapshotHead head;  // what of it could be read
};

class SnapshotStore {
public:
    // `files` is borrowed. Nothing is made before the first snapshot.
    SnapshotStore(jet::FileSystem& files, std::filesystem::path database);
    ~SnapshotStore();

    static std::filesystem::path FolderFor(const std::filesystem::path& database);
    const std::filesystem::path& database() const { return database_; }

    struct Request {
        Occasion occasion = Occasion::kClock;
        LocalSeconds time = 0;
        std::string label;  // UTF-8; cut at kMaxLabelBytes
    };
    // Makes a snapshot, unchecked. `steps` are pages; stopped, it makes none. nullopt: the newest
    // one has this very state.
    base::Result<std::optional<SnapshotNumber>> Make(const Request& request,
                                                     const base::RunSteps& steps = {});

    // Reads back what was not checked yet and lets it count. kCorruption: the checker found faults
    // in one, the first of which the message tells, or it cannot be read; it was removed.
    base::Status CheckAll();

    // From the oldest to the newest, every byte tested. Without a folder: none.
    base::Result<std::vector<SnapshotInfo>> List();
    // The newest that counts; nullopt: none.
    base::Result<std::optional<SnapshotInfo>> NewestGood();

    // The bytes of the database file. kNotFound: no such snapshot; kUnsupported: it was not checked
    // yet.
    base::Result<std::vector<std::byte>> Read(SnapshotNumber number);

    // Removes the snapshots that are not to be kept (keep_rules.h), and the room that nobody needs.
    base::Status Keep();

private:
    class Session;
    struct Entry;
    struct Folder;
    struct NewPack;
    struct NewState;

    base::Result<std::unique_ptr<Session>> Begin(bool makes_folder);
    base::Result<Folder> ReadFolder();
    base::Result<Entry> ReadEntry(SnapshotNumber number, bool is_checked);
    base::Status RemoveLeftovers(const Folder& folder);
    base::Result<NewState> ReadDatabase(const Folder& folder, SnapshotNumber number, PackSet& packs,
                                        const base::RunSteps& steps);
    static base::Result<NewState> ReadState(const jet::PageSource& pages, const Folder& folder,
                                            SnapshotNumber number, PackSet& packs,
                                            const base::RunSteps& steps);
    base::Status WriteFile(const std::string& name, std::span<const std::byte> head,
                           std::span<const std::byte> rest);
    base::Status Remove(const Entry& entry);
    static base::Status
    VisitPages(const Snapshot& snapshot, PackSet& packs,
               const std::function<void(std::span<const std::byte> page)>& visit);
    base::Result<std::vector<std::byte>> ReadPages(const Snapshot& snapshot);
    static base::Status CheckContent(PackSet& packs, const std::vector<RecordPlace>& places,
                                     std::uint32_t page_size);
    base::Status CheckOne(SnapshotNumber number);
    base::Status EndCheck(SnapshotNumber number, bool is_good);
    base::Status RemoveWhatIsNotKept(Folder& folder);
    base::Status CollectGarbage(const Folder& folder);
    base::Status Rewrite(PackSet& packs, PackNumber number, const std::vector<bool>& is_used);

    jet::FileSystem& files_;
    const std::filesystem::path database_;
    const std::filesystem::path folder_;
    std::mutex mutex_;
};

}  // namespace snapshots
