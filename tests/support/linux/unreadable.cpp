// Where the tests run as root, who may read everything, this process is the user nobody meanwhile.
#include "support/unreadable.h"

#include <gtest/gtest.h>

#include <utility>

#include <unistd.h>

namespace test_support {
namespace {

constexpr uid_t kNobody = 65534;

// The folders of the tests, which are their owner's alone, are open to everybody from now on.
void OpenFoldersAbove(const std::filesystem::path& path) {
    using std::filesystem::perms;
    // Nobody is still in the group of who it was.
    constexpr perms kForAll =
        perms::group_read | perms::group_exec | perms::others_read | perms::others_exec;
    const std::filesystem::path end = std::filesystem::temp_directory_path();
    for (auto folder = path.parent_path(); folder != end && folder != folder.root_path();
         folder = folder.parent_path())
        permissions(folder, kForAll, std::filesystem::perm_options::add);
}

}  // namespace

Unreadable::Unreadable(std::vector<std::filesystem::path> paths) : paths_(std::move(paths)) {
    for (const auto& path : paths_) {
        OpenFoldersAbove(path);
        permissions(path, std::filesystem::perms::none);
    }
    EXPECT_TRUE(geteuid() != 0 || seteuid(kNobody) == 0);
}

Unreadable::~Unreadable() {
    EXPECT_TRUE(getuid() != 0 || seteuid(0) == 0);
    for (const auto& path : paths_)
        permissions(path, std::filesystem::perms::owner_all);
}

}  // namespace test_support
