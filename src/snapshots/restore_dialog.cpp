#include "snapshots/restore_dialog.h"

#include "catalogue/date_texts.h"
#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "catalogue/process_values.h"
#include "snapshots/texts.h"

#include <QtCore/QLocale>
#include <QtCore/QPointer>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

namespace snapshots {
namespace {

constexpr int kVisibleLines = 14;
constexpr int kDifferenceLines = 6;
constexpr qint64 kKilobyte = 1024;

QString SizeText(std::uint64_t bytes) {
    const auto kilobytes = static_cast<qlonglong>((bytes + kKilobyte - 1) / kKilobyte);
    return QLocale::c().toString(kilobytes) + QStringLiteral(" KB");
}

QTreeWidgetItem* ItemOf(const RestoreEntry& entry) {
    auto* item =
        new QTreeWidgetItem({entry.time.isValid() ? catalogue::GeneralDate(entry.time) : QString(),
                             entry.occasion, SizeText(entry.size_bytes), StateText(entry.state)});
    item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
    return item;
}

QString DifferencesText(const std::vector<TableDifference>& differences) {
    QStringList lines{SnapshotsTexts::tr("Compared with today:")};
    for (const TableDifference& table : differences)
        lines.append(QString::fromStdString(table.table) + QStringLiteral(": ") +
                     DifferenceText(table));
    return lines.join(u'\n');
}

}  // namespace

RestoreDialog::RestoreDialog(Parts parts, QWidget* parent)
    : QDialog(parent), parts_(std::move(parts)) {
    setObjectName(QStringLiteral("RestoreDialog"));
    setWindowTitle(SnapshotsTexts::tr("Restore"));
    BuildControls();
    ReadList();
}

void RestoreDialog::BuildControls() {
    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("lstSnapshots"));
    list_->setAccessibleName(SnapshotsTexts::tr("Snapshots"));
    list_->setHeaderLabels({SnapshotsTexts::tr("Time"), SnapshotsTexts::tr("Made"),
                            SnapshotsTexts::tr("Size"), SnapshotsTexts::tr("State")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list_->setMinimumSize(fontMetrics().averageCharWidth() * 90,
                          fontMetrics().lineSpacing() * kVisibleLines);
    differences_ = new QLabel(SnapshotsTexts::tr("Reading the snapshots..."), this);
    differences_->setObjectName(QStringLiteral("lblDifferences"));
    differences_->setTextFormat(Qt::PlainText);
    differences_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    differences_->setWordWrap(true);
    differences_->setMinimumHeight(fontMetrics().lineSpacing() * kDifferenceLines);

    auto* buttons = new QDialogButtonBox(this);
    restore_ = new QPushButton(SnapshotsTexts::tr("&Restore"), buttons);
    restore_->setObjectName(QStringLiteral("cmdRestore"));
    buttons->addButton(restore_, QDialogButtonBox::AcceptRole);
    restore_->setEnabled(false);
    QPushButton* const close = buttons->addButton(QDialogButtonBox::Close);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setText(SnapshotsTexts::tr("&Close"));
    close->setDefault(true);  // Enter alone restores nothing

    auto* column = new QVBoxLayout(this);
    column->addWidget(list_, 1);
    column->addWidget(differences_);
    column->addWidget(buttons);
    connect(list_, &QTreeWidget::itemSelectionChanged, this, &RestoreDialog::ShowChosen);
    connect(buttons, &QDialogButtonBox::accepted, this, &RestoreDialog::RestoreChosen);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void RestoreDialog::ReadList() {
    using Entries = base::Result<std::vector<RestoreEntry>>;
    const auto entries = std::make_shared<Entries>(std::vector<RestoreEntry>());
    parts_.keeper.Run(
        [entries, &keeper = parts_.keeper, folder = parts_.catalogue.values->ApplicationFolder] {
            *entries = RestoreEntries(keeper.files(), keeper.store(), folder);
        },
        [window = QPointer<RestoreDialog>(this), entries] {
            if (window) window->ShowList(*entries);
        });
}

void RestoreDialog::ShowList(const base::Result<std::vector<RestoreEntry>>& entries) {
    if (entries.ok()) entries_ = *entries;
    for (const RestoreEntry& entry : entries_)
        list_->addTopLevelItem(ItemOf(entry));
    if (!entries.ok())
        differences_->setText(catalogue::FailureText(entries.status()));
    else if (entries_.empty())
        differences_->setText(SnapshotsTexts::tr("There is no snapshot yet."));
    else
        list_->setCurrentItem(list_->topLevelItem(0));
    Q_EMIT Shown();
}

int RestoreDialog::ChosenRow() const {
    const QList<QTreeWidgetItem*> chosen = list_->selectedItems();
    return chosen.isEmpty() ? -1 : list_->indexOfTopLevelItem(chosen.front());
}

void RestoreDialog::ShowChosen() {
    restore_->setEnabled(false);
    const int row = ChosenRow();
    if (row < 0) return;
    const RestoreEntry& entry = entries_[static_cast<std::size_t>(row)];
    if (!entry.can_be_restored()) {
        differences_->setText(SnapshotsTexts::tr("This snapshot cannot be restored."));
        Q_EMIT Shown();
        return;
    }
    differences_->setText(SnapshotsTexts::tr("Comparing with today..."));
    using Differences = base::Result<std::vector<TableDifference>>;
    const auto differences = std::make_shared<Differences>(std::vector<TableDifference>());
    parts_.keeper.Run(
        [differences, entry, &keeper = parts_.keeper] {
            *differences = CompareEntry(keeper.files(), keeper.store(), entry);
        },
        [window = QPointer<RestoreDialog>(this), differences, row] {
            if (window) window->ShowDifferences(row, *differences);
        });
}

void RestoreDialog::ShowDifferences(int row,
                                    const base::Result<std::vector<TableDifference>>& differences) {
    if (row != ChosenRow()) return;  // another one was chosen meanwhile
    differences_->setText(differences.ok() ? DifferencesText(*differences)
                                           : catalogue::FailureText(differences.status()));
    restore_->setEnabled(differences.ok());
    Q_EMIT Shown();
}

bool RestoreDialog::Confirm(const RestoreEntry& entry) {
    platform::Message question;
    question.text = SnapshotsTexts::tr(
                        "The catalogue becomes what it was on %1 (%2).\nThe state of today is kept "
                        "and can be restored.\n\nDo you want to continue?")
                        .arg(catalogue::GeneralDate(entry.time), entry.occasion);
    question.title = windowTitle();
    question.icon = platform::MessageIcon::kExclamation;
    question.buttons = platform::MessageButtons::kYesNo;
    return parts_.prompts.Ask(question) == platform::MessageAnswer::kYes;
}

void RestoreDialog::RestoreChosen() {
    const int row = ChosenRow();
    if (row < 0 || !restore_->isEnabled()) return;
    const RestoreEntry entry = entries_[static_cast<std::size_t>(row)];
    if (!Confirm(entry)) return;
    const auto restored =
        catalogue::RunLong(parts_.catalogue, {windowTitle(), catalogue::LongRun::Stop::kOnRequest},
                           [&](const base::RunSteps& steps) {
                               return RestoreCatalogue(parts_.catalogue, parts_.keeper.files(),
                                                       parts_.keeper.store(), entry, steps);
                           });
    if (base::IsStopped(restored.status())) return;
    parts_.refresh_tree();
    if (!restored.ok()) {
        catalogue::ShowError(parts_.prompts, restored.status());
        return;
    }
    platform::Message done;
    done.text = RestoredText(*restored);
    done.title = windowTitle();
    done.icon = platform::MessageIcon::kInformation;
    parts_.prompts.Ask(done);
    accept();
}

}  // namespace snapshots
