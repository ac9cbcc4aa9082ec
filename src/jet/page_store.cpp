#include "jet/page_store.h"

#include "base/byte_reader.h"
#include "jet/page_transaction.h"

#include <array>
#include <cassert>
#include <cstring>

namespace jet {
namespace {

base::Status Unrecognized(const std::filesystem::path& path) {
    return {base::StatusCode::kCorruption, "Unrecognized database format '" + path.string() + "'.",
            3343};
}

class FilePageStore final : public PageStore {
public:
    FilePageStore(std::unique_ptr<File> file, std::uint32_t page_size, PageNumber page_count,
                  bool read_only)
        : file_(std::move(file)), page_size_(page_size), committed_count_(page_count),
          read_only_(read_only) {}

    bool read_only() const override { return read_only_; }
    std::uint32_t page_size() const override { return page_size_; }
    PageNumber page_count() const override {
        return transaction_.open() ? transaction_.page_count() : committed_count_;
    }
    bool in_transaction() const override { return transaction_.open(); }

    base::Result<PageView> Read(PageNumber page) override {
        ASSIGN_OR_RETURN(SharedPage bytes, Load(page));
        return PageView(std::move(bytes));
    }

    base::Status Begin() override {
        if (read_only_)
            return {base::StatusCode::kPermissionDenied,
                    "Cannot update. Database or object is read-only.", 3027};
        transaction_.Begin(committed_count_);
        return {};
    }

    base::Status Commit() override {
        for (const auto& [number, page] : transaction_.pages())
            RETURN_IF_ERROR(file_->WriteAt(std::uint64_t{number} * page_size_, *page.after));
        committed_count_ = transaction_.page_count();
        transaction_.End();
        return {};
    }

    void Rollback() override { transaction_.End(); }

    base::Result<std::span<std::byte>> Change(PageNumber page) override {
        if (const auto again = transaction_.ChangeAgain(page); !again.empty()) return again;
        ASSIGN_OR_RETURN(const SharedPage before, Load(page));
        return transaction_.Change(page, before);
    }

    base::Result<PageNumber> Extend() override { return transaction_.Extend(page_size_); }

    base::Status Flush() override { return read_only_ ? base::Status() : file_->Sync(); }
    base::Status Close() override { return Flush(); }

private:
    base::Result<SharedPage> Load(PageNumber page) {
        if (page >= page_count())
            return base::Status(base::StatusCode::kCorruption,
                                "page " + std::to_string(page) + " is past the end of the file");
        if (SharedPage changed = transaction_.Find(page)) return changed;
        auto bytes = std::make_shared<PageBytes>(page_size_);
        RETURN_IF_ERROR(file_->ReadAt(std::uint64_t{page} * page_size_, *bytes));
        return SharedPage(std::move(bytes));
    }

    std::unique_ptr<File> file_;
    std::uint32_t page_size_;
    PageNumber committed_count_;
    bool read_only_;
    PageTransaction transaction_;
};

}  // namespace

base::Result<std::unique_ptr<PageStore>> OpenPageStore(FileSystem& files,
                                                       const std::filesystem::path& path,
                                                       const PageStoreOptions& options) {
    auto opened = files.Open(path, options.read_only ? OpenMode::kRead : OpenMode::kReadWrite);
    if (!opened.ok()) {
        if (opened.status().code() == base::StatusCode::kNotFound)
            return base::Status(base::StatusCode::kNotFound,
                                "Could not find file '" + path.string() + "'.", 3024);
        return opened.status();
    }
    std::unique_ptr<File> file = std::move(opened).value();
    ASSIGN_OR_RETURN(const std::uint64_t size, file->Size());
    std::array<std::byte, 0x18> head{};
    if (size < 2048) return Unrecognized(path);
    RETURN_IF_ERROR(file->ReadAt(0, head));
    if (std::memcmp(head.data() + 4, "Standard Jet DB", 16) != 0) return Unrecognized(path);
    const auto version = base::LoadLittle<std::uint32_t>(head.data() + 0x14);
    if (version > 1) return Unrecognized(path);
    const std::uint32_t page_size = version == 0 ? 2048 : 4096;
    if (size % page_size != 0) return Unrecognized(path);
    return std::unique_ptr<PageStore>(std::make_unique<FilePageStore>(
        std::move(file), page_size, static_cast<PageNumber>(size / page_size), options.read_only));
}

}  // namespace jet
