// ToldFiles: files that say of each call that changes something that it is about to be made, so
// that a test can stop a process at a certain call however fast the machine is.
#pragma once

#include "support/forwarding_files.h"

#include <functional>

namespace test_support {

class ToldFiles final : public ForwardingFiles {
public:
    using Tell = std::function<void()>;

    // `system` is borrowed. `tell` is called by whichever thread makes the call.
    ToldFiles(jet::FileSystem& system, Tell tell)
        : ForwardingFiles(system), tell_(std::move(tell)) {}

    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (mode != jet::OpenMode::kRead) tell_();
        auto file = ForwardingFiles::Open(path, mode);
        if (!file.ok()) return file;
        return std::unique_ptr<jet::File>(
            std::make_unique<ToldFile>(std::move(file).value(), tell_));
    }
    base::Status Remove(const std::filesystem::path& path) override {
        tell_();
        return ForwardingFiles::Remove(path);
    }
    base::Status Rename(const std::filesystem::path& from,
                        const std::filesystem::path& to) override {
        tell_();
        return ForwardingFiles::Rename(from, to);
    }
    base::Status SyncFolder(const std::filesystem::path& folder) override {
        tell_();
        return ForwardingFiles::SyncFolder(folder);
    }

private:
    class ToldFile final : public ForwardingFile {
    public:
        ToldFile(std::unique_ptr<jet::File> file, Tell tell)
            : ForwardingFile(std::move(file)), tell_(std::move(tell)) {}
        base::Status WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
            tell_();
            return ForwardingFile::WriteAt(offset, bytes);
        }
        base::Status Truncate(std::uint64_t size) override {
            tell_();
            return ForwardingFile::Truncate(size);
        }
        base::Status Sync() override {
            tell_();
            return ForwardingFile::Sync();
        }

    private:
        Tell tell_;
    };

    Tell tell_;
};

}  // namespace test_support
