// Real windows on a real display, listed by a real window manager.
#include "platform/window_control.h"

#include "platform/process_starter.h"
#include "support/simulator_run.h"

#include <gtest/gtest.h>

namespace {

using test_support::WaitFor;

const QString kClass = QStringLiteral("VPinball");
const QString kOtherClass = QStringLiteral("VPinballViewer");

class WindowControlTest : public testing::Test {
protected:
    // Leaves no window for the next test, which may run in this process.
    void TearDown() override {
        for (const QString& window_class : {kClass, kOtherClass})
            for (const QString& title : {Playing(), Ended()}) {
                const auto window = windows_->Find(window_class, title);
                if (!window) continue;
                windows_->RequestClose(*window);
                EXPECT_TRUE(WaitFor([&] { return !windows_->Find(window_class, title); }));
            }
    }

    QString Playing() const { return QStringLiteral("Visual Pinball - [%1*]").arg(table_); }
    QString Ended() const { return QStringLiteral("Visual Pinball - [%1]").arg(table_); }

    void StartSimulator() {
        const QString line =
            QStringLiteral("\"%1\" /Play -\"/t/%2.vpt\"").arg(QStringLiteral(SIMULATOR), table_);
        const auto started = platform::MakeProcessStarter()->Start(line);
        ASSERT_TRUE(started.ok()) << started.status().message();
    }
    bool Appears(const QString& title) {
        return WaitFor([&] { return windows_->Find(kClass, title).has_value(); });
    }

    test_support::SimulatorRun run_;
    // Each test has a title of its own.
    QString table_ =
        QStringLiteral("Grüße [1] 漢 ") +
        QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name())
            .replace(u'/', u'-');
    std::unique_ptr<platform::WindowControl> windows_ = platform::MakeWindowControl();
};

TEST_F(WindowControlTest, AWindowIsFoundByClassAndExactTitle) {
    StartSimulator();
    ASSERT_TRUE(Appears(Playing()));
    EXPECT_FALSE(windows_->Find(kClass, Ended()));
    EXPECT_FALSE(windows_->Find(kClass, Playing().toUpper()));
    EXPECT_FALSE(windows_->Find(kClass, Playing().chopped(1)));
    EXPECT_FALSE(windows_->Find(kClass, Playing().mid(1)));
    EXPECT_FALSE(windows_->Find(QStringLiteral("Other"), Playing()));
}

TEST_F(WindowControlTest, ANewTitleIsSeen) {
    StartSimulator();
    ASSERT_TRUE(Appears(Playing()));
    run_.EndPlay();
    EXPECT_TRUE(Appears(Ended()));
    EXPECT_FALSE(windows_->Find(kClass, Playing()));
}

TEST_F(WindowControlTest, TheCloseReachesTheProgram) {
    StartSimulator();
    ASSERT_TRUE(Appears(Playing()));
    windows_->RequestClose(*windows_->Find(kClass, Playing()));
    EXPECT_TRUE(run_.Logs("closed by request"));
    EXPECT_TRUE(WaitFor([&] { return !windows_->Find(kClass, Playing()); }));
}

TEST_F(WindowControlTest, ClosingAWindowThatIsGoneDoesNothing) {
    StartSimulator();
    ASSERT_TRUE(Appears(Playing()));
    const auto window = windows_->Find(kClass, Playing());
    windows_->RequestClose(*window);
    ASSERT_TRUE(WaitFor([&] { return !windows_->Find(kClass, Playing()); }));
    windows_->RequestClose(*window);
    EXPECT_FALSE(windows_->Find(kClass, Playing()));
}

class ShownClass : public WindowControlTest, public testing::WithParamInterface<const char*> {};

TEST_P(ShownClass, IsThatOfTheSimulator) {
    run_.Set("TAVOLO_SIMULATOR_CLASS", GetParam());
    StartSimulator();
    EXPECT_TRUE(Appears(Playing()));
}

INSTANTIATE_TEST_SUITE_P(WindowControlTest, ShownClass,
                         testing::Values("VPinball", "vpinball", "vpinball.exe",
                                         "VPinball995.exe"));

TEST_F(WindowControlTest, AnotherProgramWhoseNameOnlyBeginsAlikeIsNotFound) {
    run_.Set("TAVOLO_SIMULATOR_CLASS", kOtherClass.toUtf8().constData());
    StartSimulator();
    ASSERT_TRUE(WaitFor([&] { return windows_->Find(kOtherClass, Playing()).has_value(); }));
    EXPECT_FALSE(windows_->Find(kClass, Playing()));
}

// The launcher searches continuously, so a search must take much less than a frame of 16 ms.
TEST_F(WindowControlTest, AThousandSearchesTakeUnderFiveSeconds) {
    StartSimulator();
    ASSERT_TRUE(Appears(Playing()));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 1000; ++i)
        ASSERT_TRUE(windows_->Find(kClass, Playing()));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(WindowControlTest, WithoutADisplayNothingIsFound) {
    const QByteArray display = qgetenv("DISPLAY");
    qunsetenv("DISPLAY");
    const auto blind = platform::MakeWindowControl();
    EXPECT_FALSE(blind->Find(kClass, Playing()));
    blind->RequestClose(platform::WindowHandle{1});
    qputenv("DISPLAY", display);
}

}  // namespace
