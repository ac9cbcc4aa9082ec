#include "platform/window_control.h"

#include "platform/windows/other_windows.h"
#include "platform/windows/qt_text.h"

namespace platform {
namespace {

class SystemWindowControl final : public WindowControl {
public:
    std::optional<WindowHandle> Find(const QString& window_class, const QString& title) override {
        const HWND window = FindOtherWindow(Wide(window_class), Wide(title));
        if (window == nullptr) return std::nullopt;
        return WindowHandle{reinterpret_cast<std::uintptr_t>(window)};
    }

    void RequestClose(WindowHandle window) override {
        AskToClose(reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window)));
    }
};

}  // namespace

std::unique_ptr<WindowControl> MakeWindowControl() {
    return std::make_unique<SystemWindowControl>();
}

}  // namespace platform
