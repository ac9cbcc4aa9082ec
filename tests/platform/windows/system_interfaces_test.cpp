// The interfaces to settings, other programs and the desktop, as Qt's texts come in.
#include "platform/application_folder.h"
#include "platform/colour_scheme.h"
#include "platform/error_numbers.h"
#include "platform/files.h"
#include "platform/process_starter.h"
#include "platform/settings_store.h"
#include "platform/shell.h"
#include "platform/sound_player.h"
#include "platform/window_control.h"
#include "platform/windows/registry.h"
#include "support/simulator_run.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>

namespace {

using test_support::WaitFor;

const std::wstring kSettings = L"Software\\VB and VBA Program Settings\\TAVOLO test\\GENERAL";
const QString kApplication = QStringLiteral("TAVOLO test");
const QString kSection = QStringLiteral("GENERAL");

TEST(SettingsStoreTest, TheUsersOwnAreInTheRegistry) {
    const auto store = platform::MakeSettingsStore();
    EXPECT_EQ(store->GetSetting(kApplication, kSection, QStringLiteral("x"), kSection), kSection);
    const QString value = QStringLiteral("Ü 漢 C:\\VP\\VPinball.exe");
    ASSERT_TRUE(store->SaveSetting(kApplication, kSection, QStringLiteral("VPEXE"), value).ok());
    EXPECT_EQ(store->GetSetting(kApplication, kSection, QStringLiteral("VPEXE")), value);
    EXPECT_EQ(platform::RegistryText(HKEY_CURRENT_USER, kSettings, L"VPEXE"), value.toStdWString());
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\VB and VBA Program Settings\\TAVOLO test");
}

TEST(SettingsStoreTest, AFolderOfItsOwnKeepsItsSettingsApart) {
    const QTemporaryDir folder;
    const auto store = platform::MakeSettingsStore(folder.path());
    ASSERT_TRUE(store->SaveSetting(kApplication, kSection, QStringLiteral("SUB"), kSection).ok());
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("TAVOLO test.ini"))));
    EXPECT_EQ(
        platform::MakeSettingsStore()->GetSetting(kApplication, kSection, QStringLiteral("SUB")),
        QString());
}

class OtherProgramTest : public testing::Test {
protected:
    QString Simulator() const {
        return platform::FileIn(platform::ProgramFolder(), QStringLiteral(SIMULATOR));
    }
    QString Line() const {
        return u'"' + Simulator() + QStringLiteral("\" /Play -\"C:\\T\\Grüße 漢.vpt\"");
    }
    void Close(const QString& title) {
        EXPECT_TRUE(WaitFor([&] { return windows_->Find(class_, title).has_value(); }));
        windows_->RequestClose(windows_->Find(class_, title).value_or(platform::WindowHandle{}));
        EXPECT_TRUE(WaitFor([&] { return !windows_->Find(class_, title); }));
    }

    test_support::SimulatorRun run_;
    const QString class_ = QStringLiteral("VPinball");
    const QString playing_ = QStringLiteral("Visual Pinball - [Grüße 漢*]");
    std::unique_ptr<platform::ProcessStarter> starter_ = platform::MakeProcessStarter();
    std::unique_ptr<platform::WindowControl> windows_ = platform::MakeWindowControl();
};

TEST_F(OtherProgramTest, TheSimulatorIsStartedFoundAndClosed) {
    const auto started = starter_->Start(Line());
    ASSERT_TRUE(started.ok()) << started.status().message();
    EXPECT_TRUE(run_.Logs("command line=" + Line().toStdString())) << run_.LogText();
    EXPECT_TRUE(run_.Logs("show=2")) << run_.LogText();
    EXPECT_TRUE(starter_->IsRunning(*started));
    EXPECT_FALSE(windows_->Find(class_, playing_.toUpper()));
    Close(playing_);
    EXPECT_TRUE(run_.Logs("syscommand close")) << run_.LogText();
    EXPECT_TRUE(WaitFor([&] { return !starter_->IsRunning(*started); }));
}

TEST_F(OtherProgramTest, WhatCannotBeStartedHasItsNumber) {
    const auto number = [this](const QString& line) {
        return starter_->Start(line).status().number();
    };
    EXPECT_EQ(number(QStringLiteral("\"C:\\gone\\vp.exe\" /Play")), platform::kPathNotFound);
    EXPECT_EQ(number(QStringLiteral("\"/opt/vp/vp\" /Play")), platform::kPathNotFound);
    EXPECT_EQ(number(QStringLiteral("\"C:\\windows\\gone.exe\"")), platform::kFileNotFound);
    EXPECT_EQ(number(QStringLiteral("\"C:\\windows\"")), platform::kPermissionDenied);
    EXPECT_EQ(number(QStringLiteral("\"C:\\windows\\win.ini\"")), platform::kInvalidProcedureCall);
    EXPECT_EQ(number(QString()), platform::kPathNotFound);
}

TEST_F(OtherProgramTest, AToolIsStartedWithoutArguments) {
    const auto started = starter_->StartTool(Simulator());
    ASSERT_TRUE(started.ok()) << started.status().message();
    EXPECT_TRUE(run_.Logs("command line=\"" + Simulator().toStdString() + "\""));
    EXPECT_TRUE(run_.Logs("show=1")) << run_.LogText();
}

TEST(ShellTest, NothingIsNotOpened) {
    const auto shell = platform::MakeShell();
    EXPECT_EQ(shell->Open(QString()).code(), base::StatusCode::kInvalidArgument);
    EXPECT_FALSE(shell->Open(QStringLiteral("C:\\no such file.txt")).ok());
    EXPECT_TRUE(shell->HasHelpViewer());
}

// Whether there is a device or not, it comes back.
TEST(SoundPlayerTest, WhatCannotBePlayedIsSilent) {
    const auto player = platform::MakeSoundPlayer();
    player->PlaySynchronously(QStringLiteral("C:\\no such sound.wav"));
    player->PlaySynchronously(QString());
}

TEST(ColourSchemeTest, TheDesktopsChangesAreTold) {
    int argument_count = 0;
    const QCoreApplication application(argument_count, nullptr);
    const wchar_t* const key = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
    const auto set = [key](DWORD light) {
        ASSERT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key, L"AppsUseLightTheme", REG_DWORD, &light,
                                  sizeof light),
                  ERROR_SUCCESS);
    };
    set(0);
    std::vector<bool> told;
    const auto watch = platform::WatchColourScheme([&](bool is_dark) { told.push_back(is_dark); });
    ASSERT_TRUE(watch);
    EXPECT_EQ(told, std::vector<bool>{true});
    set(1);
    EXPECT_TRUE(WaitFor([&] {
        QCoreApplication::processEvents();
        return told == std::vector<bool>{true, false};
    }));
    RegDeleteKeyValueW(HKEY_CURRENT_USER, key, L"AppsUseLightTheme");
}

}  // namespace
