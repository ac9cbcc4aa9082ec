// Compacting through a link, on systems where every user can make links.
#include "jet/pages/file_mark.h"
#include "jet/repair/compact.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

std::uint64_t MarkOf(const std::filesystem::path& path) {
    const auto bytes = ReadWholeFile(path);
    return ReadFileMark(std::span(bytes).first(4096));
}

TEST(CompactLinkTest, InPlaceALinkStaysALinkAndTheFileIsWhoseItWas) {
    const TemporaryFolder folder;
    const auto files = platform::MakeFileSystem();
    const auto file = folder.path() / "file.mdb";
    const auto link = folder.path() / "link.mdb";
    std::filesystem::copy_file(DataFolder() / "databases/arcade-jet4.mdb", file);
    const auto mode = std::filesystem::perms{0640};
    std::filesystem::permissions(file, mode);
    std::filesystem::create_symlink("file.mdb", link);
    const std::uint64_t mark = MarkOf(file);
    const auto report = CompactInPlace(*files, link);
    ASSERT_TRUE(report.ok()) << report.status().message();
    EXPECT_EQ(report->mark_before, mark);
    EXPECT_EQ(report->mark_after, MarkOf(file));
    EXPECT_NE(report->mark_after, mark);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(std::filesystem::status(file).permissions(), mode);
    EXPECT_EQ(std::filesystem::file_size(file), report->pages_after * 4096U);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2);
}

}  // namespace
}  // namespace jet::test
