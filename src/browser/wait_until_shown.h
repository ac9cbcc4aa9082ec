// A window that was just shown is on the screen only when the window system says so.
#pragma once

class QWidget;

namespace browser {

// Lets window events but no user's input be handled until `window` is on the screen, half a second
// at most.
void WaitUntilShown(const QWidget& window);

}  // namespace browser
