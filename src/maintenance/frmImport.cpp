#include "maintenance/frmImport.h"

#include "catalogue/error_report.h"
#include "maintenance/texts.h"
#include "widgets/elided_label.h"

#include <QtGui/QCloseEvent>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace maintenance {
namespace {

QLabel* MakeProgressLine(const QString& name, QWidget* parent) {
    auto* label = new widgets::ElidedLabel(parent);
    label->setObjectName(name);
    label->setFixedWidth(label->fontMetrics().averageCharWidth() * 60);
    return label;
}

}  // namespace

frmImport::frmImport(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                     platform::UserEvents& events, std::function<void()> refresh_tree,
                     QWidget* parent)
    : QDialog(parent), import_(catalogue, prompts, events, *this),
      refresh_tree_(std::move(refresh_tree)) {
    setObjectName(QStringLiteral("frmImport"));
    setWindowTitle(MaintenanceTexts::tr("Import VPLauncher Data"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(BuildOptions());
    column->addWidget(BuildProgress());
    column->addStretch();
    column->addWidget(BuildButton());
    const auto dates = DatesAdded(*catalogue.CatalogueConnection);
    catalogue::ShowError(prompts, dates.status());
    Combo1_->addItems(dates.value_or({}));
    Combo1_->setCurrentIndex(-1);
    Combo1_->setEditText(MaintenanceTexts::tr("Select a Date"));
}

QWidget* frmImport::BuildOptions() {
    auto* panel = new QWidget(this);
    optImport_[0] = new QRadioButton(MaintenanceTexts::tr("All Files"), panel);
    optImport_[0]->setObjectName(QStringLiteral("optImport_0"));
    optImport_[0]->setChecked(true);
    optImport_[1] = new QRadioButton(MaintenanceTexts::tr("Files added"), panel);
    optImport_[1]->setObjectName(QStringLiteral("optImport_1"));
    auto* after = new QLabel(MaintenanceTexts::tr("AFTER"), panel);
    after->setObjectName(QStringLiteral("Label1"));
    Combo1_ = new QComboBox(panel);
    Combo1_->setObjectName(QStringLiteral("Combo1"));
    Combo1_->setEditable(true);
    Combo1_->setCompleter(nullptr);  // a typed date must not become a listed one
    Combo1_->setInsertPolicy(QComboBox::NoInsert);
    Combo1_->setMinimumContentsLength(24);
    after->setBuddy(Combo1_);

    auto* line = new QHBoxLayout;
    line->addWidget(optImport_[1]);
    line->addWidget(after);
    line->addWidget(Combo1_, 1);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(optImport_[0]);
    column->addLayout(line);
    return panel;
}

QWidget* frmImport::BuildProgress() {
    auto* panel = new QFrame(this);
    panel->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    lblReading_ = MakeProgressLine(QStringLiteral("lblReading"), panel);
    lblWriting_ = MakeProgressLine(QStringLiteral("lblWriting"), panel);
    auto* column = new QVBoxLayout(panel);
    column->addWidget(lblReading_);
    column->addWidget(lblWriting_);
    return panel;
}

QWidget* frmImport::BuildButton() {
    auto* row = new QWidget(this);
    cmdImport_ = new QPushButton(MaintenanceTexts::tr("Start"), row);
    cmdImport_->setObjectName(QStringLiteral("cmdImport"));
    cmdImport_->setDefault(true);
    connect(cmdImport_, &QPushButton::clicked, this, &frmImport::StartOrFinish);
    auto* line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->addStretch();
    line->addWidget(cmdImport_);
    return row;
}

void frmImport::StartOrFinish() {
    if (busy_) return;
    if (done_) {
        refresh_tree_();
        accept();
    } else if (optImport_[0]->isChecked()) {
        import_.ImportAll();
    } else {
        import_.ImportAddedAfter(Combo1_->currentText());
    }
}

void frmImport::reject() {
    if (!busy_) QDialog::reject();
}

void frmImport::closeEvent(QCloseEvent* event) {
    if (busy_)
        event->ignore();
    else
        QDialog::closeEvent(event);
}

void frmImport::SetBusy(bool busy) {
    busy_ = busy;
    optImport_[0]->setEnabled(!busy);
    optImport_[1]->setEnabled(!busy);
    Combo1_->setEnabled(!busy);
    cmdImport_->setEnabled(!busy);
}

void frmImport::SetReading(const QString& text) {
    lblReading_->setText(text.left(widgets::ElidedLabel::kMaxShownCharacters));
}

void frmImport::SetWriting(const QString& text) {
    lblWriting_->setText(text.left(widgets::ElidedLabel::kMaxShownCharacters));
}

void frmImport::SetDone() {
    done_ = true;
    cmdImport_->setText(MaintenanceTexts::tr("Done"));
}

}  // namespace maintenance
