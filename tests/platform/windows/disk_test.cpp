#include "platform/windows/disk.h"

#include "platform/windows/owned_handle.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace {

using base::StatusCode;
using platform::Durability;
using std::filesystem::path;

class DiskTest : public testing::Test {
protected:
    ~DiskTest() override { std::filesystem::current_path(before_); }

    path In(std::wstring_view name) const { return folder_ / name; }
    void Write(std::wstring_view name, std::string_view text) const {
        std::ofstream(In(name), std::ios::binary) << text;
    }
    std::string TextIn(std::wstring_view name) const {
        std::ifstream file(In(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static base::Status Replace(const path& file, std::string_view text) {
        return platform::ReplaceContent(file, std::as_bytes(std::span(text)), Durability::kOnDisk);
    }
    static std::vector<std::u16string> Listed(const path& folder) {
        std::vector<std::u16string> names;
        const auto status = platform::ListEntries(folder, [&](const platform::DiskEntry& entry) {
            EXPECT_FALSE(entry.is_link);
            names.push_back(entry.name + (entry.is_folder ? u"\\" : u""));
        });
        EXPECT_TRUE(status.ok()) << status.message();
        std::ranges::sort(names);
        return names;
    }

    test_support::TemporaryFolder temporary_;
    const path folder_ = platform::FinalPath(temporary_.path()).value_or({});
    const path before_ = std::filesystem::current_path();
};

TEST_F(DiskTest, AFileHasItsSizeAndTime) {
    Write(L"Über 漢.vpt", "12345");
    // 2003-07-09 23:01:02.123 UTC in tenths of a microsecond since 1601.
    constexpr std::uint64_t kTime = 127'022'652'621'230'000;
    const FILETIME time{static_cast<DWORD>(kTime & 0xFFFFFFFF), static_cast<DWORD>(kTime >> 32)};
    const platform::OwnedHandle file(CreateFileW(In(L"Über 漢.vpt").c_str(), FILE_WRITE_ATTRIBUTES,
                                                 platform::kShareAll, nullptr, OPEN_EXISTING, 0,
                                                 nullptr));
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &time));
    const auto facts = platform::FactsOf(In(L"ÜBER 漢.VPT"));
    ASSERT_TRUE(facts);
    EXPECT_FALSE(facts->is_folder);
    EXPECT_EQ(facts->size, 5U);
    EXPECT_EQ(facts->last_write_ms, 1'057'791'662'123);
}

TEST_F(DiskTest, AFolderIsOne) {
    const auto facts = platform::FactsOf(folder_);
    ASSERT_TRUE(facts);
    EXPECT_TRUE(facts->is_folder);
}

TEST_F(DiskTest, WhatIsNoFileHasNoFacts) {
    for (const wchar_t* name : {L"gone", L"gone\\a", L"*", L"NUL", L"a:stream"})
        EXPECT_FALSE(platform::FactsOf(In(name))) << name;
    for (const wchar_t* name : {L"", L"NUL", LR"(\\.\C:)", LR"(B:\a.vpt)"})
        EXPECT_FALSE(platform::FactsOf(name)) << name;
}

TEST_F(DiskTest, PathsMayBeAsLongAsTheyLike) {
    path deep = folder_;
    while (deep.native().size() < 600)
        deep /= L"a folder with a long name";
    ASSERT_TRUE(platform::MakeFolders(deep).ok());
    ASSERT_TRUE(Replace(deep / L"a.vpt", "old").ok());
    ASSERT_TRUE(Replace(deep / L"a.vpt", "newer").ok());
    ASSERT_TRUE(platform::CopyToNewFile(deep / L"a.vpt", deep / L"b.vpt").ok());
    EXPECT_EQ(platform::FactsOf(deep / L"b.vpt").value_or(platform::DiskFacts{}).size, 5U);
    EXPECT_EQ(Listed(deep), (std::vector<std::u16string>{u"a.vpt", u"b.vpt"}));
    EXPECT_FALSE(platform::IdentityText(deep / L"a.vpt").empty());
    ASSERT_TRUE(platform::DeleteOneFile(deep / L"a.vpt").ok());
    ASSERT_TRUE(platform::DeleteOneFile(deep / L"b.vpt").ok());
    for (; deep != folder_; deep = deep.parent_path())
        ASSERT_TRUE(RemoveDirectoryW((LR"(\\?\)" + deep.native()).c_str()));
}

TEST_F(DiskTest, AListingHasAllNamesAndTellsFolders) {
    Write(L"a.vpt", "");
    Write(L"Über 漢.vpt", "");
    Write(L".hidden", "");
    ASSERT_TRUE(platform::MakeFolders(In(L"sub")).ok());
    const std::vector<std::u16string> expected = {u".hidden", u"a.vpt", u"sub\\", u"Über 漢.vpt"};
    EXPECT_EQ(Listed(folder_), expected);
    EXPECT_EQ(Listed(folder_.native() + L"\\"), expected);
    EXPECT_TRUE(Listed(In(L"sub")).empty());
}

TEST_F(DiskTest, WhatIsNoFolderCannotBeListed) {
    Write(L"a", "");
    for (const wchar_t* name : {L"gone", L"gone\\sub", L"a"}) {
        bool called = false;
        const auto status =
            platform::ListEntries(In(name), [&](const platform::DiskEntry&) { called = true; });
        EXPECT_EQ(status.code(), StatusCode::kNotFound) << status.message();
        EXPECT_FALSE(called);
    }
}

TEST_F(DiskTest, AFullPathHasNeitherDotsNorAnEnd) {
    std::filesystem::current_path(folder_);
    const auto full = [](const wchar_t* name) { return platform::FullPath(name).value_or({}); };
    EXPECT_EQ(full(L"a\\..\\b/.\\c\\").native(), folder_.native() + L"\\b\\c");
    EXPECT_EQ(full(LR"(C:\)").native(), LR"(C:\)");
    EXPECT_EQ(full(LR"(c:\..)").native(), LR"(c:\)");
    EXPECT_EQ(full(LR"(\\server\share\a\)").native(), LR"(\\server\share\a)");
}

TEST_F(DiskTest, AFinalPathIsSpelledAsOnTheDisk) {
    ASSERT_TRUE(platform::MakeFolders(In(L"Tables")).ok());
    Write(L"Tables\\Grün.vpt", "");
    EXPECT_EQ(platform::FinalPath(In(L"TABLES\\grÜN.VPT")).value_or({}).native(),
              In(L"Tables\\Grün.vpt").native());
    EXPECT_EQ(platform::FinalPath(In(L"gone")).status().code(), StatusCode::kNotFound);
}

TEST_F(DiskTest, TheNamesOfAFileHaveOneIdentity) {
    Write(L"a", "");
    Write(L"b", "");
    EXPECT_FALSE(platform::IdentityText(In(L"a")).empty());
    EXPECT_EQ(platform::IdentityText(In(L"a")), platform::IdentityText(In(L"A")));
    EXPECT_NE(platform::IdentityText(In(L"a")), platform::IdentityText(In(L"b")));
    EXPECT_NE(platform::IdentityText(folder_), platform::IdentityText(In(L"a")));
    EXPECT_TRUE(platform::IdentityText(In(L"gone")).empty());
}

TEST_F(DiskTest, AFileIsReplacedAsAWhole) {
    ASSERT_TRUE(Replace(In(L"a"), "old").ok());
    EXPECT_EQ(TextIn(L"a"), "old");
    ASSERT_TRUE(Replace(In(L"a"), "new content").ok());
    EXPECT_EQ(TextIn(L"a"), "new content");
    ASSERT_TRUE(Replace(In(L"a"), "").ok());
    EXPECT_EQ(TextIn(L"a"), "");
    EXPECT_EQ(Listed(folder_), std::vector<std::u16string>{u"a"});
}

TEST_F(DiskTest, AFileThatSomebodyReadsIsReplacedAllTheSame) {
    Write(L"a", "old");
    const platform::OwnedHandle reader(CreateFileW(
        In(L"a").c_str(), GENERIC_READ, platform::kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(Replace(In(L"a"), "new").ok());
    EXPECT_EQ(TextIn(L"a"), "new");
}

TEST_F(DiskTest, AFileThatCannotBeReplacedStaysAsItIs) {
    Write(L"read only", "old");
    ASSERT_TRUE(SetFileAttributesW(In(L"read only").c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(Replace(In(L"read only"), "new").code(), StatusCode::kPermissionDenied);
    ASSERT_TRUE(SetFileAttributesW(In(L"read only").c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(TextIn(L"read only"), "old");
    ASSERT_TRUE(platform::MakeFolders(In(L"sub")).ok());
    EXPECT_FALSE(Replace(In(L"sub"), "new").ok());
    const base::Status nowhere = Replace(In(L"gone\\a"), "new");
    EXPECT_EQ(nowhere.code(), StatusCode::kNotFound);
    EXPECT_NE(nowhere.message().find("gone\\a"), std::string::npos) << nowhere.message();
    EXPECT_EQ(Listed(folder_), (std::vector<std::u16string>{u"read only", u"sub\\"}));
}

TEST_F(DiskTest, ACopyOverwritesNothingAndCanBeWrittenTo) {
    Write(L"a", "1");
    Write(L"b", "22");
    EXPECT_EQ(platform::CopyToNewFile(In(L"a"), In(L"b")).code(), StatusCode::kAlreadyExists);
    EXPECT_EQ(TextIn(L"b"), "22");
    EXPECT_FALSE(platform::CopyToNewFile(In(L"gone"), In(L"c")).ok());
    EXPECT_EQ(Listed(folder_).size(), 2U) << "no beginning of a copy is left";
    ASSERT_TRUE(SetFileAttributesW(In(L"a").c_str(), FILE_ATTRIBUTE_READONLY));
    ASSERT_TRUE(platform::CopyToNewFile(In(L"a"), In(L"c")).ok());
    ASSERT_TRUE(SetFileAttributesW(In(L"a").c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(Replace(In(L"c"), "333").ok());
    EXPECT_EQ(TextIn(L"c"), "333");
}

TEST_F(DiskTest, FoldersAreMadeWithThoseAbove) {
    EXPECT_TRUE(platform::MakeFolders(In(L"a\\b\\c\\")).ok());
    EXPECT_TRUE(platform::MakeFolders(In(L"a\\b\\c")).ok()) << "it is there";
    EXPECT_TRUE(platform::FactsOf(In(L"A\\B\\C")).value_or(platform::DiskFacts{}).is_folder);
    Write(L"file", "");
    EXPECT_FALSE(platform::MakeFolders(In(L"file")).ok());
    EXPECT_FALSE(platform::MakeFolders(In(L"file\\sub")).ok());
    EXPECT_FALSE(platform::MakeFolders(LR"(B:\a\b)").ok());
}

TEST_F(DiskTest, FilesMayBeAddedToAFolderOnly) {
    Write(L"a", "");
    EXPECT_TRUE(platform::MayAddFiles(folder_));
    EXPECT_FALSE(platform::MayAddFiles(In(L"a")));
    EXPECT_FALSE(platform::MayAddFiles(In(L"gone")));
    EXPECT_FALSE(platform::MayAddFiles({}));
}

TEST_F(DiskTest, EnteringAFolderLeavesTheDrive) {
    ASSERT_TRUE(platform::MakeFolders(In(L"sub")).ok());
    std::filesystem::current_path(folder_);
    ASSERT_TRUE(platform::EnterFolder(In(L"sub\\")).ok());
    EXPECT_EQ(std::filesystem::current_path(), In(L"sub"));
    // Z: is the drive on which Wine shows the root.
    ASSERT_TRUE(platform::EnterFolder(LR"(Z:\tmp)").ok());
    EXPECT_EQ(std::filesystem::current_path(), In(L"sub"));
    EXPECT_EQ(platform::FullPath(L"Z:a").value_or({}).native(), LR"(Z:\tmp\a)");
    for (const wchar_t* name : {L"", LR"(C:\no\such folder)", LR"(B:\)"})
        EXPECT_EQ(platform::EnterFolder(name).code(), StatusCode::kNotFound) << name;
    EXPECT_EQ(std::filesystem::current_path(), In(L"sub"));
}

}  // namespace
