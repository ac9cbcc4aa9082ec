// A real Windows program, started through Wine on a real display, logs its arguments.
#include "platform/files.h"
#include "platform/process_starter.h"
#include "platform/window_control.h"
#include "support/simulator_run.h"
#include "support/wine_prefix.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <filesystem>

namespace {

using test_support::WaitFor;

const QString kClass = QStringLiteral("VPinball");

class WineTest : public test_support::WithWine<testing::Test> {
protected:
    ~WineTest() override { std::filesystem::current_path(before_); }

    // Writes the table file `name` into the folder `folder` and plays it.
    void Play(const QString& folder, const QString& name) {
        table_ = name.chopped(4);
        const QString tables = work_.filePath(folder);
        ASSERT_TRUE(QDir().mkpath(tables));
        path_ = tables + u'/' + name;
        QFile file(path_);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("twelve bytes");
        file.close();
        ASSERT_TRUE(platform::ChangeDirectory(tables).ok());
        const auto started = platform::MakeProcessStarter()->Start(
            QStringLiteral("\"%1\" /Play -\"%2\"").arg(QStringLiteral(WINDOWS_SIMULATOR), path_));
        ASSERT_TRUE(started.ok()) << started.status().message();
        ASSERT_TRUE(run_.Logs("shown")) << run_.LogText();
    }
    std::string WindowsPath(QString native) const {
        return "Z:" + native.replace(u'/', u'\\').toStdString();
    }
    bool Appears(const QString& title) {
        return WaitFor([&] { return windows_->Find(kClass, title).has_value(); },
                       std::chrono::seconds(60));
    }
    QString Title(const QString& asterisk) const {
        return QStringLiteral("Visual Pinball - [") + table_ + asterisk + u']';
    }

    QTemporaryDir work_;
    std::filesystem::path before_ = std::filesystem::current_path();
    test_support::SimulatorRun run_;
    QString table_;
    QString path_;
    std::unique_ptr<platform::WindowControl> windows_ = platform::MakeWindowControl();
};

struct PathCase {
    const char* name;
    const char* folder;
    const char* file;
};

class WinePath : public WineTest, public testing::WithParamInterface<PathCase> {};

TEST_P(WinePath, IsGivenArgumentForArgumentAndCanBeOpened) {
    Play(QString::fromUtf8(GetParam().folder), QString::fromUtf8(GetParam().file));
    EXPECT_EQ(run_.Count("argv[1]=/Play"), 1) << run_.LogText();
    EXPECT_EQ(run_.Count("argv[2]=-" + WindowsPath(path_)), 1) << run_.LogText();
    EXPECT_EQ(run_.LogText().find("argv[3]"), std::string::npos) << run_.LogText();
    EXPECT_EQ(run_.Count("cwd=" + WindowsPath(QDir::currentPath())), 1) << run_.LogText();
    EXPECT_EQ(run_.Count("table=12"), 1) << run_.LogText();
    ASSERT_TRUE(Appears(Title(QStringLiteral("*"))));
    windows_->RequestClose(*windows_->Find(kClass, Title(QStringLiteral("*"))));
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
}

INSTANTIATE_TEST_SUITE_P(
    WineTest, WinePath,
    testing::Values(PathCase{"Plain", "tables", "Foo.vpt"},
                    PathCase{"Blanks", "my  tables ä", "Attack From  Space.vpt"},
                    PathCase{"Apostrophes", "Tom's", "Bob's 'n' Joe's.vpt"},
                    PathCase{"Umlauts", "Flipperkästen", "Grüße aus Köln.vpt"},
                    PathCase{"Signs", "a&b %PATH% $HOME", "100% (x) [y] #1, -z.vpt"}),
    [](const auto& of) { return of.param.name; });

TEST_F(WineTest, TheWatchSeesTheAsteriskComeAndGoAndTheCloseArrives) {
    Play(QStringLiteral("tables"), QStringLiteral("Köln.vpt"));
    ASSERT_TRUE(Appears(Title(QStringLiteral("*"))));
    EXPECT_FALSE(windows_->Find(kClass, Title({})));
    run_.EndPlay();
    ASSERT_TRUE(Appears(Title({})));
    EXPECT_FALSE(windows_->Find(kClass, Title(QStringLiteral("*"))));
    windows_->RequestClose(*windows_->Find(kClass, Title({})));
    EXPECT_TRUE(run_.Logs("syscommand close")) << run_.LogText();
    EXPECT_TRUE(run_.Logs("closed by request")) << run_.LogText();
    EXPECT_TRUE(WaitFor([&] { return !windows_->Find(kClass, Title({})); }));
}

}  // namespace
