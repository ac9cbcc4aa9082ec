#include "maintenance/frmImport.h"

#include "catalogue/error_report.h"

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

// A line of a file of another kind may have a million characters.
constexpr qsizetype kShownCharacters = 500;

QString OneShortLine(const QLabel& label, const QString& text) {
    QString shown = text.left(kShownCharacters);
    for (QChar& c : shown)
        if (!c.isPrint()) c = u' ';
    return label.fontMetrics().elidedText(shown, Qt::ElideRight, label.width());
}

QLabel* MakeProgressLine(const QString& name, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
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
    setWindowTitle(QStringLiteral("Import VPLauncher Data"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(BuildOptions());
    column->addWidget(BuildProgress());
    column->addStretch();
    column->addWidget(BuildButton());
    const auto dates = DatesAdded(*catalogue.CatalogueConnection);
    catalogue::ShowError(prompts, dates.status());
    Combo1_->addItems(dates.value_or({}));
    Combo1_->setCurrentIndex(-1);
    Combo1_->setEditText(QStringLiteral("Select a Date"));
}

QWidget* frmImport::BuildOptions() {
    auto* panel = new QWidget(this);
    optImport_[0] = new QRadioButton(QStringLiteral("All Files"), panel);
    optImport_[0]->setObjectName(QStringLiteral("optImport_0"));
    optImport_[0]->setChecked(true);
    optImport_[1] = new QRadioButton(QStringLiteral("Files added"), panel);
    optImport_[1]->setObjectName(QStringLiteral("optImport_1"));
    auto* after = new QLabel(QStringLiteral("AFTER"), panel);
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
    cmdImport_ = new QPushButton(QStringLiteral("Start"), row);
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
    if (cmdImport_->text() == QStringLiteral("Done")) {
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
    lblReading_->setText(OneShortLine(*lblReading_, text));
    lblReading_->setToolTip(text.left(kShownCharacters).toHtmlEscaped());
}

void frmImport::SetWriting(const QString& text) {
    lblWriting_->setText(OneShortLine(*lblWriting_, text));
    lblWriting_->setToolTip(text.left(kShownCharacters).toHtmlEscaped());
}

void frmImport::SetDone() {
    cmdImport_->setText(QStringLiteral("Done"));
}

}  // namespace maintenance
