// BoxDriver: answers a modal box from inside its event loop.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include <functional>

namespace test_support {

// Runs `act` with the first modal window that has the object name `name`; must exist until the
// window has been closed. If there is no such window within 10 seconds, the active modal window is
// closed so that the test ends, and seen() is false.
class BoxDriver : public QObject {
public:
    BoxDriver(QString name, std::function<void(QWidget&)> act)
        : name_(std::move(name)), act_(std::move(act)) {
        clock_.start();
        timer_.setInterval(5);
        connect(&timer_, &QTimer::timeout, this, &BoxDriver::Look);
        timer_.start();
    }
    bool seen() const { return seen_; }

private:
    void Look() {
        QWidget* front = QApplication::activeModalWidget();
        if (front == nullptr) return;
        if (front->objectName() == name_ && front->isVisible()) {
            timer_.stop();
            seen_ = true;
            act_(*front);
        } else if (clock_.elapsed() > 10'000) {
            timer_.stop();
            front->close();
        }
    }

    QString name_;
    std::function<void(QWidget&)> act_;
    QElapsedTimer clock_;
    QTimer timer_;
    bool seen_ = false;
};

}  // namespace test_support
