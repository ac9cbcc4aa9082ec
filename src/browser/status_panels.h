// StatusPanels: the status bar sbrDB with its four panels and the progress bar prgLoad, which takes
// their place while something long is going on.
#pragma once

#include "base/status.h"

#include <QtWidgets/QStatusBar>

#include <array>
#include <cstdint>

class QLabel;
class QProgressBar;

namespace browser {

// The panels, from left to right.
inline constexpr int kCountPanel = 1;
inline constexpr int kNamePanel = 2;  // the current table's; as wide as the others leave it
inline constexpr int kTimesPlayedPanel = 3;
inline constexpr int kLastPlayedPanel = 4;
inline constexpr int kPanelCount = 4;

class StatusPanels : public QStatusBar {
    Q_OBJECT

public:
    explicit StatusPanels(QWidget* parent = nullptr);

    void SetPanelText(int panel, const QString& text);
    // Shows a failure that no box tells in place of the table's name, until the next table is
    // shown.
    void ShowFailure(const base::Status& failure);
    // Shows a failure that stops nothing over the panels, for 15 seconds.
    void ShowFailureInPassing(const base::Status& failure);

    // Shows the progress bar in place of the panels. `steps` counts the whole work.
    void StartProgress(std::int64_t steps);
    // Draws the bar when it has moved by a hundredth.
    void Advance(std::int64_t step);
    void EndProgress();
    bool in_progress() const { return in_progress_; }

private:
    std::array<QLabel*, kPanelCount> panels_{};
    QProgressBar* prgLoad_ = nullptr;
    std::int64_t steps_ = 0;
    int hundredths_ = 0;
    bool in_progress_ = false;
};

}  // namespace browser
