// What every system's files promise the engine. What only one has: linux/, windows/.
#include "base/file_names.h"
#include "platform/file_system.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>

namespace {

using base::StatusCode;
using jet::FileLock;
using jet::OpenMode;

// Behind what the tests write.
constexpr std::uint64_t kFrom = 0x10000000;

class FileSystemTest : public testing::Test {
protected:
    std::unique_ptr<jet::File> Open(const std::filesystem::path& name, OpenMode mode) {
        auto file = files_->Open(folder_ / name, mode);
        EXPECT_TRUE(file.ok()) << file.status().message();
        return file.ok() ? std::move(file).value() : nullptr;
    }
    void Write(const std::string& name, std::string_view text) {
        ASSERT_TRUE(Open(name, OpenMode::kCreate)->WriteAt(0, Bytes(text)).ok());
    }
    // As any other program reads it.
    std::string TextIn(const std::string& name) {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static std::vector<std::byte> Bytes(std::string_view text) {
        const auto* data = reinterpret_cast<const std::byte*>(text.data());
        return {data, data + text.size()};
    }

    test_support::TemporaryFolder temporary_;
    const std::filesystem::path& folder_ = temporary_.path();
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

TEST_F(FileSystemTest, AFolderIsNoFile) {
    for (const OpenMode mode : {OpenMode::kRead, OpenMode::kReadWrite, OpenMode::kOpenOrCreate})
        EXPECT_EQ(files_->Open(folder_, mode).status().code(), StatusCode::kPermissionDenied);
    Open("a", OpenMode::kCreate);
    EXPECT_EQ(files_->Open(folder_ / "a" / "b", OpenMode::kRead).status().code(),
              StatusCode::kNotFound);
    EXPECT_EQ(files_->Open(folder_ / "none" / "b", OpenMode::kCreate).status().code(),
              StatusCode::kNotFound);
    EXPECT_FALSE(files_->Remove(folder_).ok());
}

TEST_F(FileSystemTest, LocksConflictBetweenOpeningsAndEndWithTheFile) {
    Open("a", OpenMode::kCreate);
    auto one = Open("a", OpenMode::kReadWrite);
    auto two = Open("a", OpenMode::kReadWrite);
    ASSERT_TRUE(one->Lock(FileLock::kExclusive, kFrom).ok());
    EXPECT_EQ(two->Lock(FileLock::kExclusive, kFrom).code(), StatusCode::kBusy);
    EXPECT_EQ(two->Lock(FileLock::kShared, kFrom).code(), StatusCode::kBusy);
    one.reset();
    EXPECT_TRUE(two->Lock(FileLock::kShared, kFrom).ok());
    auto three = Open("a", OpenMode::kRead);
    EXPECT_TRUE(three->Lock(FileLock::kShared, kFrom).ok());
    EXPECT_EQ(two->Lock(FileLock::kExclusive, kFrom).code(), StatusCode::kBusy);
    ASSERT_TRUE(three->Lock(FileLock::kNone, kFrom).ok());
    EXPECT_TRUE(two->Lock(FileLock::kExclusive, kFrom).ok());
}

TEST_F(FileSystemTest, ALockThatCannotBeHadLeavesTheOldOne) {
    Open("a", OpenMode::kCreate);
    const auto one = Open("a", OpenMode::kReadWrite);
    const auto two = Open("a", OpenMode::kReadWrite);
    ASSERT_TRUE(one->Lock(FileLock::kShared, kFrom).ok());
    ASSERT_TRUE(two->Lock(FileLock::kShared, kFrom).ok());
    EXPECT_EQ(one->Lock(FileLock::kExclusive, kFrom).code(), StatusCode::kBusy);
    EXPECT_EQ(two->Lock(FileLock::kExclusive, kFrom).code(), StatusCode::kBusy);
}

TEST_F(FileSystemTest, ALockCoversAllBytesFromItsFirstOn) {
    Open("a", OpenMode::kCreate);
    const auto one = Open("a", OpenMode::kReadWrite);
    const auto two = Open("a", OpenMode::kReadWrite);
    ASSERT_TRUE(one->Lock(FileLock::kExclusive, kFrom).ok());
    EXPECT_EQ(two->Lock(FileLock::kShared, kFrom + 1).code(), StatusCode::kBusy);
    EXPECT_EQ(two->Lock(FileLock::kShared, jet::kBehindContent).code(), StatusCode::kBusy);
}

TEST_F(FileSystemTest, ALockedFileIsStillReadByOtherPrograms) {
    const auto file = Open("a", OpenMode::kCreate);
    ASSERT_TRUE(file->WriteAt(0, Bytes("abc")).ok());
    ASSERT_TRUE(file->Lock(FileLock::kExclusive, kFrom).ok());
    EXPECT_EQ(TextIn("a"), "abc");
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

TEST_F(FileSystemTest, AFileIsReplacedWhileItIsOpen) {
    Write("a", "old");
    Write("b", "new one");
    const auto old = Open("a", OpenMode::kReadWrite);
    ASSERT_TRUE(old->Lock(FileLock::kExclusive, kFrom).ok());
    const auto done = files_->Rename(folder_ / "b", folder_ / "a");
    ASSERT_TRUE(done.ok()) << done.message();
    EXPECT_EQ(TextIn("a"), "new one");
    EXPECT_FALSE(files_->Exists(folder_ / "b"));
    EXPECT_EQ(old->Size().value(), 3U);
    EXPECT_FALSE(old->IsAt(folder_ / "a"));
}

TEST_F(FileSystemTest, NothingIsLeftBesideAFileThatWasReplaced) {
    for (const char* content : {"one", "two", "three"}) {
        const auto old = Open("a", OpenMode::kOpenOrCreate);
        Write("b", content);
        ASSERT_TRUE(files_->Rename(folder_ / "b", folder_ / "a").ok());
        EXPECT_EQ(TextIn("a"), content);
    }
    EXPECT_EQ(files_->FileNames(folder_).value(), std::vector<std::string>{"a"});
}

TEST_F(FileSystemTest, ARenameThatFailsLeavesBoth) {
    Write("a", "abc");
    EXPECT_EQ(files_->Rename(folder_ / "none", folder_ / "a").code(), StatusCode::kNotFound);
    EXPECT_EQ(files_->Rename(folder_ / "a", folder_ / "none" / "a").code(), StatusCode::kNotFound);
    ASSERT_TRUE(files_->MakeFolder(folder_ / "folder").ok());
    EXPECT_FALSE(files_->Rename(folder_ / "a", folder_ / "folder").ok());
    EXPECT_EQ(TextIn("a"), "abc");
}

TEST_F(FileSystemTest, AFileIsRemovedWhileItIsOpen) {
    Write("a", "abc");
    {
        const auto file = Open("a", OpenMode::kReadWrite);
        ASSERT_TRUE(files_->Remove(folder_ / "a").ok());
        EXPECT_EQ(file->Size().value(), 3U);
    }
    EXPECT_FALSE(files_->Exists(folder_ / "a"));
    EXPECT_EQ(Open("a", OpenMode::kOpenOrCreate)->Size().value(), 0U);
}

TEST_F(FileSystemTest, AFileKnowsWhetherItsPathStillLeadsToIt) {
    const auto file = Open("a", OpenMode::kCreate);
    EXPECT_TRUE(file->IsAt(folder_ / "a"));
    EXPECT_TRUE(file->IsAt(folder_ / "." / "a"));
    Open("b", OpenMode::kCreate);
    EXPECT_FALSE(file->IsAt(folder_ / "b"));
    ASSERT_TRUE(files_->Rename(folder_ / "b", folder_ / "a").ok());
    EXPECT_FALSE(file->IsAt(folder_ / "a"));
    ASSERT_TRUE(files_->Remove(folder_ / "a").ok());
    EXPECT_FALSE(file->IsAt(folder_ / "a"));
}

TEST_F(FileSystemTest, FoldersAreMadeAndTheirFilesListed) {
    const auto folder = folder_ / "folder";
    EXPECT_EQ(files_->FileNames(folder).status().code(), StatusCode::kNotFound);
    ASSERT_TRUE(files_->MakeFolder(folder).ok());
    ASSERT_TRUE(files_->MakeFolder(folder).ok());
    EXPECT_EQ(files_->MakeFolder(folder_ / "none" / "folder").code(), StatusCode::kNotFound);
    EXPECT_TRUE(files_->Exists(folder));
    EXPECT_TRUE(files_->FileNames(folder).value().empty());
    ASSERT_TRUE(files_->MakeFolder(folder / "inner").ok());
    Open("folder/b", OpenMode::kCreate);
    Open("folder/a", OpenMode::kCreate);
    auto names = files_->FileNames(folder).value();
    std::ranges::sort(names);
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b"}));
}

// Letters of four alphabets, and one beyond the basic plane.
TEST_F(FileSystemTest, NamesOfAllAlphabetsAreOpenedListedAndNamedInMessages) {
    const std::u16string name = u"Tåble Стол テーブル \U0001F3B1.mdb";
    const std::string utf8 = "Tåble Стол テーブル \U0001F3B1.mdb";
    Open(base::PathOf(name), OpenMode::kCreate);
    EXPECT_EQ(files_->FileNames(folder_).value(), std::vector<std::string>{utf8});
    const auto failed = files_->Open(folder_ / "none" / base::PathOf(name), OpenMode::kRead);
    EXPECT_NE(failed.status().message().find(utf8), std::string::npos);
    ASSERT_TRUE(files_->Rename(folder_ / base::PathOf(name), folder_ / "a").ok());
    EXPECT_TRUE(files_->Exists(folder_ / "a"));
}

TEST_F(FileSystemTest, PathsMayBeLongerThanTwoHundredAndSixtyCharacters) {
    std::filesystem::path deep = folder_;
    for (int i = 0; i < 12; ++i) {
        deep /= std::string(60, 'f');
        const auto made = files_->MakeFolder(deep);
        ASSERT_TRUE(made.ok()) << made.message();
    }
    auto file = files_->Open(deep / "a.mdb", OpenMode::kCreate);
    ASSERT_TRUE(file.ok()) << file.status().message();
    ASSERT_TRUE((*file)->WriteAt(0, Bytes("abc")).ok());
    EXPECT_TRUE((*file)->IsAt(deep / "a.mdb"));
    file = base::Status(StatusCode::kIoError, "closed");
    ASSERT_TRUE(files_->Rename(deep / "a.mdb", deep / "b.mdb").ok());
    EXPECT_EQ(files_->FileNames(deep).value(), std::vector<std::string>{"b.mdb"});
    ASSERT_TRUE(files_->SyncFolder(deep).ok());
    ASSERT_TRUE(files_->Remove(deep / "b.mdb").ok());
    EXPECT_FALSE(files_->Exists(deep / "b.mdb"));
    // Shorter from above, so that the folders can be removed by those who have the limit.
    std::filesystem::path at = folder_;
    for (int i = 0; i < 12; ++i, at /= "f")
        std::filesystem::rename(at / std::string(60, 'f'), at / "f");
}

TEST_F(FileSystemTest, OwnerNameNamesUserAndComputer) {
    const std::string name = files_->OwnerName();
    const std::size_t at = name.find('@');
    ASSERT_NE(at, std::string::npos);
    EXPECT_GT(at, 0u);
    EXPECT_LT(at + 1, name.size());
}

}  // namespace
