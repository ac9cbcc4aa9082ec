// frmPinball: the main window: filter and order bars, the tree of tables with the detail panel
// beside it, menus and status bar. This class creates the parts and connects them; what it restores
// and stores from start to start stands in frmPinball_restore.cpp.
#pragma once

#include "browser/detail_panel.h"
#include "browser/dropped_files.h"
#include "browser/icon_list.h"
#include "browser/main_menu.h"
#include "browser/main_window_settings.h"
#include "browser/tree_controller.h"
#include "browser/tree_query.h"
#include "browser/window_layout.h"
#include "catalogue/catalogue.h"
#include "launcher/play_button.h"

#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QSplitter;

namespace browser {

class FindBar;
class FindController;
class LongWork;
class OrderBar;
class SelectionController;
class PictureWall;
class StatusPanels;
class TableCommands;
class WallController;
class WallModel;
class WelcomePage;

// What the page of an empty catalogue offers beside the scan.
struct WelcomeActions {
    std::function<void()> open_example;
    std::function<void()> open_folder;
};

// What the Edit menu offers to undo and to redo, "Purge (3,412 tables)"; empty: nothing.
struct UndoCaptions {
    QString undo;
    QString redo;
};

class frmPinball : public QMainWindow, private DetailHost {
    Q_OBJECT

public:
    // Both are borrowed and outlive the window. Requires: the catalogue is open (catalogue::Main).
    frmPinball(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts);
    ~frmPinball() override;

    // Restores the settings and shows the saved selection. Call once, before the window is shown.
    void Load();
    // Runs what a first start needs: the scan if the catalogue is empty, the choice of the
    // executable if none is set. Call after the window is shown.
    void AskForWhatIsMissing();

    // Goes on with the edit that CloseForGood has kept, if there is one. Call after Load.
    void GoOnWithKeptEdit();
    // Closes the window without a question; an edit in progress is kept for the next start.
    void CloseForGood();

    // Sets the actions that reach beyond this window; empty ones are not changed.
    void SetActions(const CommandActions& actions);
    void SetWelcomeActions(const WelcomeActions& actions);
    // Set how a table is played, and how the sound of the play button is played.
    void SetPlayTable(TreeController::PlayTable play);
    void SetPlaySound(launcher::PlayButton::Sound sound);
    // `captions` is asked each time the Edit menu opens.
    void SetUndoCaptions(std::function<UndoCaptions()> captions);
    // `take` gets the table files and folders that are dropped on the window, one after the other,
    // and says whether it could.
    void SetTakeTables(std::function<bool(const QString& path)> take);
    // `unload` is called when the window closes, before the catalogue is closed.
    void SetBeforeUnload(std::function<void()> unload);

    // Runs the selection again.
    void RefreshTree() override;
    // Tag and text of the tree's selected node; empty when none is selected.
    QString SelectedTag() const override;
    QString SelectedText() const override;
    // True when the selected node is a table, neither the root nor a detail line.
    bool TableIsSelected() const;
    // Selects the first table of the tree that `is_wanted` takes by its FileName, with the filter
    // "All" if it must be. An empty tree is filled. False: there is none.
    bool SelectTable(const std::function<bool(const QString& file_name)>& is_wanted);
    // Brings the window before all others, out of the task bar if it is there.
    void Raise();
    // What the tree shows; nullopt: it is empty.
    std::optional<Selection> TreeSelection() const;
    DetailPanel& details() { return *details_; }
    // Shows the progress of a command in the status bar, until `done` equals `total`.
    void ShowProgress(std::int64_t done, std::int64_t total);
    // A command is at work; what it has to paint lets events through.
    bool shows_progress() const;
    // Runs the selection again, as rows were changed behind it.
    void ShowChangedRows();
    // Shows a failure that stops nothing in the status bar for 15 seconds. Does nothing when it is
    // ok.
    void TellInPassing(const base::Status& failure);
    // Shows what a command has done, there and for the same time; a click on it calls `clicked`, if
    // that is not empty.
    void TellResult(const QString& text, std::function<void()> clicked = {});

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    base::Result<bool> CatalogueIsEmpty() const;
    // Steps of the constructor.
    void CreateControls();
    QWidget* CreateTopBar();
    QWidget* CreateTreePane();
    void CreateControllers();
    void CreateFind();
    void CreateTableCommands();
    void CreateWall();
    void ConnectWelcome();
    // The tree or the wall of pictures, or the page in their place.
    void ShowTreeOrWelcome();
    void ShowWall(bool wall);
    void ConnectCommands();
    void ConnectEditMenu();
    CommandActions OwnActions();
    CommandActions FindActions();
    CommandActions WallActions();
    MainWindowState StateForKeys() const;
    // With the filter "All" if it must be.
    void SelectTableWithId(const QString& id);
    void Take(const DroppedFiles& dropped);
    void SetTabOrders();

    // Steps of Load.
    void RestoreWindow(const MainWindowSettings& settings);
    void RestoreControls(const MainWindowSettings& settings);
    void ShowCatalogue(const MainWindowSettings& settings);
    void GiveNamesTheirWidth();
    void ShowWhetherReadOnly();
    void SetTitle();

    // Steps of closing.
    bool QueryUnload();
    void Unload();
    MainWindowSettings CurrentSettings() const;
    WindowLayout CurrentLayout() const;
    base::Status WriteOptions();
    void RemoveWorkFiles();

    void RestoreDefaultSize();
    bool IsNormal() const;

    // DetailHost
    void RememberSelectedNode() override;
    void RecordStored(const TableRecord& record) override;
    void SetStatusText(int panel, const QString& text) override;
    void ShowFailure(const base::Status& failure) override;
    void SetComments(const QString& text) override;
    void LockForEdit(bool changed) override;

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    IconList imlSmallIcons_;
    TableTreeModel model_;
    std::unique_ptr<WallModel> wall_model_;
    std::unique_ptr<MainMenu> menu_;
    FilterBar* filter_bar_ = nullptr;
    OrderBar* order_bar_ = nullptr;
    FindBar* find_bar_ = nullptr;
    TableTreeView* tvwDB_ = nullptr;
    PictureWall* wall_view_ = nullptr;
    WelcomePage* welcome_ = nullptr;
    WelcomeActions welcome_actions_;
    QLabel* lblComments_ = nullptr;
    launcher::PlayButton* cmdPlay_ = nullptr;
    DetailPanel* details_ = nullptr;
    StatusPanels* status_ = nullptr;
    std::unique_ptr<LongWork> long_work_;
    QSplitter* splitter_ = nullptr;
    std::unique_ptr<SelectionController> selection_;
    std::unique_ptr<TreeController> tree_;
    std::unique_ptr<FindController> find_;
    std::unique_ptr<WallController> wall_;
    std::unique_ptr<TableCommands> table_commands_;
    std::function<bool(const QString&)> take_tables_;
    std::function<void()> before_unload_;
    std::function<UndoCaptions()> undo_captions_;
    bool unloaded_ = false;
};

}  // namespace browser
