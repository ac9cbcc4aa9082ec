// CommandsTest: the program's commands in the real main window, with a fake world outside.
#pragma once

#include "app/commands.h"
#include "app/edit_commands.h"
#include "browser/frmPinball.h"
#include "browser/tree_fixture.h"
#include "dialogs/frmSettings.h"
#include "history/history_file.h"
#include "snapshots/restore_catalogue.h"
#include "snapshots/snapshot_keeper.h"
#include "support/fakes.h"
#include "support/qt_text.h"

#include <gtest/gtest.h>

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtGui/QClipboard>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QTreeView>

#include <functional>
#include <memory>
#include <vector>

namespace app {

class CommandsTest : public browser::TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        QGuiApplication::clipboard()->clear();
        values.VisualPinballExe = test_support::S(u"/bin/vp");
        alpha = MakeFile(test_support::S(u"alpha.vpt"));
        AddTable(test_support::S(u"Alpha"), alpha);
        AddTable(test_support::S(u"Beta"), {});
        window = std::make_unique<browser::frmPinball>(catalogue, prompts);
        keeper = std::make_unique<snapshots::SnapshotKeeper>(
            *files, snapshots::DatabaseOf(catalogue), clock);
        commands = std::make_unique<Commands>(
            catalogue, prompts, OutsideWorld{shell, programs, sounds, windows}, *keeper, *window);
        edit_commands = std::make_unique<EditCommands>(catalogue, history, prompts, *window);
        window->Load();
        window->show();
    }
    QAction* Action(const QString& name) {
        auto* const action = window->findChild<QAction*>(name);
        EXPECT_TRUE(action) << name.toStdString();
        return action;
    }
    void Run(const char16_t* item) { Action(test_support::S(item))->trigger(); }
    QTreeView* Tree() { return window->findChild<QTreeView*>(test_support::S(u"tvwDB")); }
    void Select(int table) {
        const QAbstractItemModel& model = *Tree()->model();
        Tree()->setCurrentIndex(model.index(table, 0, model.index(0, 0)));
    }
    void SelectRoot() { Tree()->setCurrentIndex(Tree()->model()->index(0, 0)); }
    void Press(const char16_t* button) {
        QTest::mouseClick(window->findChild<QWidget*>(test_support::S(button)), Qt::LeftButton);
    }
    std::vector<dialogs::frmSettings*> SettingsWindows() {
        std::vector<dialogs::frmSettings*> open;
        for (auto* settings_window : window->findChildren<dialogs::frmSettings*>())
            if (settings_window->isVisible()) open.push_back(settings_window);
        return open;
    }
    // Calls `look` with the modal window that the next command opens, and closes it. Before it
    // opens, events are processed while a snapshot is made.
    void InTheModalWindow(const std::function<void(QWidget&)>& look) {
        ++expected_windows;
        auto* const timer = new QTimer(window.get());
        QObject::connect(timer, &QTimer::timeout, timer, [this, timer, look] {
            QWidget* const modal = QApplication::activeModalWidget();
            if (modal == nullptr) return;
            timer->stop();
            timer->deleteLater();
            --expected_windows;
            look(*modal);
            modal->close();
        });
        timer->start(0);
    }
    void TearDown() override {
        EXPECT_EQ(expected_windows, 0) << "a window did not open";
        TreeFixture::TearDown();
    }

    int expected_windows = 0;
    test_support::FakeShell shell;
    test_support::FakeProcessStarter programs;
    test_support::FakeSound sounds;
    test_support::FakeWindows windows;
    QString alpha;
    std::unique_ptr<snapshots::SnapshotKeeper> keeper;
    std::unique_ptr<browser::frmPinball> window;
    std::unique_ptr<Commands> commands;
    history::HistoryFile history{*files, "no.mdb"};
    std::unique_ptr<EditCommands> edit_commands;
};

}  // namespace app
