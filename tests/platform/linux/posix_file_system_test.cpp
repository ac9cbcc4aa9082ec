// What only files of a POSIX system do: pipes, permissions, links, failures of the system itself.
#include "platform/file_system.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using base::StatusCode;
using jet::OpenMode;

class PosixFileSystemTest : public testing::Test {
protected:
    std::unique_ptr<jet::File> Open(const std::string& name, OpenMode mode) {
        auto file = files_->Open(folder_ / name, mode);
        EXPECT_TRUE(file.ok()) << file.status().message();
        return file.ok() ? std::move(file).value() : nullptr;
    }
    static std::vector<std::byte> Bytes(std::string_view text) {
        const auto* data = reinterpret_cast<const std::byte*>(text.data());
        return {data, data + text.size()};
    }

    test_support::TemporaryFolder temporary_;
    const std::filesystem::path& folder_ = temporary_.path();
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
};

TEST_F(PosixFileSystemTest, APipeIsNoFile) {
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(files_->Open(folder_ / "pipe", OpenMode::kRead).status().code(),
              StatusCode::kPermissionDenied);
}

TEST_F(PosixFileSystemTest, AFileThatMayNotBeWrittenIsPermissionDenied) {
    if (::geteuid() == 0) {
        // The superuser may write to any file except a running program.
        EXPECT_EQ(files_->Open("/proc/self/exe", OpenMode::kReadWrite).status().code(),
                  StatusCode::kPermissionDenied);
        return;
    }
    Open("a", OpenMode::kCreate);
    ASSERT_EQ(::chmod((folder_ / "a").c_str(), 0400), 0);
    EXPECT_EQ(files_->Open(folder_ / "a", OpenMode::kReadWrite).status().code(),
              StatusCode::kPermissionDenied);
}

TEST_F(PosixFileSystemTest, FullDiskIsNoSpace) {
    ASSERT_EQ(::access("/dev/full", W_OK), 0);
    // /dev/full is not a regular file, so a limit on file sizes simulates the full disk.
    const auto file = Open("a", OpenMode::kCreate);
    EXPECT_EQ(file->WriteAt(std::uint64_t{1} << 62, Bytes("x")).code(), StatusCode::kNoSpace);
}

// A descriptor of a pipe in the place of the file's: the system refuses to sync it.
TEST_F(PosixFileSystemTest, ASyncThatFailsIsReported) {
    const auto file = Open("a", OpenMode::kCreate);
    ASSERT_TRUE(file->Sync().ok());
    int pipe_ends[2];
    ASSERT_EQ(::pipe(pipe_ends), 0);
    int replaced = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (std::filesystem::read_symlink(entry, gone) == std::filesystem::canonical(folder_ / "a"))
            replaced += ::dup2(pipe_ends[1], std::stoi(entry.path().filename())) >= 0 ? 1 : 0;
    }
    ::close(pipe_ends[0]);
    ::close(pipe_ends[1]);
    ASSERT_EQ(replaced, 1);
    EXPECT_FALSE(file->Sync().ok());
}

TEST_F(PosixFileSystemTest, AFileThatIsReplacedStaysALinkAndItsOwnersOnly) {
    Open("a", OpenMode::kCreate);
    Open("b", OpenMode::kCreate);
    const auto mode = std::filesystem::perms{0640};
    std::filesystem::permissions(folder_ / "b", mode);
    std::filesystem::create_symlink("b", folder_ / "link");
    ASSERT_TRUE(Open("a", OpenMode::kReadWrite)->WriteAt(0, Bytes("abc")).ok());
    ASSERT_TRUE(files_->Rename(folder_ / "a", folder_ / "link").ok());
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link"));
    EXPECT_EQ(std::filesystem::status(folder_ / "b").permissions(), mode);
    EXPECT_EQ(Open("b", OpenMode::kRead)->Size().value(), 3u);
}

TEST_F(PosixFileSystemTest, AFileKnowsItsPathThroughALink) {
    const auto file = Open("a", OpenMode::kCreate);
    std::filesystem::create_symlink("a", folder_ / "link");
    EXPECT_TRUE(file->IsAt(folder_ / "link"));
}

}  // namespace
