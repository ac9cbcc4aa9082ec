// SessionEnd: ends the program on the system's request as Exit does, but with nobody there to
// answer: dialogs are closed, a command at work is waited for, an edit is kept for the next start.
#pragma once

#include <QtCore/QTimer>

#include <functional>

namespace app {

class SessionEnd {
public:
    // `is_busy`: a command is at work. `end` ends the program; it is called once.
    SessionEnd(std::function<bool()> is_busy, std::function<void()> end);

    // Ends the program, or leaves that to the event loop when it cannot be now.
    void Request();

private:
    void Try();

    std::function<bool()> is_busy_;
    std::function<void()> end_;
    QTimer timer_;
    bool has_ended_ = false;
};

}  // namespace app
