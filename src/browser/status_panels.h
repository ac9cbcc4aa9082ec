// StatusPanels: the status bar sbrDB with its four panels and the progress bar prgLoad, which takes
// their place while something long is going on.
#pragma once

#include <QtWidgets/QStatusBar>

#include <array>
#include <cstdint>

class QLabel;
class QProgressBar;

namespace browser {

// The panel of the current table's name, which takes what the other panels leave. Failures that no
// box tells are said there: once, until the next table is shown.
inline constexpr int kFailurePanel = 2;

class StatusPanels : public QStatusBar {
    Q_OBJECT

public:
    explicit StatusPanels(QWidget* parent = nullptr);

    // Panels count from 1 to 4.
    void SetPanelText(int panel, const QString& text);

    // Shows the progress bar in place of the panels. `steps` counts the whole work.
    void StartProgress(std::int64_t steps);
    // Draws the bar when it has moved by a hundredth.
    void Advance(std::int64_t step);
    void EndProgress();
    bool in_progress() const { return in_progress_; }

private:
    std::array<QLabel*, 4> panels_{};
    QProgressBar* prgLoad_ = nullptr;
    std::int64_t steps_ = 0;
    int hundredths_ = 0;
    bool in_progress_ = false;
};

}  // namespace browser
