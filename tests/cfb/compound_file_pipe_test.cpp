// What can lie among files on systems where a pipe has a name in a folder.
#include "cfb/compound_file.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace cfb {
namespace {

// Opening it would wait for a writer that never comes.
TEST(CompoundFilePipeTest, APipeIsUnsupported) {
    const test_support::TemporaryFolder folder;
    const auto path = folder.path() / "table.vpt";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(CompoundFile::Open(path).status().code(), base::StatusCode::kUnsupported);
}

}  // namespace
}  // namespace cfb
