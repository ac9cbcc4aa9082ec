// EveryWindow: opens each window and dialog of the program, one after the other, on a catalogue
// with a few tables, as the program itself opens them. Needs widgets; runs offscreen.
#pragma once

#include "app/commands.h"
#include "app/edit_commands.h"
#include "browser/tree_fixture.h"
#include "dialogs/qt_user_prompts.h"

#include <QtGui/QFont>
#include <QtGui/QPalette>

#include <functional>

namespace test_support {

class EveryWindow : public browser::TreeFixture {
protected:
    // Is called with a name for the state that the window is in, while the window is shown.
    using Look = std::function<void(const QString& name, QWidget& window)>;

    void SetUp() override;
    void TearDown() override;

    // Before ForEach: letters of that size, in percent of the usual one; dark windows.
    static void UseFonts(int percent);
    static void UseDark();
    void ForEach(const Look& look_at);
    // One state after the other.
    void OpenMainWindow();
    void MainWindow(const Look& look);
    void Menus(const Look& look);
    void Dialogs(const Look& look);
    void Checksums(const Look& look);
    void LargePicture(const Look& look);
    void Boxes(const Look& look);
    void Welcome(const Look& look);

    std::unique_ptr<browser::frmPinball> window;

private:
    void MakeTables();
    void MakeChanges();
    QString MakePicture(const QString& name, QSize size);
    void Trigger(const char* action);
    void SelectTable(int table);
    void ShowTab(int tab);
    // Runs `open`, which returns when the modal window that it opens has been closed, and looks at
    // that window when `is_ready` says so.
    void Modal(const QString& name, const Look& look, const std::function<void()>& open,
               const std::function<bool(QWidget&)>& is_ready = {});
    void ModalOf(const QString& name, const Look& look, const char* action,
                 const std::function<bool(QWidget&)>& is_ready = {});

    FakeShell shell_;
    FakeProcessStarter programs_;
    FakeSound sounds_;
    FakeWindows windows_;
    dialogs::QtUserPrompts boxes_;
    std::unique_ptr<history::HistoryFile> history_;
    std::unique_ptr<snapshots::SnapshotKeeper> keeper_;
    std::unique_ptr<app::Commands> commands_;
    std::unique_ptr<app::EditCommands> edit_commands_;
    QFont usual_font_;
};

}  // namespace test_support
