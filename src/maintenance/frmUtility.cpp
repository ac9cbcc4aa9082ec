#include "maintenance/frmUtility.h"

#include "catalogue/error_report.h"
#include "maintenance/reset_paths.h"
#include "maintenance/texts.h"
#include "platform/shown_text.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace maintenance {
namespace {

constexpr const char* kTag = "tag";

}  // namespace

frmUtility::frmUtility(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                       std::function<void()> refresh_tree, QWidget* parent)
    : QDialog(parent), catalogue_(catalogue), prompts_(prompts),
      refresh_tree_(std::move(refresh_tree)) {
    setObjectName(QStringLiteral("frmUtility"));
    setWindowTitle(MaintenanceTexts::tr("Global Path Change"));
    auto* column = new QVBoxLayout(this);
    column->addWidget(BuildKinds());
    column->addWidget(BuildPaths());
    column->addStretch();
    column->addWidget(BuildButtons());
    txtExisting_->setFocus();
}

QWidget* frmUtility::BuildKinds() {
    auto* group = new QGroupBox(MaintenanceTexts::tr("Change the paths of"), this);
    auto* column = new QVBoxLayout(group);
    for (std::size_t i = 0; i < kPathKinds.size(); ++i) {
        auto* option =
            new QRadioButton(platform::Shown<MaintenanceTexts>(kPathKinds[i].caption), group);
        option->setObjectName(QStringLiteral("optType_%1").arg(i));
        option->setProperty(kTag, kPathKinds[i].kind.toString());
        option->setChecked(i == 0);
        column->addWidget(option);
        optType_.push_back(option);
    }
    return group;
}

QWidget* frmUtility::BuildPaths() {
    auto* panel = new QWidget(this);
    txtExisting_ = new QLineEdit(panel);
    txtExisting_->setObjectName(QStringLiteral("txtExisting"));
    txtExisting_->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    txtNew_ = new QLineEdit(panel);
    txtNew_->setObjectName(QStringLiteral("txtNew"));
    auto* form = new QFormLayout(panel);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(MaintenanceTexts::tr("Existing Path"), txtExisting_);
    form->addRow(MaintenanceTexts::tr("New Path"), txtNew_);
    return panel;
}

QWidget* frmUtility::BuildButtons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("OKButton"));
    ok->setText(MaintenanceTexts::tr("OK"));
    QPushButton* cancel = buttons->button(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    cancel->setText(MaintenanceTexts::tr("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &frmUtility::ChangePaths);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return buttons;
}

// The window closes after the warning, too.
void frmUtility::ChangePaths() {
    const QString existing = txtExisting_->text();
    const QString next = txtNew_->text();
    if (existing.trimmed().isEmpty() || next.trimmed().isEmpty()) {
        WarnOfMissingPath();
    } else {
        catalogue::ShowError(prompts_,
                             ResetPaths(catalogue_, prompts_, SelectedKind(), existing, next));
        refresh_tree_();
    }
    accept();
}

QString frmUtility::SelectedKind() const {
    for (const QRadioButton* option : optType_)
        if (option->isChecked()) return option->property(kTag).toString();
    return {};
}

void frmUtility::WarnOfMissingPath() {
    platform::Message message;
    message.text = MaintenanceTexts::tr("Both EXISTING and NEW paths are required!");
    message.title = windowTitle();
    message.icon = platform::MessageIcon::kExclamation;
    prompts_.Ask(message);
}

}  // namespace maintenance
