// A window is on the screen some time after show(), when the window system has exposed it.
#pragma once

class QWidget;

namespace browser {

// Processes events except the user's input until `window` is exposed, for half a second at most.
void WaitUntilShown(const QWidget& window);

}  // namespace browser
