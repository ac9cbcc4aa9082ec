// frmSplash: the small window that shows what the program is doing during long work.
#pragma once

#include "platform/user_events.h"

#include <QtCore/QPointer>
#include <QtWidgets/QDialog>

class QLabel;

namespace browser {

class frmSplash : public QDialog {
    Q_OBJECT

public:
    // A modeless window above `owner`.
    explicit frmSplash(QWidget* owner);

    void SetStatus(const QString& text);
    // Shows the window and returns when it has been painted.
    void ShowNow();

private:
    void BuildLayout();

    QLabel* lblStat_ = nullptr;
};

// SplashDisplay: frmSplash as a platform::StatusDisplay.
class SplashDisplay final : public platform::StatusDisplay {
public:
    // `owner` is borrowed and outlives the display.
    explicit SplashDisplay(QWidget* owner) : owner_(owner) {}
    ~SplashDisplay() override { Unload(); }
    void Show(const QString& text) override;
    void Unload() override;

private:
    QWidget* owner_;
    QPointer<frmSplash> window_;
};

}  // namespace browser
