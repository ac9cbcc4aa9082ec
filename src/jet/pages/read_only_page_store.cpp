#include "jet/pages/page_cache.h"
#include "jet/pages/page_encoding.h"
#include "jet/pages/page_store.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace jet {
namespace {

// What opens a read-only store sees to it that nothing is changed, so these are not reached by it.
base::Status Refused() {
    return {base::StatusCode::kPermissionDenied, "The pages can only be read."};
}

class ReadOnlyPageStore final : public PageStore {
public:
    ReadOnlyPageStore(PageSource source, std::size_t cache_bytes)
        : source_(std::move(source)), cache_(cache_bytes / source_.page_size) {}

    bool read_only() const override { return true; }
    std::uint32_t page_size() const override { return source_.page_size; }
    PageNumber page_count() const override { return source_.page_count; }
    bool in_transaction() const override { return false; }

    base::Result<PageView> Read(PageNumber page) override {
        if (page >= source_.page_count)
            return base::Status(base::StatusCode::kCorruption,
                                "page " + std::to_string(page) + " is past the end of the file");
        if (SharedPage known = cache_.Find(page)) return PageView(std::move(known));
        ASSIGN_OR_RETURN(const PageEncoding* encoding, Encoding());
        auto bytes = std::make_shared<PageBytes>(source_.page_size);
        RETURN_IF_ERROR(source_.read(page, *bytes));
        encoding->Apply(page, *bytes);
        cache_.Put(page, bytes);
        return PageView(std::move(bytes));
    }

    base::Status Begin() override { return Refused(); }
    using PageStore::Commit;
    base::Status Commit(std::vector<std::byte>) override { return Refused(); }
    void Rollback() override {}
    base::Result<std::span<std::byte>> Change(PageNumber) override { return Refused(); }
    base::Result<PageNumber> Extend() override { return Refused(); }
    base::Status Flush() override { return {}; }
    base::Status Close() override { return {}; }

private:
    // Of which the first page tells.
    base::Result<const PageEncoding*> Encoding() {
        if (!encoding_) {
            PageBytes first(source_.page_size);
            RETURN_IF_ERROR(source_.read(0, first));
            encoding_ = EncodingOf(first);
        }
        return &*encoding_;
    }

    PageSource source_;
    PageCache cache_;
    std::optional<PageEncoding> encoding_;
};

}  // namespace

std::unique_ptr<PageStore> MakeReadOnlyPageStore(PageSource source, std::size_t cache_bytes) {
    return std::make_unique<ReadOnlyPageStore>(std::move(source), cache_bytes);
}

PageSource PagesOf(std::span<const std::byte> bytes, std::uint32_t page_size) {
    const auto read = [bytes, page_size](PageNumber page, std::span<std::byte> into) {
        const auto from = bytes.subspan(std::size_t{page} * page_size, page_size);
        std::ranges::copy(from, into.begin());
        return base::Status();
    };
    return {page_size, static_cast<PageNumber>(bytes.size() / page_size), read};
}

}  // namespace jet
