#include "platform/window_control.h"

#include "platform/linux/x11_connection.h"

namespace platform {
namespace {

QStringView WithoutExe(QStringView name) {
    const QLatin1String extension(".exe");
    return name.endsWith(extension, Qt::CaseInsensitive) ? name.chopped(extension.size()) : name;
}

// Wine shows the executable's file name, which may contain a version, instead of the window class.
bool IsOfClass(QStringView shown, QStringView wanted) {
    const QStringView name = WithoutExe(shown);
    const bool is_program_name = name.size() != shown.size();
    return name.compare(wanted, Qt::CaseInsensitive) == 0 ||
           (is_program_name && name.startsWith(wanted, Qt::CaseInsensitive));
}

class X11WindowControl final : public WindowControl {
public:
    std::optional<WindowHandle> Find(const QString& window_class, const QString& title) override {
        const QStringView wanted = WithoutExe(window_class);
        for (const X11Window& window : connection_.TopLevelWindows())
            if (window.title == title &&
                (IsOfClass(window.window_class, wanted) || IsOfClass(window.instance, wanted)))
                return WindowHandle{window.id};
        return std::nullopt;
    }

    void RequestClose(WindowHandle window) override {
        connection_.RequestClose(static_cast<xcb_window_t>(window));
    }

private:
    X11Connection connection_;
};

}  // namespace

std::unique_ptr<WindowControl> MakeWindowControl() {
    return std::make_unique<X11WindowControl>();
}

}  // namespace platform
