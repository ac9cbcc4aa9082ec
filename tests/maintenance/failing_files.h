// FailingFiles: the files of this system, of which the n-th call that matters fails with a full
// disk, after having done half of a write.
#pragma once

#include "jet/pages/file_system.h"

#include <functional>
#include <memory>
#include <utility>

namespace test_support {

class FailingFiles final : public jet::FileSystem {
public:
    // `allowed`: calls that succeed before one fails; counts down. `system` is borrowed.
    FailingFiles(jet::FileSystem& system, int allowed) : system_(system), allowed_(allowed) {}
    bool failed() const { return failed_; }

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (Fails()) return Full();
        auto file = system_.Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<FailingFile>(std::move(file).value(), *this));
    }
    bool Exists(const std::filesystem::path& path) override { return system_.Exists(path); }
    base::Status Remove(const std::filesystem::path& path) override { return system_.Remove(path); }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        return Fails() ? Full() : system_.Rename(from, to);
    }
    base::Status SyncFolder(const std::filesystem::path& folder) override {
        return system_.SyncFolder(folder);
    }
    std::string OwnerName() override { return system_.OwnerName(); }

private:
    class FailingFile final : public jet::File {
    public:
        FailingFile(std::unique_ptr<jet::File> file, FailingFiles& files)
            : file_(std::move(file)), files_(files) {}
        base::Result<std::uint64_t> Size() const override {
            if (files_.Fails()) return Full();
            return file_->Size();
        }
        base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
            return files_.Fails() ? Full() : file_->ReadAt(offset, bytes);
        }
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            if (!files_.Fails()) return file_->WriteAt(offset, bytes);
            file_->WriteAt(offset, bytes.first(bytes.size() / 2)).Ignore();
            return Full();
        }
        base::Status Truncate(std::uint64_t size) override { return file_->Truncate(size); }
        base::Status Sync() override { return files_.Fails() ? Full() : file_->Sync(); }
        base::Status Lock(jet::FileLock lock) override { return file_->Lock(lock); }

    private:
        std::unique_ptr<jet::File> file_;
        FailingFiles& files_;
    };

    static base::Status Full() { return {base::StatusCode::kNoSpace, "The disk is full."}; }
    bool Fails() {
        if (allowed_-- > 0) return false;
        failed_ = true;
        return true;
    }

    jet::FileSystem& system_;
    int allowed_;
    bool failed_ = false;
};

}  // namespace test_support
