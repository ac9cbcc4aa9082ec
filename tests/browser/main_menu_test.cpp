#include "browser/main_menu.h"

#include <gtest/gtest.h>

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

namespace browser {
namespace {

const QString kPurge = QStringLiteral("mnuPurge");

class MainMenuTest : public testing::Test {
protected:
    QMenuBar bar;
    MainMenu menu{bar};
};

TEST_F(MainMenuTest, AnItemWithoutACommandIsDisabled) {
    EXPECT_FALSE(menu.IsEnabled(kPurge));
    menu.SetCommand(kPurge, [] {});
    EXPECT_TRUE(menu.IsEnabled(kPurge));
    menu.SetCommand(kPurge, {});
    EXPECT_FALSE(menu.IsEnabled(kPurge));
}

TEST_F(MainMenuTest, AClickRunsTheCommand) {
    int runs = 0;
    menu.SetCommand(kPurge, [&] { ++runs; });
    QAction* const action = menu.Menu(QStringLiteral("mnuUtilities"))->findChild<QAction*>(kPurge);
    ASSERT_TRUE(action);
    action->trigger();
    EXPECT_EQ(runs, 1);
    menu.Run(kPurge);
    EXPECT_EQ(runs, 2);
}

TEST_F(MainMenuTest, ADisabledItemRunsNothing) {
    int runs = 0;
    menu.SetCommand(kPurge, [&] { ++runs; });
    menu.SetAllowed(kPurge, false);
    menu.Run(kPurge);
    EXPECT_EQ(runs, 0);
    menu.Run(QStringLiteral("mnuNoSuchItem"));
}

TEST_F(MainMenuTest, ACommandMayReplaceItself) {
    int runs = 0;
    menu.SetCommand(kPurge, [&] {
        menu.SetCommand(kPurge, {});
        ++runs;
    });
    menu.Run(kPurge);
    EXPECT_EQ(runs, 1);
}

TEST_F(MainMenuTest, TheHeadingOfThePopupIsDisabled) {
    EXPECT_FALSE(menu.IsEnabled(QStringLiteral("mnumnu")));
    EXPECT_EQ(menu.Menu(QStringLiteral("mnufavorites"))->title(), QStringLiteral("Popup"));
    EXPECT_FALSE(bar.actions().contains(menu.Menu(QStringLiteral("mnufavorites"))->menuAction()));
}

TEST_F(MainMenuTest, OptionsAreChecked) {
    menu.SetChecked(QStringLiteral("mnuSound"), true);
    EXPECT_TRUE(menu.IsChecked(QStringLiteral("mnuSound")));
    menu.SetCommand(QStringLiteral("mnuSound"), [] {});
    menu.Run(QStringLiteral("mnuSound"));
    EXPECT_FALSE(menu.IsChecked(QStringLiteral("mnuSound")));
}

TEST_F(MainMenuTest, AWholeMenuCanBeLocked) {
    menu.SetMenuEnabled(QStringLiteral("mnuFile"), false);
    EXPECT_FALSE(menu.IsMenuEnabled(QStringLiteral("mnuFile")));
    EXPECT_TRUE(menu.IsMenuEnabled(QStringLiteral("mnuHelp")));
}

}  // namespace
}  // namespace browser
