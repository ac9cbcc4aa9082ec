// StatusPanels: the status bar sbrDB with its four panels, and the progress bar prgLoad, which
// replaces them during long work.
#pragma once

#include <QtCore/QDeadlineTimer>
#include <QtCore/QElapsedTimer>
#include <QtWidgets/QStatusBar>

#include <array>
#include <cstdint>
#include <functional>

class QLabel;
class QProgressBar;
class QToolButton;

namespace browser {

// The panels, from left to right.
inline constexpr int kCountPanel = 1;
inline constexpr int kNamePanel = 2;  // the current table's name; takes the remaining width
inline constexpr int kTimesPlayedPanel = 3;
inline constexpr int kLastPlayedPanel = 4;
inline constexpr int kPanelCount = 4;

class StatusPanels : public QStatusBar {
    Q_OBJECT

public:
    explicit StatusPanels(QWidget* parent = nullptr);

    void SetPanelText(int panel, const QString& text);
    // Says for as long as nothing else is called that `file` is open for reading only; empty: it
    // is not.
    void ShowReadOnly(const QString& file);
    // Shows what has failed in place of the table's name, until the next table is shown.
    void ShowFailure(const QString& text);
    // Shows a text over all panels for 15 seconds; a click on it meanwhile calls `clicked`, if that
    // is not empty. A progress is shown instead as long as it lasts. Until the next one it can be
    // read in the tool tip of the count.
    void ShowInPassing(const QString& text, std::function<void()> clicked = {});

    // Shows the progress bar instead of the panels; `steps` is the total number of steps.
    void StartProgress(std::int64_t steps);
    // Sets the number of steps done. The bar, and the count and the share beside it, "1,200 of
    // 20,000 (6 %)", are redrawn at each hundredth, at most twenty times a second.
    void Advance(std::int64_t step);
    // The same for work that goes on elsewhere and is called `what`: it is painted when the event
    // loop comes to it. `stop` is called by a button beside the bar; empty: there is none.
    void StartWork(const QString& what, std::function<void()> stop);
    // Steps done and steps that there are; 0 as long as nobody knows.
    void ShowWork(std::int64_t step, std::int64_t steps);
    // The button has been obeyed.
    void ShowStopping();
    bool IsStopButton(const QObject* object) const;
    void EndProgress();
    bool in_progress() const { return in_progress_; }

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void AddProgress();
    void ShowCountTip();
    void ShowProgress();
    void ShowPassing();
    void SetSteps(std::int64_t steps);
    void ShowStep(std::int64_t step);
    // What stands beside the bar at this step.
    QString TextOf(std::int64_t step) const;

    struct Passing {
        QString text;
        std::function<void()> clicked;
        QDeadlineTimer until;
    };
    Passing passing_;                // what was told last
    std::function<void()> clicked_;  // while its message is shown
    std::array<QLabel*, kPanelCount> panels_{};
    QLabel* read_only_ = nullptr;
    QLabel* lblProgress_ = nullptr;
    QProgressBar* prgLoad_ = nullptr;
    QToolButton* cmdStop_ = nullptr;
    std::function<void()> stop_;
    QString last_told_;
    QString what_;  // is at work; empty: that is not said
    std::int64_t steps_ = 0;
    int hundredths_ = 0;
    QElapsedTimer since_drawn_;  // or since the progress began
    bool is_painted_ = true;     // what the bar shows
    bool in_progress_ = false;
};

}  // namespace browser
