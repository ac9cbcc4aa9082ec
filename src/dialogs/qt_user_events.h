// QtUserEvents: processes pending events during long work on the user-interface thread.
#pragma once

#include "platform/user_events.h"

namespace dialogs {

enum class UserInput {
    kDelivered,  // all events; the window that does the work guards itself against clicks
    kHeldBack,   // no keys, clicks and close requests: they are delivered after the work
};

class QtUserEvents final : public platform::UserEvents {
public:
    explicit QtUserEvents(UserInput input = UserInput::kDelivered) : input_(input) {}
    void ProcessEvents() override;
    void ProcessEventsFor(int milliseconds) override;

private:
    UserInput input_;
};

}  // namespace dialogs
