// WindowControl: top-level windows of other programs, found by window class and exact title.
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
    // The class matches without regard to letter case and to an ".exe" at its end (a Windows
    // program under Wine shows its executable's name there, which may go on with a version:
    // VPinball995.exe); the title matches exactly. nullopt: no such window.
    virtual std::optional<WindowHandle> Find(const QString& window_class, const QString& title) = 0;
    // Asks the window to close, as its close button does. Nothing happens when it is gone.
    virtual void RequestClose(WindowHandle window) = 0;
};

// Without a display the control finds nothing.
std::unique_ptr<WindowControl> MakeWindowControl();

}  // namespace platform
