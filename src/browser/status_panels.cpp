#include "browser/status_panels.h"

#include "browser/status_label.h"

#include <QtCore/QCoreApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>

#include <algorithm>
#include <limits>

namespace browser {
namespace {

constexpr int kHundred = 100;
// With fewer steps the work ends before the bar could be seen, so painting it is not worth the
// time.
constexpr std::int64_t kWorthShowing = 2000;

// Between two drawings of the bar, each of which costs as much as reading a hundred tables.
constexpr int kDrawMs = 50;

constexpr int kInPassingMs = 15'000;

}  // namespace

StatusPanels::StatusPanels(QWidget* parent) : QStatusBar(parent) {
    setObjectName(QStringLiteral("sbrDB"));
    for (int panel = kCountPanel; panel <= kPanelCount; ++panel) {
        // The name is cut rather than the others.
        auto* const label = new StatusLabel(panel == kNamePanel ? StatusLabel::Room::kWhatIsLeft
                                                                : StatusLabel::Room::kOfItsText,
                                            panel == kCountPanel, this);
        label->setObjectName(QStringLiteral("sbrDB_") + QString::number(panel));
        addWidget(label, panel == kNamePanel ? 1 : 0);
        panels_.at(static_cast<std::size_t>(panel - 1)) = label;
    }
    prgLoad_ = new QProgressBar(this);
    prgLoad_->setObjectName(QStringLiteral("prgLoad"));
    prgLoad_->setTextVisible(false);
    prgLoad_->setMaximumHeight(14);
    addWidget(prgLoad_, 1);
    prgLoad_->hide();
    read_only_ = new QLabel(QStringLiteral("Read-only"), this);
    read_only_->setObjectName(QStringLiteral("lblReadOnly"));
    addPermanentWidget(read_only_);
    read_only_->hide();
    connect(this, &QStatusBar::messageChanged, this, [this] {
        clicked_ = {};
        unsetCursor();
    });
}

void StatusPanels::SetPanelText(int panel, const QString& text) {
    QLabel* const label = panels_.at(static_cast<std::size_t>(panel - 1));
    label->setText(text);
    label->setToolTip(text.trimmed());
}

void StatusPanels::ShowReadOnly(const QString& file) {
    read_only_->setToolTip(file.isEmpty()
                               ? QString()
                               : file + QStringLiteral(" is open for reading only: changes cannot "
                                                       "be stored."));
    read_only_->setVisible(!file.isEmpty());
}

void StatusPanels::ShowFailure(const QString& text) {
    SetPanelText(kNamePanel, text);
}

void StatusPanels::ShowInPassing(const QString& text, std::function<void()> clicked) {
    showMessage(text, kInPassingMs);
    clicked_ = std::move(clicked);
    if (clicked_) setCursor(Qt::PointingHandCursor);
}

void StatusPanels::mouseReleaseEvent(QMouseEvent* event) {
    QStatusBar::mouseReleaseEvent(event);
    // A copy: what is called may show another message.
    if (const auto clicked = clicked_; clicked && !currentMessage().isEmpty()) clicked();
}

void StatusPanels::StartProgress(std::int64_t steps) {
    steps_ = std::max<std::int64_t>(steps, 1);
    prgLoad_->setMaximum(
        static_cast<int>(std::min<std::int64_t>(steps_, std::numeric_limits<int>::max())));
    prgLoad_->setValue(0);
    hundredths_ = 0;
    since_drawn_.invalidate();
    for (QLabel* const panel : panels_)
        panel->hide();
    prgLoad_->show();
    in_progress_ = true;
}

void StatusPanels::Advance(std::int64_t step) {
    const int hundredths = static_cast<int>(step * kHundred / steps_);
    if (hundredths == hundredths_) return;
    if (since_drawn_.isValid() && !since_drawn_.hasExpired(kDrawMs)) return;
    hundredths_ = hundredths;
    since_drawn_.start();
    prgLoad_->setValue(static_cast<int>(std::min<std::int64_t>(step, prgLoad_->maximum())));
    if (steps_ >= kWorthShowing && isVisible())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void StatusPanels::EndProgress() {
    in_progress_ = false;
    prgLoad_->hide();
    for (QLabel* const panel : panels_)
        panel->show();
}

}  // namespace browser
