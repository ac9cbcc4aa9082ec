// frmPinball: the main window: filter and order above a tree of tables, the details beside it,
// menus and status bar. It is put together here from its parts; what each part does stands with the
// part.
#pragma once

#include "browser/detail_panel.h"
#include "browser/icon_list.h"
#include "browser/main_menu.h"
#include "browser/main_window_settings.h"
#include "browser/tree_controller.h"
#include "launcher/play_button.h"

#include <QtWidgets/QMainWindow>

#include <functional>
#include <memory>

class QLabel;
class QSplitter;

namespace browser {

class OrderBar;
class SelectionController;
class StatusPanels;

class frmPinball : public QMainWindow, private DetailHost {
    Q_OBJECT

public:
    // Both are borrowed and outlive the window. The catalogue is open (see catalogue::Main).
    frmPinball(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts);
    ~frmPinball() override;

    // Restores the saved settings and shows the saved selection. Called once, before the window is
    // shown.
    void Load();
    // Starts what a first start needs, once the window is shown: the scan when the catalogue is
    // empty, the choice of the executable when there is none.
    void AskForWhatIsMissing();

    // What the menu entries, buttons and keys do that reaches beyond this window.
    void SetActions(const CommandActions& actions);
    // How a table is started, and how the play button sounds.
    void SetPlayTable(TreeController::PlayTable play);
    void SetPlaySound(launcher::PlayButton::Sound sound);
    // Called when the window has agreed to close, before the catalogue is closed.
    void SetBeforeUnload(std::function<void()> unload);

    // Runs the selection again.
    void RefreshTree() override;
    // Of the tree's selected node; empty: none is selected.
    QString SelectedTag() const override;
    QString SelectedText() const override;
    // A table, and neither the root nor a detail line, is selected.
    bool TableIsSelected() const;
    DetailPanel& details() { return *details_; }
    // How far a command has come; it is over when `done` equals `total`.
    void ShowProgress(std::int64_t done, std::int64_t total);
    // Shows a failure that stops nothing in the status bar for 15 seconds. Does nothing when it is
    // ok.
    void TellInPassing(const base::Status& failure);

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Steps of the constructor.
    void CreateControls();
    QWidget* CreateTopBar();
    QWidget* CreateTreePane();
    void CreateControllers();
    void ConnectCommands();
    CommandActions OwnActions();

    // Steps of Load.
    void RestoreWindow(const MainWindowSettings& settings);
    void RestoreControls(const MainWindowSettings& settings);
    void ShowCatalogue(const MainWindowSettings& settings);
    void SetTitle();

    // Steps of closing.
    bool QueryUnload();
    void Unload();
    MainWindowSettings CurrentSettings() const;
    void RemoveWorkFiles();

    void RestoreDefaultSize();
    bool IsNormal() const;

    // DetailHost
    void RememberSelectedNode() override;
    void FileNameStored(const QString& id, const QString& file_name) override;
    void SetStatusText(int panel, const QString& text) override;
    void ShowFailure(const base::Status& failure) override;
    void SetComments(const QString& text) override;
    void LockForEdit(bool changed) override;

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    IconList imlSmallIcons_;
    TableTreeModel model_;
    std::unique_ptr<MainMenu> menu_;
    FilterBar* filter_bar_ = nullptr;
    OrderBar* order_bar_ = nullptr;
    TableTreeView* tvwDB_ = nullptr;
    QLabel* lblComments_ = nullptr;
    launcher::PlayButton* cmdPlay_ = nullptr;
    DetailPanel* details_ = nullptr;
    StatusPanels* status_ = nullptr;
    QSplitter* splitter_ = nullptr;
    std::unique_ptr<SelectionController> selection_;
    std::unique_ptr<TreeController> tree_;
    std::function<void()> before_unload_;
    bool catalogue_is_empty_ = false;
    bool unloaded_ = false;
};

}  // namespace browser
