// The map of free pages: what other programs may leave of it, and how it grows.
#include "jet/pages/data_page.h"
#include "jet/pages/page_allocator.h"

#include "jet/pages/usage_map.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet {
namespace {

constexpr std::size_t kInlineHead = 5;

// A file in memory whose page 1 holds the map that a test asks for.
class PageAllocatorTest : public testing::TestWithParam<int> {
protected:
    void Make(PageNumber pages, const std::vector<std::byte>& map) {
        std::vector<std::byte> bytes(std::size_t{pages} * format_.page_size);
        const auto page = std::span(bytes).subspan(format_.page_size, format_.page_size);
        DataPageEditor editor = DataPageEditor::Create(page, format_, 1);
        editor.Append(map, 0);
        editor.Append(MakeMapRow(format_), 0);
        store_ = MakeMemoryPageStore(format_.page_size, std::move(bytes));
        allocator_.emplace(*store_, format_);
        ASSERT_TRUE(store_->Begin().ok());
    }
    // An inline map of `words` times 32 bits from `first` on, of which those from `free_from` on
    // are set.
    std::vector<std::byte> Inline(PageNumber first, std::size_t words, PageNumber free_from) {
        std::vector<std::byte> row(kInlineHead + 4 * words);
        base::StoreLittle(row.data() + 1, first);
        for (std::size_t bit = 0; bit < 32 * words; ++bit)
            if (first + bit >= free_from) SetBit(row, bit);
        return row;
    }
    static void SetBit(std::vector<std::byte>& row, std::size_t bit) {
        row[kInlineHead + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
    }

    PageNumber Allocate() {
        const auto page = allocator_->Allocate();
        EXPECT_TRUE(page.ok()) << page.status().message();
        return page.ok() ? *page : 0;
    }
    void Free(PageNumber page) {
        const base::Status status = allocator_->Free(page);
        EXPECT_TRUE(status.ok()) << status.message();
    }
    bool IsFree(PageNumber page) { return allocator_->IsFree(page).value(); }
    std::vector<std::byte> MapRow() {
        const PageView page = store_->Read(1).value();
        const auto row = DataPage::Parse(page.bytes(), format_)->Bytes(0).value();
        return {row.begin(), row.end()};
    }
    // The map answers for every page of the file, and says that those past its end are free.
    void ExpectCovered() {
        const std::vector<std::byte> row = MapRow();
        const PageNumber count = store_->page_count();
        if (row[0] == std::byte{0}) {
            EXPECT_EQ(base::LoadLittle<std::uint32_t>(row.data() + 1), 0U);
            EXPECT_GE((row.size() - kInlineHead) * 8, count);
            for (PageNumber page = count; page < (row.size() - kInlineHead) * 8; ++page)
                EXPECT_TRUE(IsFree(page)) << page;
            return;
        }
        const std::size_t per_page = format_.bits_per_bitmap_page();
        for (std::size_t range = 0; range * per_page < count; ++range) {
            ASSERT_LE(1 + 4 * (range + 1), row.size());
            const auto bitmap = base::LoadLittle<std::uint32_t>(row.data() + 1 + 4 * range);
            ASSERT_NE(bitmap, 0U);
            EXPECT_FALSE(IsFree(bitmap)) << "bitmap " << bitmap;
        }
        EXPECT_TRUE(IsFree(count));
    }

    const Format& format_ = FormatOf(GetParam());
    std::unique_ptr<PageStore> store_;
    std::optional<PageAllocator> allocator_;
};

// A program that did not know of the map has added pages.
TEST_P(PageAllocatorTest, PagesPastTheMapAreInUse) {
    Make(700, Inline(0, 16, 700));
    for (PageNumber page = 512; page < 700; ++page)
        EXPECT_FALSE(IsFree(page)) << page;
    EXPECT_EQ(Allocate(), 700U);
    ExpectCovered();
    for (PageNumber page = 2; page <= 700; ++page)
        EXPECT_FALSE(IsFree(page)) << page;
    EXPECT_EQ(Allocate(), 701U);
}

TEST_P(PageAllocatorTest, APagePastTheMapCanBeFreed) {
    Make(700, Inline(0, 16, 700));
    Free(600);
    ExpectCovered();
    EXPECT_TRUE(IsFree(600));
    EXPECT_FALSE(IsFree(599));
    EXPECT_EQ(Allocate(), 600U);
    EXPECT_EQ(Allocate(), 700U);
}

TEST_P(PageAllocatorTest, AMapThatStartsLaterIsBroughtBack) {
    Make(700, Inline(640, 16, 690));
    Free(20);
    ExpectCovered();
    EXPECT_EQ(Allocate(), 20U);
    EXPECT_EQ(Allocate(), 690U);
    EXPECT_EQ(Allocate(), 691U);
}

TEST_P(PageAllocatorTest, AMapThatStartsPastTheFileSaysNothingOfIt) {
    Make(40, Inline(0xFFFFFFF8U, 16, 0));
    EXPECT_EQ(Allocate(), 40U);
    ExpectCovered();
    EXPECT_FALSE(IsFree(39));
}

TEST_P(PageAllocatorTest, AMapWithoutABitIsAMap) {
    Make(40, Inline(0, 0, 0));
    Free(30);
    ExpectCovered();
    EXPECT_EQ(Allocate(), 30U);
    EXPECT_EQ(Allocate(), 40U);
}

TEST_P(PageAllocatorTest, AFreedPageSaysSoAndComesBackEmpty) {
    Make(40, Inline(0, 16, 40));
    std::ranges::fill(store_->Change(30).value(), std::byte{0x5A});
    Free(30);
    EXPECT_EQ(store_->Read(30).value().bytes()[0], std::byte{9});
    EXPECT_EQ(allocator_->Free(30).code(), base::StatusCode::kCorruption);
    EXPECT_EQ(Allocate(), 30U);
    const PageView page = store_->Read(30).value();
    EXPECT_TRUE(
        std::ranges::all_of(page.bytes(), [](std::byte byte) { return byte == std::byte{0}; }));
}

// Past what page 1 can hold the bits move to pages of their own; what is known of them goes along.
TEST_P(PageAllocatorTest, ALongMapMovesToPagesOfItsOwn) {
    const auto per_page = static_cast<PageNumber>(format_.bits_per_bitmap_page());
    const PageNumber pages = per_page + 500;
    std::vector<std::byte> map = Inline(64, 20, pages);
    for (const PageNumber page : {100U, 101U, 600U})
        SetBit(map, page - 64);
    Make(pages, map);
    for (const PageNumber page : {100U, 101U, 600U})
        EXPECT_EQ(Allocate(), page);
    EXPECT_EQ(MapRow()[0], std::byte{1});
    ExpectCovered();
    EXPECT_EQ(Allocate(), pages + 2);  // two ranges, two bitmap pages
    for (const PageNumber page :
         {6U, 63U, 102U, per_page - 1, per_page, pages - 1, pages, pages + 1})
        EXPECT_FALSE(IsFree(page)) << page;
    Free(per_page + 7);
    Free(7);
    EXPECT_EQ(Allocate(), 7U);
    EXPECT_EQ(Allocate(), per_page + 7);
    EXPECT_EQ(Allocate(), pages + 3);
}

// The file grows page by page from one form to the other, and from one range to the next.
TEST_P(PageAllocatorTest, AGrowingFileStaysCovered) {
    const auto per_page = static_cast<PageNumber>(format_.bits_per_bitmap_page());
    const PageNumber full = static_cast<PageNumber>(format_.page_size - 300) * 8 / 32 * 32;
    Make(full - 200, Inline(0, full / 32 - 5, full - 200));
    PageNumber freed = 0;
    bool was_inline = true;
    while (store_->page_count() < per_page + 10) {
        const PageNumber before = store_->page_count();
        const PageNumber page = Allocate();
        ASSERT_GE(page, before);
        if (page % 1000 == 0) ExpectCovered();
        if (freed == 0 && page > full - 100) {
            freed = page - 50;
            Free(freed);
            ASSERT_EQ(Allocate(), freed);
            Free(freed - 1);
            ASSERT_EQ(Allocate(), freed - 1);
        }
        const bool is_inline = MapRow()[0] == std::byte{0};
        if (was_inline && !is_inline) {
            Free(page - 3);  // known before the form changed
            ASSERT_EQ(Allocate(), page - 3);
        }
        was_inline = is_inline;
    }
    EXPECT_FALSE(was_inline);
    ExpectCovered();
    for (PageNumber page = 2; page < store_->page_count(); ++page)
        ASSERT_FALSE(IsFree(page)) << page;
}

TEST_P(PageAllocatorTest, AMapOfTooFewBitmapPagesGetsMore) {
    const auto per_page = static_cast<PageNumber>(format_.bits_per_bitmap_page());
    std::vector<std::byte> map(5);
    map[0] = std::byte{1};
    Make(2 * per_page + 20, map);
    EXPECT_FALSE(IsFree(10));
    EXPECT_FALSE(IsFree(per_page + 3));
    Free(per_page + 3);
    ExpectCovered();
    Free(10);
    Free(2 * per_page + 10);
    EXPECT_EQ(Allocate(), 10U);
    EXPECT_EQ(Allocate(), per_page + 3);
    EXPECT_EQ(Allocate(), 2 * per_page + 10);
    EXPECT_EQ(Allocate(), 2 * per_page + 23);
}

// The bitmap of the second range is there and says that pages past the end are free; that of the
// first is missing. The page that becomes it lies in the second range and must be taken there.
TEST_P(PageAllocatorTest, ABitmapThatIsAddedIsInUseInTheRangeWhereItLies) {
    const auto per_page = static_cast<PageNumber>(format_.bits_per_bitmap_page());
    const PageNumber pages = per_page + 20;
    const PageNumber bitmap = per_page + 10;
    std::vector<std::byte> map(1 + 4 * 2);
    map[0] = std::byte{1};
    base::StoreLittle<std::uint32_t>(map.data() + 5, bitmap);
    Make(pages, map);
    const std::span<std::byte> bytes = store_->Change(bitmap).value();
    bytes[0] = std::byte{5};
    bytes[1] = std::byte{1};
    for (std::size_t bit = pages - per_page; bit < per_page; ++bit)
        bytes[4 + bit / 8] |= static_cast<std::byte>(1U << bit % 8);
    Free(10);
    ExpectCovered();
    EXPECT_FALSE(IsFree(pages)) << "the new bitmap";
    EXPECT_EQ(Allocate(), 10U);
    EXPECT_EQ(Allocate(), pages + 1);
}

INSTANTIATE_TEST_SUITE_P(Versions, PageAllocatorTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

}  // namespace
}  // namespace jet
