#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using base::StatusCode;
using jet::FileLock;
using jet::OpenMode;

class FileSystemTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name =
            (std::filesystem::temp_directory_path() / "tavolo-files-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    std::unique_ptr<jet::File> Open(const std::string& name, OpenMode mode) {
        auto file = files_->Open(folder_ / name, mode);
        EXPECT_TRUE(file.ok()) << file.status().message();
        return file.ok() ? std::move(file).value() : nullptr;
    }

    static std::vector<std::byte> Bytes(std::string_view text) {
        const auto* data = reinterpret_cast<const std::byte*>(text.data());
        return {data, data + text.size()};
    }

    std::filesystem::path folder_;
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
};

TEST_F(FileSystemTest, WritesAndReadsAtOffsets) {
    const auto file = Open("a", OpenMode::kCreate);
    ASSERT_TRUE(file->WriteAt(3, Bytes("abc")).ok());
    ASSERT_TRUE(file->Sync().ok());
    EXPECT_EQ(file->Size().value(), 6u);
    std::vector<std::byte> read(6);
    ASSERT_TRUE(file->ReadAt(0, read).ok());
    EXPECT_EQ(read, Bytes(std::string_view("\0\0\0abc", 6)));
    ASSERT_TRUE(file->Truncate(1).ok());
    EXPECT_EQ(file->Size().value(), 1u);
}

TEST_F(FileSystemTest, ReadPastTheEndIsAnIoError) {
    const auto file = Open("a", OpenMode::kCreate);
    ASSERT_TRUE(file->WriteAt(0, Bytes("abc")).ok());
    std::array<std::byte, 4> read{};
    EXPECT_EQ(file->ReadAt(0, read).code(), StatusCode::kIoError);
}

TEST_F(FileSystemTest, ModesDifferInWhatTheyNeedAndKeep) {
    EXPECT_EQ(files_->Open(folder_ / "a", OpenMode::kRead).status().code(), StatusCode::kNotFound);
    EXPECT_EQ(files_->Open(folder_ / "a", OpenMode::kReadWrite).status().code(),
              StatusCode::kNotFound);
    ASSERT_TRUE(Open("a", OpenMode::kOpenOrCreate)->WriteAt(0, Bytes("abc")).ok());
    EXPECT_EQ(Open("a", OpenMode::kOpenOrCreate)->Size().value(), 3u);
    EXPECT_FALSE(Open("a", OpenMode::kRead)->WriteAt(0, Bytes("x")).ok());
    EXPECT_EQ(Open("a", OpenMode::kCreate)->Size().value(), 0u);
}

TEST_F(FileSystemTest, FoldersAndPipesAreNoFiles) {
    EXPECT_EQ(files_->Open(folder_, OpenMode::kRead).status().code(),
              StatusCode::kPermissionDenied);
    EXPECT_EQ(files_->Open(folder_, OpenMode::kReadWrite).status().code(),
              StatusCode::kPermissionDenied);
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(files_->Open(folder_ / "pipe", OpenMode::kRead).status().code(),
              StatusCode::kPermissionDenied);
    EXPECT_EQ(files_->Open(folder_ / "a" / "b", OpenMode::kRead).status().code(),
              StatusCode::kNotFound);
}

TEST_F(FileSystemTest, AFileThatMayNotBeWrittenIsPermissionDenied) {
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

TEST_F(FileSystemTest, FullDiskIsNoSpace) {
    ASSERT_EQ(::access("/dev/full", W_OK), 0);
    // /dev/full is not a regular file, so a limit on file sizes simulates the full disk.
    const auto file = Open("a", OpenMode::kCreate);
    EXPECT_EQ(file->WriteAt(std::uint64_t{1} << 62, Bytes("x")).code(), StatusCode::kNoSpace);
}

// A descriptor of a pipe in the place of the file's: the system refuses to sync it.
TEST_F(FileSystemTest, ASyncThatFailsIsReported) {
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

TEST_F(FileSystemTest, LocksConflictBetweenOpeningsAndEndWithTheFile) {
    Open("a", OpenMode::kCreate);
    auto one = Open("a", OpenMode::kReadWrite);
    auto two = Open("a", OpenMode::kReadWrite);
    ASSERT_TRUE(one->Lock(FileLock::kExclusive).ok());
    EXPECT_EQ(two->Lock(FileLock::kExclusive).code(), StatusCode::kBusy);
    EXPECT_EQ(two->Lock(FileLock::kShared).code(), StatusCode::kBusy);
    one.reset();
    EXPECT_TRUE(two->Lock(FileLock::kShared).ok());
    auto three = Open("a", OpenMode::kRead);
    EXPECT_TRUE(three->Lock(FileLock::kShared).ok());
    EXPECT_EQ(two->Lock(FileLock::kExclusive).code(), StatusCode::kBusy);
    ASSERT_TRUE(three->Lock(FileLock::kNone).ok());
    EXPECT_TRUE(two->Lock(FileLock::kExclusive).ok());
}

TEST_F(FileSystemTest, ALockedFileIsStillReadByOtherPrograms) {
    auto file = Open("a", OpenMode::kCreate);
    ASSERT_TRUE(file->WriteAt(0, Bytes("abc")).ok());
    ASSERT_TRUE(file->Lock(FileLock::kExclusive).ok());
    const std::string command = "test \"$(cat '" + (folder_ / "a").string() + "')\" = abc";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST_F(FileSystemTest, RenameReplacesAndRemoveRemoves) {
    ASSERT_TRUE(Open("a", OpenMode::kCreate)->WriteAt(0, Bytes("abc")).ok());
    Open("b", OpenMode::kCreate);
    ASSERT_TRUE(files_->Rename(folder_ / "a", folder_ / "b").ok());
    ASSERT_TRUE(files_->SyncFolder(folder_).ok());
    EXPECT_FALSE(files_->Exists(folder_ / "a"));
    EXPECT_EQ(Open("b", OpenMode::kRead)->Size().value(), 3u);
    ASSERT_TRUE(files_->Remove(folder_ / "b").ok());
    EXPECT_FALSE(files_->Exists(folder_ / "b"));
    EXPECT_EQ(files_->Remove(folder_ / "b").code(), StatusCode::kNotFound);
    EXPECT_EQ(files_->SyncFolder(folder_ / "b").code(), StatusCode::kNotFound);
}

TEST_F(FileSystemTest, AFileThatIsReplacedStaysALinkAndItsOwnersOnly) {
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

TEST_F(FileSystemTest, AFileKnowsWhetherItsPathStillLeadsToIt) {
    const auto file = Open("a", OpenMode::kCreate);
    std::filesystem::create_symlink("a", folder_ / "link");
    EXPECT_TRUE(file->IsAt(folder_ / "a"));
    EXPECT_TRUE(file->IsAt(folder_ / "link"));
    Open("b", OpenMode::kCreate);
    EXPECT_FALSE(file->IsAt(folder_ / "b"));
    ASSERT_TRUE(files_->Rename(folder_ / "b", folder_ / "a").ok());
    EXPECT_FALSE(file->IsAt(folder_ / "a"));
    ASSERT_TRUE(files_->Remove(folder_ / "a").ok());
    EXPECT_FALSE(file->IsAt(folder_ / "a"));
}

TEST_F(FileSystemTest, OwnerNameNamesUserAndComputer) {
    const std::string name = files_->OwnerName();
    const std::size_t at = name.find('@');
    ASSERT_NE(at, std::string::npos);
    EXPECT_GT(at, 0u);
    EXPECT_LT(at + 1, name.size());
}

}  // namespace
