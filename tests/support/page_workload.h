// PageWorkload: numbered transactions over the pages of a small database file, the same for the
// same seed, and the content that the file must have after each of them.
#pragma once

#include "jet/pages/page_store.h"
#include "support/make_pages.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <random>
#include <span>
#include <vector>

namespace test_support {

class PageWorkload {
public:
    using Content = std::vector<std::vector<std::byte>>;  // pages

    // `key`: 0, or the file is an encoded one.
    explicit PageWorkload(std::uint32_t seed, std::uint32_t version = 1, std::uint32_t key = 0);

    static constexpr jet::PageNumber kFirstPages = 4;
    static constexpr jet::PageNumber kMaxPages = 60;

    const std::vector<std::byte>& first_file() const { return first_file_; }
    // Content after `transactions` of them. Requires: not forgotten.
    const Content& ContentAfter(std::size_t transactions);
    // Gives the memory of the states before that one back.
    void Forget(std::size_t transactions);

    // Makes transaction number `number` (from 0) in the store, from Begin to Commit. On failure
    // rolls back.
    base::Status Run(jet::PageStore& store, std::size_t number, std::vector<std::byte> note = {});

    // What `store` holds now, with the file's mark of its last checkpoint blanked.
    static Content Read(jet::PageStore& store);
    // The same; the status of the first page that cannot be read instead of a failure of the test.
    static base::Result<Content> TryRead(jet::PageStore& store);
    // How many transactions `content` shows; fails the test and answers -1 when it is none of the
    // states from `least` to `most`.
    int Recognize(const Content& content, std::size_t least, std::size_t most);

private:
    struct Edit {
        jet::PageNumber page = 0;
        std::size_t offset = 0;
        std::vector<std::byte> bytes;
        bool inserts = false;  // what stands there goes up to make room
    };
    struct Step {
        jet::PageNumber new_pages = 0;
        std::vector<Edit> edits;
    };
    void MakeNext();
    static void Apply(const Edit& edit, std::span<std::byte> page);
    base::Status RunOpen(jet::PageStore& store, const Step& step);

    std::uint32_t page_size_;
    std::vector<std::byte> first_file_;
    std::mt19937 random_;
    std::map<std::size_t, Step> steps_;
    std::map<std::size_t, Content> contents_;
};

}  // namespace test_support
