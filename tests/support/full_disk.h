// FullDisk: the files of this system on a disk that fills up: after a number of writes every
// further one does half of its work and fails. Reading goes on. May be called from several threads.
#pragma once

#include "support/forwarding_files.h"

#include <atomic>
#include <memory>
#include <utility>

namespace test_support {

class FullDisk final : public ForwardingFiles {
public:
    // `system` is borrowed.
    FullDisk(jet::FileSystem& system, int writes_left)
        : ForwardingFiles(system), writes_left_(writes_left) {}
    bool was_full() const { return writes_left_ < 0; }

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        auto file = ForwardingFiles::Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<FileOnDisk>(std::move(file).value(), *this));
    }

private:
    class FileOnDisk final : public ForwardingFile {
    public:
        FileOnDisk(std::unique_ptr<jet::File> file, FullDisk& disk)
            : ForwardingFile(std::move(file)), disk_(disk) {}
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            if (disk_.writes_left_.fetch_sub(1) > 0) return ForwardingFile::WriteAt(offset, bytes);
            disk_.writes_left_ = -1;
            ForwardingFile::WriteAt(offset, bytes.first(bytes.size() / 2)).Ignore();
            return {base::StatusCode::kNoSpace, "The disk is full."};
        }

    private:
        FullDisk& disk_;
    };

    std::atomic<int> writes_left_;
};

}  // namespace test_support
