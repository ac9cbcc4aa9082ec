// frmPinball's way over starts: what it restores when it opens and stores when it closes.
#include "browser/frmPinball.h"

#include "browser/order_bar.h"
#include "browser/picture_wall.h"
#include "browser/selection_controller.h"
#include "browser/texts.h"
#include "browser/wall_controller.h"
#include "catalogue/error_report.h"
#include "catalogue/last_folders.h"
#include "catalogue/process_values.h"
#include "catalogue/program_files.h"
#include "catalogue/program_settings.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "platform/application_folder.h"
#include "platform/files.h"
#include "widgets/window_place.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QLayout>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSplitter>

#include <algorithm>

namespace browser {

void frmPinball::Load() {
    const MainWindowSettings settings = ReadSettings(*catalogue_.settings);
    RestoreWindow(settings);
    RestoreControls(settings);
    ShowWhetherReadOnly();
    ShowCatalogue(settings);
    if (ReadLayout(*catalogue_.settings).splitter.isEmpty()) GiveNamesTheirWidth();
}

// Where nobody has put the splitter yet, it stands where the names are not cut, as far as the
// details keep half of the window and need not be scrolled sideways.
void frmPinball::GiveNamesTheirWidth() {
    const QMargins margins = centralWidget()->layout()->contentsMargins();
    const int whole = width() - margins.left() - margins.right() - splitter_->handleWidth();
    const int least = whole * 2 / 5;
    const int most = std::clamp(whole - details_->WidthOfFields(), least, whole / 2);
    const int names = std::clamp(tvwDB_->WidthOfNames(), least, most);
    splitter_->setSizes({names, whole - names});
}

void frmPinball::RestoreWindow(const MainWindowSettings& settings) {
    resize(ToPixels(settings.width_twips), ToPixels(settings.height_twips));
    const WindowLayout layout = ReadLayout(*catalogue_.settings);
    if (layout.position)
        move(widgets::OnAScreen(QRect(*layout.position, size()), widgets::Screens()));
    widgets::FitToScreen(*this);
    if (!layout.splitter.isEmpty()) splitter_->setSizes(layout.splitter);
    if (layout.picture_width) wall_view_->SetPictureWidth(KnownPictureWidth(*layout.picture_width));
    ShowWall(layout.shows_wall.value_or(false));
    if (settings.window_state == WindowState::kMaximised)
        setWindowState(windowState() | Qt::WindowMaximized);
}

void frmPinball::RestoreControls(const MainWindowSettings& settings) {
    order_bar_->SetDirection(settings.direction);
    order_bar_->SetOrderCaption(settings.order_by);
    tree_->SetSelectedNodeIndex(settings.last_play);
    filter_bar_->SetComparison(settings.comparison);
    selection_->Remember({settings.filter, settings.sub, settings.comparison});
    catalogue_.values->SoundOn = settings.sound;
    catalogue_.values->MinimiseOnPlay = settings.minimise;
    catalogue_.values->LastPictureDir = settings.last_picture_folder;
    catalogue_.values->last_folders = catalogue::ReadLastFolders(*catalogue_.settings);
    menu_->SetChecked(&CommandActions::toggle_minimise_on_play, settings.minimise);
    menu_->SetChecked(&CommandActions::toggle_sound, settings.sound);
    catalogue_.values->WaitForSimulator =
        catalogue::ReadOwnSetting(*catalogue_.settings, catalogue::kOptionSection,
                                  catalogue::kWaitKey) == u"True";
    menu_->SetChecked(&CommandActions::toggle_wait, catalogue_.values->WaitForSimulator);
    details_->SetCurrentTab(settings.last_tab);
}

void frmPinball::closeEvent(QCloseEvent* event) {
    if (unloaded_) return;
    if (!QueryUnload()) {
        event->ignore();
        return;
    }
    Unload();
    event->accept();
}

void frmPinball::CloseForGood() {
    if (unloaded_) return;
    if (const auto edit = details_->CurrentEdit()) {
        const QString file = KeptEditFile(catalogue::CataloguePath(catalogue_));
        catalogue::ShowError(prompts_, KeepEdit(file, *edit));
    }
    if (before_unload_) before_unload_();
    Unload();
    close();
}

void frmPinball::GoOnWithKeptEdit() {
    const auto edit = TakeKeptEdit(KeptEditFile(catalogue::CataloguePath(catalogue_)));
    if (!edit.ok()) return TellInPassing(edit.status());
    if (!*edit) return;
    if (tree_->SelectTableWithId((*edit)->record.fields[kId]))
        details_->GoOnWith(**edit);
    else
        TellResult(BrowserTexts::tr("The record that was being edited is not in the list"));
}

bool frmPinball::QueryUnload() {
    if (filter_bar_->TakesValue()) {
        const auto wrong =
            catalogue::InvalidFilterValue(filter_bar_->FilterKey(), filter_bar_->FilterValue());
        if (wrong) {
            prompts_.Ask({*wrong, {}, platform::MessageIcon::kInformation});
            filter_bar_->FocusValue();
            return false;
        }
    }
    if (!menu_->IsMenuEnabled(kFileMenu)) return false;
    if (before_unload_) before_unload_();
    return true;
}

void frmPinball::Unload() {
    unloaded_ = true;
    const base::Status closed = catalogue_.CatalogueConnection->Close();
    base::Status stored = WriteSettings(*catalogue_.settings, CurrentSettings());
    for (const base::Status& own :
         {WriteLayout(*catalogue_.settings, CurrentLayout()), WriteOptions(),
          catalogue::WriteLastFolders(*catalogue_.settings, catalogue_.values->last_folders)})
        if (stored.ok()) stored = own;
    RemoveWorkFiles();
    catalogue::ShowError(prompts_, closed);
    catalogue::ShowError(prompts_, stored);
}

MainWindowSettings frmPinball::CurrentSettings() const {
    MainWindowSettings settings;
    settings.window_state = isMinimized()   ? WindowState::kMinimised
                            : isMaximized() ? WindowState::kMaximised
                                            : WindowState::kNormal;
    settings.width_twips = ToTwips(width());
    settings.height_twips = ToTwips(height());
    settings.scale_height_twips = ToTwips(height() - menuBar()->height());
    settings.direction = order_bar_->Direction();
    settings.order_by = order_bar_->OrderCaption();
    settings.last_play = tree_->SelectedNodeIndex();
    settings.filter = filter_bar_->FilterKey();
    settings.sub = filter_bar_->FilterValue();
    settings.comparison = selection_->applied().CurrentOperator;
    settings.sound = catalogue_.values->SoundOn;
    settings.minimise = catalogue_.values->MinimiseOnPlay;
    settings.last_tab = details_->CurrentTab();
    settings.last_picture_folder = catalogue_.values->LastPictureDir;
    return settings;
}

base::Status frmPinball::WriteOptions() {
    return catalogue::WriteOwnSetting(
        *catalogue_.settings, catalogue::kOptionSection, catalogue::kWaitKey,
        catalogue_.values->WaitForSimulator ? QStringLiteral("True") : QStringLiteral("False"));
}

// A window that fills the screen, or that was never shown, has no place of its own.
WindowLayout frmPinball::CurrentLayout() const {
    WindowLayout layout = ReadLayout(*catalogue_.settings);
    if (IsNormal() && testAttribute(Qt::WA_WState_Created)) layout.position = pos();
    layout.splitter = splitter_->sizes();
    // Who has never had the wall keeps no word of it.
    if (layout.shows_wall || wall_->is_wanted()) layout.shows_wall = wall_->is_wanted();
    if (wall_view_->width_is_chosen()) layout.picture_width = wall_view_->picture_width();
    return layout;
}

// Removes the files that the capture window leaves.
void frmPinball::RemoveWorkFiles() {
    for (const QString& name :
         {catalogue::kTemporaryJpeg.toString(), catalogue::kTemporaryBitmap.toString()})
        platform::RemoveFile(platform::FileIn(catalogue_.values->ApplicationFolder, name));
}

}  // namespace browser
