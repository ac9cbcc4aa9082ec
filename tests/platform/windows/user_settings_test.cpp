#include "platform/windows/user_settings.h"

#include "platform/windows/registry.h"

#include <gtest/gtest.h>

namespace {

const std::wstring kPlace = L"Software\\VB and VBA Program Settings\\";
const std::wstring kApplication = L"TAVOLO test";
const std::wstring kSection = L"GENERAL";

class UserSettingsTest : public testing::Test {
protected:
    UserSettingsTest() { Clear(); }
    ~UserSettingsTest() override { Clear(); }
    static void Clear() { RegDeleteTreeW(HKEY_CURRENT_USER, (kPlace + kApplication).c_str()); }

    platform::UserSettings settings_;
};

TEST_F(UserSettingsTest, AMissingValueIsNone) {
    EXPECT_FALSE(settings_.Get(kApplication, kSection, L"FILTER"));
}

TEST_F(UserSettingsTest, AValueIsWhereTheSystemsOwnFunctionsLookForIt) {
    ASSERT_TRUE(settings_.Save(kApplication, kSection, L"VPEXE", LR"(C:\VP\VPinball.exe)").ok());
    wchar_t text[64]{};
    DWORD bytes = sizeof text;
    DWORD kind = 0;
    ASSERT_EQ(RegGetValueW(HKEY_CURRENT_USER,
                           L"Software\\VB and VBA Program Settings\\TAVOLO test\\GENERAL", L"VPEXE",
                           RRF_RT_ANY, &kind, text, &bytes),
              ERROR_SUCCESS);
    EXPECT_EQ(kind, DWORD{REG_SZ});
    EXPECT_STREQ(text, LR"(C:\VP\VPinball.exe)");
}

TEST_F(UserSettingsTest, AValueThatAnotherProgramHasWrittenIsFound) {
    const char text[] = "9570";
    ASSERT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER,
                              "Software\\VB and VBA Program Settings\\TAVOLO test\\GENERAL",
                              "WIDTH", REG_SZ, text, sizeof text),
              ERROR_SUCCESS);
    EXPECT_EQ(settings_.Get(kApplication, L"General", L"Width"), L"9570");
}

TEST_F(UserSettingsTest, EveryTextSurvives) {
    const std::wstring long_text(5000, L'x');
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L" blanks "), std::wstring(L"%TEMP%"),
          std::wstring(L"Ünïcödé 漢 \xD83D\xDE00"), std::wstring(L"two\nlines"), long_text}) {
        ASSERT_TRUE(settings_.Save(kApplication, kSection, L"SUB", text).ok());
        EXPECT_EQ(platform::UserSettings().Get(kApplication, kSection, L"SUB"), text);
    }
}

TEST_F(UserSettingsTest, ANumberIsNoSetting) {
    const DWORD number = 7;
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, (kPlace + kApplication + L"\\GENERAL").c_str(),
                              L"SUB", REG_DWORD, &number, sizeof number),
              ERROR_SUCCESS);
    EXPECT_FALSE(settings_.Get(kApplication, kSection, L"SUB"));
}

// A key's name has 255 characters at most.
TEST_F(UserSettingsTest, WhatCannotBeStoredIsSaidAndKeptForThisRun) {
    const std::wstring too_long(300, L'a');
    const base::Status saved = settings_.Save(kApplication, too_long, L"SUB", L"1");
    EXPECT_EQ(saved.code(), base::StatusCode::kIoError);
    EXPECT_NE(saved.message().find("VB and VBA Program Settings\\TAVOLO test\\aaa"),
              std::string::npos)
        << saved.message();
    EXPECT_EQ(settings_.Get(kApplication, too_long, L"SUB"), L"1");
    EXPECT_FALSE(settings_.Save(kApplication, kSection, L"SUB", L"2").ok());
    EXPECT_EQ(platform::UserSettings().Get(kApplication, kSection, L"SUB"), L"2")
        << "it keeps no other one back";
}

TEST(RegistryTest, NamesOfVariablesAreReplacedWhereTheyAreMeant) {
    const std::wstring key = kPlace + kApplication;
    const wchar_t text[] = L"%SystemRoot%\\a";
    ASSERT_EQ(
        RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"tool", REG_EXPAND_SZ, text, sizeof text),
        ERROR_SUCCESS);
    const auto read = platform::RegistryText(HKEY_CURRENT_USER, key, L"tool");
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->ends_with(L"\\a") && read->find(L'%') == std::wstring::npos);
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
}

TEST(RegistryTest, ATextEndsAtItsFirstZero) {
    const std::wstring key = kPlace + kApplication;
    const wchar_t text[] = L"C:\\a\0b";
    ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), L"tool", REG_SZ, text, sizeof text),
              ERROR_SUCCESS);
    EXPECT_EQ(platform::RegistryText(HKEY_CURRENT_USER, key, L"tool"), L"C:\\a");
    RegDeleteTreeW(HKEY_CURRENT_USER, key.c_str());
}

}  // namespace
