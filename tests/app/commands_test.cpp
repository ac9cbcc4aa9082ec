// The commands of the menus and keys and the end of the program, in the real main window with a
// fake world outside.
#include "app/commands.h"

#include "app/commands_fixture.h"
#include "app/given_paths.h"
#include "browser/command_table.h"
#include "browser/frmSplash.h"
#include "catalogue/collection_folders.h"
#include "catalogue/program_files.h"
#include "dialogs/frmSettings.h"
#include "pictures/frmPicture.h"
#include "platform/files.h"
#include "snapshots/restore_dialog.h"
#include "support/qt_text.h"
#include "support/same_name.h"
#include "support/unreadable.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTreeView>

#include <algorithm>

namespace app {
namespace {

using test_support::S;

const QString kPlaying = QStringLiteral("Visual Pinball - [alpha*]");
const QString kEnded = QStringLiteral("Visual Pinball - [alpha]");

TEST_F(CommandsTest, EveryItemOfTheMenusDoesSomething) {
    Action(QStringLiteral("mnuWall"))->trigger();  // what changes its pictures needs it
    for (const browser::MenuLayout& menu : browser::Menus()) {
        for (const browser::MenuItem& item : menu.items) {
            if (item.caption == u"-") continue;
            const bool is_heading = item.name == u"mnumnu";
            const bool is_of_an_edit = item.enabled_when == browser::EnabledWhen::kRecordIsChanged;
            EXPECT_EQ(Action(item.name.toString())->isEnabled(), !is_heading && !is_of_an_edit)
                << item.name.toString().toStdString();
        }
    }
}

// Snapshots.

TEST_F(CommandsTest, BeforeACommandThatChangesManyTablesASnapshotIsMade) {
    Run(u"mnuPurge");
    keeper->WaitUntilIdle();
    EXPECT_EQ(Scalar(S(u"Select Count(*) from Tables")), S(u"1"));
    const auto list = keeper->store().List();
    ASSERT_TRUE(list.ok() && list->size() == 1U);
    EXPECT_EQ(list->front().head.label, "Purge Missing Tables");
    EXPECT_EQ(list->front().state, snapshots::SnapshotState::kGood);
    Execute(S(u"Update Tables set TimesPlayed = 4"));
    Run(u"mnuResetTimes");
    EXPECT_EQ(keeper->store().List()->size(), 2U);
    Run(u"mnuLookForNew");
    const auto last = keeper->store().List();
    ASSERT_TRUE(last.ok() && last->size() == 3U);
    EXPECT_EQ(last->back().head.label, "Look for New Tables");
}

TEST_F(CommandsTest, RestoreBringsBackWhatACommandHasTakenAndShowsIt) {
    Run(u"mnuPurge");
    ASSERT_EQ(Tree()->model()->rowCount(Tree()->model()->index(0, 0)), 1);
    QTimer::singleShot(0, window.get(), [] {
        auto* const dialog =
            qobject_cast<snapshots::RestoreDialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        auto* const restore = dialog->findChild<QPushButton*>(S(u"cmdRestore"));
        ASSERT_TRUE(QTest::qWaitFor([&] { return restore->isEnabled(); }));
        restore->click();
    });
    Run(u"mnuRestoreSnapshot");
    EXPECT_EQ(Scalar(S(u"Select Count(*) from Tables")), S(u"2"));
    EXPECT_EQ(Tree()->model()->rowCount(Tree()->model()->index(0, 0)), 2);
}

TEST_F(CommandsTest, ABackupThatFailsIsSaidInTheStatusBar) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(S(u"pinball.BU.new")));  // in the way of the copy
    Run(u"mnuBackup");
    EXPECT_TRUE(prompts.messages.empty());
    const QString told = window->statusBar()->currentMessage();
    EXPECT_TRUE(told.startsWith(S(u"No backup was made: "))) << told.toStdString();
    EXPECT_TRUE(told.contains(S(u"pinball.BU"))) << told.toStdString();
}

TEST_F(CommandsTest, ATableFileThatCannotBeReadIsSaidInTheStatusBar) {
    QFile file(folder.filePath(S(u"damaged.vpt")));
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("no table") == 8);
    file.close();
    Execute(S(u"Update Tables set FileName = '") + file.fileName() + S(u"' where ID = 1"));
    Run(u"mnuVPT");
    EXPECT_TRUE(prompts.messages.empty());
    const QString told = window->statusBar()->currentMessage();
    EXPECT_TRUE(told.contains(S(u"damaged.vpt"))) << told.toStdString();
}

TEST_F(CommandsTest, TheFolderOfTheSelectedTableIsShown) {
    Run(u"mnuShowInFolder");
    EXPECT_TRUE(shell.opened.empty());
    Select(0);
    Run(u"mnuShowInFolder");
    ASSERT_EQ(shell.opened.size(), 1U);
    EXPECT_EQ(QDir(shell.opened[0]), QDir(folder.path()));
    Select(1);  // without a file
    Run(u"mnuShowInFolder");
    EXPECT_EQ(shell.opened.size(), 1U);
    EXPECT_TRUE(window->statusBar()->currentMessage().startsWith(S(u"There is no folder")));
}

// Playing.

TEST_F(CommandsTest, APlayCountsStartsMinimisesAndRestores) {
    values.MinimiseOnPlay = true;
    values.SoundOn = true;
    bool was_minimised = false;
    windows.windows = {{S(u"VPinball"), kPlaying}};
    windows.on_find = [&] {
        was_minimised = was_minimised || window->isMinimized();
        windows.windows = {{S(u"VPinball"), kEnded}};
    };
    Select(0);
    Press(u"cmdPlay");
    EXPECT_EQ(Scalar(S(u"Select TimesPlayed from Tables where DisplayName = 'Alpha'")), S(u"1"));
    EXPECT_EQ(programs.started,
              std::vector<QString>{QStringLiteral("\"/bin/vp\" /Play -\"%1\"").arg(alpha)});
    EXPECT_EQ(sounds.played, (std::vector<QString>{folder.filePath(S(u"slingshot.wav")),
                                                   folder.filePath(S(u"Pinball.wav"))}));
    EXPECT_TRUE(was_minimised);
    EXPECT_FALSE(window->isMinimized());
    EXPECT_EQ(windows.closed, std::vector<QString>{kEnded});
}

TEST_F(CommandsTest, ClosingTheWindowTakesTheStatusWindowAlong) {
    const auto splash_is_shown = [] {
        return std::ranges::any_of(QApplication::topLevelWidgets(), [](const QWidget* shown) {
            return shown->objectName() == u"frmSplash" && shown->isVisible();
        });
    };
    values.SoundOn = true;
    sounds.on_play = [&] {
        if (!sounds.played.back().endsWith(catalogue::kPlaySound)) return;  // the button's
        EXPECT_TRUE(splash_is_shown());
        window->close();
        EXPECT_FALSE(splash_is_shown());
    };
    Select(0);
    Press(u"cmdPlay");
    EXPECT_EQ(sounds.played.size(), 2U);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CommandsTest, ClosingTheWindowEndsTheWatchOfAPlay) {
    int finds = 0;
    windows.windows = {{S(u"VPinball"), kPlaying}};
    windows.on_find = [&] {
        // Without this limit, a watch that goes on after the close would never end.
        ASSERT_LT(++finds, 100);
        if (finds == 3) window->close();
        if (finds == 99) windows.windows.clear();
    };
    Select(0);
    Press(u"cmdPlay");
    EXPECT_EQ(finds, 3);
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(connection->is_open());
    EXPECT_TRUE(windows.closed.empty());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(settings.written.size(), 13U);
}

TEST_F(CommandsTest, WithoutAnExecutablePlayOpensTheSettingsOnce) {
    values.VisualPinballExe.clear();
    Select(0);
    for (int i = 0; i < 3; ++i)
        Press(u"cmdPlay");
    EXPECT_EQ(prompts.messages.size(), 3U);
    EXPECT_EQ(SettingsWindows().size(), 1U);
    EXPECT_FALSE(SettingsWindows()[0]->isModal());
    EXPECT_TRUE(programs.started.empty());
    EXPECT_EQ(Scalar(S(u"Select TimesPlayed from Tables where DisplayName = 'Alpha'")), S(u"3"));
}

TEST_F(CommandsTest, TheSettingsThatAreOpenComeToTheFrontAndCanBeOpenedAgainLater) {
    values.VisualPinballExe.clear();
    Select(0);
    Press(u"cmdPlay");
    ASSERT_EQ(SettingsWindows().size(), 1U);
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    Run(u"mnuExe");  // returns at once
    ASSERT_EQ(SettingsWindows().size(), 1U);
    EXPECT_TRUE(QTest::qWaitForWindowActive(SettingsWindows()[0]));
    SettingsWindows()[0]->close();
    EXPECT_TRUE(QTest::qWaitFor([this] { return SettingsWindows().empty(); }));
    Press(u"cmdPlay");
    EXPECT_EQ(SettingsWindows().size(), 1U);
}

TEST_F(CommandsTest, SettingsOpenedByTheMenuAreModal) {
    QString title;
    InTheModalWindow([&](QWidget& modal) { title = modal.windowTitle(); });
    Run(u"mnuExe");
    EXPECT_EQ(title, S(u"Settings"));
    EXPECT_TRUE(SettingsWindows().empty());
}

// The picture on the clipboard.

TEST_F(CommandsTest, GroupNodesTakeNoPicture) {
    Select(0);
    SelectRoot();
    QTest::keyClick(Tree(), Qt::Key_F2);
    Run(u"mnuClip");
    Select(0);
    const QAbstractItemModel& model = *Tree()->model();
    Tree()->setCurrentIndex(model.index(0, 0, Tree()->currentIndex()));
    QTest::keyClick(Tree(), Qt::Key_F2);
    Tree()->setCurrentIndex({});
    QTest::keyClick(Tree(), Qt::Key_F2);
    EXPECT_TRUE(prompts.messages.empty());  // the clipboard is not even looked at
}

TEST_F(CommandsTest, ATableTakesAPictureWithOrWithoutAFileName) {
    for (const int table : {0, 1}) {
        Select(table);
        QTest::keyClick(Tree(), Qt::Key_F2);
    }
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[1].text, S(u"No valid Image in the clipboard"));
}

TEST_F(CommandsTest, F2TwiceSavesThePictureAndSetsItForTheTable) {
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QGuiApplication::clipboard()->setImage(picture);
    const QString shot = folder.filePath(S(u"shot.jpg"));
    prompts.files = {shot};
    Select(1);
    QString focus;
    InTheModalWindow([&](QWidget& modal) {
        ASSERT_TRUE(modal.focusWidget());
        focus = modal.focusWidget()->objectName();
        QTest::keyClick(modal.focusWidget(), Qt::Key_F2);
    });
    QTest::keyClick(Tree(), Qt::Key_F2);
    EXPECT_EQ(focus, S(u"view"));
    EXPECT_EQ(Scalar(S(u"Select ImageFile from Tables where DisplayName = 'Beta'")), shot);
    EXPECT_EQ(Scalar(S(u"Select ImageFile from Tables where DisplayName = 'Alpha'")), QString());
    EXPECT_EQ(window->details().DetailText(7), shot);
    EXPECT_FALSE(window->details().record_changed());
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(values.LastPictureDir, folder.prefix());
}

// The rest of the menus.

TEST_F(CommandsTest, TheInformationOfATableIsAskedOfItsFile) {
    Select(0);
    Run(u"mnuTI");
    Press(u"cmdReadInfo");
    ASSERT_EQ(prompts.messages.size(), 2U);
    EXPECT_EQ(prompts.messages[0].text, S(u"There is no table Information for this table"));
    EXPECT_EQ(prompts.messages[1].text, prompts.messages[0].text);
}

TEST_F(CommandsTest, TheHelpIsOpenedThroughTheShell) {
    QFile help(folder.filePath(S(u"tavolo.chm")));
    ASSERT_TRUE(help.open(QIODevice::WriteOnly));
    Run(u"mnuHelpContents");
    EXPECT_EQ(shell.opened.size(), 1U);
}

TEST_F(CommandsTest, DialogsOpenOverTheMainWindow) {
    struct Dialog {
        const char16_t* item;
        const char16_t* name;
    };
    for (const Dialog& dialog :
         {Dialog{u"mnuTblScan", u"frmsearch"}, Dialog{u"mnuRest", u"frmUtility"},
          Dialog{u"mnuImport", u"frmImport"}, Dialog{u"mnuAbout", u"frmAbout"}}) {
        QString name;
        const QWidget* owner = nullptr;
        InTheModalWindow([&](QWidget& modal) {
            name = modal.objectName();
            owner = modal.parentWidget();
        });
        Run(dialog.item);
        EXPECT_EQ(name, S(dialog.name));
        EXPECT_EQ(owner, window.get()) << name.toStdString();
    }
}

TEST_F(CommandsTest, ThePathMapShowsWhatIsFoundAndClosesWhenThatIsKnown) {
    QTimer timer;
    QString seen;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (modal == nullptr) return;
        seen = modal->findChild<QLabel*>(S(u"lblOthers"))->text();
        if (!seen.endsWith(S(u"..."))) modal->close();
    });
    timer.start(0);
    Run(u"mnuPathMap");
    EXPECT_EQ(seen, S(u"1 of the 1 paths in the catalogue are found here."));
}

TEST_F(CommandsTest, WhereMostTableFilesAreMissingTheStatusBarLeadsToThePathMap) {
    const auto told = [this] { return window->statusBar()->currentMessage(); };
    for (int i = 2; i < PathHint::kFewestTables; ++i) {
        commands->HintAtPathMap();
        QTest::qWait(20);
        EXPECT_EQ(told(), QString()) << i;
        AddTable(S(u"Gone %1").arg(i), S(u"C:\\Tables\\%1.vpt").arg(i));
    }
    commands->HintAtPathMap();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !told().isEmpty(); }));
    EXPECT_EQ(told(), S(u"Most table files are not found here. Click for the path map"));
    window->statusBar()->clearMessage();
    for (int i = 2; i < PathHint::kFewestTables; ++i)
        MakeFile(S(u"%1.vpt").arg(i));
    MapTablesHere();
    PathHint with_map(catalogue, [] { FAIL() << "the files are there"; });
    ASSERT_TRUE(with_map.Start().ok());
    QTest::qWait(200);
    EXPECT_EQ(told(), QString());
}

TEST_F(CommandsTest, PurgeTakesTheMissingTablesOutOfTheTree) {
    AddTable(S(u"Gone"), S(u"/gone/gone.vpt"));
    window->RefreshTree();
    Run(u"mnuPurge");
    const QAbstractItemModel& model = *Tree()->model();
    EXPECT_EQ(model.data(model.index(0, 0, model.index(0, 0))).toString(), S(u"Alpha"));
    EXPECT_EQ(Scalar(S(u"Select count(*) from Tables where DisplayName = 'Gone'")), S(u"0"));
    EXPECT_EQ(model.rowCount(model.index(0, 0)), Scalar(S(u"Select count(*) from Tables")).toInt());
}

TEST_F(CommandsTest, ResetTimesPlayedShowsInTheDetails) {
    Execute(S(u"Update Tables set TimesPlayed = 5"));
    Run(u"mnuResetTimes");
    Select(0);
    EXPECT_EQ(Scalar(S(u"Select max(TimesPlayed) from Tables")), S(u"0"));
}

// Files and folders of the command line, or that another start of the program hands over.

class GivenTablesTest : public CommandsTest {
protected:
    void SetUp() override {
        CommandsTest::SetUp();
        ASSERT_TRUE(QDir(folder.path()).mkpath(S(u"given")));
    }
    QString MakeTable(const char16_t* name, const char16_t* title) {
        const QString path = folder.filePath(S(u"given/") + S(name));
        test_support::VptBuilder builder;
        builder.Text(u"TableName", title).Text(u"AuthorName", u"Of the file");
        EXPECT_TRUE(builder.Write(path.toStdU16String()).ok());
        return path;
    }
    QString Given() const { return folder.filePath(S(u"given")); }
    QString Count() { return Scalar(S(u"Select count(*) from Tables")); }
};

TEST_F(GivenTablesTest, AFileIsAddedAndSelected) {
    const QString file = MakeTable(u"New.vpt", u"Brand new");
    Execute(S(u"Update Tables set Favorite = true where DisplayName = 'Alpha'"));
    window->findChild<QComboBox*>(S(u"cboFilter"))->setCurrentIndex(2);
    window->RefreshTree();
    commands->TakeTables(file);
    EXPECT_EQ(window->SelectedTag(), file);
    EXPECT_EQ(window->SelectedText(), S(u"Brand new"));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(GivenTablesTest, AFolderBringsItsTablesAndSelectsTheFirst) {
    commands->TakeTables(MakeTable(u"B.vpt", u"Bb"));
    const QString first = MakeTable(u"A.vpt", u"Aa");
    commands->TakeTables(Given());
    EXPECT_EQ(Count(), S(u"4"));
    EXPECT_EQ(window->SelectedTag(), first);
}

TEST_F(GivenTablesTest, OneKeyLooksForNewTablesInAllKnownFolders) {
    const auto told = [this] { return window->statusBar()->currentMessage(); };
    Run(u"mnuLookForNew");
    EXPECT_TRUE(told().startsWith(S(u"No folder is known yet"))) << told().toStdString();
    MakeTable(u"New.vpt", u"Brand new");
    const QString gone = folder.filePath(S(u"unplugged"));
    for (const QString& known : {gone, folder.filePath(S(u"given"))})
        ASSERT_TRUE(catalogue::RememberCollectionFolder(DatabasePath(), known).ok());
    const int before = Tree()->model()->rowCount(Tree()->model()->index(0, 0));
    Run(u"mnuLookForNew");
    EXPECT_EQ(told(), S(u"1 new table. There is no folder ") + gone);
    EXPECT_EQ(Tree()->model()->rowCount(Tree()->model()->index(0, 0)), before + 1);
    EXPECT_EQ(Scalar(S(u"Select Author from Tables where DisplayName = 'Brand new'")),
              S(u"Of the file"));
    ASSERT_TRUE(catalogue::ForgetCollectionFolder(DatabasePath(), gone).ok());
    Run(u"mnuLookForNew");
    EXPECT_EQ(told(), S(u"0 new tables"));
    EXPECT_TRUE(prompts.messages.empty());
}

// What was typed since counts more than what the files say.
TEST_F(GivenTablesTest, RowsThatAreThereStayAsTheyAre) {
    const QString edited = MakeTable(u"Edited.vpt", u"Of the file");
    commands->TakeTables(edited);
    Execute(S(u"Update Tables set DisplayName = 'Mine', Author = 'Me', Notes = 'Mine, too'"));
    commands->TakeTables(MakeTable(u"New.vpt", u"Brand new"));
    commands->TakeTables(edited);
    commands->TakeTables(Given());
    EXPECT_EQ(Scalar(S(u"Select count(*) from Tables where DisplayName = 'Mine' and Author = 'Me' "
                       u"and Notes = 'Mine, too'")),
              S(u"3"));
    EXPECT_EQ(Count(), S(u"4"));
}

TEST_F(GivenTablesTest, WhatCannotBeAddedIsSaid) {
    commands->TakeTables(S(u"/none.vpt"));
    EXPECT_EQ(prompts.messages.back().text, S(u"File not found: /none.vpt"));
    commands->TakeTables(DatabasePath());
    EXPECT_EQ(prompts.messages.back().text, DatabasePath() + S(u" is not a table file"));
    const QString unreadable = MakeTable(u"../unreadable.vpt", u"Secret");
    {
        const test_support::Unreadable locked({unreadable.toStdU16String()});
        commands->TakeTables(platform::AbsolutePath(unreadable));
    }
    EXPECT_EQ(prompts.messages.back().text, S(u"unreadable.vpt: cannot be read"));
    const QString empty = folder.filePath(S(u"given"));
    commands->TakeTables(empty);
    EXPECT_EQ(window->findChild<QStatusBar*>()->currentMessage(),
              S(u"There is no table in ") + empty);
}

TEST_F(GivenTablesTest, AnEmptyCatalogueGetsItsFirst) {
    Execute(S(u"Delete from Tables"));
    window->Load();
    commands->TakeTables(folder.filePath(S(u"given")));
    EXPECT_TRUE(prompts.messages.empty());
    const QString file = MakeTable(u"New.vpt", u"Brand new");
    commands->TakeTables(file);
    EXPECT_EQ(window->SelectedTag(), file);
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(GivenTablesTest, TheyWaitForTheRecordToBeStoredAndDialogsToBeClosed) {
    EXPECT_TRUE(commands->MayTakeTables());
    Select(0);
    window->details().SetDetailText(catalogue::kNotes, S(u"typed"));
    ASSERT_TRUE(window->details().record_changed());
    EXPECT_FALSE(commands->MayTakeTables());
    window->details().Save();
    EXPECT_TRUE(commands->MayTakeTables());
    InTheModalWindow([&](QWidget&) { EXPECT_FALSE(commands->MayTakeTables()); });
    Run(u"mnuAbout");
    EXPECT_TRUE(commands->MayTakeTables());
}

TEST_F(GivenTablesTest, TheyWaitForACommandThatIsAtWork) {
    const QString file = MakeTable(u"New.vpt", u"Brand new");
    MakeTable(u"Newer.vpt", u"Brand newer");
    bool was_told_to_wait = false;
    const auto look = [&] { was_told_to_wait = was_told_to_wait || !commands->MayTakeTables(); };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, look);
    timer.start(0);
    commands->TakeTables(QFileInfo(file).path());
    timer.stop();
    EXPECT_TRUE(was_told_to_wait);
    // Painting its progress lets events through.
    window->ShowProgress(1, 10);
    EXPECT_FALSE(commands->MayTakeTables());
    window->ShowProgress(10, 10);
    EXPECT_TRUE(commands->MayTakeTables());
}

TEST(GivenPathsTest, EachIsTakenAsSoonAsItMayBeInItsOrder) {
    bool may_take = false;
    int asked = 0;
    QStringList taken;
    GivenPaths* paths = nullptr;
    GivenPaths given(
        [&] {
            ++asked;
            return may_take;
        },
        [&](const QString& path) {
            taken.append(path);
            if (path == u"/a") {
                EXPECT_TRUE(paths->Add(S(u"/c")));
                QCoreApplication::processEvents();
                EXPECT_EQ(taken.size(), 1) << "one after the other";
            }
        });
    paths = &given;
    EXPECT_TRUE(given.Add(S(u"/a")));
    EXPECT_TRUE(given.Add(S(u"/b")));
    EXPECT_EQ(asked, 0);
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked > 1; }));
    EXPECT_TRUE(taken.isEmpty());
    may_take = true;
    ASSERT_TRUE(QTest::qWaitFor([&] { return taken.size() == 3; }));
    EXPECT_EQ(taken, (QStringList{S(u"/a"), S(u"/b"), S(u"/c")}));
}

TEST(GivenPathsTest, NoMoreWaitThanCanBe) {
    GivenPaths given([] { return false; }, [](const QString&) {});
    for (std::size_t i = 0; i < GivenPaths::kMost; ++i)
        EXPECT_TRUE(given.Add(S(u"/a")));
    EXPECT_FALSE(given.Add(S(u"/a")));
}

TEST_F(CommandsTest, WhatTheTreeShowsGoesOutAndComesInAgain) {
    const QString file = folder.filePath(S(u"out.csv"));
    prompts.files = {file};
    Run(u"mnuExportTables");
    EXPECT_EQ(prompts.messages.back().text, S(u"2 tables exported to:\n") + file);
    Execute(S(u"Delete from Tables where DisplayName = 'Beta'"));
    window->RefreshTree();
    prompts.files = {file};
    Run(u"mnuImportTables");
    EXPECT_EQ(prompts.messages.back().text,
              S(u"1 tables will be added and 0 changed.\nAre you sure you want to continue?"));
    EXPECT_EQ(prompts.messages.back().buttons, platform::MessageButtons::kYesNo);
    EXPECT_EQ(Tree()->model()->rowCount(Tree()->model()->index(0, 0)), 2);
}

TEST_F(CommandsTest, AnImportThatIsNotWantedChangesNothing) {
    const QString file = folder.filePath(S(u"in.csv"));
    QFile content(file);
    ASSERT_TRUE(content.open(QIODevice::WriteOnly));
    content.write("FileName,Author\n/new.vpt,Somebody\n");
    content.close();
    prompts.files = {file};
    prompts.answers = {platform::MessageAnswer::kNo};
    Run(u"mnuImportTables");
    EXPECT_EQ(Scalar(S(u"Select count(*) from Tables")), S(u"2"));
    // Nor does one that cannot be taken.
    ASSERT_TRUE(content.open(QIODevice::WriteOnly));
    content.write("ID,TimesPlayed\n1,often\n");
    content.close();
    prompts.files = {file};
    Run(u"mnuImportTables");
    EXPECT_EQ(prompts.messages.back().text,
              S(u"Nothing was imported:\nline 2: TimesPlayed: \"often\" is not a number"));
}

TEST_F(CommandsTest, AnEmptyTreeIsNotExported) {
    Execute(S(u"Delete from Tables"));
    window->RefreshTree();
    Run(u"mnuExportTables");
    EXPECT_EQ(prompts.messages.back().text, S(u"There is no table to export"));
    EXPECT_TRUE(prompts.dialogs.empty());
}

TEST_F(CommandsTest, CompactTellsWhatItHasBroughtInTheStatusBar) {
    auto* bar = window->findChild<QStatusBar*>(S(u"sbrDB"));
    ASSERT_NE(bar, nullptr);
    for (int i = 0; i < 40; ++i)
        Execute(S(u"Insert into Tables (DisplayName, Notes) values ('Gone', String(1800, 'n'))"));
    Execute(S(u"Delete from Tables where DisplayName = 'Gone'"));
    prompts.answers = {platform::MessageAnswer::kNo};
    Run(u"mnuCompact");
    EXPECT_EQ(bar->currentMessage(), QString());
    prompts.answers = {platform::MessageAnswer::kYes};
    Run(u"mnuCompact");
    EXPECT_TRUE(bar->currentMessage().startsWith(S(u"Catalogue compacted: ")))
        << bar->currentMessage().toStdString();
    // The window goes on with the new file.
    window->RefreshTree();
    EXPECT_EQ(Tree()->model()->rowCount(Tree()->model()->index(0, 0)), 2);
    Select(0);
    EXPECT_EQ(window->SelectedText(), S(u"Alpha"));
}

TEST_F(CommandsTest, BackupMakesItsCopy) {
    Run(u"mnuBackup");
    EXPECT_TRUE(QFile::exists(folder.filePath(S(u"pinball.BU"))));
}

// A catalogue that came from another system.

TEST_F(GivenTablesTest, AFileOfThePathMapIsTheTableThatIsThere) {
    const QString file = MakeTable(u"Known.vpt", u"Of the file");
    const QString stored = S(u"C:\\Tables\\GIVEN\\known.vpt");
    Execute(S(u"Update Tables set FileName = '%1' where DisplayName = 'Beta'").arg(stored));
    MapTablesHere();
    window->RefreshTree();
    for (const QString& given : {file, Given()}) {
        Select(0);
        commands->TakeTables(given);
        EXPECT_EQ(window->SelectedTag(), stored);
    }
    EXPECT_EQ(Count(), S(u"2"));
    EXPECT_EQ(Scalar(S(u"Select DisplayName from Tables where FileName = '%1'").arg(stored)),
              S(u"Beta"));
}

TEST_F(GivenTablesTest, CommandsFindTheFileOfTheSelectedTableByThePathMap) {
    const QString file = MakeTable(u"Known.vpt", u"Of the file");
    Execute(S(u"Update Tables set FileName = 'C:\\Tables\\GIVEN\\known.vpt' where DisplayName = "
              u"'Beta'"));
    MapTablesHere();
    window->RefreshTree();
    Select(1);
    Run(u"mnuShowInFolder");
    ASSERT_EQ(shell.opened.size(), 1U);
    EXPECT_EQ(QDir(shell.opened[0]), QDir(QFileInfo(file).path()));
    Run(u"mnuCopyFile");
    const QMimeData* const held = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(held != nullptr && held->hasUrls());
    const QString copied = QDir::toNativeSeparators(held->urls()[0].toLocalFile());
    EXPECT_TRUE(test_support::NamesAreEqual(copied, file)) << copied.toStdString();
    Press(u"cmdPlay");
    ASSERT_EQ(programs.started.size(), 1U);
    EXPECT_TRUE(test_support::NamesAreEqual(programs.started[0],
                                            QStringLiteral("\"/bin/vp\" /Play -\"%1\"").arg(file)))
        << programs.started[0].toStdString();
    InTheModalWindow([](QWidget& modal) {
        EXPECT_EQ(modal.findChild<QLineEdit*>(S(u"txtInfo_0"))->text(), S(u"Of the file"));
    });
    Run(u"mnuTI");
    EXPECT_TRUE(prompts.messages.empty());
    Run(u"mnuPurge");
    EXPECT_EQ(Scalar(S(u"Select DisplayName from Tables where DisplayName = 'Beta'")), S(u"Beta"));
}

TEST_F(CommandsTest, ANewPictureBelowAFolderOfThePathMapIsStoredForAllSystems) {
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QGuiApplication::clipboard()->setImage(picture);
    prompts.files = {folder.filePath(S(u"shot.jpg"))};
    MapTablesHere();
    Select(1);
    InTheModalWindow([&](QWidget& modal) { QTest::keyClick(modal.focusWidget(), Qt::Key_F2); });
    QTest::keyClick(Tree(), Qt::Key_F2);
    EXPECT_EQ(Scalar(S(u"Select ImageFile from Tables where DisplayName = 'Beta'")),
              S(u"C:\\Tables\\shot.jpg"));
    EXPECT_TRUE(QFile::exists(folder.filePath(S(u"shot.jpg"))));
    EXPECT_FALSE(window->details().record_changed());
    EXPECT_TRUE(prompts.messages.empty());
}

}  // namespace
}  // namespace app
