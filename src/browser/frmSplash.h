// frmSplash: the small window that says what is going on while the program works.
#pragma once

#include "platform/user_events.h"

#include <QtCore/QPointer>
#include <QtWidgets/QDialog>

class QLabel;

namespace browser {

class frmSplash : public QDialog {
    Q_OBJECT

public:
    // Not modal; stays above `owner`.
    explicit frmSplash(QWidget* owner);

    void SetStatus(const QString& text);
    // Shows the window, and returns when it is painted although the caller goes on working.
    void ShowNow();

private:
    void BuildLayout();

    QLabel* lblStat_ = nullptr;
};

// Shows and unloads frmSplash for the commands that know only platform::StatusDisplay.
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
