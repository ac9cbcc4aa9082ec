#include "platform/windows/documents.h"

#include "platform/windows/registry.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

const std::wstring kTool = L"SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
const std::wstring kToolFolder = L"SOFTWARE\\Microsoft\\Shared Tools Location";

class InformationToolTest : public testing::Test {
protected:
    InformationToolTest() { Clear(); }
    ~InformationToolTest() override { Clear(); }
    static void Clear() {
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kTool.c_str(), L"PATH");
        RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kToolFolder.c_str(), L"MSINFO");
    }
    static void Set(const std::wstring& key, const wchar_t* value, const std::wstring& text) {
        ASSERT_EQ(platform::SetRegistryText(HKEY_LOCAL_MACHINE, key, value, text), 0U);
    }

    test_support::TemporaryFolder folder_;
};

TEST_F(InformationToolTest, IsWhatTheRegistryNames) {
    Set(kTool, L"PATH", LR"(C:\tools\info.exe)");
    Set(kToolFolder, L"MSINFO", folder_.path().native());
    EXPECT_EQ(platform::InformationTool().native(), LR"(C:\tools\info.exe)");
}

TEST_F(InformationToolTest, IsOtherwiseInTheFolderOfSharedTools) {
    Set(kToolFolder, L"MSINFO", folder_.path().native());
    EXPECT_TRUE(platform::InformationTool().empty()) << "it is not there";
    std::ofstream(folder_.path() / L"msinfo32.exe") << "x";
    EXPECT_EQ(platform::InformationTool().native(), folder_.path().native() + L"\\MSINFO32.EXE");
}

TEST_F(InformationToolTest, IsNoneWhereNothingIsNamed) {
    EXPECT_TRUE(platform::InformationTool().empty());
}

TEST(OpenDocumentTest, NothingIsNotOpened) {
    EXPECT_EQ(platform::OpenDocument(L"").code(), base::StatusCode::kInvalidArgument);
    EXPECT_EQ(platform::OpenDocument(std::wstring(L"a\0b", 3)).code(),
              base::StatusCode::kInvalidArgument);
}

TEST(OpenDocumentTest, WhatNoProgramOpensIsSaid) {
    const test_support::TemporaryFolder folder;
    std::ofstream(folder.path() / L"a.nobody-knows") << "x";
    EXPECT_EQ(platform::OpenDocument(folder.path() / L"a.nobody-knows").code(),
              base::StatusCode::kNotFound);
    EXPECT_EQ(platform::OpenDocument(folder.path() / L"gone.txt").code(),
              base::StatusCode::kNotFound);
}

TEST(HelpViewerTest, IsTheSystems) {
    EXPECT_EQ(platform::HelpViewer().filename(), L"hh.exe");
}

}  // namespace
