// DatabaseIsSound: what tests that write a database ask afterwards.
#pragma once

#include "jet/page_store.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace test_support {

// Success, or all faults that the checker finds in the file; its warnings do not count. Opens the
// file for reading (a journal that was left behind is taken into account), so nobody may have it
// open for writing.
testing::AssertionResult DatabaseIsSound(const std::filesystem::path& path);

// The same for pages at hand, with what the open transaction has changed.
testing::AssertionResult PagesAreSound(jet::PageStore& store);

}  // namespace test_support
