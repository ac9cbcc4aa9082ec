// The Edit menu in the real main window: undo and redo of what its other commands do.
#include "app/edit_commands.h"

#include "app/commands.h"
#include "browser/command_table.h"
#include "browser/detail_tabs.h"
#include "browser/tree_fixture.h"
#include "history/refusals_text.h"
#include "support/qt_text.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTreeView>

namespace app {
namespace {

using test_support::S;

class EditCommandsTest : public browser::TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        values.VisualPinballExe = S(u"/bin/vp");
        AddTable(S(u"Alpha"), S(u"/tables/alpha.vpt"));
        AddTable(S(u"Beta"), S(u"/tables/beta.vpt"));
        ASSERT_TRUE(catalogue::UpgradeCatalogue(catalogue).ok());  // gives them their dates
        Execute(S(u"Update Tables set TimesPlayed = 5"));
        ASSERT_TRUE(connection->Close().ok());
        history = std::make_unique<history::HistoryFile>(*files, DatabasePath().toStdU16String());
        connection->UseNotes(history.get());
        ASSERT_TRUE(catalogue::Main(catalogue).ok());
        window = std::make_unique<browser::frmPinball>(catalogue, prompts);
        keeper = std::make_unique<snapshots::SnapshotKeeper>(
            *files, DatabasePath().toStdU16String(), clock);
        commands = std::make_unique<Commands>(
            catalogue, prompts, OutsideWorld{shell, programs, sounds, windows}, *keeper, *window);
        edit = std::make_unique<EditCommands>(catalogue, *history, prompts, *window);
        window->Load();
        window->show();
    }
    void TearDown() override {
        edit.reset();
        commands.reset();
        window.reset();
        connection.reset();  // before what it tells of its changes
    }

    QAction* Action(const QString& name) {
        auto* const action = window->findChild<QAction*>(name);
        EXPECT_TRUE(action) << name.toStdString();
        return action;
    }
    void Run(const char16_t* item) { Action(S(item))->trigger(); }
    QString Count() { return Scalar(S(u"Select Count(*) from Tables")); }
    int ShownTables() {
        const QAbstractItemModel& model = *Tree()->model();
        return model.rowCount(model.index(0, 0));
    }
    QTreeView* Tree() { return window->findChild<QTreeView*>(S(u"tvwDB")); }
    void Select(int table) {
        const QAbstractItemModel& model = *Tree()->model();
        Tree()->setCurrentIndex(model.index(table, 0, model.index(0, 0)));
    }
    std::string Message() { return window->statusBar()->currentMessage().toStdString(); }
    void OpenMenu() {
        auto* const menu = window->findChild<QMenu*>(browser::kEditMenu.toString());
        ASSERT_TRUE(menu);
        menu->aboutToShow();
    }
    void CloseMenu() {
        window->findChild<QMenu*>(browser::kEditMenu.toString())->aboutToHide();
        QCoreApplication::processEvents();
    }

    test_support::FakeShell shell;
    test_support::FakeProcessStarter programs;
    test_support::FakeSound sounds;
    test_support::FakeWindows windows;
    std::unique_ptr<history::HistoryFile> history;
    std::unique_ptr<snapshots::SnapshotKeeper> keeper;
    std::unique_ptr<browser::frmPinball> window;
    std::unique_ptr<Commands> commands;
    std::unique_ptr<EditCommands> edit;
};

TEST_F(EditCommandsTest, APurgeIsUndoneAndRedone) {
    Run(u"mnuPurge");
    EXPECT_EQ(Count(), S(u"0"));
    Run(u"mnuUndo");
    EXPECT_EQ(Count(), S(u"2"));
    EXPECT_EQ(ShownTables(), 2);
    EXPECT_EQ(Message(), "Undo Purge (2 tables)");
    Run(u"mnuRedo");
    EXPECT_EQ(Count(), S(u"0"));
    EXPECT_EQ(Message(), "Redo Purge (2 tables)");
}

TEST_F(EditCommandsTest, TheMenuSaysWhatItWouldTakeBack) {
    Select(0);
    Run(u"mnuAddit");
    Run(u"mnuResetTimes");
    OpenMenu();
    EXPECT_EQ(Action(S(u"mnuUndo"))->text().toStdString(), "&Undo Reset Times Played (2 tables)");
    EXPECT_TRUE(Action(S(u"mnuUndo"))->isEnabled());
    EXPECT_EQ(Action(S(u"mnuRedo"))->text().toStdString(), "Re&do");
    EXPECT_FALSE(Action(S(u"mnuRedo"))->isEnabled());
    CloseMenu();
    EXPECT_TRUE(Action(S(u"mnuRedo"))->isEnabled());
    Run(u"mnuUndo");
    OpenMenu();
    EXPECT_EQ(Action(S(u"mnuUndo"))->text().toStdString(), "&Undo Toggle Favorites (1 table)");
    EXPECT_EQ(Action(S(u"mnuRedo"))->text().toStdString(), "Re&do Reset Times Played (2 tables)");
}

// Presses Escape as soon as the window answers again.
TEST_F(EditCommandsTest, AnUndoOfManyTablesCanBeStoppedAndChangesNothing) {
    {
        const jet::NamedChange named(*connection, u"Insert");
        for (int i = 0; i < 3000; ++i)
            Execute(S(u"INSERT INTO Tables (DisplayName, TimesPlayed) VALUES ('More', 7)"));
    }
    Run(u"mnuResetTimes");
    const QString sum = S(u"Select Sum(TimesPlayed) from Tables");
    ASSERT_EQ(Scalar(sum), S(u"0"));
    bool was_at_work = false;
    QTimer::singleShot(0, window.get(), [&] {
        was_at_work = commands->is_at_work();
        QTest::keyClick(window.get(), Qt::Key_Escape);
    });
    Run(u"mnuUndo");
    EXPECT_TRUE(was_at_work);
    EXPECT_EQ(Message(), "Stopped. Nothing was changed");
    EXPECT_EQ(Scalar(sum), S(u"0"));
    EXPECT_TRUE(prompts.messages.size() <= 1U);  // that of the reset
    Run(u"mnuUndo");
    EXPECT_EQ(Message(), "Undo Reset Times Played (3,002 tables)");
    EXPECT_EQ(Scalar(sum), QString::number(3000 * 7 + 2 * 5));
}

TEST_F(EditCommandsTest, WithNothingToUndoTheStatusBarSaysSo) {
    Run(u"mnuUndo");
    EXPECT_EQ(Message(), "There is nothing to undo");
    Run(u"mnuRedo");
    EXPECT_EQ(Message(), "There is nothing to redo");
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(EditCommandsTest, TheSelectedTableStaysSelected) {
    Select(1);
    Run(u"mnuAddit");
    Run(u"mnuUndo");
    EXPECT_EQ(window->SelectedText(), S(u"Beta"));
    EXPECT_FALSE(window->details().FavoriteChecked());
}

TEST_F(EditCommandsTest, UndoGoesOnWithTheChangeBefore) {
    Run(u"mnuPurge");
    Execute(S(u"INSERT INTO Tables (ID, DisplayName) VALUES (2, 'Other')"));
    Run(u"mnuUndo");
    prompts.messages.clear();
    Run(u"mnuUndo");
    EXPECT_EQ(Scalar(S(u"Select DisplayName from Tables where ID = 2")), S(u"Beta"));
}

TEST_F(EditCommandsTest, TheListNamesRowFieldAndBothTexts) {
    using history::Refusal;
    using history::RefusalsText;
    EXPECT_TRUE(RefusalsText({}).isEmpty());
    const Refusal field{u"Tables", u"ID 2", u"Year", u"2001", u"1988", u"It was changed since."};
    const Refusal row{u"Tables", u"ID 3", u"", u"", u"", u"There is one."};
    EXPECT_EQ(RefusalsText({field, row}).toStdString(),
              "This was left as it is now, because others have changed it:\r\r"
              "ID 2, Year: now '2001', was '1988'. It was changed since.\r"
              "ID 3. There is one.\r");
    EXPECT_TRUE(RefusalsText(std::vector<Refusal>(1012, row)).endsWith(S(u"\rand 1,000 more")));
}

TEST_F(EditCommandsTest, KeysUndoButATextBoxKeepsItsOwn) {
    Run(u"mnuResetTimes");
    QApplication::setActiveWindow(window.get());
    QTest::keyClick(Tree(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Message(), "Undo Reset Times Played (2 tables)");
    QTest::keyClick(Tree(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Message(), "Redo Reset Times Played (2 tables)");
    window->statusBar()->clearMessage();
    auto* const box = window->findChild<QLineEdit*>();
    ASSERT_TRUE(box);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Message(), "");
}

TEST_F(EditCommandsTest, WhileTheRulesTextIsShownNothingIsUndone) {
    Run(u"mnuPurge");
    window->details().SetCurrentTab(browser::kRulesTextTab);
    Run(u"mnuUndo");
    EXPECT_EQ(Count(), S(u"0"));
    EXPECT_EQ(Message(), "Not while the rules text is shown");
}

TEST_F(EditCommandsTest, HistoryGoesOnAfterCompacting) {
    for (int i = 0; i < 40; ++i)
        Execute(S(u"Insert into Tables (DisplayName, Notes) values ('Gone', String(1800, 'n'))"));
    Execute(S(u"Delete from Tables where DisplayName = 'Gone'"));
    Run(u"mnuPurge");
    Run(u"mnuCompact");
    ASSERT_TRUE(Message().starts_with("Catalogue compacted: ")) << Message();
    Run(u"mnuUndo");
    EXPECT_EQ(Message(), "Undo Purge (2 tables)");
    EXPECT_EQ(Count(), S(u"2"));
}

// What a scan or an import has replaced is told, and leads to the window.
TEST_F(EditCommandsTest, ReplacedFieldsAreTold) {
    edit->RememberNewest();
    edit->TellReplaced();
    EXPECT_EQ(Message(), "");
    {
        const jet::NamedChange named(*connection, u"Import");
        Execute(S(u"Update Tables set Author = 'Me', [Year] = '1999'"));
    }
    edit->TellReplaced();
    EXPECT_EQ(Message(), "Import (2 tables): 4 fields replaced. Click to see them.");
    bool was_open = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        QWidget* const modal = QApplication::activeModalWidget();
        if (modal == nullptr) return;  // the history is still being read
        timer.stop();
        was_open = modal->objectName() == S(u"frmHistory");
        modal->close();
    });
    timer.start(0);
    QTest::mouseClick(window->statusBar(), Qt::LeftButton);
    EXPECT_TRUE(was_open);
}

TEST_F(EditCommandsTest, HistoryOutlivesTheProgram) {
    Run(u"mnuPurge");
    edit.reset();
    commands.reset();
    window.reset();
    ASSERT_TRUE(connection->Close().ok());
    history = std::make_unique<history::HistoryFile>(*files, DatabasePath().toStdU16String());
    connection->UseNotes(history.get());
    ASSERT_TRUE(catalogue::Main(catalogue).ok());
    window = std::make_unique<browser::frmPinball>(catalogue, prompts);
    edit = std::make_unique<EditCommands>(catalogue, *history, prompts, *window);
    window->Load();
    Run(u"mnuUndo");
    EXPECT_EQ(Count(), S(u"2"));
}

}  // namespace
}  // namespace app
