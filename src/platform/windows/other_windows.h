// Top-level windows of other programs; knows no Qt.
#pragma once

#include "platform/windows/windows_header.h"

#include <string>

namespace platform {

// The first window, from the top, of this class (letter case does not matter, as everywhere in the
// system) whose title is `title`; null: there is none.
HWND FindOtherWindow(const std::wstring& window_class, const std::wstring& title);
// The message of "Close" in the window's menu. Does nothing when the window is gone.
void AskToClose(HWND window);

}  // namespace platform
