// WindowControl: finds top-level windows of other programs and closes them.
#pragma once

#include <QtCore/QString>

#include <cstdint>
#include <memory>
#include <optional>

namespace platform {

enum class WindowHandle : std::uint64_t {};

class WindowControl {
public:
    virtual ~WindowControl() = default;
    // A window with this class and this exact title; nullopt when there is none. Classes are
    // compared without regard to letter case. Wine shows the name of the executable as the class:
    // a class that ends in ".exe" matches when it begins with `window_class` (VPinball995.exe).
    virtual std::optional<WindowHandle> Find(const QString& window_class, const QString& title) = 0;
    // Asks the window to close, as its close button does. Does nothing when it is gone.
    virtual void RequestClose(WindowHandle window) = 0;
};

// Without a display, Find returns nullopt.
std::unique_ptr<WindowControl> MakeWindowControl();

}  // namespace platform
