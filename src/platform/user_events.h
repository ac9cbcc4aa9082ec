// UserEvents: work that takes long on the user-interface thread calls ProcessEvents once per item,
// so that windows are repainted. StatusDisplay: the small window that shows what is in progress.
// Implemented by the windows; faked in tests.
#pragma once

#include <QtCore/QString>

namespace platform {

class UserEvents {
public:
    virtual ~UserEvents() = default;
    virtual void ProcessEvents() = 0;
    // The same for as long as that, without keeping the processor busy.
    virtual void ProcessEventsFor(int /*milliseconds*/) { ProcessEvents(); }
};

// For work in a program without windows.
class NoUserEvents final : public UserEvents {
public:
    void ProcessEvents() override {}
};

class StatusDisplay {
public:
    virtual ~StatusDisplay() = default;
    // Shows the window with this text. It has been painted when the call returns.
    virtual void Show(const QString& text) = 0;
    // Closes the window if it is open.
    virtual void Unload() = 0;
};

}  // namespace platform
