// Files and file systems that pass everything on to another one, for tests to derive from: they
// override what they want to watch or to let fail.
#pragma once

#include "jet/pages/file_system.h"

#include <memory>
#include <utility>

namespace test_support {

class ForwardingFile : public jet::File {
public:
    explicit ForwardingFile(std::unique_ptr<jet::File> file) : file_(std::move(file)) {}
    base::Result<std::uint64_t> Size() const override { return file_->Size(); }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        return file_->ReadAt(offset, bytes);
    }
    base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        return file_->WriteAt(offset, bytes);
    }
    base::Status Truncate(std::uint64_t size) override { return file_->Truncate(size); }
    base::Status Sync() override { return file_->Sync(); }
    base::Status Lock(jet::FileLock lock, std::uint64_t from) override {
        return file_->Lock(lock, from);
    }
    bool IsAt(const std::filesystem::path& path) const override { return file_->IsAt(path); }

private:
    std::unique_ptr<jet::File> file_;
};

class ForwardingFiles : public jet::FileSystem {
public:
    // `system` is borrowed.
    explicit ForwardingFiles(jet::FileSystem& system) : system_(system) {}

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        return system_.Open(path, mode);
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
    base::Result<std::vector<std::string>> FileNames(const std::filesystem::path& folder) override {
        return system_.FileNames(folder);
    }
    base::Status MakeFolder(const std::filesystem::path& folder) override {
        return system_.MakeFolder(folder);
    }
    std::string OwnerName() override { return system_.OwnerName(); }

private:
    jet::FileSystem& system_;
};

}  // namespace test_support
