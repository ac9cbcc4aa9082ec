#include "browser/main_menu.h"

#include <gtest/gtest.h>

#include <QtGui/QAction>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

namespace browser {
namespace {

constexpr CommandId kPurge = &CommandActions::purge_missing_tables;
constexpr CommandId kDefaultSize = &CommandActions::restore_default_size;
constexpr CommandId kSound = &CommandActions::toggle_sound;

// Collects the log messages during a test.
class LogMessages {
public:
    LogMessages() {
        texts_.clear();
        before_ = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& text) { texts_.append(text); });
    }
    ~LogMessages() { qInstallMessageHandler(before_); }
    LogMessages(const LogMessages&) = delete;
    LogMessages& operator=(const LogMessages&) = delete;
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

TEST(EntryCaptionTest, AnAmpersandOfAnothersTextMarksNoMnemonic) {
    EXPECT_EQ(EntryCaption(QStringLiteral("Cops & Robbers && more")),
              QStringLiteral("Cops && Robbers &&&& more"));
}

TEST_F(MainMenuTest, AnItemWithoutACommandIsDisabled) {
    EXPECT_FALSE(menu.IsEnabled(kPurge));
    menu.SetAction(kPurge, [] {});
    EXPECT_TRUE(menu.IsEnabled(kPurge));
    menu.SetAction(kPurge, {});
    EXPECT_FALSE(menu.IsEnabled(kPurge));
}

TEST_F(MainMenuTest, AClickRunsTheCommand) {
    int runs = 0;
    menu.SetAction(kPurge, [&] { ++runs; });
    QAction* const action =
        menu.Menu(QStringLiteral("mnuUtilities"))->findChild<QAction*>(QStringLiteral("mnuPurge"));
    ASSERT_TRUE(action);
    action->trigger();
    EXPECT_EQ(runs, 1);
    menu.Run(kPurge);
    EXPECT_EQ(runs, 2);
}

TEST_F(MainMenuTest, ADisabledItemRunsNothing) {
    int runs = 0;
    menu.SetAction(kDefaultSize, [&] { ++runs; });
    menu.ApplyRules({.current_tab = 0, .window_is_normal = false});
    EXPECT_FALSE(menu.IsEnabled(kDefaultSize));
    menu.Run(kDefaultSize);
    EXPECT_EQ(runs, 0);
    menu.ApplyRules({});
    menu.Run(kDefaultSize);
    EXPECT_EQ(runs, 1);
}

TEST_F(MainMenuTest, AllowedWithoutAnActionIsDisabledAllTheSame) {
    menu.ApplyRules({});
    EXPECT_FALSE(menu.IsEnabled(kDefaultSize));
}

TEST_F(MainMenuTest, OfManyActionsTheEmptyOnesChangeNothing) {
    menu.SetActions({.purge_missing_tables = [] {}});
    menu.SetActions({.toggle_sound = [] {}});
    EXPECT_TRUE(menu.IsEnabled(kPurge));
    EXPECT_TRUE(menu.IsEnabled(kSound));
    EXPECT_FALSE(menu.IsEnabled(kDefaultSize));
}

TEST_F(MainMenuTest, ANameThatNoMenuHasIsLoggedAndChangesNothing) {
    const QString wrong = QStringLiteral("mnuFiles");
    const LogMessages log;
    menu.SetMenuEnabled(wrong, false);
    EXPECT_FALSE(menu.IsMenuEnabled(wrong));
    EXPECT_EQ(menu.Menu(wrong), nullptr);
    EXPECT_EQ(log.texts(), QStringList(3, QStringLiteral("There is no menu \"mnuFiles\".")));
    EXPECT_TRUE(menu.IsMenuEnabled(QStringLiteral("mnuFile")));
}

TEST_F(MainMenuTest, ACommandMayReplaceItself) {
    int runs = 0;
    menu.SetAction(kPurge, [&] {
        menu.SetAction(kPurge, {});
        ++runs;
    });
    menu.Run(kPurge);
    EXPECT_EQ(runs, 1);
}

TEST_F(MainMenuTest, TheHeadingOfThePopupIsDisabled) {
    const QMenu* const popup = menu.Menu(QStringLiteral("mnufavorites"));
    ASSERT_TRUE(popup);
    const QAction* const heading = popup->findChild<QAction*>(QStringLiteral("mnumnu"));
    ASSERT_TRUE(heading);
    EXPECT_FALSE(heading->isEnabled());
    EXPECT_EQ(popup->title(), QStringLiteral("Popup"));
    EXPECT_FALSE(bar.actions().contains(popup->menuAction()));
}

TEST_F(MainMenuTest, OptionsAreChecked) {
    menu.SetChecked(kSound, true);
    EXPECT_TRUE(menu.IsChecked(kSound));
    menu.SetAction(kSound, [] {});
    menu.Run(kSound);
    EXPECT_FALSE(menu.IsChecked(kSound));
}

TEST_F(MainMenuTest, AWholeMenuCanBeLocked) {
    menu.SetMenuEnabled(QStringLiteral("mnuFile"), false);
    EXPECT_FALSE(menu.IsMenuEnabled(QStringLiteral("mnuFile")));
    EXPECT_TRUE(menu.IsMenuEnabled(QStringLiteral("mnuHelp")));
}

}  // namespace
}  // namespace browser
