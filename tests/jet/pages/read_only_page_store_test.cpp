// A database whose pages are only read, from wherever they are.
#include "jet/pages/page_store.h"

#include "support/encoded_file.h"
#include "support/make_pages.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet {
namespace {

using Bytes = std::vector<std::byte>;

constexpr std::uint32_t kSizeOfPage = 4096;
constexpr PageNumber kPages = 100;

// The bytes of each page behind the header are its number.
Bytes MakeFile() {
    Bytes file = test_support::MakePages(1, kPages);
    for (PageNumber page = 1; page < kPages; ++page)
        std::fill_n(file.begin() + std::ptrdiff_t{page} * kSizeOfPage, kSizeOfPage,
                    static_cast<std::byte>(page));
    return file;
}

bool IsWhole(PageStore& store, PageNumber page) {
    const auto view = store.Read(page);
    return view.ok() && view->bytes().size() == kSizeOfPage &&
           view->bytes()[kSizeOfPage - 1] == static_cast<std::byte>(page);
}

TEST(ReadOnlyPageStoreTest, HasThePagesOfItsSourceAndNoOther) {
    const Bytes file = MakeFile();
    const auto store = MakeReadOnlyPageStore(PagesOf(file, kSizeOfPage));
    EXPECT_EQ(store->page_size(), kSizeOfPage);
    ASSERT_EQ(store->page_count(), kPages);
    for (PageNumber page = 1; page < kPages; ++page)
        EXPECT_TRUE(IsWhole(*store, page)) << page;
    EXPECT_EQ(store->Read(kPages).status().code(), base::StatusCode::kCorruption);
    EXPECT_EQ(PagesOf(std::span(file).first(kSizeOfPage + 1), kSizeOfPage).page_count, 1U);
}

TEST(ReadOnlyPageStoreTest, TakesNoChange) {
    const Bytes file = MakeFile();
    const auto store = MakeReadOnlyPageStore(PagesOf(file, kSizeOfPage));
    EXPECT_TRUE(store->read_only());
    EXPECT_FALSE(store->in_transaction());
    for (const base::Status& refused :
         {store->Begin(), store->Commit(), store->Change(1).status(), store->Extend().status()})
        EXPECT_EQ(refused.code(), base::StatusCode::kPermissionDenied);
    store->Rollback();
    EXPECT_TRUE(store->Flush().ok());
    EXPECT_TRUE(store->Close().ok());
}

TEST(ReadOnlyPageStoreTest, ShowsEncodedPagesPlain) {
    Bytes file = MakeFile();
    test_support::EncodeFile(file, 0x1234ABCD);
    const auto store = MakeReadOnlyPageStore(PagesOf(file, kSizeOfPage));
    for (PageNumber page = 1; page < kPages; ++page)
        EXPECT_TRUE(IsWhole(*store, page)) << page;
}

TEST(ReadOnlyPageStoreTest, HoldsSomePagesAndReadsTheOthersAgain) {
    const Bytes file = MakeFile();
    PageSource source = PagesOf(file, kSizeOfPage);
    int reads = 0;
    source.read = [&reads, read = source.read](PageNumber page, std::span<std::byte> bytes) {
        ++reads;
        return read(page, bytes);
    };
    const auto store = MakeReadOnlyPageStore(source, std::size_t{20} * kSizeOfPage);
    EXPECT_TRUE(IsWhole(*store, 7));
    const int first = reads;
    const auto held = store->Read(7);
    EXPECT_EQ(reads, first);
    for (PageNumber page = 1; page < kPages; ++page)
        EXPECT_TRUE(IsWhole(*store, page));
    const int all = reads;
    for (PageNumber page = 1; page < kPages; ++page)
        EXPECT_TRUE(IsWhole(*store, page));
    EXPECT_GE(reads - all, static_cast<int>(kPages) - 21);
    ASSERT_TRUE(held.ok());
    EXPECT_EQ(held->bytes()[100], std::byte{7}) << "it was given back long ago";
}

TEST(ReadOnlyPageStoreTest, AFailureIsToldAndTheNextAttemptMaySucceed) {
    const Bytes file = MakeFile();
    PageSource source = PagesOf(file, kSizeOfPage);
    bool fails = true;
    source.read = [&fails, read = source.read](PageNumber page, std::span<std::byte> bytes) {
        return fails ? base::Status(base::StatusCode::kIoError, "gone") : read(page, bytes);
    };
    const auto store = MakeReadOnlyPageStore(source);
    EXPECT_EQ(store->Read(3).status().code(), base::StatusCode::kIoError);
    fails = false;
    EXPECT_TRUE(IsWhole(*store, 3));
}

}  // namespace
}  // namespace jet
