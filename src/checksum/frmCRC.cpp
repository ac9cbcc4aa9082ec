#include "checksum/frmCRC.h"

#include "base/scope_guards.h"
#include "checksum/crc_refresh.h"
#include "checksum/texts.h"
#include "widgets/elided_label.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>
#include <QtGui/QShowEvent>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <utility>

namespace checksum {

frmCRC::frmCRC(catalogue::Catalogue& catalogue, QWidget* parent, catalogue::Progress progress)
    : QDialog(parent), catalogue_(catalogue), progress_(std::move(progress)) {
    setObjectName(QStringLiteral("frmCRC"));
    setWindowTitle(ChecksumTexts::tr("CRC Utility - Update all CRC Values in database"));
    BuildControls();
    connect(Command1_, &QPushButton::clicked, this, &frmCRC::Refresh);
}

void frmCRC::BuildControls() {
    // The line holds names from table files.
    Label1_ = new widgets::ElidedLabel(this);
    Label1_->setObjectName(QStringLiteral("Label1"));
    Command1_ = new QPushButton(QStringLiteral("Command1"), this);
    Command1_->setObjectName(QStringLiteral("Command1"));
    Command1_->hide();  // pressed by the window itself
    auto* column = new QVBoxLayout(this);
    column->addWidget(Label1_);
    column->addWidget(Command1_);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().height() * 4);
}

void frmCRC::done(int result) {
    if (!busy_) QDialog::done(result);
}

void frmCRC::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) StartSoon();
}

// Without a window manager no window becomes active.
void frmCRC::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    StartSoon();
}

// Later, not at once: exec() must be running when the window closes itself.
void frmCRC::StartSoon() {
    QTimer::singleShot(0, this, [this] {
        if (isVisible()) Command1_->click();
    });
}

void frmCRC::Refresh() {
    if (busy_) return;
    {
        const base::ScopedFlag busy(busy_);
        catalogue::PassedOver passed_over;
        outcome_ = RefreshCrcs(
            catalogue_, *this, [this](const QString& line) { ShowLine(line); }, progress_,
            &passed_over);
        if (outcome_.ok()) outcome_ = passed_over.Summary();
        ShowLine(ChecksumTexts::tr("Task Complete!"));
    }
    accept();
}

void frmCRC::ShowLine(const QString& line) {
    Label1_->setText(line);
    repaint();
}

void frmCRC::ProcessEvents() {
    QCoreApplication::processEvents();
}

base::Status UpdateCrcs(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                        QWidget* owner, catalogue::Progress progress) {
    if (!ConfirmCrcRefresh(prompts)) return {};
    frmCRC window(catalogue, owner, std::move(progress));
    window.exec();
    return window.outcome();
}

}  // namespace checksum
