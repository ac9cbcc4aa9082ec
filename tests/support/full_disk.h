// FullDisk: the files of this system on a disk that fills up: after a number of writes every
// further one does half of its work and fails. Reading goes on. May be called from several threads.
#pragma once

#include "jet/pages/file_system.h"

#include <atomic>
#include <memory>
#include <utility>

namespace test_support {

class FullDisk final : public jet::FileSystem {
public:
    // `system` is borrowed.
    FullDisk(jet::FileSystem& system, int writes_left)
        : system_(system), writes_left_(writes_left) {}
    bool was_full() const { return writes_left_ < 0; }

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = system_.Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<FileOnDisk>(std::move(file).value(), *this));
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
    class FileOnDisk final : public jet::File {
    public:
        FileOnDisk(std::unique_ptr<jet::File> file, FullDisk& disk)
            : file_(std::move(file)), disk_(disk) {}
        base::Result<std::uint64_t> Size() const override { return file_->Size(); }
        base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
            return file_->ReadAt(offset, bytes);
        }
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            if (disk_.writes_left_.fetch_sub(1) > 0) return file_->WriteAt(offset, bytes);
            disk_.writes_left_ = -1;
            file_->WriteAt(offset, bytes.first(bytes.size() / 2)).Ignore();
            return {base::StatusCode::kNoSpace, "The disk is full."};
        }
        base::Status Truncate(std::uint64_t size) override { return file_->Truncate(size); }
        base::Status Sync() override { return file_->Sync(); }
        base::Status Lock(jet::FileLock lock) override { return file_->Lock(lock); }

    private:
        std::unique_ptr<jet::File> file_;
        FullDisk& disk_;
    };

    jet::FileSystem& system_;
    std::atomic<int> writes_left_;
};

}  // namespace test_support
