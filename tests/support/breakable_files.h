// BreakableFiles: the files of this system until a test takes something away from them: that what
// is written reaches the disk, or reading after some more reads. Threads: any.
#pragma once

#include "jet/pages/file_system.h"

#include <atomic>
#include <memory>
#include <utility>

namespace test_support {

class BreakableFiles final : public jet::FileSystem {
public:
    // `system` is borrowed.
    explicit BreakableFiles(jet::FileSystem& system) : system_(system) {}

    // From now on every sync fails: what is written stays in the system's cache.
    void BreakSyncing() { syncing_broken_ = true; }
    // `reads` more reads succeed, then none does until the next call; -1: all do.
    void AllowReads(int reads) { reads_left_ = reads; }

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = system_.Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<BreakableFile>(std::move(file).value(), *this));
    }
    bool Exists(const std::filesystem::path& path) override { return system_.Exists(path); }
    base::Status Remove(const std::filesystem::path& path) override { return system_.Remove(path); }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        return system_.Rename(from, to);
    }
    base::Status SyncFolder(const std::filesystem::path& folder) override {
        return system_.SyncFolder(folder);
    }
    std::string OwnerName() override { return system_.OwnerName(); }

private:
    class BreakableFile final : public jet::File {
    public:
        BreakableFile(std::unique_ptr<jet::File> file, BreakableFiles& files)
            : file_(std::move(file)), files_(files) {}
        base::Result<std::uint64_t> Size() const override { return file_->Size(); }
        base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
            if (!files_.MayRead()) return {base::StatusCode::kIoError, "The disk cannot be read."};
            return file_->ReadAt(offset, bytes);
        }
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            return file_->WriteAt(offset, bytes);
        }
        base::Status Truncate(std::uint64_t size) override { return file_->Truncate(size); }
        base::Status Sync() override {
            if (!files_.syncing_broken_) return file_->Sync();
            return {base::StatusCode::kNoSpace, "The disk is full."};
        }
        base::Status Lock(jet::FileLock lock) override { return file_->Lock(lock); }

    private:
        std::unique_ptr<jet::File> file_;
        BreakableFiles& files_;
    };

    bool MayRead() {
        return reads_left_ < 0 || reads_left_.fetch_sub(1) > 0 || (reads_left_ = 0, false);
    }

    jet::FileSystem& system_;
    std::atomic<bool> syncing_broken_ = false;
    std::atomic<int> reads_left_ = -1;
};

}  // namespace test_support
