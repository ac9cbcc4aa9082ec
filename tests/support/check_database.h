// DatabaseIsSound: what tests that write a database ask afterwards.
#pragma once

#include "jet/check/check.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace test_support {

// For files that came from elsewhere and were changed by this engine.
inline constexpr jet::CheckOptions kStrict{.exact_node_keys = true};
// For files that this engine alone has written.
inline constexpr jet::CheckOptions kOwnFile{.exact_node_keys = true, .exact_levels = true};

// Success, or all faults that the checker finds in the file; its warnings do not count. Opens the
// file for reading (a journal that was left behind is taken into account), so nobody may have it
// open for writing.
testing::AssertionResult DatabaseIsSound(const std::filesystem::path& path,
                                         jet::CheckOptions options = kStrict);

// The same for pages at hand, with what the open transaction has changed.
testing::AssertionResult PagesAreSound(jet::PageStore& store, jet::CheckOptions options = kStrict);

}  // namespace test_support
