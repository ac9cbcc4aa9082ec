// Which pages the cache keeps.
#include "jet/pages/page_cache.h"

#include <gtest/gtest.h>

namespace {

using jet::PageCache;
using jet::PageNumber;

constexpr PageNumber kCapacity = 16;

jet::SharedPage PageOf(int value) {
    return std::make_shared<jet::PageBytes>(1, static_cast<std::byte>(value));
}

class PageCacheTest : public testing::Test {
protected:
    void SetUp() override {
        for (PageNumber page = 0; page < kCapacity; ++page)
            cache_.Put(page, PageOf(static_cast<int>(page)));
    }
    PageCache cache_{kCapacity};
};

TEST_F(PageCacheTest, GivesBackWhatWasPut) {
    for (PageNumber page = 0; page < kCapacity; ++page) {
        const jet::SharedPage found = cache_.Find(page);
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(std::to_integer<PageNumber>((*found)[0]), page);
    }
    EXPECT_EQ(cache_.Find(kCapacity), nullptr);
    cache_.Put(3, PageOf(33));
    EXPECT_EQ(std::to_integer<int>((*cache_.Find(3))[0]), 33);
    EXPECT_EQ(cache_.size(), kCapacity);
}

// Of those that were not asked for, one goes; those that were stay.
TEST_F(PageCacheTest, AFullOneLosesAPageThatNobodyAskedFor) {
    for (PageNumber page = 0; page < kCapacity; ++page)
        if (page != 7) cache_.Find(page);
    cache_.Put(100, PageOf(100));
    EXPECT_FALSE(cache_.Contains(7));
    EXPECT_TRUE(cache_.Contains(100));
    EXPECT_EQ(cache_.size(), kCapacity);
}

// A page that was erased leaves its place to the next one: no other has to go.
TEST_F(PageCacheTest, TheErasedLeaveTheirPlaces) {
    cache_.Erase(5);
    cache_.Erase(9);
    cache_.Erase(9);
    EXPECT_EQ(cache_.size(), kCapacity - 2);
    cache_.Put(100, PageOf(100));
    cache_.Put(101, PageOf(101));
    for (PageNumber page = 0; page < kCapacity; ++page)
        EXPECT_EQ(cache_.Contains(page), page != 5 && page != 9) << page;
    EXPECT_TRUE(cache_.Contains(100));
    EXPECT_TRUE(cache_.Contains(101));
    EXPECT_EQ(cache_.size(), kCapacity);
}

}  // namespace
