// The main window on a real catalogue; its questions are answered by the test.
#include "browser/frmPinball.h"

#include "browser/tree_fixture.h"

#include <gtest/gtest.h>

#include <QtGui/QAction>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QTreeView>

namespace browser {
namespace {

QString S(const char16_t* text) {
    return QString::fromUtf16(text);
}

struct Play {
    QString path;
    QString name;
    std::int32_t id = 0;
    bool operator==(const Play&) const = default;
};

class MainWindowTest : public TreeFixture {
protected:
    // Opens the window as the program does.
    void Open() {
        window = std::make_unique<frmPinball>(catalogue, prompts);
        window->SetPlayTable([this](const QString& path, const QString& name, std::int32_t id) {
            plays.push_back({path, name, id});
            if (while_playing) while_playing();
        });
        window->SetCommand(S(u"mnuTblScan"), [this] { commands.append(S(u"scan")); });
        window->SetCommand(S(u"mnuExe"), [this] { commands.append(S(u"exe")); });
        window->SetCommand(S(u"mnuClip"), [this] { commands.append(S(u"clip")); });
        window->Load();
        window->show();
        window->AskForWhatIsMissing();
    }
    void Save(const char16_t* key, const char16_t* value) {
        settings.values[S(u"TAVOLO/GENERAL/") + S(key)] = S(value);
    }
    QString Saved(const char16_t* key) {
        return settings.values.value(S(u"TAVOLO/GENERAL/") + S(key), S(u"<missing>"));
    }
    template <typename T>
    T* Find(const char16_t* name) {
        T* const found = window->findChild<T*>(S(name));
        EXPECT_TRUE(found) << S(name).toStdString();
        return found;
    }
    QTreeView* Tree() { return Find<QTreeView>(u"tvwDB"); }
    QModelIndex Root() { return Tree()->model()->index(0, 0); }
    QModelIndex Table(int row) { return Tree()->model()->index(row, 0, Root()); }
    QModelIndex Detail(int table, int row) { return Tree()->model()->index(row, 0, Table(table)); }
    QStringList TableNames() {
        QStringList names;
        for (int row = 0; row < Tree()->model()->rowCount(Root()); ++row)
            names.append(Table(row).data().toString());
        return names;
    }
    void Click(const QModelIndex& index, Qt::MouseButton button = Qt::LeftButton) {
        Tree()->scrollTo(index);
        QTest::mouseClick(Tree()->viewport(), button, {}, Tree()->visualRect(index).center());
    }
    void DoubleClick(const QModelIndex& index) {
        Tree()->scrollTo(index);
        const QPoint place = Tree()->visualRect(index).center();
        QTest::mouseClick(Tree()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(Tree()->viewport(), Qt::LeftButton, {}, place);
    }
    QString FieldText(int field) { return window->details().DetailText(field); }
    void PickFilter(const char16_t* text) {
        auto* combo = Find<QComboBox>(u"cboFilter");
        combo->setCurrentIndex(combo->findText(S(text)));
        Q_EMIT combo->activated(combo->currentIndex());
    }
    void TypeValue(const char16_t* text) { Find<QComboBox>(u"cboFilterDet")->setEditText(S(text)); }
    void Press(const char16_t* button) { QTest::mouseClick(Find<QWidget>(button), Qt::LeftButton); }
    bool RefreshPending() { return Find<QWidget>(u"cmdGo")->property("textEffect").toInt() == 3; }
    QString Panel(int panel) {
        return Find<QLabel>((S(u"sbrDB_") + QString::number(panel)).toStdU16String().c_str())
            ->text();
    }
    QAction* Action(const char16_t* name) { return Find<QAction>(name); }
    // Changes the name of the shown table, as a user who types.
    void EditName() { window->details().SetDetailText(2, S(u"changed")); }

    QStringList commands;
    std::vector<Play> plays;
    std::function<void()> while_playing;
    std::unique_ptr<frmPinball> window;
};

class MainWindowWithTables : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        values.VisualPinballExe = S(u"/bin/vp");
        alpha = MakeFile(S(u"alpha.vpt"));
        AddRow(S(u"DisplayName, FileName, Author, Year, TimesPlayed, Favorite, FileDate, Notes"),
               QStringLiteral("'Alpha', '%1', 'Bob', '1990', 3, false, '1/2/2003', 'note of alpha'")
                   .arg(alpha));
        AddRow(S(u"DisplayName, FileName, Author, Year, TimesPlayed, Favorite, PinMame, FileDate"),
               S(u"'Beta', '/gone/beta.vpt', 'Ann', '1991', 0, true, true, '5/6/2007'"));
        AddRow(S(u"DisplayName, FileName, Author, Year, TimesPlayed, FileDate"),
               QStringLiteral("'Gamma', '%1', 'Bob', '1985', 12, '1/2/2003'")
                   .arg(MakeFile(S(u"it's gamma.vpt")).replace(S(u"'"), S(u"''"))));
    }
    QString alpha;
};

// Start.

TEST_F(MainWindowTest, AnEmptyCatalogueStartsTheScanThenTheExecutableChooser) {
    Open();
    EXPECT_EQ(commands, QStringList({S(u"scan"), S(u"exe")}));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(MainWindowTest, TheScanOfAnEmptyCatalogueCanFillTheTree) {
    window = std::make_unique<frmPinball>(catalogue, prompts);
    window->SetCommand(S(u"mnuTblScan"), [this] {
        AddTable(S(u"found"));
        window->RefreshTree();
    });
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
    Save(u"WIDTH", u"15000");
    Save(u"HEIGHT", u"12000");
    Open();
    EXPECT_EQ(window->size(), QSize(1000, 800));
    EXPECT_FALSE(window->isMinimized());
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
    Save(u"LASTPICDIR", u"/pictures/");
    Open();
    EXPECT_TRUE(values.SoundOn);
    EXPECT_FALSE(values.MinimiseOnPlay);
    EXPECT_TRUE(Action(u"mnuSound")->isChecked());
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

TEST_F(MainWindowWithTables, TheSavedTabComesBack) {
    Save(u"LASTTAB", u"4");
    Open();
    EXPECT_EQ(window->details().CurrentTab(), 4);
    window->close();
    EXPECT_EQ(Saved(u"LASTTAB"), S(u"4"));
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

TEST_F(MainWindowWithTables, AWrongDateAddedEndsWithoutAWord) {
    Open();
    PickFilter(u"Date Added");
    TypeValue(u"soon");
    Press(u"cmdGo");
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(Tree()->model()->rowCount(), 0);
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
    EXPECT_EQ(FieldText(2), QString());
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
    EXPECT_TRUE(Find<QMenu>(u"mnuHelp")->menuAction()->isEnabled());
    window->details().Save();
    EXPECT_TRUE(Find<QWidget>(u"tvwDB")->isEnabled());
    EXPECT_TRUE(Find<QMenu>(u"mnuFile")->menuAction()->isEnabled());
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

TEST_F(MainWindowWithTables, PathsAndDatesCannotBeResetFromTheRulesTab) {
    Open();
    window->SetCommand(S(u"mnuRest"), [] {});
    window->SetCommand(S(u"mnuDates"), [] {});
    window->details().SetCurrentTab(3);
    Q_EMIT Find<QMenu>(u"mnuUtilities")->aboutToShow();
    EXPECT_FALSE(Action(u"mnuRest")->isEnabled());
    EXPECT_FALSE(Action(u"mnuDates")->isEnabled());
    window->details().SetCurrentTab(0);
    Q_EMIT Find<QMenu>(u"mnuUtilities")->aboutToShow();
    EXPECT_TRUE(Action(u"mnuRest")->isEnabled());
    EXPECT_TRUE(Action(u"mnuDates")->isEnabled());
}

// Closing.

TEST_F(MainWindowWithTables, ExitClosesTheWindowAndTheCatalogue) {
    Open();
    Action(u"mnuExit")->trigger();
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(connection->is_open());
    EXPECT_EQ(settings.written.front(), S(u"DIRECTION"));
    EXPECT_EQ(Saved(u"WIDTH"), S(u"9570"));
    EXPECT_EQ(Saved(u"HEIGHT"), S(u"6885"));
    EXPECT_EQ(Saved(u"WINDOWSTATE"), S(u"0"));
    EXPECT_GT(Saved(u"SCALEHEIGHT").toInt(), 0);
}

TEST_F(MainWindowWithTables, AChangedRecordRefusesTheCloseWithoutAWord) {
    Open();
    Click(Table(0));
    EditName();
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(connection->is_open());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_TRUE(settings.written.empty());
}

TEST_F(MainWindowWithTables, AWrongValueRefusesTheClose) {
    Open();
    PickFilter(u"File Date");
    TypeValue(u"soon");
    EXPECT_FALSE(window->close());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"Please enter a valid date"));
    PickFilter(u"Times Played");
    TypeValue(u"often");
    EXPECT_FALSE(window->close());
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[1].text, S(u"Please enter a valid number"));
    PickFilter(u"Author");
    EXPECT_TRUE(window->close());
}

TEST_F(MainWindowWithTables, WorkFilesOfTheCaptureAreRemoved) {
    Open();
    MakeFile(S(u"temp.jpg"));
    MakeFile(S(u"temp.bmp"));
    window->close();
    EXPECT_FALSE(QFile::exists(folder.filePath(S(u"temp.jpg"))));
    EXPECT_FALSE(QFile::exists(folder.filePath(S(u"temp.bmp"))));
    EXPECT_TRUE(QFile::exists(alpha));
}

TEST_F(MainWindowWithTables, ClosingDuringAPlayIsClean) {
    Open();
    while_playing = [this] { window->close(); };
    DoubleClick(Table(0));
    EXPECT_FALSE(connection->is_open());
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

TEST_F(MainWindowTest, AnEmptyCatalogueKeepsTheSavedOperator) {
    Save(u"OPERATOR", u"<");
    Open();
    window->close();
    EXPECT_EQ(Saved(u"OPERATOR"), S(u"<"));
}

TEST_F(MainWindowTest, AnEmptyCatalogueWritesTheDefaultOperator) {
    Open();
    window->close();
    EXPECT_EQ(Saved(u"OPERATOR"), S(u"="));
}

}  // namespace
}  // namespace browser
