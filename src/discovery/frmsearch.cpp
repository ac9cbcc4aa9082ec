#include "discovery/frmsearch.h"

#include "catalogue/collection_folders.h"
#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "discovery/texts.h"
#include "jet/connection.h"
#include "tableinfo/update_from_table_files.h"
#include "widgets/elided_label.h"
#include "widgets/object_names.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace discovery {
namespace {

// A property of the window, for whoever would close it: the scan answers that with a message.
constexpr char kBusy[] = "busy";

// For names from the disk.
QLabel* MakeLabel(const char* object_name, QWidget* parent) {
    return widgets::Named(new widgets::ElidedLabel(parent), object_name);
}

QPushButton* MakeButton(const char* object_name, const QString& caption, QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(QLatin1String(object_name));
    return button;
}

}  // namespace

frmsearch::frmsearch(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                     std::function<void()> refresh_tree, QWidget* parent)
    : QDialog(parent), catalogue_(catalogue), prompts_(prompts),
      refresh_tree_(std::move(refresh_tree)) {
    setObjectName(QStringLiteral("frmsearch"));
    setWindowTitle(DiscoveryTexts::tr("Find New Visual Pinball Tables"));
    BuildControls();
    BuildLayout();
    connect(cmdgo_, &QPushButton::clicked, this, &frmsearch::Scan);
    connect(cmdExit_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmsearch::BuildControls() {
    lstdirs_ = new QListWidget(this);
    lstdirs_->setObjectName(QStringLiteral("lstdirs"));
    lstdirs_->setUniformItemSizes(true);
    lstdirs_->setFocusPolicy(Qt::NoFocus);
    lstdirs_->setAccessibleName(DiscoveryTexts::tr("Folders still to be searched"));
    lblHint_ = widgets::Named(new QLabel(this), "lblHint");
    lblHint_->setWordWrap(true);
    lblHint_->setText(
        DiscoveryTexts::tr("Press Search and choose the folder that holds your tables. "
                           "Folders below it are searched, too."));
    lbltime_ = MakeLabel("lbltime", this);
    Label2_ = MakeLabel("Label2", this);
    lblCRC_ = MakeLabel("lblCRC", this);
    cmdgo_ = MakeButton("cmdgo", DiscoveryTexts::tr("&Search"), this);
    cmdgo_->setDefault(true);
    cmdExit_ = MakeButton("cmdExit", DiscoveryTexts::tr("&Done"), this);
}

void frmsearch::BuildLayout() {
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdgo_);
    buttons->addWidget(cmdExit_);
    auto* column = new QVBoxLayout(this);
    column->addWidget(lblHint_);
    column->addWidget(lbltime_);
    column->addWidget(lstdirs_, 1);
    column->addWidget(Label2_);
    column->addWidget(lblCRC_);
    column->addLayout(buttons);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 22);
}

void frmsearch::done(int result) {
    if (idle_) {
        run_count_ = 0;
        QDialog::done(result);
        return;
    }
    prompts_.Ask({DiscoveryTexts::tr("Still scanning. Please wait..."),
                  {},
                  platform::MessageIcon::kInformation,
                  platform::MessageButtons::kOk});
}

void frmsearch::Scan() {
    if (run_count_ >= 1) return;
    ++run_count_;
    idle_ = false;
    found_count_ = 0;
    cmdgo_->hide();
    lblHint_->hide();
    cmdExit_->setText(DiscoveryTexts::tr("Scanning..."));
    setProperty(kBusy, true);
    const jet::NamedChange named(*catalogue_.CatalogueConnection, kScanName);
    base::Status done = WalkFolders();
    idle_ = true;
    if (done.ok()) done = ReadTableInformation();
    ShowResult(done);
    cmdExit_->setText(DiscoveryTexts::tr("&Done"));
    setProperty(kBusy, false);
    if (refresh_tree_) refresh_tree_();
}

base::Status frmsearch::WalkFolders() {
    FolderScan scan(catalogue_, *this, *this);
    QString& last = catalogue_.values->last_folders.scan;
    const QString chosen = prompts_.ChooseFolder({}, last);
    if (!chosen.isEmpty()) last = chosen;
    base::Status done = scan.Run(chosen);
    found_count_ = scan.found_count();
    passed_over_ = scan.passed_over();
    if (!chosen.isEmpty() && scan.start_listing().ok()) Remember(chosen);
    return done;
}

// Without that it is scanned all the same.
void frmsearch::Remember(const QString& folder) {
    const QString file = catalogue::CataloguePath(catalogue_);
    const base::Status stored = catalogue::RememberCollectionFolder(file, folder);
    if (!stored.ok()) passed_over_.Note(catalogue::CollectionFoldersFile(file), stored);
}

base::Status frmsearch::ReadTableInformation() {
    Label2_->setText(DiscoveryTexts::tr("Reading VPT Info..."));
    repaint();
    // The label above says it.
    return catalogue::RunLong(catalogue_, {QString()}, [this](const base::RunSteps&) {
        return tableinfo::UpdateFromTableFiles(catalogue_, 0, nullptr, {}, &passed_over_);
    });
}

// A scan that a database error has ended is incomplete; the tables that it has added count.
void frmsearch::ShowResult(const base::Status& done) {
    catalogue::ShowError(prompts_, done);
    Label2_->setText(done.ok() ? DiscoveryTexts::tr("Process Complete") : QString());
    lstdirs_->clear();
    lblCRC_->clear();
    lbltime_->setText(
        DiscoveryTexts::tr("New Tables Found and added to your database: %1").arg(found_count_));
}

void frmsearch::FolderQueued(const QString& folder) {
    lstdirs_->addItem(folder);
}

void frmsearch::ListingFolder(const QString& folder) {
    lbltime_->setText(DiscoveryTexts::tr("Searching . . . %1").arg(folder));
}

void frmsearch::FolderListed() {
    delete lstdirs_->takeItem(0);
}

void frmsearch::TableAdded(const QString& display_name, const QString& checksum_text) {
    Label2_->setText(DiscoveryTexts::tr("Adding: %1").arg(display_name));
    lblCRC_->setText(checksum_text);
    repaint();
}

void frmsearch::ProcessEvents() {
    QCoreApplication::processEvents();
}

}  // namespace discovery
