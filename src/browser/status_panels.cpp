#include "browser/status_panels.h"

#include "browser/status_label.h"
#include "browser/texts.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
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
constexpr int kProgressMargin = 6;  // pixels left of its text, as in a panel

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
    lblProgress_ = new QLabel(this);
    lblProgress_->setObjectName(QStringLiteral("lblProgress"));
    lblProgress_->setContentsMargins(kProgressMargin, 0, 0, 0);
    addWidget(lblProgress_);
    lblProgress_->hide();
    prgLoad_ = new QProgressBar(this);
    prgLoad_->setObjectName(QStringLiteral("prgLoad"));
    prgLoad_->setTextVisible(false);
    prgLoad_->setMaximumHeight(14);
    addWidget(prgLoad_, 1);
    prgLoad_->hide();
    read_only_ = new QLabel(BrowserTexts::tr("Read-only"), this);
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
    read_only_->setToolTip(
        file.isEmpty()
            ? QString()
            : BrowserTexts::tr("%1 is open for reading only: changes cannot be stored.").arg(file));
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
    lblProgress_->setText(TextOf(steps_));
    lblProgress_->setFixedWidth(lblProgress_->sizeHint().width());  // the bar keeps its place
    lblProgress_->setText(TextOf(0));
    lblProgress_->show();
    prgLoad_->show();
    in_progress_ = true;
}

QString StatusPanels::TextOf(std::int64_t step) const {
    const QLocale numbers(QLocale::English, QLocale::UnitedStates);
    return BrowserTexts::tr("%1 of %2 (%3 %)")
        .arg(numbers.toString(qlonglong{step}), numbers.toString(qlonglong{steps_}),
             QString::number(step * kHundred / steps_));
}

void StatusPanels::Advance(std::int64_t step) {
    const int hundredths = static_cast<int>(step * kHundred / steps_);
    if (hundredths == hundredths_) return;
    if (since_drawn_.isValid() && !since_drawn_.hasExpired(kDrawMs)) return;
    hundredths_ = hundredths;
    since_drawn_.start();
    prgLoad_->setValue(static_cast<int>(std::min<std::int64_t>(step, prgLoad_->maximum())));
    lblProgress_->setText(TextOf(std::min(step, steps_)));
    if (steps_ >= kWorthShowing && isVisible())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void StatusPanels::EndProgress() {
    in_progress_ = false;
    prgLoad_->hide();
    lblProgress_->hide();
    for (QLabel* const panel : panels_)
        panel->show();
}

}  // namespace browser
