#include "dialogs/help_key.h"

#include "dialogs/box_driver.h"
#include "dialogs/qt_user_prompts.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtTest/QTest>
#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

namespace dialogs {
namespace {

class HelpKeyTest : public testing::Test {
protected:
    HelpKeyTest() {
        QFile help(application.filePath(QStringLiteral("tavolo.chm")));
        EXPECT_TRUE(help.open(QIODevice::WriteOnly));
        window.setObjectName(QStringLiteral("frmSettings"));
        (new QVBoxLayout(&window))->addWidget(&field);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    test_support::TemporaryDir application;
    test_support::FakeShell shell;
    HelpKey key{shell, application.path()};
    QDialog window;
    QLineEdit field;
};

TEST_F(HelpKeyTest, F1OpensThePageOfTheWindowInFrontOnce) {
    QTest::keyClick(&field, Qt::Key_F1);
    ASSERT_EQ(shell.help_pages.size(), 1U);
    EXPECT_EQ(shell.help_pages[0], QStringLiteral("settings.html"));
}

TEST_F(HelpKeyTest, OtherKeysAndShiftedF1AreLeftAlone) {
    QTest::keyClick(&field, Qt::Key_A);
    QTest::keyClick(&field, Qt::Key_F1, Qt::ShiftModifier);
    EXPECT_TRUE(shell.opened.empty());
    EXPECT_EQ(field.text(), QStringLiteral("a"));
}

TEST_F(HelpKeyTest, InABoxItOpensThePageOfTheWindowThatAsks) {
    QtUserPrompts prompts(&window);
    test_support::BoxDriver driver(QStringLiteral("MessageBox"), [](QWidget& box) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&box));
        auto* ok = box.findChild<QPushButton*>(QStringLiteral("cmdOK"));
        QTest::keyClick(ok, Qt::Key_F1);
        QTest::mouseClick(ok, Qt::LeftButton);
    });
    prompts.Ask(
        {QStringLiteral("Hello"), {}, platform::MessageIcon::kNone, platform::MessageButtons::kOk});
    ASSERT_EQ(shell.help_pages.size(), 1U);
    EXPECT_EQ(shell.help_pages[0], QStringLiteral("settings.html"));
}

}  // namespace
}  // namespace dialogs
