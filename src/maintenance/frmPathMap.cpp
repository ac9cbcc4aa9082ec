#include "maintenance/frmPathMap.h"

#include "catalogue/error_report.h"
#include "catalogue/local_paths.h"
#include "catalogue/long_run.h"
#include "catalogue/process_values.h"
#include "catalogue/stored_paths.h"
#include "maintenance/frmPathPair.h"
#include "maintenance/texts.h"

#include <QtCore/QLocale>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace maintenance {
namespace {

using catalogue::PathPair;

constexpr int kVisibleLines = 8;
constexpr int kListLetters = 84;

enum Column { kStored, kHere, kPaths, kFound };

QString NumberText(std::int64_t number) {
    return QLocale(QLocale::English, QLocale::UnitedStates)
        .toString(static_cast<qlonglong>(number));
}

QTreeWidgetItem* ItemOf(const PathPair& pair) {
    auto* item = new QTreeWidgetItem({pair.stored, pair.here});
    for (const int column : {kPaths, kFound})
        item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

}  // namespace

frmPathMap::frmPathMap(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                       std::function<void()> refresh_tree, QWidget* parent)
    : QDialog(parent), catalogue_(catalogue), prompts_(prompts),
      refresh_tree_(std::move(refresh_tree)), pairs_(catalogue.values->paths.map()->pairs()) {
    setObjectName(QStringLiteral("frmPathMap"));
    setWindowTitle(MaintenanceTexts::tr("Path Map"));
    BuildControls();
    ShowPairs();
    // When the window is there, so that it shows how far that is.
    QMetaObject::invokeMethod(this, &frmPathMap::ReadPaths, Qt::QueuedConnection);
}

void frmPathMap::BuildControls() {
    auto* explanation = new QLabel(
        MaintenanceTexts::tr(
            "The catalogue may name its files as another computer does. This map says where they "
            "are here. The paths in the catalogue stay as they are."),
        this);
    explanation->setWordWrap(true);
    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("lstPairs"));
    list_->setAccessibleName(MaintenanceTexts::tr("Path Map"));
    list_->setHeaderLabels({MaintenanceTexts::tr("Stored path begins with"),
                            MaintenanceTexts::tr("Is here"), MaintenanceTexts::tr("Paths"),
                            MaintenanceTexts::tr("Found here")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list_->header()->setSectionResizeMode(kHere, QHeaderView::Stretch);
    list_->header()->setStretchLastSection(false);
    for (const int column : {kPaths, kFound})
        list_->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    list_->setMinimumSize(fontMetrics().averageCharWidth() * kListLetters,
                          fontMetrics().lineSpacing() * kVisibleLines);
    lblOthers_ = new QLabel(MaintenanceTexts::tr("Looking for the files..."), this);
    lblOthers_->setObjectName(QStringLiteral("lblOthers"));
    lblOthers_->setTextFormat(Qt::PlainText);
    lblOthers_->setWordWrap(true);

    auto* column = new QVBoxLayout(this);
    column->addWidget(explanation);
    column->addWidget(list_, 1);
    column->addWidget(lblOthers_);
    column->addWidget(BuildButtons());
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &frmPathMap::EnableButtons);
    connect(list_, &QTreeWidget::itemActivated, this, &frmPathMap::Edit);
    EnableButtons();
}

QPushButton* frmPathMap::AddButton(const QString& caption, const char* name,
                                   void (frmPathMap::*action)()) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(QLatin1String(name));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

QWidget* frmPathMap::BuildButtons() {
    auto* panel = new QWidget(this);
    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(AddButton(MaintenanceTexts::tr("&Add..."), "cmdAdd", &frmPathMap::Add));
    cmdEdit_ = AddButton(MaintenanceTexts::tr("&Edit..."), "cmdEdit", &frmPathMap::Edit);
    row->addWidget(cmdEdit_);
    cmdRemove_ = AddButton(MaintenanceTexts::tr("&Remove"), "cmdRemove", &frmPathMap::Remove);
    row->addWidget(cmdRemove_);
    row->addWidget(AddButton(MaintenanceTexts::tr("&Propose"), "cmdPropose", &frmPathMap::Propose));
    row->addWidget(AddButton(MaintenanceTexts::tr("Look in &Folder..."), "cmdLookInFolder",
                             &frmPathMap::LookInFolder));
    row->addStretch();
    auto* close = new QPushButton(MaintenanceTexts::tr("&Close"), panel);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    row->addWidget(close);
    return panel;
}

void frmPathMap::EnableButtons() {
    const bool is_chosen = ChosenRow() >= 0;
    cmdEdit_->setEnabled(is_chosen);
    cmdRemove_->setEnabled(is_chosen);
}

int frmPathMap::ChosenRow() const {
    const QList<QTreeWidgetItem*> chosen = list_->selectedItems();
    return chosen.isEmpty() ? -1 : list_->indexOfTopLevelItem(chosen.front());
}

void frmPathMap::ReadPaths() {
    const auto stored = catalogue::RunLong(
        catalogue_,
        {MaintenanceTexts::tr("Reading the paths"), catalogue::LongRun::Stop::kOnRequest},
        [this](const base::RunSteps& steps) {
            return catalogue::StoredPaths(*catalogue_.CatalogueConnection, steps);
        });
    if (!stored.ok()) {
        lblOthers_->setText(catalogue::FailureText(stored.status()));
        return;
    }
    stored_ = *stored;
    Count();
}

void frmPathMap::ShowPairs() {
    list_->clear();
    for (const PathPair& pair : pairs_)
        list_->addTopLevelItem(ItemOf(pair));
    if (!pairs_.empty()) list_->setCurrentItem(list_->topLevelItem(0));
    EnableButtons();
}

void frmPathMap::Count() {
    bool was_stopped = false;
    const catalogue::PathCounts counts = catalogue::RunLong(
        catalogue_,
        {MaintenanceTexts::tr("Looking for the files"), catalogue::LongRun::Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            auto counted = catalogue::CountPaths(stored_, catalogue::PathMap(pairs_), steps);
            was_stopped = steps.stop.stop_requested();
            return counted;
        });
    if (was_stopped) {
        lblOthers_->setText(MaintenanceTexts::tr("The files were not all looked for."));
        return;
    }
    for (std::size_t i = 0; i < counts.pairs.size(); ++i) {
        QTreeWidgetItem* const item = list_->topLevelItem(static_cast<int>(i));
        item->setText(kPaths, NumberText(counts.pairs[i].stored));
        item->setText(kFound, NumberText(counts.pairs[i].found));
    }
    const QString others =
        pairs_.empty()
            ? MaintenanceTexts::tr("%1 of the %2 paths in the catalogue are found here.")
            : MaintenanceTexts::tr("Of the paths that begin otherwise %1 of %2 are found here.");
    lblOthers_->setText(
        others.arg(NumberText(counts.others.found), NumberText(counts.others.stored)));
    Q_EMIT Counted();
}

base::Status frmPathMap::Change(std::vector<PathPair> pairs) {
    RETURN_IF_ERROR(catalogue::CheckPairs(pairs));
    // What cannot be stored counts nevertheless until the program ends.
    base::Status stored = catalogue::WritePathPairs(*catalogue_.settings, pairs);
    catalogue_.values->paths.Use(catalogue::PathMap(pairs));
    pairs_ = std::move(pairs);
    is_changed_ = true;
    ShowPairs();
    catalogue::ShowError(prompts_, stored);
    return {};
}

void frmPathMap::Add() {
    frmPathPair dialog(
        {},
        [this](const PathPair& pair) {
            std::vector<PathPair> pairs = pairs_;
            pairs.push_back(pair);
            return Change(std::move(pairs));
        },
        prompts_, this);
    if (dialog.exec() == QDialog::Accepted) Count();
}

void frmPathMap::Edit() {
    const int row = ChosenRow();
    if (row < 0) return;
    const auto place = static_cast<std::size_t>(row);
    frmPathPair dialog(
        pairs_[place],
        [this, place](const PathPair& pair) {
            std::vector<PathPair> pairs = pairs_;
            pairs[place] = pair;
            return Change(std::move(pairs));
        },
        prompts_, this);
    if (dialog.exec() != QDialog::Accepted) return;
    list_->setCurrentItem(list_->topLevelItem(row));
    Count();
}

void frmPathMap::Remove() {
    const int row = ChosenRow();
    if (row < 0) return;
    std::vector<PathPair> pairs = pairs_;
    pairs.erase(pairs.begin() + row);
    catalogue::ShowError(prompts_, Change(std::move(pairs)));
    Count();
}

void frmPathMap::Propose() {
    const auto folders = catalogue::FoldersToSearch(catalogue_);
    if (!folders.ok()) return catalogue::ShowError(prompts_, folders.status());
    ProposeFrom(*folders);
}

void frmPathMap::LookInFolder() {
    const QString folder =
        prompts_.ChooseFolder(MaintenanceTexts::tr("Select the folder that has the files."));
    if (!folder.isEmpty()) ProposeFrom({folder});
}

void frmPathMap::ProposeFrom(const QStringList& folders) {
    bool was_stopped = false;
    const auto proposed = catalogue::RunLong(
        catalogue_,
        {MaintenanceTexts::tr("Looking for the files"), catalogue::LongRun::Stop::kOnRequest},
        [&](const base::RunSteps& steps) {
            auto pairs =
                catalogue::ProposePairs(stored_, folders, catalogue::PathMap(pairs_), steps);
            was_stopped = steps.stop.stop_requested();
            return pairs;
        });
    if (was_stopped) return;
    if (proposed.empty()) return SayNothingWasFound();
    if (!Agrees(proposed)) return;
    std::vector<PathPair> pairs = pairs_;
    for (const catalogue::ProposedPair& each : proposed)
        pairs.push_back(each.pair);
    catalogue::ShowError(prompts_, Change(std::move(pairs)));
    Count();
}

void frmPathMap::SayNothingWasFound() {
    platform::Message message;
    message.text = MaintenanceTexts::tr(
        "None of the missing files was found in the folders that were looked through. \"Look in "
        "Folder...\" looks through another one.");
    message.title = windowTitle();
    message.icon = platform::MessageIcon::kInformation;
    prompts_.Ask(message);
}

bool frmPathMap::Agrees(const std::vector<catalogue::ProposedPair>& proposed) {
    QStringList lines;
    for (const catalogue::ProposedPair& each : proposed)
        lines.append(MaintenanceTexts::tr("%1 is here %2: %3 of %4 missing files are found")
                         .arg(each.pair.stored, each.pair.here, NumberText(each.found),
                              NumberText(each.stored)));
    platform::Message question;
    question.text = lines.join(u'\n') + QStringLiteral("\n\n") +
                    MaintenanceTexts::tr("Add this to the path map?");
    question.title = windowTitle();
    question.buttons = platform::MessageButtons::kYesNo;
    return prompts_.Ask(question) == platform::MessageAnswer::kYes;
}

void frmPathMap::done(int result) {
    QDialog::done(result);
    if (std::exchange(is_changed_, false)) refresh_tree_();
}

}  // namespace maintenance
