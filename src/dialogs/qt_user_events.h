// QtUserEvents: processes pending window events during long work on the user-interface thread.
#pragma once

#include "platform/user_events.h"

namespace dialogs {

enum class UserInput {
    kDelivered,  // the window that does the work guards itself against clicks and closing
    kHeldBack,  // windows repaint only; keys, clicks and close requests wait until the work is over
};

class QtUserEvents final : public platform::UserEvents {
public:
    explicit QtUserEvents(UserInput input = UserInput::kDelivered) : input_(input) {}
    void ProcessEvents() override;

private:
    UserInput input_;
};

}  // namespace dialogs
