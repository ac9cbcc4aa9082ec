// frmCRC: the small window of the CRC refresh. It starts the run by itself when it becomes active,
// cannot be closed during the run, and closes itself afterwards.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "catalogue/progress_meter.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

class QLabel;
class QPushButton;

namespace checksum {

class frmCRC : public QDialog, private platform::UserEvents {
    Q_OBJECT

public:
    // `catalogue` is borrowed and outlives the window. Shown modally by exec().
    explicit frmCRC(catalogue::Catalogue& catalogue, QWidget* parent = nullptr,
                    catalogue::Progress progress = {});

    // Why the refresh ended early, or which files it could not read; ok: neither.
    const base::Status& outcome() const { return outcome_; }

    // Every way of closing the window calls this; ignored while the refresh runs.
    void done(int result) override;

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void BuildControls();
    void StartSoon();
    void Refresh();
    void ShowLine(const QString& line);
    void ProcessEvents() override;

    catalogue::Catalogue& catalogue_;
    catalogue::Progress progress_;
    base::Status outcome_;
    QLabel* Label1_ = nullptr;
    QPushButton* Command1_ = nullptr;
    bool busy_ = false;
};

// The whole command: asks, and on OK shows the window until the refresh is over. `owner`: the main
// window. A failure ends the refresh without a message box; it is returned, as is that files could
// not be read.
base::Status UpdateCrcs(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                        QWidget* owner, catalogue::Progress progress = {});

}  // namespace checksum
