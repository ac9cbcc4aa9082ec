#include "maintenance/frmPathPair.h"

#include "catalogue/error_report.h"
#include "maintenance/texts.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace maintenance {
namespace {

constexpr int kVisibleLetters = 50;

}  // namespace

frmPathPair::frmPathPair(const catalogue::PathPair& pair, Take take, platform::UserPrompts& prompts,
                         QWidget* parent)
    : QDialog(parent), take_(std::move(take)), prompts_(prompts) {
    setObjectName(QStringLiteral("frmPathPair"));
    setWindowTitle(MaintenanceTexts::tr("Line of the Path Map"));
    BuildControls(pair);
}

void frmPathPair::BuildControls(const catalogue::PathPair& pair) {
    txtStored_ = new QLineEdit(pair.stored, this);
    txtStored_->setObjectName(QStringLiteral("txtStored"));
    txtStored_->setMinimumWidth(fontMetrics().averageCharWidth() * kVisibleLetters);
    txtHere_ = new QLineEdit(pair.here, this);
    txtHere_->setObjectName(QStringLiteral("txtHere"));
    auto* stored = new QLabel(MaintenanceTexts::tr("&Stored path begins with"), this);
    stored->setBuddy(txtStored_);
    auto* here = new QLabel(MaintenanceTexts::tr("Is &here"), this);
    here->setBuddy(txtHere_);
    auto* browse = new QPushButton(MaintenanceTexts::tr("&Browse..."), this);
    browse->setObjectName(QStringLiteral("cmdBrowse"));
    browse->setAutoDefault(false);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* const ok = buttons->button(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("OKButton"));
    ok->setText(MaintenanceTexts::tr("OK"));
    QPushButton* const cancel = buttons->button(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    cancel->setText(MaintenanceTexts::tr("Cancel"));

    auto* grid = new QGridLayout;
    grid->addWidget(stored, 0, 0);
    grid->addWidget(txtStored_, 0, 1, 1, 2);
    grid->addWidget(here, 1, 0);
    grid->addWidget(txtHere_, 1, 1);
    grid->addWidget(browse, 1, 2);
    auto* column = new QVBoxLayout(this);
    column->addLayout(grid);
    column->addStretch();
    column->addWidget(buttons);
    connect(browse, &QPushButton::clicked, this, &frmPathPair::ChooseFolder);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmPathPair::TakeOver);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void frmPathPair::ChooseFolder() {
    const QString folder = prompts_.ChooseFolder({}, txtHere_->text());
    if (!folder.isEmpty()) txtHere_->setText(folder);
}

void frmPathPair::TakeOver() {
    const base::Status taken = take_({txtStored_->text(), txtHere_->text()});
    if (taken.ok()) return accept();
    platform::Message message;
    message.text = catalogue::FailureText(taken);
    message.title = windowTitle();
    message.icon = platform::MessageIcon::kInformation;
    prompts_.Ask(message);
}

}  // namespace maintenance
