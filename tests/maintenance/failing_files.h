// FailingFiles: the files of this system, of which the n-th call that matters fails with a full
// disk, after having done half of a write.
#pragma once

#include "support/forwarding_files.h"

#include <functional>
#include <memory>
#include <utility>

namespace test_support {

class FailingFiles final : public ForwardingFiles {
public:
    // `allowed`: calls that succeed before one fails; counts down. `system` is borrowed.
    FailingFiles(jet::FileSystem& system, int allowed)
        : ForwardingFiles(system), allowed_(allowed) {}
    bool failed() const { return failed_; }

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (Fails()) return Full();
        auto file = ForwardingFiles::Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<FailingFile>(std::move(file).value(), *this));
    }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        return Fails() ? Full() : ForwardingFiles::Rename(from, to);
    }

private:
    class FailingFile final : public ForwardingFile {
    public:
        FailingFile(std::unique_ptr<jet::File> file, FailingFiles& files)
            : ForwardingFile(std::move(file)), files_(files) {}
        base::Result<std::uint64_t> Size() const override {
            if (files_.Fails()) return Full();
            return ForwardingFile::Size();
        }
        base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
            return files_.Fails() ? Full() : ForwardingFile::ReadAt(offset, bytes);
        }
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            if (!files_.Fails()) return ForwardingFile::WriteAt(offset, bytes);
            ForwardingFile::WriteAt(offset, bytes.first(bytes.size() / 2)).Ignore();
            return Full();
        }
        base::Status Sync() override { return files_.Fails() ? Full() : ForwardingFile::Sync(); }

    private:
        FailingFiles& files_;
    };

    static base::Status Full() { return {base::StatusCode::kNoSpace, "The disk is full."}; }
    bool Fails() {
        if (allowed_-- > 0) return false;
        failed_ = true;
        return true;
    }

    int allowed_;
    bool failed_ = false;
};

}  // namespace test_support
