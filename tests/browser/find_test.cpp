// Find, as it is typed in the main window.
#include "browser/main_window_fixture.h"
#include "support/wait_for.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QToolButton>

namespace browser {
namespace {

class FindTest : public MainWindowWithTables {
protected:
    void OpenFind() {
        QTest::keyClick(Tree(), Qt::Key_F, Qt::ControlModifier);
        ASSERT_TRUE(Bar()->isVisible());
    }
    void OpenWindow() {
        Open();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        Tree()->setFocus();
    }
    QWidget* Bar() { return Find<QWidget>(u"FindBar"); }
    QLineEdit* Field() { return Find<QLineEdit>(u"txtFind"); }
    QString Count() { return Find<QLabel>(u"lblFindCount")->text(); }
    bool WaitForCount(const char16_t* count) {
        return QTest::qWaitFor([&] { return Count() == S(count); }, 20'000);
    }
    bool WaitForDetails(const char16_t* name) {
        return QTest::qWaitFor([&] { return FieldText(2) == S(name); }, 20'000);
    }
    void Type(const char* text) { QTest::keyClicks(Field(), QString::fromLatin1(text)); }
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(Field(), key, modifiers);
    }
};

TEST_F(FindTest, TheFieldComesWithItsKeysOnly) {
    OpenWindow();
    EXPECT_FALSE(Bar()->isVisible());
    QTest::keyClick(Tree(), Qt::Key_Slash);
    EXPECT_TRUE(Bar()->isVisible());
    EXPECT_TRUE(Field()->hasFocus());
    EXPECT_EQ(Field()->text(), QString());
    Type("a/b");
    EXPECT_EQ(Field()->text(), S(u"a/b"));
}

TEST_F(FindTest, EachKeyJumpsAndTheDetailsFollow) {
    OpenWindow();
    OpenFind();
    Type("bet");
    ASSERT_TRUE(WaitForCount(u"1 of 1"));
    EXPECT_TRUE(WaitForDetails(u"Beta"));
    EXPECT_EQ(Tree()->currentIndex(), Table(1));
    EXPECT_TRUE(Field()->hasFocus());
    EXPECT_EQ(TableNames().size(), 3);
}

TEST_F(FindTest, NoQuestionIsAskedWhileKeysCome) {
    CountWalks();
    OpenWindow();
    OpenFind();
    Type("zzz");
    ASSERT_TRUE(WaitForCount(u"None"));
    Field()->clear();
    const int before = walks.all();
    Type("bob -alpha author:b year:>1 is:missing");
    EXPECT_EQ(walks.all(), before);
}

TEST_F(FindTest, TheQuestionStaysAsItIs) {
    OpenWindow();
    OpenFind();
    Type("beta");
    ASSERT_TRUE(WaitForDetails(u"Beta"));
    EXPECT_EQ(Find<QComboBox>(u"cboFilter")->currentText(), S(u"All"));
    EXPECT_EQ(Panel(1), S(u"3 Tables in list.  "));
    EXPECT_FALSE(RefreshPending());
}

TEST_F(FindTest, KeysMoveAroundTheEnds) {
    OpenWindow();
    OpenFind();
    Type("bob");  // Alpha and Gamma
    ASSERT_TRUE(WaitForCount(u"1 of 2"));
    Key(Qt::Key_Down);
    EXPECT_EQ(Count(), S(u"2 of 2"));
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    Key(Qt::Key_Down);
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    Key(Qt::Key_Up);
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    Key(Qt::Key_F3);
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    Key(Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
}

TEST_F(FindTest, TheSearchBeginsAtTheSelectedTable) {
    OpenWindow();
    Click(Table(1));
    OpenFind();
    Type("bob");
    ASSERT_TRUE(WaitForCount(u"2 of 2"));
    ASSERT_TRUE(WaitForDetails(u"Gamma"));
    Click(Table(0));
    EXPECT_EQ(Count(), S(u"1 of 2"));
}

TEST_F(FindTest, EnterPlaysWhatIsFound) {
    OpenWindow();
    OpenFind();
    Type("gamma");
    ASSERT_TRUE(WaitForCount(u"1 of 1"));
    Key(Qt::Key_Return);
    ASSERT_EQ(plays.size(), 1U);
    EXPECT_EQ(plays[0].name, S(u"Gamma"));
    EXPECT_EQ(plays[0].id, 3);
    Field()->setText(S(u"nothing has this"));
    Key(Qt::Key_Return);
    EXPECT_EQ(plays.size(), 1U);
}

TEST_F(FindTest, EscapeClearsAndThenLeaves) {
    OpenWindow();
    OpenFind();
    Type("gamma");
    ASSERT_TRUE(WaitForCount(u"1 of 1"));
    Key(Qt::Key_Escape);
    EXPECT_EQ(Field()->text(), QString());
    EXPECT_EQ(Count(), QString());
    EXPECT_TRUE(Bar()->isVisible());
    EXPECT_EQ(FieldText(2), S(u"Gamma"));  // one stays where one has come to
    Key(Qt::Key_Escape);
    EXPECT_FALSE(Bar()->isVisible());
    EXPECT_TRUE(Tree()->hasFocus());
}

TEST_F(FindTest, F3FindsTheLastTextAgain) {
    OpenWindow();
    OpenFind();
    Type("bob");
    ASSERT_TRUE(WaitForCount(u"1 of 2"));
    Key(Qt::Key_Escape);
    Key(Qt::Key_Escape);
    QTest::keyClick(Tree(), Qt::Key_F3);
    EXPECT_EQ(Field()->text(), S(u"bob"));
    EXPECT_TRUE(WaitForCount(u"1 of 2"));
}

TEST_F(FindTest, WhatIsNotUnderstoodIsSaid) {
    OpenWindow();
    OpenFind();
    Type("is:gone");
    EXPECT_TRUE(WaitForCount(u"Not understood"));
    EXPECT_EQ(Find<QLabel>(u"lblFindCount")->toolTip(), S(u"is:gone"));
}

TEST_F(FindTest, MissingFilesAreLookedForAtOnce) {
    OpenWindow();
    OpenFind();
    Type("is:missing");
    EXPECT_TRUE(WaitForCount(u"1 of 1"));
    EXPECT_TRUE(WaitForDetails(u"Beta"));
}

TEST_F(FindTest, ChipsPutTheirPartInAndTakeItOut) {
    OpenWindow();
    OpenFind();
    Press(u"chipFavourite");
    EXPECT_EQ(Field()->text(), S(u"is:favourite "));
    EXPECT_TRUE(Find<QToolButton>(u"chipFavourite")->isChecked());
    EXPECT_TRUE(WaitForCount(u"1 of 1"));
    Press(u"chipUnplayed");
    EXPECT_EQ(Field()->text(), S(u"is:favourite is:unplayed "));
    Press(u"chipFavourite");
    EXPECT_EQ(Field()->text(), S(u"is:unplayed "));
    EXPECT_FALSE(Find<QToolButton>(u"chipFavourite")->isChecked());
    Press(u"chipAuthor");
    EXPECT_TRUE(Field()->hasFocus());
    Type("ann");
    EXPECT_EQ(Field()->text(), S(u"is:unplayed author:ann"));
    EXPECT_TRUE(WaitForCount(u"1 of 1"));
}

TEST_F(FindTest, AnotherSelectionIsSearchedAnew) {
    OpenWindow();
    OpenFind();
    Type("bob");
    ASSERT_TRUE(WaitForCount(u"1 of 2"));
    PickFilter(u"Favorites");
    Press(u"cmdGo");
    EXPECT_TRUE(WaitForCount(u"None"));
}

TEST_F(FindTest, MissingFilesAreLookedForAgainAfterARefresh) {
    for (int i = 0; i < 60; ++i)  // most of them are out of sight
        AddTable(QStringLiteral("Lost %1").arg(i), QStringLiteral("/gone/%1.vpt").arg(i));
    OpenWindow();
    OpenFind();
    Type("is:missing");
    ASSERT_TRUE(WaitForCount(u"1 of 61"));
    Press(u"cmdGo");
    EXPECT_EQ(Count(), S(u"..."));
    EXPECT_TRUE(WaitForCount(u"1 of 61"));
}

TEST_F(FindTest, NothingIsSelectedDuringAnEdit) {
    OpenWindow();
    Click(Table(0));
    OpenFind();
    Type("gam");
    ASSERT_TRUE(WaitForCount(u"1 of 1"));
    EditName();
    EXPECT_FALSE(Bar()->isEnabled());
    auto* const rest = Bar()->findChild<QTimer*>(S(u"findRest"));
    ASSERT_TRUE(rest->isActive());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !rest->isActive(); }, 20'000));
    EXPECT_EQ(FieldText(2), S(u"changed"));
    EXPECT_EQ(Tree()->currentIndex(), Table(0));
}

// The line that holds what is found looks different from the same line before.
TEST_F(FindTest, FoundTablesAreMarked) {
    OpenWindow();
    const auto line = [this](int table) {
        return Tree()->viewport()->grab(Tree()->visualRect(Table(table))).toImage();
    };
    // Its file is looked for in the background.
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return Table(1).data(TableTreeModel::kIconKeyRole).toString() == u"stop"; }, 20'000));
    const QImage alpha_before = line(0);
    const QImage beta_before = line(1);
    OpenFind();
    Type("bob");
    ASSERT_TRUE(WaitForCount(u"1 of 2"));
    EXPECT_NE(line(0), alpha_before);
    EXPECT_EQ(line(1), beta_before);
    Key(Qt::Key_Escape);
    Key(Qt::Key_Escape);
    Tree()->clearSelection();
    EXPECT_EQ(line(1), beta_before);
}

}  // namespace
}  // namespace browser
