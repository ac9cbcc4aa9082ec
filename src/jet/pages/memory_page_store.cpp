#include "jet/pages/page_encoding.h"
#include "jet/pages/page_store.h"
#include "jet/pages/page_transaction.h"

#include <cassert>

namespace jet {
namespace {

class MemoryPageStore final : public PageStore {
public:
    MemoryPageStore(std::uint32_t page_size, const std::vector<std::byte>& bytes)
        : page_size_(page_size) {
        assert(page_size > 0);
        PageEncoding encoding;
        for (std::size_t start = 0; start + page_size <= bytes.size(); start += page_size) {
            const auto from = bytes.begin() + static_cast<std::ptrdiff_t>(start);
            auto page = std::make_shared<PageBytes>(from, from + page_size);
            if (start == 0) encoding = EncodingOf(*page);
            encoding.Apply(static_cast<PageNumber>(pages_.size()), *page);
            pages_.push_back(std::move(page));
        }
    }

    bool read_only() const override { return false; }
    std::uint32_t page_size() const override { return page_size_; }
    PageNumber page_count() const override {
        return transaction_.open() ? transaction_.page_count()
                                   : static_cast<PageNumber>(pages_.size());
    }
    bool in_transaction() const override { return transaction_.open(); }

    base::Result<PageView> Read(PageNumber page) override {
        RETURN_IF_ERROR(CheckPage(page));
        if (SharedPage changed = transaction_.Find(page)) return PageView(std::move(changed));
        return PageView(pages_[page]);
    }

    base::Status Begin() override {
        if (closed_) return Closed();
        transaction_.Begin(page_count());
        return {};
    }

    using PageStore::Commit;
    base::Status Commit(std::vector<std::byte>) override {
        if (closed_) return Closed();
        assert(transaction_.open());
        pages_.resize(transaction_.page_count());
        for (const auto& [number, page] : transaction_.pages())
            pages_[number] = page.after;
        transaction_.End();
        return {};
    }

    void Rollback() override { transaction_.End(); }

    base::Result<std::span<std::byte>> Change(PageNumber page) override {
        assert(transaction_.open());
        RETURN_IF_ERROR(CheckPage(page));
        if (const auto again = transaction_.ChangeAgain(page); !again.empty()) return again;
        return transaction_.Change(page, pages_[page]);
    }

    base::Result<PageNumber> Extend() override {
        assert(transaction_.open());
        if (closed_) return Closed();
        return transaction_.Extend(page_size_);
    }

    base::Status Flush() override { return closed_ ? Closed() : base::Status(); }

    base::Status Close() override {
        transaction_.End();
        closed_ = true;
        return {};
    }

private:
    static base::Status Closed() {
        return {base::StatusCode::kInvalidArgument, "The database is closed."};
    }

    base::Status CheckPage(PageNumber page) const {
        if (closed_) return Closed();
        if (page < page_count()) return {};
        return {base::StatusCode::kCorruption,
                "page " + std::to_string(page) + " is past the end of the file"};
    }

    std::uint32_t page_size_;
    std::vector<SharedPage> pages_;
    PageTransaction transaction_;
    bool closed_ = false;
};

}  // namespace

std::unique_ptr<PageStore> MakeMemoryPageStore(std::uint32_t page_size,
                                               const std::vector<std::byte>& pages) {
    return std::make_unique<MemoryPageStore>(page_size, pages);
}

}  // namespace jet
