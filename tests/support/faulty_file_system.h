// FaultyFileSystem: files in memory that fail on purpose and can lose what was not synced.
// Every call that reaches the "disk" is counted; a plan makes one of them fail. The content then is
// what a real system would hold: after Kill everything written is still there, after CutPower every
// 512-byte sector written since the last sync, and every change of a folder since its last sync,
// may or may not be. Threads: any; the files have one lock.
#pragma once

#include "jet/pages/file_system.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace test_support {

enum class FaultKind {
    kRefuse,       // nothing happens, the call fails
    kHalf,         // a write or truncation is done by half, the call fails
    kDoneButFail,  // everything happens, the call fails
    kForgotten,  // as kRefuse, and a sync that fails so is forgotten: the next one writes only what
                 // is new
    kLost,       // as kRefuse, and every later call fails too: the disk is gone
    kStop,       // by half, and every later call fails too: the process is dead
};

struct FaultPlan {
    std::uint64_t call = 0;  // counted from 1; 0: none
    FaultKind kind = FaultKind::kRefuse;
    base::StatusCode code = base::StatusCode::kIoError;
    // The process stops at this call behind the fault; 0: it does not.
    std::uint64_t stop_behind = 0;
};

class FaultyFileSystem final : public jet::FileSystem {
public:
    using Bytes = std::vector<std::byte>;

    FaultyFileSystem() = default;

    // Makes a file that is on the disk for good.
    void Put(const std::filesystem::path& path, Bytes bytes);
    // What a process would read now. Empty: no such file.
    Bytes Get(const std::filesystem::path& path) const;

    void SetPlan(FaultPlan plan);
    // Every read that meets this byte of the file fails. Requires: there is such a file.
    void SetUnreadable(const std::filesystem::path& path, std::uint64_t offset);
    std::uint64_t calls() const;
    bool fault_happened() const;
    std::uint64_t bytes_written() const;

    // The content as another process finds it when this one is dead; locks are gone.
    std::unique_ptr<FaultyFileSystem> Kill() const;
    // The content as it is after a power cut, one of the many possible.
    std::unique_ptr<FaultyFileSystem> CutPower(std::uint32_t seed) const;

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override;
    bool Exists(const std::filesystem::path& path) override;
    base::Status Remove(const std::filesystem::path& path) override;
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override;
    base::Status SyncFolder(const std::filesystem::path& folder) override;
    // A folder is there as soon as a file is in it.
    base::Result<std::vector<std::string>> FileNames(const std::filesystem::path& folder) override;
    base::Status MakeFolder(const std::filesystem::path& folder) override;
    std::string OwnerName() override { return "tester@bench"; }

private:
    friend class FaultyFile;

    struct Change {  // since the last sync
        bool is_truncation = false;
        std::uint64_t offset = 0;  // or new size
        Bytes bytes;
    };
    struct Inode {
        Bytes live;
        Bytes durable;
        std::vector<Change> changes;
        std::optional<std::uint64_t> unreadable;
        std::map<const void*, jet::FileLock> locks;
    };
    using Folder = std::map<std::filesystem::path, std::shared_ptr<Inode>>;
    struct Verdict {
        base::Status status;
        bool do_half = false;
        bool do_all = true;
        bool do_forget = false;
    };

    Verdict Count();
    static void Apply(const Change& change, Bytes& bytes);
    static void Write(Inode& inode, std::uint64_t offset, std::span<const std::byte> bytes);
    static void Resize(Inode& inode, std::uint64_t size);
    static Bytes Surviving(const Inode& inode, std::mt19937& random);

    mutable std::mutex mutex_;
    Folder live_;
    Folder durable_;
    std::vector<Folder> folder_states_;  // after each change since the last sync
    FaultPlan plan_;
    std::uint64_t calls_ = 0;
    std::uint64_t bytes_written_ = 0;
    bool fault_happened_ = false;
};

}  // namespace test_support
