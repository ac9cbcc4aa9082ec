#include "catalogue/catalogue.h"
#include "catalogue/process_values.h"
#include "dialogs/about_text.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmSettings.h"
#include "support/control.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>

namespace dialogs {
namespace {

using test_support::Control;

class SettingsWindowTest : public testing::Test {
protected:
    SettingsWindowTest() {
        catalogue.settings = &settings;
        catalogue.values = &values;
        QFile file(simulator);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        settings.values[kKey] = simulator;
    }
    void Press(QWidget& window, const char* button) {
        QTest::mouseClick(&Control<QPushButton>(window, button), Qt::LeftButton);
    }

    const QString kKey = QStringLiteral("TAVOLO/GENERAL/VPEXE");
    test_support::TemporaryDir folder;
    QString simulator = folder.filePath(QStringLiteral("VPinball.exe"));
    test_support::FakeSettings settings;
    test_support::FakePrompts prompts;
    catalogue::ProcessValues values;
    catalogue::Catalogue catalogue;
};

TEST_F(SettingsWindowTest, ShowsTheStoredPathUnderItsCaption) {
    frmSettings window(catalogue, prompts);
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Settings"));
    EXPECT_EQ(Control<QLabel>(window, "Label2").text(), QStringLiteral("VP Executable:"));
    EXPECT_EQ(Control<QPushButton>(window, "CancelButton").text(), QStringLiteral("Cancel"));
    EXPECT_EQ(Control<QLineEdit>(window, "txtDet_0").text(), simulator);
}

TEST_F(SettingsWindowTest, OkWithAMissingFileKeepsTheWindowOpenAndTheSetting) {
    frmSettings window(catalogue, prompts);
    window.show();
    Control<QLineEdit>(window, "txtDet_0").setText(folder.filePath(QStringLiteral("gone")));
    Press(window, "OKButton");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(settings.values[kKey], simulator);
}

TEST_F(SettingsWindowTest, OkWithAnEmptyPathKeepsTheWindowOpenAndTheSetting) {
    frmSettings window(catalogue, prompts);
    window.show();
    Control<QLineEdit>(window, "txtDet_0").clear();
    Press(window, "OKButton");
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(settings.values[kKey], simulator);
}

TEST_F(SettingsWindowTest, OkWithAnExistingFileStoresItAndCloses) {
    settings.values.clear();
    frmSettings window(catalogue, prompts);
    window.show();
    QTest::keyClicks(&Control<QLineEdit>(window, "txtDet_0"), simulator);
    Press(window, "OKButton");
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(settings.values[kKey], simulator);
    EXPECT_EQ(values.VisualPinballExe, simulator);
}

TEST_F(SettingsWindowTest, CancelStoresNothing) {
    frmSettings window(catalogue, prompts);
    window.show();
    Control<QLineEdit>(window, "txtDet_0").setText(QStringLiteral("other"));
    Press(window, "CancelButton");
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(settings.written.empty());
}

TEST_F(SettingsWindowTest, CancellingTheFileDialogLeavesTheTypedPath) {
    frmSettings window(catalogue, prompts);
    auto& path = Control<QLineEdit>(window, "txtDet_0");
    path.setText(QStringLiteral("typed"));
    QTest::mouseClick(&Control<QToolButton>(window, "cmdExeLoc"), Qt::LeftButton);
    EXPECT_EQ(path.text(), QStringLiteral("typed"));
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_EQ(prompts.dialogs[0].file_name, QStringLiteral("typed"));
}

TEST_F(SettingsWindowTest, TheChosenFileGoesIntoTheField) {
    frmSettings window(catalogue, prompts);
    prompts.files = {QStringLiteral("/vp/VPinball.exe")};
    QTest::mouseClick(&Control<QToolButton>(window, "cmdExeLoc"), Qt::LeftButton);
    EXPECT_EQ(Control<QLineEdit>(window, "txtDet_0").text(), QStringLiteral("/vp/VPinball.exe"));
}

class AboutWindowTest : public testing::Test {
protected:
    test_support::FakePrompts prompts;
    test_support::FakeShell shell;
    test_support::FakeProcessStarter starter;
    void PressLink() {
        window.show();
        auto& link = Control<QLabel>(window, "label1");
        QTest::mouseClick(&link, Qt::LeftButton, {},
                          QPoint(link.fontMetrics().height(), link.height() / 2));
    }

    const QString address = QStringLiteral("https://pinball.example/");
    frmAbout window{prompts, shell, starter, address};
};

TEST_F(AboutWindowTest, SaysWhatTheProgramIs) {
    EXPECT_EQ(window.windowTitle(), QStringLiteral("About Tavolo"));
    EXPECT_EQ(Control<QLabel>(window, "lblTitle").text(), QStringLiteral("Tavolo"));
    EXPECT_TRUE(
        Control<QLabel>(window, "lblVersion").text().startsWith(QStringLiteral("Version 1.")));
    EXPECT_EQ(Control<QPushButton>(window, "CmdSystem").text(), QStringLiteral("&System Info"));
    EXPECT_FALSE(Control<QLabel>(window, "lblCredits").text().isEmpty());
}

TEST_F(AboutWindowTest, TheLinkOpensTheWebSite) {
    PressLink();
    EXPECT_EQ(shell.opened, std::vector{address});
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(AboutWindowTest, ALinkThatNobodyOpensIsTold) {
    shell.answer = base::Status(base::StatusCode::kNotFound, "no browser");
    PressLink();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("Cannot open site: https://pinball.example/"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
}

// The program has no web page yet.
TEST_F(AboutWindowTest, WithoutAWebSiteThereIsNoLink) {
    EXPECT_EQ(WebSiteAddress(), QString());
    frmAbout plain{prompts, shell, starter, WebSiteAddress()};
    EXPECT_EQ(Control<QLabel>(plain, "label1").text(), QString());
}

TEST_F(AboutWindowTest, SystemInfoStartsTheTool) {
    shell.tool = QStringLiteral("/usr/bin/hardinfo");
    QTest::mouseClick(&Control<QPushButton>(window, "CmdSystem"), Qt::LeftButton);
    EXPECT_EQ(starter.tools, std::vector{shell.tool});
}

TEST_F(AboutWindowTest, OkCloses) {
    window.show();
    QTest::mouseClick(&Control<QPushButton>(window, "cmdOK"), Qt::LeftButton);
    EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace dialogs
