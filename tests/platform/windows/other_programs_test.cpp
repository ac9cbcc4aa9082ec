// Starting a stand-in of the simulator, finding its window and closing it.
#include "platform/windows/disk.h"
#include "platform/windows/other_windows.h"
#include "platform/windows/programs.h"
#include "support/temporary_folder.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

using platform::Programs;
using platform::ShownAs;
using test_support::WaitFor;

std::wstring ProgramFolder() {
    std::wstring name(1000, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
    return std::filesystem::path(name).parent_path();
}

class OtherProgramsTest : public testing::Test {
protected:
    OtherProgramsTest() {
        SetEnvironmentVariableW(L"TAVOLO_SIMULATOR_LOG", log_.c_str());
        SetEnvironmentVariableW(L"TAVOLO_SIMULATOR_END_FILE", end_.c_str());
    }
    ~OtherProgramsTest() override {
        std::filesystem::current_path(before_);
        // The window of a program that has just started may still be to come.
        for (const DWORD id : ids_)
            EXPECT_TRUE(WaitFor([&] {
                for (const std::wstring& title : {Playing(), Ended()})
                    platform::AskToClose(platform::FindOtherWindow(L"VPinball", title));
                return !programs_.IsRunning(id);
            }));
    }

    std::wstring Playing() const { return L"Visual Pinball - [" + table_ + L"*]"; }
    std::wstring Ended() const { return L"Visual Pinball - [" + table_ + L"]"; }
    DWORD StartPlay(ShownAs shown_as = ShownAs::kMinimised) {
        const auto started = programs_.Start(simulator_, Line(), shown_as);
        EXPECT_EQ(started.error, ERROR_SUCCESS);
        ids_.push_back(started.process_id);
        return started.process_id;
    }
    std::wstring Line() const {
        return L"\"" + simulator_ + L"\" /Play -\"" + LR"(C:\Tom's %TEMP% tables\)" + table_ +
               L".vpt\"";
    }
    bool Logs(const std::string& wanted) const {
        return WaitFor([&] {
            std::ifstream log(log_);
            for (std::string line; std::getline(log, line);)
                if (line == wanted) return true;
            return false;
        });
    }
    bool Appears(const std::wstring& title) const {
        return WaitFor([&] { return platform::FindOtherWindow(L"VPinball", title) != nullptr; });
    }

    test_support::TemporaryFolder temporary_;
    std::filesystem::path folder_ = platform::FinalPath(temporary_.path()).value_or({});
    std::filesystem::path log_ = folder_ / L"log";
    std::filesystem::path end_ = folder_ / L"end";
    std::filesystem::path before_ = std::filesystem::current_path();
    std::wstring simulator_ = ProgramFolder() + L"\\" + std::filesystem::path(SIMULATOR).wstring();
    std::wstring table_ = L"Grüße 漢 [1]";
    Programs programs_;
    std::vector<DWORD> ids_;
};

TEST_F(OtherProgramsTest, TheProgramSeesTheLineAsItStands) {
    StartPlay();
    const std::u8string line =
        u8"\" /Play -\"C:\\Tom's %TEMP% tables\\Gr\u00FC\u00DFe \u6F22 [1].vpt\"";
    EXPECT_TRUE(Logs("command line=\"" + std::filesystem::path(simulator_).string() +
                     std::string(line.begin(), line.end())));
}

TEST_F(OtherProgramsTest, TheProgramStartsMinimisedInTheCurrentFolder) {
    std::filesystem::current_path(folder_);
    StartPlay();
    EXPECT_TRUE(Logs("show=2"));  // SW_SHOWMINIMIZED
    EXPECT_TRUE(Logs("cwd=" + folder_.string()));
}

TEST_F(OtherProgramsTest, AToolStartsInANormalWindow) {
    StartPlay(ShownAs::kNormal);
    EXPECT_TRUE(Logs("show=1"));  // SW_SHOWNORMAL
}

TEST_F(OtherProgramsTest, WhatIsNoProgramSaysSo) {
    EXPECT_EQ(programs_.Start(folder_ / L"gone.exe", L"gone", ShownAs::kNormal).error,
              DWORD{ERROR_FILE_NOT_FOUND});
    std::ofstream(folder_ / L"text.exe") << "no program";
    EXPECT_EQ(programs_.Start(folder_ / L"text.exe", L"text", ShownAs::kNormal).error,
              DWORD{ERROR_BAD_EXE_FORMAT});
}

TEST_F(OtherProgramsTest, AWindowIsFoundByItsClassAndExactTitle) {
    StartPlay();
    ASSERT_TRUE(Appears(Playing()));
    EXPECT_NE(platform::FindOtherWindow(L"vpinball", Playing()), nullptr);
    EXPECT_EQ(platform::FindOtherWindow(L"VPinballViewer", Playing()), nullptr);
    for (const std::wstring& title :
         {Ended(), Playing() + L" ", Playing().substr(1), Playing().substr(0, 10), std::wstring(),
          L"V" + Playing().substr(1, 5) + L"P" + Playing().substr(7), L"v" + Playing().substr(1)})
        EXPECT_EQ(platform::FindOtherWindow(L"VPinball", title) != nullptr, title == Playing());
    std::ofstream(end_) << "x";
    EXPECT_TRUE(Appears(Ended()));
    EXPECT_EQ(platform::FindOtherWindow(L"VPinball", Playing()), nullptr);
}

TEST_F(OtherProgramsTest, TheCloseComesAsFromTheWindowsMenu) {
    const DWORD id = StartPlay();
    ASSERT_TRUE(Appears(Playing()));
    EXPECT_TRUE(programs_.IsRunning(id));
    const HWND window = platform::FindOtherWindow(L"VPinball", Playing());
    platform::AskToClose(window);
    EXPECT_TRUE(Logs("syscommand close"));
    EXPECT_TRUE(WaitFor([&] { return !programs_.IsRunning(id); }));
    platform::AskToClose(window);  // it is gone
    platform::AskToClose(nullptr);
}

TEST_F(OtherProgramsTest, AProgramThatWasStartedElsewhereIsKnownToRun) {
    const DWORD id = StartPlay();
    ASSERT_TRUE(Appears(Playing()));
    EXPECT_TRUE(Programs().IsRunning(id));
    EXPECT_FALSE(Programs().IsRunning(0x7FFFFFF0));
}

}  // namespace
