// Keys, the menu of the selected table, and what is dropped on the main window.
#include "browser/frmKeys.h"
#include "browser/main_window_fixture.h"
#include "catalogue/collection_folders.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QTimer>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QDropEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTreeWidget>

namespace browser {
namespace {

class HabitsTest : public MainWindowWithTables {
protected:
    void Open() {
        MainWindowWithTables::Open();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }
    void Key(int key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* const focus = window->focusWidget();
        QTest::keyClick(focus != nullptr ? focus : window.get(), static_cast<Qt::Key>(key),
                        modifiers);
    }
    void Drop(const QStringList& paths) {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString& path : paths)
            urls.append(QUrl::fromLocalFile(path));
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &enter);
        if (!enter.isAccepted()) return;
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &drop);
        QApplication::processEvents();
    }
    QString Message() { return window->statusBar()->currentMessage(); }
};

TEST_F(HabitsTest, CtrlEEditsCtrlSStores) {
    Open();
    Click(Table(0));
    Key(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(window->focusWidget(), Find<QLineEdit>(u"txtDet_2"));
    QTest::keyClicks(window->focusWidget(), S(u"Omega"));
    EXPECT_TRUE(window->details().record_changed());
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_FALSE(window->details().record_changed());
    EXPECT_EQ(Scalar(S(u"Select DisplayName from Tables where ID = 1")), S(u"Omega"));
}

TEST_F(HabitsTest, CtrlSOnTheRulesStoresThem) {
    Open();
    Click(Table(0));
    window->details().SetCurrentTab(3);
    Key(Qt::Key_E, Qt::ControlModifier);
    QTest::keyClicks(window->focusWidget(), S(u"Hit it."));
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(Scalar(S(u"Select RulesText from Tables where ID = 1")), S(u"Hit it."));
}

TEST_F(HabitsTest, EscapeCancelsTheEditAndElsewhereDoesNothing) {
    Open();
    Click(Table(0));
    EXPECT_FALSE(Action(u"mnuCancelEdit")->isEnabled());
    Key(Qt::Key_Escape);
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EditName();
    EXPECT_TRUE(Action(u"mnuCancelEdit")->isEnabled());
    Find<QLineEdit>(u"txtDet_2")->setFocus();
    Key(Qt::Key_Escape);
    EXPECT_FALSE(window->details().record_changed());
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EXPECT_FALSE(Action(u"mnuCancelEdit")->isEnabled());
}

TEST_F(HabitsTest, F5RefreshesUnlessARecordIsChanged) {
    Open();
    AddTable(S(u"Delta"));
    Click(Table(0));
    EditName();
    Key(Qt::Key_F5);
    EXPECT_EQ(TableNames().size(), 3);
    window->details().Cancel();
    Key(Qt::Key_F5);
    EXPECT_EQ(TableNames().size(), 4);
}

TEST_F(HabitsTest, DeleteInTheTreeAsksAndDeletes) {
    Open();
    Click(Table(0));
    prompts.answers = {platform::MessageAnswer::kNo};
    QTest::keyClick(Tree(), Qt::Key_Delete);
    EXPECT_EQ(TableNames().size(), 3);
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, S(u"Delete the current table?"));
    QTest::keyClick(Tree(), Qt::Key_Delete);
    EXPECT_EQ(TableNames(), QStringList({S(u"Beta"), S(u"Gamma")}));
    Click(Root());
    QTest::keyClick(Tree(), Qt::Key_Delete);
    EXPECT_EQ(prompts.messages.size(), 2U) << "the root is no table";
}

TEST_F(HabitsTest, DeleteInAFieldDeletesItsText) {
    Open();
    Click(Table(0));
    auto* name = Find<QLineEdit>(u"txtDet_2");
    name->setFocus();
    name->selectAll();
    QTest::keyClick(name, Qt::Key_Delete);
    EXPECT_EQ(name->text(), QString());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(HabitsTest, CtrlQClosesTheProgram) {
    Open();
    Key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(HabitsTest, TheMenuKeyOpensThePopup) {
    Open();
    Click(Table(0));
    auto* menu = Find<QMenu>(u"mnufavorites");
    QTest::keyClick(Tree(), Qt::Key_Menu);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
    QTest::keyClick(Tree(), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_TRUE(menu->isVisible());
    menu->close();
    Click(Root());
    QTest::keyClick(Tree(), Qt::Key_Menu);
    EXPECT_FALSE(menu->isVisible());
}

TEST_F(HabitsTest, CtrlSlashShowsTheKeys) {
    Open();
    int lines = 0;
    QTimer::singleShot(0, window.get(), [&] {
        auto* const sheet = qobject_cast<frmKeys*>(QApplication::activeModalWidget());
        ASSERT_TRUE(sheet);
        lines = sheet->findChild<QTreeWidget*>()->topLevelItemCount();
        sheet->close();
    });
    Key(Qt::Key_Slash, Qt::ControlModifier);
    EXPECT_GT(lines, 20);
}

TEST_F(HabitsTest, TabGoesThroughTheWindowAsItIsSeen) {
    Open();
    QStringList met;
    QWidget* next = Find<QWidget>(u"cboFilter");
    for (int steps = 0; steps < 200 && met.size() < 100; ++steps) {
        if (next->focusPolicy() & Qt::TabFocus && !next->objectName().isEmpty())
            met.append(next->objectName());
        next = next->nextInFocusChain();
        if (next->objectName() == u"cboFilter") break;
    }
    const QStringList wanted = {
        S(u"cboFilter"), S(u"cmdOperator"), S(u"cboOrder"),  S(u"cmdGo"),    S(u"tvwDB"),
        S(u"cmdPlay"),   S(u"txtDet_2"),    S(u"txtDet_3"),  S(u"txtDet_1"), S(u"Command2"),
        S(u"txtDet_9"),  S(u"chkPinMame"),  S(u"cmdChange"), S(u"cmdDelete")};
    qsizetype before = -1;
    for (const QString& name : wanted) {
        const qsizetype place = met.indexOf(name);
        EXPECT_GT(place, before) << name.toStdString() << " in " << met.join(u' ').toStdString();
        before = place;
    }
}

// The menu of the selected table.

TEST_F(HabitsTest, ARowIsCopiedAsTextAndTheRootCopiesAll) {
    Open();
    Click(Table(0));
    Tree()->setFocus();
    Key(Qt::Key_C, Qt::ControlModifier);
    const QString row = S(u"Alpha\tBob\t\t1990\t") + alpha + u'\n';
    EXPECT_EQ(QGuiApplication::clipboard()->text(), row);
    Tree()->expand(Table(0));
    Click(Detail(0, 2));
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), row);
    Click(Root());
    Key(Qt::Key_C, Qt::ControlModifier);
    const QString all = QGuiApplication::clipboard()->text();
    EXPECT_EQ(all.count(u'\n'), 3);
    EXPECT_TRUE(all.startsWith(row));
}

TEST_F(HabitsTest, FilesThatExistAreCopiedAsFiles) {
    Open();
    Click(Root());
    Action(u"mnuCopyFile")->trigger();
    const QMimeData* held = QGuiApplication::clipboard()->mimeData();
    ASSERT_TRUE(held);
    ASSERT_EQ(held->urls().size(), 2) << "the file of Beta is gone";
    EXPECT_EQ(QDir::toNativeSeparators(held->urls()[0].toLocalFile()), alpha);
    EXPECT_TRUE(held->data(S(u"x-special/gnome-copied-files")).startsWith("copy\nfile:///"));
    Click(Table(1));
    Action(u"mnuCopyFile")->trigger();
    EXPECT_EQ(Message(), S(u"There is no table file to copy"));
}

TEST_F(HabitsTest, OneAtRandomIsAnotherOne) {
    Open();
    Click(Table(0));
    for (int i = 0; i < 20; ++i) {
        const QModelIndex before = Tree()->currentIndex();
        Key(Qt::Key_R, Qt::ControlModifier);
        EXPECT_NE(Tree()->currentIndex(), before);
        EXPECT_EQ(FieldText(2), Tree()->currentIndex().data().toString());
    }
}

TEST_F(HabitsTest, TheTablesPlayedLastAreOfferedTheLastFirst) {
    Open();
    auto* recent = Find<QMenu>(u"mnuRecent");
    Q_EMIT recent->aboutToShow();
    ASSERT_EQ(recent->actions().size(), 1);
    EXPECT_FALSE(recent->actions()[0]->isEnabled()) << "none was played";
    Execute(S(u"Update Tables set LastPlayed = #1/2/2020# where DisplayName = 'Alpha'"));
    Execute(S(u"Update Tables set LastPlayed = #1/3/2020#, DisplayName = 'B & C' "
              u"where DisplayName = 'Beta'"));
    for (int i = 0; i < 12; ++i)
        AddRow(S(u"DisplayName, LastPlayed"), QStringLiteral("'Old %1', #1/1/2019#").arg(i));
    PickFilter(u"VP Only");
    Press(u"cmdGo");
    Q_EMIT recent->aboutToShow();
    ASSERT_EQ(recent->actions().size(), 10);
    EXPECT_EQ(recent->actions()[0]->text(), S(u"B && C"));
    EXPECT_EQ(recent->actions()[1]->text(), S(u"Alpha"));
    recent->actions()[1]->trigger();
    EXPECT_EQ(FieldText(2), S(u"Alpha"));
    EXPECT_EQ(Find<QComboBox>(u"cboFilter")->currentText(), S(u"VP Only"));
    recent->actions()[0]->trigger();
    EXPECT_EQ(FieldText(2), S(u"B & C"));
    EXPECT_EQ(Find<QComboBox>(u"cboFilter")->currentText(), S(u"All")) << "it was not in the list";
}

TEST_F(HabitsTest, TheFoldersOfTheCollectionAreListedAndUncheckedOnesForgotten) {
    Open();
    auto* folders = Find<QMenu>(u"mnuFolders");
    Q_EMIT folders->aboutToShow();
    ASSERT_EQ(folders->actions().size(), 1);
    EXPECT_FALSE(folders->actions()[0]->isEnabled()) << "none was scanned";
    for (const char16_t* const path : {u"/tables/a & b", u"/tables/c"})
        ASSERT_TRUE(catalogue::RememberCollectionFolder(DatabasePath(), S(path)).ok());
    Q_EMIT folders->aboutToShow();
    ASSERT_EQ(folders->actions().size(), 2);
    EXPECT_EQ(folders->actions()[0]->text(), S(u"/tables/a && b"));
    EXPECT_TRUE(folders->actions()[0]->isChecked());
    folders->actions()[0]->trigger();
    EXPECT_EQ(catalogue::CollectionFolders(DatabasePath()).value_or({}),
              QStringList{S(u"/tables/c")});
    QFile file(catalogue::CollectionFoldersFile(DatabasePath()));
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write("?") == 1);
    file.close();
    Q_EMIT folders->aboutToShow();
    EXPECT_TRUE(Message().contains(S(u"is not a list of folders"))) << Message().toStdString();
}

TEST_F(HabitsTest, TheMenuOffersWhatCanBeDone) {
    Open();
    const auto offered = [this](const char16_t* item) {
        Q_EMIT Find<QMenu>(u"mnuTable")->aboutToShow();
        return Action(item)->isEnabled();
    };
    EXPECT_FALSE(offered(u"mnuDeleteTable"));
    EXPECT_FALSE(offered(u"mnuSaveDetails"));
    EXPECT_TRUE(offered(u"mnuRefreshTree"));
    Click(Table(0));
    EXPECT_TRUE(offered(u"mnuDeleteTable"));
    EXPECT_TRUE(offered(u"mnuEditDetails"));
    EditName();
    EXPECT_FALSE(offered(u"mnuDeleteTable"));
    EXPECT_FALSE(offered(u"mnuRefreshTree"));
    EXPECT_TRUE(offered(u"mnuSaveDetails"));
}

// Dropped files.

TEST_F(HabitsTest, DroppedTablesAndFoldersAreAdded) {
    Open();
    QStringList taken;
    bool takes = true;
    window->SetTakeTables([&](const QString& path) {
        taken.append(path);
        return takes;
    });
    Drop({alpha, folder.path(), folder.filePath(S(u"none.vpt")), folder.filePath(S(u"x.zip"))});
    EXPECT_EQ(taken, QStringList({alpha, folder.path()}));
    EXPECT_EQ(Message(), QString());
    takes = false;
    Drop({alpha});
    EXPECT_EQ(Message(), S(u"Not now: ") + alpha);
}

TEST_F(HabitsTest, ADroppedPictureBecomesTheScreenshotOfTheEdit) {
    Open();
    const QString picture = MakeFile(S(u"shot.JPG"));
    Drop({picture});
    EXPECT_EQ(Message(), S(u"Select the table that it is for"));
    Click(Table(0));
    Drop({picture});
    EXPECT_EQ(FieldText(7), picture);
    EXPECT_TRUE(window->details().record_changed());
    window->details().Cancel();
    EXPECT_EQ(FieldText(7), QString());
}

TEST_F(HabitsTest, ADroppedTextBecomesTheRulesOfTheEdit) {
    Open();
    const QString rules = MakeFile(S(u"rules.txt"));
    {
        QFile file(rules);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("Hit it.\n");
    }
    Click(Table(0));
    Drop({rules});
    EXPECT_EQ(FieldText(12), S(u"Hit it.\r\n"));
    EXPECT_EQ(window->details().CurrentTab(), 3);
    Drop({MakeFile(S(u"shot.gif"))});
    ASSERT_EQ(prompts.messages.size(), 1U) << "another tab is being edited";
    EXPECT_EQ(FieldText(7), QString());
}

// A catalogue that came from another computer.

TEST_F(HabitsTest, AFileThatThePathMapFindsHasNoStopSign) {
    const auto icon = [this] { return Table(1).data(TableTreeModel::kIconKeyRole).toString(); };
    MakeFile(S(u"Beta.vpt"));
    Open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return icon() == S(u"stop"); }));
    values.paths.Use(catalogue::PathMap({{S(u"/gone"), folder.path()}}));
    window->RefreshTree();
    EXPECT_EQ(icon(), S(u"favorite"));
    QTest::qWait(300);  // for the answer of the disk
    EXPECT_EQ(icon(), S(u"favorite"));
}

}  // namespace
}  // namespace browser
