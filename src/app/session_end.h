// SessionEnd: ends the program on the system's request as Exit does, but with nobody there to
// answer: dialogs are closed, a command at work is waited for, an edit is kept for the next start.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>

namespace app {

class SessionEnd : public QObject {
public:
    // `is_busy`: a command is at work. `end` ends the program; it is called once.
    SessionEnd(std::function<bool()> is_busy, std::function<void()> end);

    // Ends the program, or leaves that to the event loop when it cannot be now.
    void Request();
    // From now on the system's order to quit, which asks for nothing first (a session manager gives
    // it when it is in a hurry), is a request, too: a window with an edit would refuse to close.
    void TakeQuitOrders();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Try();

    std::function<bool()> is_busy_;
    std::function<void()> end_;
    QTimer timer_;
    bool has_ended_ = false;
};

}  // namespace app
