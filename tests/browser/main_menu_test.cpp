#include "browser/main_menu.h"

#include <gtest/gtest.h>

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

namespace browser {
namespace {

const QString kPurge = QStringLiteral("mnuPurge");

// What the program says of itself while a test runs.
class SaidMessages {
public:
    SaidMessages() {
        texts_.clear();
        before_ = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { texts_.append(text); });
    }
    ~SaidMessages() { qInstallMessageHandler(before_); }
    SaidMessages(const SaidMessages&) = delete;
    SaidMessages& operator=(const SaidMessages&) = delete;
    const QStringList& texts() const { return texts_; }

private:
    inline static QStringList texts_;
    QtMessageHandler before_;
};

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
}

TEST_F(MainMenuTest, ANameThatNoItemHasIsSaidAndChangesNothing) {
    const QString wrong = QStringLiteral("mnuPurg");
    const SaidMessages said;
    menu.SetCommand(wrong, [] { ADD_FAILURE() << "there is no such item"; });
    menu.Run(wrong);
    menu.SetAllowed(wrong, true);
    menu.SetChecked(wrong, true);
    EXPECT_FALSE(menu.IsEnabled(wrong));
    EXPECT_FALSE(menu.IsChecked(wrong));
    EXPECT_FALSE(menu.IsEnabled(kPurge));
    EXPECT_EQ(said.texts(), QStringList(6, QStringLiteral("The menu has no item \"mnuPurg\".")));
}

TEST_F(MainMenuTest, ANameThatNoMenuHasIsSaidAndChangesNothing) {
    const QString wrong = QStringLiteral("mnuFiles");
    const SaidMessages said;
    menu.SetMenuEnabled(wrong, false);
    EXPECT_FALSE(menu.IsMenuEnabled(wrong));
    EXPECT_EQ(menu.Menu(wrong), nullptr);
    EXPECT_EQ(said.texts(), QStringList(3, QStringLiteral("There is no menu \"mnuFiles\".")));
    EXPECT_TRUE(menu.IsMenuEnabled(QStringLiteral("mnuFile")));
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
