// The main window: its start, selection, tree, menus and locks.
#include "browser/main_window_fixture.h"
#include "support/event_counter.h"
#include "support/wait_for.h"

#include <QtGui/QKeyEvent>
#include <QtGui/QScreen>
#include <QtWidgets/QApplication>
#include <QtWidgets/QDialog>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTabWidget>

namespace browser {
namespace {

// Start.

TEST_F(MainWindowTest, AnEmptyCatalogueStartsTheScanThenTheExecutableChooser) {
    Open();
    EXPECT_EQ(commands, QStringList({S(u"scan"), S(u"exe")}));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(MainWindowTest, TheScanOfAnEmptyCatalogueCanFillTheTree) {
    window = std::make_unique<frmPinball>(catalogue, prompts);
    window->SetActions({.scan_for_tables = [this] {
        AddTable(S(u"found"));
        window->RefreshTree();
    }});
    window->Load();
    window->show();
    window->AskForWhatIsMissing();
    EXPECT_EQ(TableNames(), QStringList({S(u"found")}));
    EXPECT_EQ(Root().data().toString(), S(u"All"));
}

TEST_F(MainWindowWithTables, AKnownExecutableAndAFilledCatalogueAskNothing) {
    Open();
    EXPECT_TRUE(commands.isEmpty());
    EXPECT_EQ(TableNames(), QStringList({S(u"Alpha"), S(u"Beta"), S(u"Gamma")}));
    EXPECT_EQ(Panel(1), S(u"3 Tables in list.  "));
    EXPECT_TRUE(Tree()->isExpanded(Root()));
    EXPECT_FALSE(RefreshPending());
}

TEST_F(MainWindowWithTables, ACatalogueThatCannotBeReadIsTold) {
    connection->Close().Ignore();
    Open();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_FALSE(prompts.messages[0].text.isEmpty());
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_TRUE(commands.isEmpty());
}

TEST_F(MainWindowWithTables, TheTitleHasFourBlanks) {
    Open();
    EXPECT_EQ(window->windowTitle(), S(u"Tavolo -    v. 1.6 - RC 1"));
}

TEST_F(MainWindowWithTables, TheFirstStartHasTheDefaultSize) {
    Open();
    EXPECT_EQ(window->size(), QSize(638, 459));
}

TEST_F(MainWindowWithTables, TheSavedSizeComesBack) {
    Save(u"WINDOWSTATE", u"1");  // minimised at the last close
    Save(u"WIDTH", u"10500");
    Save(u"HEIGHT", u"9000");
    Open();
    EXPECT_EQ(window->size(), QSize(700, 600));
    EXPECT_FALSE(window->isMinimized());
}

TEST_F(MainWindowWithTables, ASavedSizeLargerThanTheScreenIsFittedToIt) {
    Save(u"WIDTH", u"150000");
    Save(u"HEIGHT", u"120000");
    Open();
    const QRect screen = window->screen()->availableGeometry();
    EXPECT_LT(window->width(), screen.width());
    EXPECT_LT(window->height(), screen.height());
}

TEST_F(MainWindowWithTables, TheWindowReopensWhereItWasAsItWasLaidOut) {
    Open();
    auto* splitter = window->findChild<QSplitter*>();
    window->resize(700, 500);
    window->move(40, 60);
    splitter->setSizes({300, 380});
    const QList<int> sizes = splitter->sizes();
    const QPoint place = window->pos();
    window->close();
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    Open();
    EXPECT_EQ(window->pos(), place);
    EXPECT_EQ(window->findChild<QSplitter*>()->sizes(), sizes);
}

TEST_F(MainWindowWithTables, APlaceThatNoScreenHasIsNotTaken) {
    settings.values[S(u"TAVOLO/WINDOW/POSITION")] = S(u"20000 20000");
    Open();
    EXPECT_TRUE(window->screen()->geometry().contains(window->pos()));
}

TEST_F(MainWindowWithTables, AMaximisedWindowIsMaximisedAgain) {
    Save(u"WINDOWSTATE", u"2");
    Open();
    EXPECT_TRUE(window->isMaximized());
    window->close();
    EXPECT_EQ(Saved(u"WINDOWSTATE"), S(u"2"));
    EXPECT_EQ(Saved(u"WIDTH"), QString::number(window->width() * 15));
}

TEST_F(MainWindowWithTables, TheSavedSelectionComesBack) {
    Save(u"FILTER", u"Author");
    Save(u"SUB", u"Bob");
    Save(u"OPERATOR", u"<>");
    Save(u"DIRECTION", u"Desc");
    Save(u"ORDERBY", u"Year");
    Open();
    EXPECT_EQ(TableNames(), QStringList({S(u"Beta")}));
    EXPECT_EQ(Root().data().toString(), S(u"Author <> Bob"));
    EXPECT_EQ(Find<QComboBox>(u"cboOrder")->currentText(), S(u"Year"));
    window->close();
    EXPECT_EQ(Saved(u"FILTER"), S(u"Author"));
    EXPECT_EQ(Saved(u"SUB"), S(u"Bob"));
    EXPECT_EQ(Saved(u"OPERATOR"), S(u"<>"));
    EXPECT_EQ(Saved(u"DIRECTION"), S(u"Desc"));
}

TEST_F(MainWindowWithTables, TheLastNodeIsSelectedAndShown) {
    Save(u"LASTPLAY", u"9");
    Open();
    EXPECT_EQ(Tree()->currentIndex(), Table(1));
    EXPECT_EQ(FieldText(2), S(u"Beta"));
}

TEST_F(MainWindowWithTables, AStaleLastNodeIsIgnored) {
    for (const char16_t* number : {u"23", u"-4", u"9999999999", u"x"}) {
        Save(u"LASTPLAY", number);
        Open();
        EXPECT_EQ(FieldText(2), QString()) << S(number).toStdString();
        window.reset();
    }
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(MainWindowWithTables, ALastNodeThatIsADetailLineShowsNoTable) {
    Save(u"LASTPLAY", u"4");
    Open();
    EXPECT_EQ(Tree()->currentIndex(), Detail(0, 1));
    EXPECT_EQ(FieldText(2), QString());
}

TEST_F(MainWindowWithTables, OptionsComeBackWithTheirCheckMarks) {
    Save(u"SOUND", u"True");
    Save(u"MIN", u"False");
    Save(u"LASTPICDIR", u"/pictures/");
    Open();
    EXPECT_TRUE(values.SoundOn);
    EXPECT_FALSE(values.MinimiseOnPlay);
    EXPECT_TRUE(Action(u"mnuSound")->isChecked());
    EXPECT_FALSE(Action(u"mnuMin")->isChecked());
    EXPECT_EQ(values.LastPictureDir, S(u"/pictures/"));
    Action(u"mnuSound")->trigger();
    Action(u"mnuMin")->trigger();
    EXPECT_FALSE(values.SoundOn);
    EXPECT_TRUE(values.MinimiseOnPlay);
    window->close();
    EXPECT_EQ(Saved(u"SOUND"), S(u"False"));
    EXPECT_EQ(Saved(u"MIN"), S(u"True"));
    EXPECT_EQ(Saved(u"LASTPICDIR"), S(u"/pictures/"));
}

TEST_F(MainWindowWithTables, WhetherToWaitForTheSimulatorIsKeptAndOffAtFirst) {
    Open();
    EXPECT_FALSE(values.WaitForSimulator);
    EXPECT_FALSE(Action(u"mnuWait")->isChecked());
    Action(u"mnuWait")->trigger();
    EXPECT_TRUE(values.WaitForSimulator);
    window->close();
    values.WaitForSimulator = false;
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    Open();
    EXPECT_TRUE(values.WaitForSimulator);
    EXPECT_TRUE(Action(u"mnuWait")->isChecked());
}

TEST_F(MainWindowWithTables, MinimisingOnPlayComesBackByItself) {
    Save(u"MIN", u"True");
    Open();
    EXPECT_TRUE(values.MinimiseOnPlay);
    EXPECT_FALSE(values.SoundOn);
    EXPECT_TRUE(Action(u"mnuMin")->isChecked());
    EXPECT_FALSE(Action(u"mnuSound")->isChecked());
}

TEST_F(MainWindowWithTables, TheSavedTabComesBack) {
    Save(u"LASTTAB", u"4");
    Open();
    EXPECT_EQ(window->details().CurrentTab(), 4);
    window->close();
    EXPECT_EQ(Saved(u"LASTTAB"), S(u"4"));
}

TEST_F(MainWindowTest, TheCountPasses16Bits) {
    constexpr int kTables = 1 << 15;
    Execute(S(u"DROP INDEX DisplayName ON Tables"));
    Execute(S(u"DROP INDEX FileName ON Tables"));
    AddTable(S(u"t"));
    for (int tables = 1; tables < kTables; tables *= 2)
        Execute(S(u"INSERT INTO Tables (DisplayName) SELECT DisplayName FROM Tables"));
    Save(u"LASTPLAY", QString::number(2 + 7 * (kTables - 1)).toStdU16String().c_str());
    Open();
    EXPECT_EQ(Tree()->model()->rowCount(Root()), kTables);
    EXPECT_EQ(Panel(1), S(u"32768 Tables in list.  "));
    EXPECT_EQ(Tree()->currentIndex(), Table(kTables - 1));
}

// Selection.

TEST_F(MainWindowWithTables, NothingIsAskedOfTheCatalogueUntilRefreshTree) {
    Open();
    Press(u"lblDirection");
    EXPECT_EQ(TableNames(), QStringList({S(u"Alpha"), S(u"Beta"), S(u"Gamma")}));
    EXPECT_TRUE(RefreshPending());
    Press(u"cmdGo");
    EXPECT_EQ(TableNames(), QStringList({S(u"Gamma"), S(u"Beta"), S(u"Alpha")}));
    EXPECT_FALSE(RefreshPending());
}

TEST_F(MainWindowWithTables, NeverPlayedTablesCanBeSelected) {
    Open();
    PickFilter(u"Times Played");
    Find<QPushButton>(u"cmdOperator")->setText(S(u"="));
    TypeValue(u"0");
    Press(u"cmdGo");
    EXPECT_EQ(TableNames(), QStringList({S(u"Beta")}));
    EXPECT_EQ(Root().data().toString(), S(u"Times Played = 0"));
}

TEST_F(MainWindowWithTables, AWrongDateIsReportedAndTheTreeStaysEmpty) {
    Open();
    PickFilter(u"File Date");
    TypeValue(u"soon");
    Press(u"cmdGo");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"Please enter a valid date"));
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
    EXPECT_EQ(Panel(1), QString());  // no count of tables that are not there
    EXPECT_EQ(Find<QComboBox>(u"cboFilterDet")->lineEdit()->selectedText(), S(u"soon"));
    EXPECT_FALSE(RefreshPending());
}

TEST_F(MainWindowWithTables, AWrongNumberIsReported) {
    Open();
    PickFilter(u"Times Played");
    TypeValue(u"often");
    Press(u"cmdGo");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"Please enter a valid number"));
}

TEST_F(MainWindowWithTables, AWrongDateAddedIsSaidInTheStatusBarAlone) {
    Open();
    PickFilter(u"Date Added");
    TypeValue(u"soon");
    Press(u"cmdGo");
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
    EXPECT_EQ(Panel(1), QString());  // no count of tables that are not there
    EXPECT_NE(Panel(2), QString());
    EXPECT_FALSE(RefreshPending());
    PickFilter(u"All");
    Press(u"cmdGo");
    EXPECT_EQ(Panel(1), S(u"3 Tables in list.  "));
    EXPECT_EQ(Panel(2), QString());
}

TEST_F(MainWindowWithTables, ACatalogueThatFailsInARefreshIsSaidInTheStatusBar) {
    Open();
    connection->Close().Ignore();
    Press(u"cmdGo");
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
    EXPECT_EQ(Panel(1), QString());
    EXPECT_TRUE(
        Panel(2).startsWith(S(u"The tables cannot be read from ") + DatabasePath() + S(u": ")))
        << Panel(2).toStdString();
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(MainWindowWithTables, ACatalogueForReadingOnlyShowsASign) {
    Open();
    auto* sign = Find<QLabel>(u"lblReadOnly");
    EXPECT_FALSE(sign->isVisible());
    ASSERT_TRUE(connection->Close().ok());
    ASSERT_TRUE(
        connection->Open((S(u"Mode=Read;Data Source=") + DatabasePath()).toStdU16String()).ok());
    window->RefreshTree();
    EXPECT_TRUE(sign->isVisible());
    EXPECT_EQ(sign->text(), S(u"Read-only"));
    EXPECT_TRUE(sign->toolTip().startsWith(DatabasePath())) << sign->toolTip().toStdString();
    EXPECT_EQ(Panel(1), S(u"3 Tables in list.  ")) << "it can be read all the same";
}

TEST_F(MainWindowWithTables, ValuesThatCannotBeReadAreSaidInTheStatusBar) {
    Open();
    connection->Close().Ignore();
    PickFilter(u"Author");
    EXPECT_TRUE(Panel(2).startsWith(S(u"The values cannot be read from ") + DatabasePath()))
        << Panel(2).toStdString();
    EXPECT_TRUE(Find<QWidget>(u"fraFilter")->isHidden());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(MainWindowWithTables, ATableThatCannotBeReadIsSaidInTheStatusBar) {
    Open();
    connection->Close().Ignore();
    Click(Table(0));
    EXPECT_EQ(FieldText(2), QString());
    EXPECT_TRUE(Panel(2).startsWith(S(u"The table cannot be read from ") + DatabasePath()))
        << Panel(2).toStdString();
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(MainWindowWithTables, ARefreshedTreeIsPaintedWithItsPanels) {
    Open();
    auto* bar = Find<QProgressBar>(u"prgLoad");
    QApplication::processEvents();
    const test_support::EventCounter paints(*Tree()->viewport(), QEvent::Paint);
    const test_support::EventCounter progress(*bar, QEvent::Show);
    Press(u"lblDirection");
    Press(u"cmdGo");
    EXPECT_EQ(progress.count(), 1);
    EXPECT_TRUE(test_support::WaitFor([&] {
        QApplication::processEvents();
        return paints.count() > 0;
    }));
    EXPECT_FALSE(bar->isVisible());
    for (const char16_t* panel : {u"sbrDB_1", u"sbrDB_2", u"sbrDB_3", u"sbrDB_4"})
        EXPECT_TRUE(Find<QLabel>(panel)->isVisible()) << S(panel).toStdString();
}

TEST_F(MainWindowWithTables, ACommandShowsItsProgressInPlaceOfThePanels) {
    Open();
    auto* bar = Find<QProgressBar>(u"prgLoad");
    window->ShowProgress(0, 200);
    EXPECT_TRUE(bar->isVisible());
    EXPECT_FALSE(Find<QLabel>(u"sbrDB_1")->isVisible());
    window->ShowProgress(100, 200);
    EXPECT_EQ(bar->value(), 100);
    window->ShowProgress(200, 200);
    EXPECT_FALSE(bar->isVisible());
    EXPECT_TRUE(Find<QLabel>(u"sbrDB_1")->isVisible());
    EXPECT_EQ(Panel(1), S(u"3 Tables in list.  "));
}

TEST_F(MainWindowWithTables, NoMatchIsReportedAndTheCountEmptied) {
    Open();
    PickFilter(u"Author");
    Find<QPushButton>(u"cmdOperator")->setText(S(u"="));
    TypeValue(u"nobody");
    Press(u"cmdGo");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"No matching records found"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
    EXPECT_EQ(Panel(1), QString());
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
}

TEST_F(MainWindowWithTables, OnlyAnAppliedOperatorIsSaved) {
    Open();
    PickFilter(u"Author");
    TypeValue(u"Bob");
    Press(u"cmdOperator");  // ">", never applied
    window->close();
    EXPECT_EQ(Saved(u"OPERATOR"), S(u"="));
    EXPECT_EQ(Saved(u"SUB"), S(u"Bob"));
}

// The tree.

TEST_F(MainWindowWithTables, AClickShowsTheTableAndIsRemembered) {
    Open();
    Click(Table(2));
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    EXPECT_EQ(Panel(2), S(u"Current Table: Gamma"));
    window->close();
    EXPECT_EQ(Saved(u"LASTPLAY"), S(u"16"));
}

TEST_F(MainWindowWithTables, ASaveWithoutASelectedNodeRemembersTheLastOne) {
    Open();
    Click(Table(2));
    EditName();
    Tree()->setCurrentIndex({});
    window->details().Save();
    window->close();
    EXPECT_EQ(Saved(u"LASTPLAY"), S(u"16"));
}

TEST_F(MainWindowWithTables, AClickLooksForTheTableOnce) {
    CountWalks();
    Open();
    const int before = walks.all();
    Click(Table(0));
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EXPECT_EQ(Find<QLabel>(u"lblComments")->text(), S(u"note of alpha"));
    EXPECT_EQ(walks.all() - before, 1);
}

TEST_F(MainWindowWithTables, ArrowKeysShowTablesToo) {
    Open();
    Click(Table(0));
    QTest::keyClick(Tree(), Qt::Key_Down);
    EXPECT_EQ(FieldText(2), S(u"Beta"));
}

TEST_F(MainWindowWithTables, AClickOnADetailLineClearsThePanelAndRemembersNothing) {
    Open();
    Click(Table(0));
    Tree()->expand(Table(0));
    Click(Detail(0, 1));
    EXPECT_EQ(FieldText(2), QString());
    window->close();
    EXPECT_EQ(Saved(u"LASTPLAY"), S(u"2"));
}

TEST_F(MainWindowWithTables, AClickOnTheRootChangesNothing) {
    Open();
    Click(Table(0));
    Click(Root());
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
}

TEST_F(MainWindowWithTables, TheRootIconFollowsOpeningAndClosing) {
    Open();
    EXPECT_EQ(Root().data(TableTreeModel::kIconKeyRole).toString(), S(u"open"));
    Tree()->collapse(Root());
    EXPECT_EQ(Root().data(TableTreeModel::kIconKeyRole).toString(), S(u"closed"));
    Tree()->expand(Root());
    EXPECT_EQ(Root().data(TableTreeModel::kIconKeyRole).toString(), S(u"open"));
}

TEST_F(MainWindowWithTables, AnAsteriskOnTheRootOpensAllAndSelectsNothingElse) {
    AddTable(S(u"*Star"));
    Open();
    Tree()->setCurrentIndex(Root());
    Tree()->collapse(Root());
    QTest::keyClick(Tree(), '*');
    EXPECT_TRUE(Tree()->isExpanded(Root()));
    for (int table = 0; table < 4; ++table)
        EXPECT_TRUE(Tree()->isExpanded(Table(table))) << table;
    EXPECT_EQ(Root().data(TableTreeModel::kIconKeyRole).toString(), S(u"open"));
    EXPECT_EQ(Tree()->currentIndex(), Root())
        << "the key is no letter of a name that is looked for";
}

TEST_F(MainWindowWithTables, AnAsteriskOnATableOpensThatOne) {
    Open();
    Click(Table(0));
    QTest::keyClick(Tree(), '*');
    EXPECT_TRUE(Tree()->isExpanded(Table(0)));
    EXPECT_FALSE(Tree()->isExpanded(Table(1)));
}

TEST_F(MainWindowWithTables, ADoubleClickPlaysShowsTheDetailsAgainAndClosesTheNode) {
    Open();
    while_playing = [this] {
        Execute(S(u"Update Tables set TimesPlayed = 4 where DisplayName = 'Alpha'"));
    };
    Tree()->expand(Table(0));
    DoubleClick(Table(0));
    EXPECT_EQ(plays, std::vector<Play>({{alpha, S(u"Alpha"), 1}}));
    EXPECT_EQ(Panel(3), S(u"Times Played: 4"));
    EXPECT_FALSE(Tree()->isExpanded(Table(0)));
    DoubleClick(Table(0));
    EXPECT_FALSE(Tree()->isExpanded(Table(0)));
}

TEST_F(MainWindowWithTables, ATableWithoutAFileIsNotPlayed) {
    Open();
    DoubleClick(Table(1));
    EXPECT_TRUE(plays.empty());
    EXPECT_EQ(FieldText(2), S(u"Beta"));
    QTest::keyClick(Tree(), Qt::Key_Return);
    EXPECT_TRUE(plays.empty());
}

TEST_F(MainWindowWithTables, ADoubleClickOnADetailLinePlaysNothing) {
    Open();
    Tree()->expand(Table(0));
    DoubleClick(Detail(0, 2));
    EXPECT_TRUE(plays.empty());
}

TEST_F(MainWindowWithTables, EnterPlays) {
    Open();
    Click(Table(0));
    QTest::keyClick(Tree(), Qt::Key_Return);
    QTest::keyClick(Tree(), Qt::Key_Enter);
    EXPECT_EQ(plays.size(), 2U);
}

TEST_F(MainWindowWithTables, AHeldEnterPlaysOnce) {
    Open();
    Click(Table(0));
    for (const int key : {Qt::Key_Return, Qt::Key_Enter}) {
        plays.clear();
        for (const bool repeated : {false, true, true}) {
            QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, S(u"\r"), repeated);
            QApplication::sendEvent(Tree(), &press);
        }
        EXPECT_EQ(plays.size(), 1U) << key;
    }
}

TEST_F(MainWindowWithTables, PlayButtonAndPopupPlayTheSameWay) {
    Open();
    Click(Table(0));
    Press(u"cmdPlay");
    Action(u"mnuPlay")->trigger();
    EXPECT_EQ(plays, std::vector<Play>({{alpha, S(u"Alpha"), 1}, {alpha, S(u"Alpha"), 1}}));
}

TEST_F(MainWindowWithTables, ARecordThatIsChangedDuringAPlayKeepsItsChanges) {
    Open();
    while_playing = [this] { EditName(); };
    DoubleClick(Table(0));
    EXPECT_EQ(FieldText(2), S(u"changed"));
}

TEST_F(MainWindowWithTables, ARefreshDuringAPlayDoesNoHarm) {
    Open();
    while_playing = [this] { window->RefreshTree(); };
    DoubleClick(Table(0));
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    while_playing = [this] {
        Execute(S(u"Delete from Tables"));
        window->RefreshTree();
    };
    DoubleClick(Table(0));
    EXPECT_EQ(FieldText(2), QString());
}

// The place in the list.

TEST_F(MainWindowWithTables, ARefreshKeepsTheSelectedTableAndItsPlaceInTheView) {
    for (int i = 0; i < 200; ++i)
        AddTable(QStringLiteral("Row %1").arg(i, 3, 10, QLatin1Char('0')));
    Open();
    Click(Table(100));
    const int above = Tree()->visualRect(Table(100)).top();
    const QString shown = FieldText(2);
    Press(u"cmdGo");
    EXPECT_EQ(Tree()->currentIndex(), Table(100));
    EXPECT_EQ(FieldText(2), shown);
    EXPECT_EQ(Tree()->visualRect(Table(100)).top(), above);
    Press(u"lblDirection");
    Press(u"cmdGo");
    EXPECT_EQ(Tree()->currentIndex(), Table(102)) << "the same table in the new order";
    EXPECT_EQ(FieldText(2), shown);
    window->close();
    EXPECT_EQ(Saved(u"LASTPLAY"), QString::number(2 + 102 * 7));
}

TEST_F(MainWindowWithTables, OfATableThatTheNewQuestionLeavesOutNothingIsSelected) {
    Open();
    Click(Table(0));
    PickFilter(u"Favorites");
    Press(u"cmdGo");
    ASSERT_EQ(TableNames(), QStringList({S(u"Beta")}));
    EXPECT_FALSE(Tree()->currentIndex().isValid());
    EXPECT_EQ(FieldText(2), QString());
    PickFilter(u"All");
    Press(u"cmdGo");
    EXPECT_EQ(Tree()->currentIndex(), Table(0)) << "and it is found again";
}

TEST_F(MainWindowWithTables, WhatMovesUpIsSelectedWhereARowHasGone) {
    Open();
    Click(Table(1));
    Execute(S(u"Delete from Tables where DisplayName = 'Beta'"));
    Press(u"cmdGo");
    EXPECT_EQ(FieldText(2), S(u"Gamma"));
    Execute(S(u"Delete from Tables where DisplayName = 'Gamma'"));
    Press(u"cmdGo");
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
}

TEST_F(MainWindowWithTables, NotesOfAMegabyteAreCutWhereNobodySeesThem) {
    Execute(S(u"Update Tables set Notes = '") + QString(1 << 20, QLatin1Char('x')) +
            S(u"' where DisplayName = 'Alpha'"));
    Open();
    Click(Table(0));
    const auto* comments = Find<QLabel>(u"lblComments");
    EXPECT_EQ(comments->text(), QString(4000, QLatin1Char('x')));
    EXPECT_EQ(comments->toolTip(), comments->text());
    EXPECT_EQ(FieldText(9).size(), 1 << 20);  // the record is whole
}

TEST_F(MainWindowWithTables, EveryCharacterKeyShowsTheNotes) {
    Open();
    Click(Table(0));
    Find<QLabel>(u"lblComments")->clear();
    QTest::keyClick(Tree(), Qt::Key_Z);  // no name begins with it
    EXPECT_EQ(Find<QLabel>(u"lblComments")->text(), S(u"note of alpha"));
}

TEST_F(MainWindowWithTables, NodeTextsCannotBeEdited) {
    Open();
    EXPECT_EQ(Tree()->editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_FALSE(Table(0).flags() & Qt::ItemIsEditable);
}

TEST_F(MainWindowWithTables, F2AnywhereLoadsThePictureOnce) {
    Open();
    for (const char16_t* name : {u"tvwDB", u"cboFilter", u"cmdGo"})
        QTest::keyClick(Find<QWidget>(name), Qt::Key_F2);
    EXPECT_EQ(commands, QStringList({S(u"clip"), S(u"clip"), S(u"clip")}));
    QTest::keyClick(Tree(), Qt::Key_F3);
    EXPECT_EQ(commands.size(), 3);
}

TEST_F(MainWindowWithTables, F2HeldOrInAnotherWindowLoadsNothing) {
    Open();
    QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_F2, Qt::NoModifier, {}, true);
    QApplication::sendEvent(Tree(), &repeated);
    QDialog other(window.get());
    QLineEdit edit(&other);
    other.show();
    QTest::keyClick(&other, Qt::Key_F2);
    QTest::keyClick(&edit, Qt::Key_F2);
    EXPECT_TRUE(commands.isEmpty());
}

TEST_F(MainWindowWithTables, OnlyATableIsASelectedTable) {
    Execute(S(u"Update Tables set FileName = '' where DisplayName = 'Beta'"));
    Open();
    EXPECT_FALSE(window->TableIsSelected());
    Click(Table(0));
    EXPECT_TRUE(window->TableIsSelected());
    Click(Root());
    EXPECT_FALSE(window->TableIsSelected());
    Click(Table(1));  // without a file name
    EXPECT_TRUE(window->TableIsSelected());
    EXPECT_EQ(FieldText(2), S(u"Beta"));
    Tree()->expand(Table(0));
    Click(Detail(0, 0));
    EXPECT_FALSE(window->TableIsSelected());
}

// Editing.

TEST_F(MainWindowWithTables, ASavedFileNameIsThatOfTheNode) {
    Open();
    Click(Table(0));
    const QString moved = MakeFile(S(u"moved.vpt"));
    window->details().SetDetailText(3, moved);
    window->details().Save();
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EXPECT_EQ(FieldText(3), moved);
    EXPECT_EQ(window->SelectedTag(), moved);
    Press(u"cmdPlay");
    EXPECT_EQ(plays, std::vector<Play>({{moved, S(u"Alpha"), 1}}));
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    Click(Table(1));
    Click(Table(0));
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
}

TEST_F(MainWindowWithTables, ARecordSavedWhileTheRootIsSelectedStaysShown) {
    Open();
    Click(Table(0));
    Click(Root());
    window->details().SetDetailText(3, MakeFile(S(u"moved.vpt")));
    window->details().Save();
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EXPECT_EQ(window->SelectedTag(), S(u"X1"));
}

TEST_F(MainWindowWithTables, AfterADeleteTheTreeIsRebuiltAndTheNeighbourShown) {
    Open();
    Click(Table(0));
    Press(u"cmdDelete");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].title, S(u"Warning"));
    EXPECT_EQ(TableNames(), QStringList({S(u"Beta"), S(u"Gamma")}));
    EXPECT_EQ(Panel(1), S(u"2 Tables in list.  "));
    EXPECT_EQ(Tree()->currentIndex(), Table(0));
    EXPECT_EQ(FieldText(2), S(u"Beta"));
    EXPECT_EQ(Panel(2), S(u"Current Table: Beta"));
    Press(u"cmdDelete");
    Press(u"cmdDelete");
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
    for (int field = 0; field <= 12; ++field)
        EXPECT_EQ(FieldText(field), QString()) << field;
    EXPECT_EQ(Panel(2), QString());
}

// The pop-up menu.

TEST_F(MainWindowWithTables, ARightClickNearTheLeftEdgeOpensTheMenu) {
    Open();
    Click(Table(0));
    auto* menu = Find<QMenu>(u"mnufavorites");
    QPoint place = Tree()->visualRect(Table(0)).center();
    place.setX(157);  // 2355 twips
    QTest::mouseClick(Tree()->viewport(), Qt::RightButton, {}, place);
    EXPECT_FALSE(menu->isVisible());
    place.setX(156);  // 2340 twips
    QTest::mouseClick(Tree()->viewport(), Qt::RightButton, {}, place);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
}

TEST_F(MainWindowWithTables, RootAndDetailLinesHaveNoMenu) {
    Open();
    const auto& model = *static_cast<const TableTreeModel*>(Tree()->model());
    EXPECT_FALSE(OpensPopup(model, Root(), 10));
    EXPECT_FALSE(OpensPopup(model, Detail(0, 0), 10));
    EXPECT_TRUE(OpensPopup(model, Table(0), 10));
    EXPECT_TRUE(OpensPopup(model, Table(0), 2349));
    EXPECT_FALSE(OpensPopup(model, Table(0), 2350));
    EXPECT_FALSE(OpensPopup(model, {}, 10));
    EXPECT_FALSE(OpensPopup(TableTreeModel(), {}, 10));
}

TEST_F(MainWindowWithTables, TogglingAFavouriteGivesTheIconInBothDirections) {
    Open();
    Click(Table(0));
    Action(u"mnuAddit")->trigger();
    EXPECT_EQ(Scalar(S(u"Select favorite from Tables where DisplayName='Alpha'")), S(u"True"));
    EXPECT_EQ(Table(0).data(TableTreeModel::kIconKeyRole).toString(), S(u"favorite"));
    EXPECT_TRUE(window->details().FavoriteChecked());
    Action(u"mnuAddit")->trigger();
    EXPECT_EQ(Scalar(S(u"Select favorite from Tables where DisplayName='Alpha'")), S(u"False"));
    EXPECT_EQ(Table(0).data(TableTreeModel::kIconKeyRole).toString(), S(u"favorite"));
}

TEST_F(MainWindowWithTables, TogglingLeavesTheFavouritesFilter) {
    Open();
    PickFilter(u"Favorites");
    Press(u"cmdGo");
    Click(Table(0));
    Action(u"mnuAddit")->trigger();
    EXPECT_EQ(Find<QComboBox>(u"cboFilter")->currentText(), S(u"All"));
    EXPECT_TRUE(RefreshPending());
}

TEST_F(MainWindowWithTables, AFavouriteThatCannotBeStoredIsTold) {
    Open();
    Click(Table(0));
    connection->Close().Ignore();
    Action(u"mnuAddit")->trigger();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_FALSE(prompts.messages[0].text.isEmpty());
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(Table(0).data(TableTreeModel::kIconKeyRole).toString(), S(u"pinball"));
}

// Menus and locks.

TEST_F(MainWindowWithTables, AChangedRecordLocksWhatCouldMoveTheSelectionAway) {
    Open();
    Click(Table(0));
    EditName();
    for (const char16_t* name :
         {u"cboFilter", u"cboFilterDet", u"cmdOperator", u"tvwDB", u"cmdGo", u"cmdPlay"})
        EXPECT_FALSE(Find<QWidget>(name)->isEnabled()) << S(name).toStdString();
    EXPECT_FALSE(Find<QMenu>(u"mnuFile")->menuAction()->isEnabled());
    EXPECT_FALSE(Find<QMenu>(u"mnuUtilities")->menuAction()->isEnabled());
    EXPECT_FALSE(Find<QMenu>(u"mnuEdit")->menuAction()->isEnabled());
    EXPECT_FALSE(Find<QMenu>(u"mnuData")->menuAction()->isEnabled());
    window->details().Save();
    EXPECT_TRUE(Find<QWidget>(u"tvwDB")->isEnabled());
    EXPECT_TRUE(Find<QMenu>(u"mnuFile")->menuAction()->isEnabled());
}

TEST_F(MainWindowWithTables, AChangedRecordLocksNothingElse) {
    Open();
    Click(Table(0));
    EditName();
    for (const char16_t* menu : {u"mnuOptions", u"mnuHelp"})
        EXPECT_TRUE(Find<QMenu>(menu)->menuAction()->isEnabled()) << S(menu).toStdString();
    for (const char16_t* name :
         {u"cboOrder",    u"lblDirection", u"DetTab",   u"cmdChange", u"cmdCancel",   u"cmdDelete",
          u"cmdReadInfo", u"Command2",     u"Command3", u"Command4",  u"chkFavorite", u"chkPinMame",
          u"txtDet_1",    u"txtDet_2",     u"txtDet_3", u"txtDet_4",  u"txtDet_5",    u"txtDet_6",
          u"txtDet_7",    u"txtDet_8",     u"txtDet_9", u"txtDet_10", u"txtDet_11"})
        EXPECT_TRUE(Find<QWidget>(name)->isEnabled()) << S(name).toStdString();
    for (const char16_t* item : {u"mnuMin", u"mnuSound"})
        EXPECT_TRUE(Action(item)->isEnabled()) << S(item).toStdString();
}

TEST_F(MainWindowWithTables, OpeningTheFileMenuClearsTheNotes) {
    Open();
    Click(Table(0));
    ASSERT_EQ(Find<QLabel>(u"lblComments")->text(), S(u"note of alpha"));
    Q_EMIT Find<QMenu>(u"mnuFile")->aboutToShow();
    EXPECT_EQ(Find<QLabel>(u"lblComments")->text(), QString());
}

TEST_F(MainWindowWithTables, TheDefaultSizeIsRestoredToItsOwnHeight) {
    Open();
    window->resize(900, 700);
    Q_EMIT Find<QMenu>(u"mnuUtilities")->aboutToShow();
    Action(u"mnuSize")->trigger();
    EXPECT_EQ(window->size(), QSize(638, 467));
}

TEST_F(MainWindowWithTables, AMaximisedWindowHasNoDefaultSize) {
    Open();
    window->showMaximized();
    const QSize size = window->size();
    Q_EMIT Find<QMenu>(u"mnuUtilities")->aboutToShow();
    EXPECT_FALSE(Action(u"mnuSize")->isEnabled());
    Action(u"mnuSize")->trigger();
    EXPECT_EQ(window->size(), size);
}

TEST_F(MainWindowWithTables, PathsAndDatesCannotBeResetFromTheRulesText) {
    Open();
    window->SetActions({.reset_file_dates = [] {}, .reset_paths = [] {}});
    window->details().SetCurrentTab(3);
    const auto* tabs = Find<QTabWidget>(u"DetTab");
    EXPECT_EQ(tabs->tabText(tabs->currentIndex()), S(u"Rules Text"));
    Q_EMIT Find<QMenu>(u"mnuUtilities")->aboutToShow();
    EXPECT_FALSE(Action(u"mnuRest")->isEnabled());
    EXPECT_FALSE(Action(u"mnuDates")->isEnabled());
    window->details().SetCurrentTab(0);
    Q_EMIT Find<QMenu>(u"mnuUtilities")->aboutToShow();
    EXPECT_TRUE(Action(u"mnuRest")->isEnabled());
    EXPECT_TRUE(Action(u"mnuDates")->isEnabled());
}

TEST_F(MainWindowWithTables, AtFirstNamesAreNotCut) {
    AddTable(S(u"Thirty Letters Are Not Too Many"));
    Open();
    EXPECT_FALSE(Tree()->horizontalScrollBar()->isVisible());
}

TEST_F(MainWindowWithTables, AVeryLongNameLeavesTheDetailsHalfOfTheWindowAndAllTheirFields) {
    AddTable(QString(250, u'W'));
    Open();
    const int half = window->width() / 2;
    EXPECT_NEAR(window->details().width(), half + 10, 30);
    const auto* const fields = Find<QTabWidget>(u"DetTab")->findChild<QScrollArea*>();
    EXPECT_EQ(fields->horizontalScrollBar()->maximum(), 0);
}

TEST_F(MainWindowWithTables, ASplitterThatWasPutSomewhereStaysThere) {
    settings.values[S(u"TAVOLO/WINDOW/SPLITTER")] = S(u"200 420");
    AddTable(QString(250, u'W'));
    Open();
    EXPECT_NEAR(Tree()->width(), 200, 10);
}

}  // namespace
}  // namespace browser
