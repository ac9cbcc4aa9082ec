// BreakableFiles: the files of this system until a test takes something away from them: that what
// is written reaches the disk, or reading after some more reads. Threads: any.
#pragma once

#include "support/forwarding_files.h"

#include <atomic>
#include <memory>
#include <utility>

namespace test_support {

class BreakableFiles final : public ForwardingFiles {
public:
    // `system` is borrowed.
    explicit BreakableFiles(jet::FileSystem& system) : ForwardingFiles(system) {}

    // From now on every sync fails: what is written stays in the system's cache.
    void BreakSyncing() { syncing_broken_ = true; }
    // `reads` more reads succeed, then none does until the next call; -1: all do.
    void AllowReads(int reads) { reads_left_ = reads; }

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = ForwardingFiles::Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<BreakableFile>(std::move(file).value(), *this));
    }

private:
    class BreakableFile final : public ForwardingFile {
    public:
        BreakableFile(std::unique_ptr<jet::File> file, BreakableFiles& files)
            : ForwardingFile(std::move(file)), files_(files) {}
        base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
            if (!files_.MayRead()) return {base::StatusCode::kIoError, "The disk cannot be read."};
            return ForwardingFile::ReadAt(offset, bytes);
        }
        base::Status Sync() override {
            if (!files_.syncing_broken_) return ForwardingFile::Sync();
            return {base::StatusCode::kNoSpace, "The disk is full."};
        }

    private:
        BreakableFiles& files_;
    };

    bool MayRead() {
        return reads_left_ < 0 || reads_left_.fetch_sub(1) > 0 || (reads_left_ = 0, false);
    }

    std::atomic<bool> syncing_broken_ = false;
    std::atomic<int> reads_left_ = -1;
};

}  // namespace test_support
