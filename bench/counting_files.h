// CountingFiles: the system's files, and how many bytes were written to them.
#pragma once

#include "platform/file_system.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace bench {

// Passes everything on and counts the bytes that are written, also by the store's own thread.
class CountingFile final : public jet::File {
public:
    CountingFile(std::unique_ptr<jet::File> file, std::atomic<std::uint64_t>& written)
        : file_(std::move(file)), written_(written) {}
    base::Result<std::uint64_t> Size() const override { return file_->Size(); }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        return file_->ReadAt(offset, bytes);
    }
    base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        written_ += bytes.size();
        return file_->WriteAt(offset, bytes);
    }
    base::Status Truncate(std::uint64_t size) override { return file_->Truncate(size); }
    base::Status Sync() override { return file_->Sync(); }
    base::Status Lock(jet::FileLock lock) override { return file_->Lock(lock); }

private:
    std::unique_ptr<jet::File> file_;
    std::atomic<std::uint64_t>& written_;
};

class CountingFiles final : public jet::FileSystem {
public:
    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = files_->Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(new CountingFile(std::move(file).value(), written));
    }
    bool Exists(const std::filesystem::path& path) override { return files_->Exists(path); }
    base::Status Remove(const std::filesystem::path& path) override { return files_->Remove(path); }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        return files_->Rename(from, to);
    }
    base::Status SyncFolder(const std::filesystem::path& folder) override {
        return files_->SyncFolder(folder);
    }
    std::string OwnerName() override { return files_->OwnerName(); }

    std::atomic<std::uint64_t> written = 0;

private:
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
};

}  // namespace bench
