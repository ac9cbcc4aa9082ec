#include "platform/windows/other_windows.h"

#include <algorithm>

namespace platform {
namespace {

struct Wanted {
    const std::wstring& window_class;
    const std::wstring& title;
    HWND found = nullptr;
};

bool HasTitle(HWND window, const std::wstring& title) {
    // One more, to see that the title does not go on, and the final zero.
    std::wstring text(title.size() + 2, L'\0');
    const int size = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(std::max(size, 0)));
    return text == title;
}

bool HasClass(HWND window, const std::wstring& window_class) {
    constexpr std::size_t kMaxClass = 257;  // the system's longest name and the final zero
    std::wstring text(kMaxClass, L'\0');
    const int size = GetClassNameW(window, text.data(), static_cast<int>(text.size()));
    return size > 0 &&
           CompareStringOrdinal(text.c_str(), size, window_class.c_str(),
                                static_cast<int>(window_class.size()), TRUE) == CSTR_EQUAL;
}

BOOL CALLBACK Look(HWND window, LPARAM place) {
    auto* const wanted = reinterpret_cast<Wanted*>(place);
    if (!HasClass(window, wanted->window_class) || !HasTitle(window, wanted->title)) return TRUE;
    wanted->found = window;
    return FALSE;
}

}  // namespace

// The system's own search by title does not look at letter case, and two tables may differ in
// nothing else.
HWND FindOtherWindow(const std::wstring& window_class, const std::wstring& title) {
    Wanted wanted{window_class, title};
    EnumWindows(Look, reinterpret_cast<LPARAM>(&wanted));
    return wanted.found;
}

void AskToClose(HWND window) {
    if (window != nullptr) PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

}  // namespace platform
