#include "dialogs/frmSettings.h"

#include "dialogs/executable_setting.h"
#include "dialogs/texts.h"
#include "widgets/svg_icon.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace dialogs {

frmSettings::frmSettings(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                         QWidget* parent)
    : QDialog(parent), catalogue_(catalogue), prompts_(prompts) {
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(DialogsTexts::tr("Settings"));
    BuildLayout();
    txtDet_->setText(StoredExecutable(catalogue_));
}

void frmSettings::BuildLayout() {
    auto* label = new QLabel(DialogsTexts::tr("VP Executable:"), this);
    label->setObjectName(QStringLiteral("Label2"));
    txtDet_ = new QLineEdit(this);
    txtDet_->setObjectName(QStringLiteral("txtDet_0"));
    txtDet_->setMinimumWidth(fontMetrics().averageCharWidth() * 60);
    label->setBuddy(txtDet_);

    auto* choose = new QToolButton(this);
    choose->setObjectName(QStringLiteral("cmdExeLoc"));
    choose->setIcon(widgets::SvgIcon(QStringLiteral("open")));
    choose->setToolTip(DialogsTexts::tr("Select Visual Pinball Executable"));
    choose->setAccessibleName(choose->toolTip());
    connect(choose, &QToolButton::clicked, this, &frmSettings::ChooseFile);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("OKButton"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("CancelButton"));
    buttons->button(QDialogButtonBox::Cancel)->setText(DialogsTexts::tr("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &frmSettings::StoreAndClose);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* line = new QHBoxLayout;
    line->addWidget(txtDet_);
    line->addWidget(choose);
    auto* column = new QVBoxLayout(this);
    column->addWidget(label);
    column->addLayout(line);
    column->addStretch();
    column->addWidget(buttons);
}

void frmSettings::ChooseFile() {
    txtDet_->setText(ChooseExecutable(prompts_, txtDet_->text()));
}

void frmSettings::StoreAndClose() {
    if (StoreExecutable(catalogue_, prompts_, txtDet_->text())) accept();
}

}  // namespace dialogs
