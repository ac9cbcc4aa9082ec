#include "browser/status_panels.h"

#include "browser/status_label.h"
#include "browser/texts.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <QtWidgets/QLabel>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <limits>

namespace browser {
namespace {

constexpr int kHundred = 100;
// With fewer steps the work ends before the bar could be seen, so painting it is not worth the
// time.
constexpr std::int64_t kWorthShowing = 2000;

// Between two drawings of the bar, and before the first: each costs as much as reading a thousand
// tables.
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
    AddProgress();
    read_only_ = new QLabel(BrowserTexts::tr("Read-only"), this);
    read_only_->setObjectName(QStringLiteral("lblReadOnly"));
    addPermanentWidget(read_only_);
    read_only_->hide();
    connect(this, &QStatusBar::messageChanged, this, [this] {
        clicked_ = {};
        unsetCursor();
    });
}

void StatusPanels::AddProgress() {
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
    cmdStop_ = new QToolButton(this);
    cmdStop_->setObjectName(QStringLiteral("cmdStop"));
    cmdStop_->setText(BrowserTexts::tr("Stop"));
    cmdStop_->setToolTip(BrowserTexts::tr("Stop and leave everything as it was (Esc)"));
    cmdStop_->setMaximumHeight(lblProgress_->sizeHint().height());  // the bar stays as high
    addWidget(cmdStop_);
    cmdStop_->hide();
    // A copy: the button's owner may end the work.
    connect(cmdStop_, &QToolButton::clicked, this, [this] {
        if (const auto stop = stop_) stop();
    });
}

void StatusPanels::SetPanelText(int panel, const QString& text) {
    QLabel* const label = panels_.at(static_cast<std::size_t>(panel - 1));
    label->setText(text);
    label->setToolTip(text.trimmed());
    if (panel == kCountPanel) ShowCountTip();
}

void StatusPanels::ShowCountTip() {
    QLabel* const count = panels_.at(kCountPanel - 1);
    const QString text = count->text().trimmed();
    if (last_told_.isEmpty())
        count->setToolTip(text);
    else
        count->setToolTip(text + u'\n' + BrowserTexts::tr("Last: %1").arg(last_told_));
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
    passing_ = {text, std::move(clicked), QDeadlineTimer(kInPassingMs)};
    last_told_ = text;
    ShowCountTip();
    if (!in_progress_) ShowPassing();
}

// Nothing if its time is over.
void StatusPanels::ShowPassing() {
    const auto left = static_cast<int>(passing_.until.remainingTime());
    if (passing_.text.isEmpty() || left <= 0) return;
    showMessage(passing_.text, left);
    clicked_ = passing_.clicked;
    if (clicked_) setCursor(Qt::PointingHandCursor);
}

void StatusPanels::mouseReleaseEvent(QMouseEvent* event) {
    QStatusBar::mouseReleaseEvent(event);
    // A copy: what is called may show another message.
    if (const auto clicked = clicked_; clicked && !currentMessage().isEmpty()) clicked();
}

void StatusPanels::StartProgress(std::int64_t steps) {
    what_.clear();
    since_drawn_.start();
    hundredths_ = 0;
    is_painted_ = true;
    SetSteps(std::max<std::int64_t>(steps, 1));
    ShowProgress();
}

void StatusPanels::StartWork(const QString& what, std::function<void()> stop) {
    what_ = what;
    stop_ = std::move(stop);
    passing_ = {};
    SetSteps(0);
    ShowProgress();
    cmdStop_->setEnabled(true);
    cmdStop_->setVisible(stop_ != nullptr);
}

void StatusPanels::ShowProgress() {
    clearMessage();  // first, as it shows the panels
    for (QLabel* const panel : panels_)
        panel->hide();
    lblProgress_->show();
    prgLoad_->show();
    in_progress_ = true;
}

// A bar of no steps shows that there is something at work.
void StatusPanels::SetSteps(std::int64_t steps) {
    steps_ = steps;
    prgLoad_->setMaximum(
        static_cast<int>(std::min<std::int64_t>(steps_, std::numeric_limits<int>::max())));
    lblProgress_->setText(TextOf(steps_));
    lblProgress_->setFixedWidth(lblProgress_->sizeHint().width());  // the bar keeps its place
    ShowStep(0);
}

void StatusPanels::ShowStep(std::int64_t step) {
    prgLoad_->setValue(static_cast<int>(std::min<std::int64_t>(step, prgLoad_->maximum())));
    lblProgress_->setText(TextOf(std::min(step, steps_)));
}

QString StatusPanels::TextOf(std::int64_t step) const {
    if (steps_ == 0) return what_ + QStringLiteral("...");
    const QLocale numbers(QLocale::English, QLocale::UnitedStates);
    const QString share =
        BrowserTexts::tr("%1 of %2 (%3 %)")
            .arg(numbers.toString(qlonglong{step}), numbers.toString(qlonglong{steps_}),
                 QString::number(step * kHundred / steps_));
    return what_.isEmpty() ? share : BrowserTexts::tr("%1: %2").arg(what_, share);
}

void StatusPanels::Advance(std::int64_t step) {
    const int hundredths = static_cast<int>(step * kHundred / steps_);
    if (hundredths == hundredths_ && is_painted_) return;
    const bool is_due = since_drawn_.hasExpired(kDrawMs);
    if (!is_due && hundredths_ > 0) return;
    if (hundredths != hundredths_) ShowStep(step);
    hundredths_ = hundredths;
    is_painted_ = is_due;
    if (!is_due) return;
    since_drawn_.start();
    if (steps_ >= kWorthShowing && isVisible())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void StatusPanels::ShowWork(std::int64_t step, std::int64_t steps) {
    if (steps != steps_) SetSteps(steps);
    ShowStep(step);
}

void StatusPanels::ShowStopping() {
    cmdStop_->setEnabled(false);
    what_ = BrowserTexts::tr("Stopping");
    SetSteps(steps_);
}

bool StatusPanels::IsStopButton(const QObject* object) const {
    return object == cmdStop_;
}

void StatusPanels::EndProgress() {
    in_progress_ = false;
    prgLoad_->hide();
    lblProgress_->hide();
    cmdStop_->hide();
    stop_ = {};
    for (QLabel* const panel : panels_)
        panel->show();
    ShowPassing();  // behind the panels, as it hides them
}

}  // namespace browser
