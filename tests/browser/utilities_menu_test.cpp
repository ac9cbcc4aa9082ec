#include "browser/utilities_menu.h"

#include <gtest/gtest.h>

namespace browser {
namespace {

TEST(UtilitiesMenuTest, ResetsAreNotOfferedOnTheFourthTab) {
    for (int tab = 0; tab < 5; ++tab) {
        const UtilitiesMenuState state = UtilitiesMenuFor(tab, true);
        EXPECT_EQ(state.reset_paths, tab != 3) << tab;
        EXPECT_EQ(state.reset_dates, tab != 3) << tab;
        EXPECT_TRUE(state.default_size) << tab;
    }
}

TEST(UtilitiesMenuTest, TheDefaultSizeIsForANormalWindowOnly) {
    EXPECT_FALSE(UtilitiesMenuFor(0, false).default_size);
    EXPECT_TRUE(UtilitiesMenuFor(0, false).reset_paths);
}

}  // namespace
}  // namespace browser
