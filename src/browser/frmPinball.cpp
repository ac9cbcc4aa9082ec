#include "browser/frmPinball.h"

#include "browser/find_bar.h"
#include "browser/find_controller.h"
#include "browser/frmKeys.h"
#include "browser/long_work.h"
#include "browser/order_bar.h"
#include "browser/picture_wall.h"
#include "browser/selection_controller.h"
#include "browser/status_panels.h"
#include "browser/table_commands.h"
#include "browser/texts.h"
#include "browser/wait_until_shown.h"
#include "browser/wall_controller.h"
#include "browser/wall_model.h"
#include "browser/welcome_page.h"
#include "catalogue/error_report.h"
#include "catalogue/filter_kinds.h"
#include "catalogue/process_values.h"
#include "catalogue/selection.h"
#include "catalogue/start_up.h"
#include "dialogs/program_version.h"
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "platform/files.h"
#include "thumbnails/table_picture.h"
#include "thumbnails/trim_folder.h"

#include <QtGui/QDragEnterEvent>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QVBoxLayout>

namespace browser {
namespace {

constexpr int kMargin = 6;
// Height of the notes under the tree, in lines.
constexpr int kCommentLines = 4;
// Of the tree, however large the letters are.
constexpr int kLeastLines = 6;
// How many characters of the notes are shown; more than fit into these lines on a wide screen. To
// lay out a very long text would take too long.
constexpr qsizetype kShownCommentLength = 4000;

QString ForDisplay(QString text) {
    text.truncate(kShownCommentLength);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
}

}  // namespace

frmPinball::frmPinball(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts)
    : catalogue_(catalogue), prompts_(prompts),
      model_([this](const QString& key) -> QVariant { return imlSmallIcons_.Icon(key); },
             [paths = catalogue.values->paths](const QString& stored) {
                 return platform::FileExists(paths.Of(stored));
             }) {
    setObjectName(QStringLiteral("frmPinball"));
    menu_ = std::make_unique<MainMenu>(*menuBar());
    CreateControls();
    CreateControllers();
    ConnectCommands();
    SetTabOrders();
    SetTitle();
    setAcceptDrops(true);
    qApp->installEventFilter(this);
}

frmPinball::~frmPinball() {
    qApp->removeEventFilter(this);
    catalogue_.runner = nullptr;
}

void frmPinball::CreateControls() {
    status_ = new StatusPanels(this);
    setStatusBar(status_);
    long_work_ = std::make_unique<LongWork>(catalogue_, *status_);
    catalogue_.runner = long_work_.get();
    details_ = new DetailPanel(catalogue_, prompts_, *this, this);
    splitter_ = new QSplitter(this);
    splitter_->setChildrenCollapsible(false);
    splitter_->addWidget(CreateTreePane());
    splitter_->addWidget(details_);
    // Both sides grow with the window, the details more.
    splitter_->setStretchFactor(0, 2);
    splitter_->setStretchFactor(1, 3);

    auto* central = new QWidget(this);
    auto* rows = new QVBoxLayout(central);
    rows->setContentsMargins(kMargin, kMargin, kMargin, kMargin / 2);
    rows->setSpacing(kMargin);
    rows->addWidget(CreateTopBar());
    rows->addWidget(splitter_, 1);
    setCentralWidget(central);
}

QWidget* frmPinball::CreateTopBar() {
    auto* bar = new QWidget(this);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    filter_bar_ = new FilterBar(
        [this](const QString& key) {
            return catalogue::FilterValues(*catalogue_.CatalogueConnection, key);
        },
        prompts_, imlSmallIcons_, bar);
    order_bar_ = new OrderBar(bar);
    row->addWidget(filter_bar_, 1);
    row->addSpacing(kMargin);
    row->addWidget(order_bar_);
    return bar;
}

QWidget* frmPinball::CreateTreePane() {
    auto* pane = new QWidget(this);
    find_bar_ = new FindBar(pane);
    tvwDB_ = new TableTreeView(model_, pane);
    wall_model_ = std::make_unique<WallModel>(model_);
    wall_view_ = new PictureWall(*wall_model_, pane);
    cmdPlay_ = new launcher::PlayButton(*catalogue_.values, pane);
    auto* caption = new QLabel(BrowserTexts::tr("Notes:"), pane);
    caption->setObjectName(QStringLiteral("Label1"));
    lblComments_ = new QLabel(pane);
    lblComments_->setObjectName(QStringLiteral("lblComments"));
    lblComments_->setTextFormat(Qt::PlainText);
    lblComments_->setWordWrap(true);
    lblComments_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    lblComments_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    lblComments_->setFixedHeight(kCommentLines * lblComments_->fontMetrics().lineSpacing());

    auto* rows = new QVBoxLayout(pane);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(kMargin / 2);
    rows->addWidget(find_bar_);
    welcome_ = new WelcomePage(pane);
    welcome_->hide();
    for (QWidget* const view : {static_cast<QWidget*>(tvwDB_), static_cast<QWidget*>(wall_view_)})
        view->setMinimumHeight(kLeastLines * fontMetrics().lineSpacing());
    rows->addWidget(tvwDB_, 1);
    rows->addWidget(wall_view_, 1);
    rows->addWidget(welcome_, 1);
    rows->addWidget(caption);
    rows->addWidget(lblComments_);
    rows->addWidget(cmdPlay_);
    return pane;
}

void frmPinball::CreateControllers() {
    selection_ = std::make_unique<SelectionController>(
        SelectionController::Parts{catalogue_, prompts_, *filter_bar_, *order_bar_, model_, *tvwDB_,
                                   *status_},
        [this] { details_->ClearTableDetails(); });
    DetailHost& host = *this;
    tree_ = std::make_unique<TreeController>(TreeController::Parts{catalogue_, prompts_, model_,
                                                                   *tvwDB_, *details_, *filter_bar_,
                                                                   *menu_->Menu(kPopupMenu)},
                                             host);
    connect(selection_.get(), &SelectionController::PlaceKept, this,
            [this](const QModelIndex& node) { tree_->ShowNode(node); });
    CreateFind();
    CreateWall();
    CreateTableCommands();
    ConnectWelcome();
}

void frmPinball::CreateTableCommands() {
    table_commands_ = std::make_unique<TableCommands>(
        TableCommands::Parts{catalogue_, model_, *tvwDB_, *menu_},
        TableCommands::Actions{[this](const QModelIndex& node) { tree_->ShowNode(node); },
                               [this](const QString& id) { SelectTableWithId(id); },
                               [this] { return !details_->record_changed(); },
                               [this](const QString& text) { TellResult(text); },
                               [this](const base::Status& failure) { TellInPassing(failure); }});
}

void frmPinball::CreateWall() {
    const thumbnails::ThumbnailFolders folders = thumbnails::UserThumbnailFolders();
    wall_ = std::make_unique<WallController>(
        WallController::Parts{model_, *tvwDB_, *wall_model_, *wall_view_, imlSmallIcons_},
        WallController::Actions{[this](const QModelIndex& node) { tree_->ShowNode(node); },
                                [this](std::size_t table) { return find_->MarkOf(table); },
                                [own = folders.own] { thumbnails::TrimThumbnails(own); }},
        [folders, paths = catalogue_.values->paths](const thumbnails::TablePicture& stored,
                                                    QSize box) {
            return thumbnails::LoadThumbnail(
                {paths.Of(stored.image_file), paths.Of(stored.table_file)}, box, folders);
        });
    connect(find_.get(), &FindController::MarksChanged, wall_.get(), &WallController::ShowMarks);
    connect(find_.get(), &FindController::PlaceShown, wall_.get(), &WallController::ShowPlace);
}

void frmPinball::ShowWall(bool wall) {
    wall_->Show(wall);
    wall_->ShowViews(welcome_->isHidden());
    menu_->SetChecked(&CommandActions::toggle_wall, wall);
    menu_->ApplyRules(StateForKeys());
}

CommandActions frmPinball::WallActions() {
    return {.toggle_wall = [this] { ShowWall(menu_->IsChecked(&CommandActions::toggle_wall)); },
            .larger_pictures = [this] { wall_->Step(1); },
            .smaller_pictures = [this] { wall_->Step(-1); }};
}

void frmPinball::ConnectWelcome() {
    // Behind the selection's own slot.
    connect(order_bar_, &OrderBar::RefreshClicked, this, &frmPinball::ShowTreeOrWelcome);
    connect(welcome_, &WelcomePage::LookForTables, this,
            [this] { menu_->Run(&CommandActions::scan_for_tables); });
    connect(welcome_, &WelcomePage::OpenExample, this, [this] {
        if (welcome_actions_.open_example) welcome_actions_.open_example();
    });
    connect(welcome_, &WelcomePage::OpenFolder, this, [this] {
        if (welcome_actions_.open_folder) welcome_actions_.open_folder();
    });
}

void frmPinball::ShowTreeOrWelcome() {
    const bool has_no_tables = !model_.has_nodes() && CatalogueIsEmpty().value_or(false);
    welcome_->setVisible(has_no_tables);
    wall_->ShowViews(!has_no_tables);
}

void frmPinball::SetWelcomeActions(const WelcomeActions& actions) {
    welcome_actions_ = actions;
}

void frmPinball::CreateFind() {
    const auto select = [this](std::size_t table) {
        tree_->SelectTableNode(NumberOf({table, std::nullopt}));
    };
    const auto may_select = [this] {
        return !details_->record_changed() && !shows_progress() &&
               QApplication::activeModalWidget() == nullptr;
    };
    find_ = std::make_unique<FindController>(
        FindController::Parts{model_, *tvwDB_, *find_bar_},
        FindController::Actions{select, [this] { menu_->Run(&CommandActions::play); }, may_select});
}

CommandActions frmPinball::FindActions() {
    return {.find = [this] { find_->Open(); },
            .find_next = [this] { find_->Next(); },
            .find_previous = [this] { find_->Previous(); }};
}

// The other actions are set by SetActions.
CommandActions frmPinball::OwnActions() {
    return {
        .exit = [this] { close(); },
        .restore_default_size = [this] { RestoreDefaultSize(); },
        .toggle_minimise_on_play =
            [this] {
                catalogue_.values->MinimiseOnPlay =
                    menu_->IsChecked(&CommandActions::toggle_minimise_on_play);
            },
        .toggle_sound =
            [this] {
                catalogue_.values->SoundOn = menu_->IsChecked(&CommandActions::toggle_sound);
            },
        .toggle_wait =
            [this] {
                catalogue_.values->WaitForSimulator =
                    menu_->IsChecked(&CommandActions::toggle_wait);
            },
        .play = [this] { tree_->DoubleClick(); },
        .toggle_favorites = [this] { tree_->ToggleSelectedFavorite(); },
        .edit_details = [this] { details_->StartEdit(); },
        .save_details = [this] { details_->SaveTab(); },
        .cancel_edit = [this] { details_->Cancel(); },
        .delete_table = [this] { details_->Delete(); },
        .refresh_tree = [this] { RefreshTree(); },
        .copy_as_text = [this] { table_commands_->CopyAsText(); },
        .copy_file = [this] { table_commands_->CopyAsFile(); },
        .select_random = [this] { table_commands_->SelectRandomTable(); },
        .show_keys = [this] { frmKeys(this).exec(); },
    };
}

// Connects buttons and menus to the commands; eventFilter does it for keys.
void frmPinball::ConnectCommands() {
    menu_->SetActions(OwnActions());
    menu_->SetActions(FindActions());
    menu_->SetActions(WallActions());
    connect(cmdPlay_, &QPushButton::clicked, this, [this] { menu_->Run(&CommandActions::play); });
    connect(details_, &DetailPanel::ViewTableInfoClicked, this,
            [this] { menu_->Run(&CommandActions::view_table_info); });
    connect(menu_->Menu(kFileMenu), &QMenu::aboutToShow, this, [this] { SetComments({}); });
    connect(tvwDB_, &TableTreeView::DeletePressed, this, [this] {
        if (TableIsSelected()) menu_->Run(&CommandActions::delete_table);
    });
    for (const QStringView menu : {kUtilitiesMenu, kEditMenu, kDataMenu, kTableMenu})
        connect(menu_->Menu(menu), &QMenu::aboutToShow, this, [this] {
            MainWindowState state = StateForKeys();
            state.record_is_shown = details_->shows_record();
            menu_->ApplyRules(state);
        });
    for (const QStringView menu : {kEditMenu, kTableMenu})
        connect(menu_->Menu(menu), &QMenu::aboutToHide, this, [this] {
            // The entry that was chosen is triggered behind this.
            QMetaObject::invokeMethod(
                this, [this] { menu_->ApplyRules(StateForKeys()); }, Qt::QueuedConnection);
        });
    menu_->ApplyRules(StateForKeys());
    ConnectEditMenu();
}

void frmPinball::SelectTableWithId(const QString& id) {
    if (tree_->SelectTableWithId(id)) return;
    filter_bar_->Choose(catalogue::kFilterAll.toString());
    RefreshTree();
    tree_->SelectTableWithId(id);
}

// While the menus are closed: a key may be pressed at any time, and its command looks for itself
// whether a record is there.
MainWindowState frmPinball::StateForKeys() const {
    return {.current_tab = details_->CurrentTab(),
            .window_is_normal = IsNormal(),
            .record_is_shown = true,
            .record_is_changed = details_->record_changed(),
            .wall_is_shown = wall_->is_wanted()};
}

// Undo and redo say what they would take back. Closed, the menu leaves them to their keys, which
// tell when there is nothing.
void frmPinball::ConnectEditMenu() {
    const auto offer = [this](CommandId command, const QString& verb, const QString& caption,
                              bool is_offered) {
        const QString text = caption.isEmpty() ? verb : verb + u' ' + EntryCaption(caption);
        menu_->Offer(command, text, is_offered);
    };
    connect(menu_->Menu(kEditMenu), &QMenu::aboutToShow, this, [this, offer] {
        const UndoCaptions captions = undo_captions_ ? undo_captions_() : UndoCaptions();
        offer(&CommandActions::undo, BrowserTexts::tr("&Undo"), captions.undo,
              !captions.undo.isEmpty());
        offer(&CommandActions::redo, BrowserTexts::tr("Re&do"), captions.redo,
              !captions.redo.isEmpty());
    });
}

void frmPinball::SetUndoCaptions(std::function<UndoCaptions()> captions) {
    undo_captions_ = std::move(captions);
}

void frmPinball::SetActions(const CommandActions& actions) {
    menu_->SetActions(actions);
}

void frmPinball::SetPlayTable(TreeController::PlayTable play) {
    tree_->SetPlayTable(std::move(play));
}

void frmPinball::SetPlaySound(launcher::PlayButton::Sound sound) {
    cmdPlay_->SetSound(std::move(sound));
}

void frmPinball::SetTakeTables(std::function<bool(const QString& path)> take) {
    take_tables_ = std::move(take);
}

void frmPinball::SetBeforeUnload(std::function<void()> unload) {
    before_unload_ = std::move(unload);
}

void frmPinball::SetTitle() {
    const dialogs::Version version = dialogs::ProgramVersion();
    setWindowTitle(QStringLiteral("Tavolo -    v. ") + QString::number(version.major) +
                   QStringLiteral(".") + QString::number(version.minor) +
                   QStringLiteral(" - RC 1"));
}

// Not only at the start: the file may have been exchanged.
void frmPinball::ShowWhetherReadOnly() {
    const jet::Database* const database = catalogue_.CatalogueConnection->database();
    const bool is_read_only = database != nullptr && database->read_only();
    status_->ShowReadOnly(is_read_only ? catalogue::CataloguePath(catalogue_) : QString());
}

void frmPinball::ShowCatalogue(const MainWindowSettings& settings) {
    const auto is_empty = CatalogueIsEmpty();
    if (!is_empty.ok()) {
        catalogue::ShowError(prompts_, is_empty.status());
        return;
    }
    if (*is_empty) return ShowTreeOrWelcome();
    selection_->RestoreFilter({settings.filter, settings.sub, settings.comparison});
    RefreshTree();
    if (settings.last_play != 0) tree_->SelectTableNode(settings.last_play);
}

base::Result<bool> frmPinball::CatalogueIsEmpty() const {
    ASSIGN_OR_RETURN(const auto rows,
                     catalogue_.CatalogueConnection->Execute(u"select * from tables"));
    return rows.Bof() && rows.Eof();
}

void frmPinball::AskForWhatIsMissing() {
    const bool is_empty = CatalogueIsEmpty().value_or(false);  // a failure was shown by Load
    if (!is_empty && !catalogue_.values->VisualPinballExe.isEmpty()) return;
    WaitUntilShown(*this);  // because a dialog is placed over its owner
    if (is_empty) menu_->Run(&CommandActions::scan_for_tables);
    if (catalogue_.values->VisualPinballExe.isEmpty()) menu_->Run(&CommandActions::set_executable);
}

void frmPinball::RefreshTree() {
    ShowWhetherReadOnly();
    selection_->RefreshTree();
    ShowTreeOrWelcome();
}

void frmPinball::ShowChangedRows() {
    RefreshTree();
}

QString frmPinball::SelectedTag() const {
    return tree_->SelectedTag();
}

QString frmPinball::SelectedText() const {
    return tree_->SelectedText();
}

bool frmPinball::SelectTable(const std::function<bool(const QString& file_name)>& is_wanted) {
    if (tree_->SelectTable(is_wanted)) return true;
    const QString all = catalogue::kFilterAll.toString();
    const bool shows_all = TreeSelection() && filter_bar_->FilterKey() == all;
    if (shows_all || CatalogueIsEmpty().value_or(true)) return false;
    filter_bar_->Choose(all);
    RefreshTree();
    return tree_->SelectTable(is_wanted);
}

void frmPinball::Raise() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
}

std::optional<Selection> frmPinball::TreeSelection() const {
    return selection_->shown();
}

bool frmPinball::TableIsSelected() const {
    return tree_->TableIsSelected();
}

void frmPinball::ShowProgress(std::int64_t done, std::int64_t total) {
    if (done == total) {
        status_->EndProgress();
        return;
    }
    if (!status_->in_progress()) status_->StartProgress(total);
    status_->Advance(done);
}

bool frmPinball::shows_progress() const {
    return status_->in_progress() || long_work_->is_running();
}

void frmPinball::TellInPassing(const base::Status& failure) {
    if (!failure.ok()) status_->ShowInPassing(catalogue::FailureText(failure));
}

void frmPinball::TellResult(const QString& text, std::function<void()> clicked) {
    status_->ShowInPassing(text, std::move(clicked));
}

void frmPinball::RememberSelectedNode() {
    tree_->RememberSelectedNode();
}

void frmPinball::RecordStored(const TableRecord& record) {
    tree_->RecordStored(record);
    wall_->LookAgain();
}

void frmPinball::SetStatusText(int panel, const QString& text) {
    status_->SetPanelText(panel, text);
}

void frmPinball::ShowFailure(const base::Status& failure) {
    status_->ShowFailure(catalogue::FailureText(BrowserTexts::tr("The table cannot be read from"),
                                                catalogue::CataloguePath(catalogue_), failure));
}

void frmPinball::SetComments(const QString& text) {
    lblComments_->setText(ForDisplay(text));
    lblComments_->setToolTip(text.isEmpty() ? QString() : lblComments_->text());
}

void frmPinball::LockForEdit(bool changed) {
    const bool enabled = !changed;
    filter_bar_->setEnabled(enabled);
    order_bar_->LockRefresh(changed);
    find_bar_->setEnabled(enabled);
    tvwDB_->setEnabled(enabled);
    wall_view_->setEnabled(enabled);
    cmdPlay_->setEnabled(enabled);
    menu_->SetMenuEnabled(kFileMenu, enabled);
    menu_->SetMenuEnabled(kUtilitiesMenu, enabled);
    menu_->SetMenuEnabled(kEditMenu, enabled);
    menu_->SetMenuEnabled(kDataMenu, enabled);
    MainWindowState state = StateForKeys();
    state.record_is_changed = changed;
    menu_->ApplyRules(state);
}

bool frmPinball::IsNormal() const {
    return (windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen)) ==
           0;
}

void frmPinball::RestoreDefaultSize() {
    if (IsNormal()) resize(ToPixels(kDefaultWidthTwips), ToPixels(kRestoredHeightTwips));
}

// A menu that says nothing about its entries would wipe what the status bar tells.
bool frmPinball::event(QEvent* event) {
    if (event->type() == QEvent::StatusTip && static_cast<QStatusTipEvent*>(event)->tip().isEmpty())
        return true;
    return QMainWindow::event(event);
}

// Runs the commands that have keys, wherever the focus is in this window.
bool frmPinball::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyRelease || !watched->isWidgetType()) return false;
    const auto* const key = static_cast<QKeyEvent*>(event);
    const CommandId command = CommandOfKey(key->key());
    if (command == nullptr || key->isAutoRepeat()) return false;
    if (static_cast<QWidget*>(watched)->window() != this) return false;
    menu_->Run(command);
    return true;
}

// From left to right and from the top to the bottom, as they are seen.
void frmPinball::SetTabOrders() {
    QWidget* before = nullptr;
    for (const char* name :
         {"cboFilter",      "cmdOperator", "cboFilterDet", "cboOrder",    "lblDirection",
          "cmdGo",          "tvwDB",       "PictureWall",  "cmdPlay",     "DetTab",
          "txtDet_2",       "txtDet_3",    "txtDet_4",     "txtDet_5",    "txtDet_6",
          "txtDet_1",       "txtDet_7",    "Command2",     "txtDet_8",    "Command3",
          "txtDet_10",      "Command4",    "txtDet_11",    "txtDet_9",    "chkFavorite",
          "chkPinMame",     "cmdReadInfo", "txtDet_12",    "cmdReadRule", "cmdSaveRules",
          "cmdCancelRules", "imgBeside",   "imgShot",      "imgFlyer",    "imgRules",
          "cmdChange",      "cmdCancel",   "cmdDelete"}) {
        auto* const next = findChild<QWidget*>(QLatin1String(name));
        if (before != nullptr && next != nullptr) setTabOrder(before, next);
        before = next;
    }
}

void frmPinball::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedFilesOf(*event->mimeData()).is_empty()) event->acceptProposedAction();
}

void frmPinball::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    // Behind the drop: what is asked then would hold up the program that gives it.
    QMetaObject::invokeMethod(
        this, [this, dropped = DroppedFilesOf(*event->mimeData())] { Take(dropped); },
        Qt::QueuedConnection);
}

// A picture and a text become part of the edit of the shown record, and can be cancelled as such.
void frmPinball::Take(const DroppedFiles& dropped) {
    for (const QString& path : dropped.tables)
        if (!take_tables_ || !take_tables_(path))
            TellResult(BrowserTexts::tr("Not now: %1").arg(path));
    if (dropped.picture.isEmpty() && dropped.text.isEmpty()) return;
    if (!details_->shows_record())
        return TellResult(BrowserTexts::tr("Select the table that it is for"));
    const bool is_text = dropped.picture.isEmpty();
    if (const base::Status taken =
            details_->TakeFile(is_text ? dropped.text : dropped.picture, is_text);
        !taken.ok())
        catalogue::ShowError(prompts_, taken);
}

}  // namespace browser
