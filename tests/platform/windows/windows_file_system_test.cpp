// What only files of Windows do: names of devices and streams, sharing modes, attributes, the
// exchange in two steps, error numbers.
#include "platform/file_system.h"
#include "platform/windows/file_replacement.h"
#include "platform/windows/last_error.h"
#include "platform/windows/owned_handle.h"
#include "platform/windows/system_path.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using base::StatusCode;
using jet::OpenMode;
using platform::OwnedHandle;

class WindowsFileSystemTest : public testing::Test {
protected:
    void Write(const std::wstring& name, std::string_view text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    std::string TextIn(const std::wstring& name) {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // As another program that shares nothing, or only this, opens it.
    OwnedHandle OpenElsewhere(const std::wstring& name, DWORD access, DWORD share) {
        return OwnedHandle(CreateFileW((folder_ / name).c_str(), access, share, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    StatusCode CodeOfOpening(const std::filesystem::path& path, OpenMode mode = OpenMode::kRead) {
        return files_->Open(path, mode).status().code();
    }

    test_support::TemporaryFolder temporary_;
    const std::filesystem::path& folder_ = temporary_.path();
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
};

TEST_F(WindowsFileSystemTest, DevicesAndPipesAreNoFiles) {
    for (const wchar_t* name : {L"NUL", L"CON", LR"(\\.\NUL)", LR"(\\.\pipe\none)", LR"(\\.\C:)"})
        EXPECT_EQ(CodeOfOpening(name, OpenMode::kOpenOrCreate), StatusCode::kPermissionDenied)
            << name;
}

TEST_F(WindowsFileSystemTest, NamesThatNoFileHasAreNotFound) {
    Write(L"a", "abc");
    for (const wchar_t* name : {L"a:stream", L"a::$DATA", L"a*", L"a?", L"a<b", L"a|b", L"a\"b"}) {
        EXPECT_EQ(CodeOfOpening(folder_ / name), StatusCode::kNotFound) << name;
        EXPECT_EQ(CodeOfOpening(folder_ / name, OpenMode::kCreate), StatusCode::kNotFound) << name;
        EXPECT_FALSE(files_->Exists(folder_ / name)) << name;
    }
    EXPECT_EQ(CodeOfOpening({}), StatusCode::kNotFound);
    EXPECT_EQ(CodeOfOpening(folder_ / std::wstring(L"a\0b", 3)), StatusCode::kNotFound);
}

// A name that is no valid UTF-16 can be had on this system's disks.
TEST_F(WindowsFileSystemTest, ALoneSurrogateInANameIsNamedInMessages) {
    const std::wstring name{L'a', static_cast<wchar_t>(0xD800), L'b'};
    const auto status = files_->Open(folder_ / L"none" / name, OpenMode::kRead).status();
    EXPECT_EQ(status.code(), StatusCode::kNotFound);
    EXPECT_NE(status.message().find("a\uFFFDb"), std::string::npos) << status.message();
}

TEST_F(WindowsFileSystemTest, SlashesCaseAndEndingsAreTheSystemsOwn) {
    Write(L"Tables.mdb", "abc");
    for (const wchar_t* name : {L"tables.MDB", L"x/../Tables.mdb", L"Tables.mdb.", L"Tables.mdb "})
        EXPECT_EQ(CodeOfOpening(folder_ / name), StatusCode::kOk) << name;
}

TEST_F(WindowsFileSystemTest, PathsBecomeAbsoluteWithoutALimit) {
    EXPECT_EQ(platform::SystemPath(LR"(C:\a\..\b/c.mdb)").value(), LR"(\\?\C:\b\c.mdb)");
    EXPECT_EQ(platform::SystemPath(LR"(\\server\share\a)").value(), LR"(\\?\UNC\server\share\a)");
    EXPECT_EQ(platform::SystemPath(LR"(\\?\C:\a)").value(), LR"(\\?\C:\a)");
    EXPECT_FALSE(platform::SystemPath(LR"(\\?\C:\a:b)").ok());
    EXPECT_FALSE(platform::SystemPath(LR"(\\server\share\a:b)").ok());
}

TEST_F(WindowsFileSystemTest, WhatAnotherProgramKeepsToItselfIsBusy) {
    Write(L"a", "abc");
    const OwnedHandle reader = OpenElsewhere(L"a", GENERIC_READ, FILE_SHARE_READ);
    ASSERT_TRUE(reader.is_open());
    EXPECT_EQ(CodeOfOpening(folder_ / "a"), StatusCode::kOk);
    EXPECT_EQ(CodeOfOpening(folder_ / "a", OpenMode::kReadWrite), StatusCode::kBusy);
    EXPECT_EQ(CodeOfOpening(folder_ / "a", OpenMode::kOpenOrCreate), StatusCode::kBusy);
    EXPECT_EQ(files_->Remove(folder_ / "a").code(), StatusCode::kBusy);
    Write(L"b", "new");
    EXPECT_FALSE(files_->Rename(folder_ / "b", folder_ / "a").ok());
    EXPECT_EQ(TextIn(L"a"), "abc");
    EXPECT_EQ(TextIn(L"b"), "new");
}

// As left by a process that died in the middle of an exchange: each way of asking for the file
// brings the old one back.
TEST_F(WindowsFileSystemTest, WhatWasMovedAsideComesBack) {
    const auto begin = [&] {
        files_->Remove(folder_ / "a").Ignore();
        Write(L"a-replaced", "old");
    };
    begin();
    EXPECT_TRUE(files_->Exists(folder_ / "a"));
    EXPECT_EQ(TextIn(L"a"), "old");
    for (const OpenMode mode : {OpenMode::kRead, OpenMode::kReadWrite, OpenMode::kOpenOrCreate}) {
        begin();
        EXPECT_EQ(CodeOfOpening(folder_ / "a", mode), StatusCode::kOk);
        EXPECT_EQ(TextIn(L"a"), "old");
        EXPECT_FALSE(std::filesystem::exists(folder_ / "a-replaced"));
    }
    begin();
    ASSERT_TRUE(files_->Rename(folder_ / "a", folder_ / "b").ok());
    EXPECT_EQ(TextIn(L"b"), "old");
}

// As left by one that died behind the exchange: the old file is in nobody's way.
TEST_F(WindowsFileSystemTest, WhatWasReplacedDoesNotComeBack) {
    Write(L"a", "new");
    Write(L"a-replaced", "old");
    EXPECT_EQ(CodeOfOpening(folder_ / "a"), StatusCode::kOk);
    EXPECT_EQ(TextIn(L"a"), "new");
    ASSERT_TRUE(files_->Remove(folder_ / "a").ok());
    EXPECT_FALSE(files_->Exists(folder_ / "a"));
    Write(L"a", "new");
    Write(L"a-replaced", "old");
    ASSERT_TRUE(files_->Rename(folder_ / "a", folder_ / "b").ok());
    EXPECT_FALSE(files_->Exists(folder_ / "a"));
}

TEST_F(WindowsFileSystemTest, ErrorNumbersAreTheEnginesCodes) {
    const auto code = platform::CodeOfError;
    EXPECT_EQ(code(ERROR_FILE_NOT_FOUND), StatusCode::kNotFound);
    EXPECT_EQ(code(ERROR_PATH_NOT_FOUND), StatusCode::kNotFound);
    EXPECT_EQ(code(ERROR_BAD_NETPATH), StatusCode::kNotFound);
    EXPECT_EQ(code(ERROR_ACCESS_DENIED), StatusCode::kPermissionDenied);
    EXPECT_EQ(code(ERROR_WRITE_PROTECT), StatusCode::kPermissionDenied);
    EXPECT_EQ(code(ERROR_SHARING_VIOLATION), StatusCode::kBusy);
    EXPECT_EQ(code(ERROR_LOCK_VIOLATION), StatusCode::kBusy);
    EXPECT_EQ(code(ERROR_DISK_FULL), StatusCode::kNoSpace);
    EXPECT_EQ(code(ERROR_HANDLE_DISK_FULL), StatusCode::kNoSpace);
    EXPECT_EQ(code(1295), StatusCode::kNoSpace);
    EXPECT_EQ(code(ERROR_CRC), StatusCode::kIoError);
    const auto status = platform::ErrorStatus(ERROR_DISK_FULL, L"C:\\a.mdb");
    EXPECT_EQ(status.number(), 112);
    EXPECT_EQ(status.message().find("C:\\a.mdb: "), 0U);
}

}  // namespace
