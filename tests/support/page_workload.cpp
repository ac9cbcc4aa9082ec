#include "support/page_workload.h"

#include "jet/pages/file_mark.h"
#include "support/encoded_file.h"

#include <algorithm>
#include <cstring>

namespace test_support {

PageWorkload::PageWorkload(std::uint32_t seed, std::uint32_t version, std::uint32_t key)
    : page_size_(version == 0 ? 2048 : 4096), first_file_(MakePages(version, kFirstPages)),
      random_(seed) {
    Content first;
    for (std::size_t at = 0; at < first_file_.size(); at += page_size_)
        first.emplace_back(first_file_.begin() + static_cast<std::ptrdiff_t>(at),
                           first_file_.begin() + static_cast<std::ptrdiff_t>(at + page_size_));
    if (key != 0) {
        EncodeFile(first_file_, key);
        std::copy_n(first_file_.begin(), page_size_, first[0].begin());
    }
    contents_[0] = std::move(first);
}

const PageWorkload::Content& PageWorkload::ContentAfter(std::size_t transactions) {
    while (contents_.rbegin()->first < transactions)
        MakeNext();
    return contents_.at(transactions);
}

void PageWorkload::Forget(std::size_t transactions) {
    ContentAfter(transactions);
    contents_.erase(contents_.begin(), contents_.find(transactions));
    steps_.erase(steps_.begin(), steps_.lower_bound(transactions));
}

void PageWorkload::MakeNext() {
    const std::size_t number_of_step = contents_.rbegin()->first;
    Content content = contents_.rbegin()->second;
    Step step;
    const bool grows = content.size() < kMaxPages && random_() % 3 == 0;
    step.new_pages = grows ? 1 + random_() % 3 : 0;
    content.resize(content.size() + step.new_pages, std::vector<std::byte>(page_size_));
    // Every transaction writes its number to two pages, so no two states are equal.
    for (std::size_t i = 0; i < 2 + random_() % 4; ++i) {
        Edit edit;
        edit.page = static_cast<jet::PageNumber>(random_() % content.size());
        const bool is_header = edit.page == 0;
        edit.offset = is_header ? 0xA0 + random_() % 64 : random_() % (page_size_ - 600);
        edit.bytes.resize(4 + random_() % (is_header ? 8 : 590));
        for (std::byte& byte : edit.bytes)
            byte = static_cast<std::byte>(random_());
        const auto number = static_cast<std::uint32_t>(number_of_step);
        std::memcpy(edit.bytes.data(), &number, sizeof number);
        edit.inserts = !is_header && edit.bytes.size() % 3 == 0;
        Apply(edit, content[edit.page]);
        step.edits.push_back(std::move(edit));
    }
    steps_[number_of_step] = std::move(step);
    contents_[number_of_step + 1] = std::move(content);
}

void PageWorkload::Apply(const Edit& edit, std::span<std::byte> page) {
    std::byte* const at = page.data() + edit.offset;
    const std::size_t size = edit.bytes.size();
    if (edit.inserts) std::memmove(at + size, at, page.size() - edit.offset - size);
    std::memcpy(at, edit.bytes.data(), size);
}

base::Status PageWorkload::RunOpen(jet::PageStore& store, const Step& step) {
    for (jet::PageNumber i = 0; i < step.new_pages; ++i) {
        const auto added = store.Extend();
        if (!added.ok()) return added.status();
    }
    for (const Edit& edit : step.edits) {
        const auto page = store.Change(edit.page);
        if (!page.ok()) return page.status();
        Apply(edit, *page);
    }
    return {};
}

base::Status PageWorkload::Run(jet::PageStore& store, std::size_t number,
                               std::vector<std::byte> note) {
    ContentAfter(number + 1);
    RETURN_IF_ERROR(store.Begin());
    const base::Status changed = RunOpen(store, steps_.at(number));
    if (changed.ok()) return store.Commit(std::move(note));
    store.Rollback();
    return changed;
}

PageWorkload::Content PageWorkload::Read(jet::PageStore& store) {
    auto content = TryRead(store);
    EXPECT_TRUE(content.ok()) << content.status().message();
    return content.ok() ? std::move(content).value() : Content();
}

base::Result<PageWorkload::Content> PageWorkload::TryRead(jet::PageStore& store) {
    Content content;
    for (jet::PageNumber page = 0; page < store.page_count(); ++page) {
        const auto view = store.Read(page);
        if (!view.ok()) return view.status();
        content.emplace_back(view->bytes().begin(), view->bytes().end());
    }
    const auto mark = std::span(content[0]).subspan(jet::FileMarkOffset(store.page_size()));
    for (std::size_t i = 0; i < jet::kFileMarkBytes; i += 2)
        mark[i] = std::byte{0};
    return content;
}

int PageWorkload::Recognize(const Content& content, std::size_t least, std::size_t most) {
    for (std::size_t i = least; i <= most; ++i)
        if (content == ContentAfter(i)) return static_cast<int>(i);
    std::string other = "none at all";
    for (const auto& [i, known] : contents_)
        if (content == known) other = "that after " + std::to_string(i);
    ADD_FAILURE() << "the content is not that after " << least << " to " << most
                  << " transactions but " << other;
    return -1;
}

}  // namespace test_support
