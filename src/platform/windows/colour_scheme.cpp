#include "platform/colour_scheme.h"

#include "platform/windows/owned_handle.h"
#include "platform/windows/registry.h"

#include <QtCore/QWinEventNotifier>

#include <utility>

namespace platform {
namespace {

// Where the system's settings keep it: 0 dark, 1 light.
const std::wstring kKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
const std::wstring kValue = L"AppsUseLightTheme";

class RegistryWatch final : public ColourSchemeWatch {
public:
    RegistryWatch(HKEY key, std::function<void(bool is_dark)> changed)
        : key_(key), event_(CreateEventW(nullptr, FALSE, FALSE, nullptr)), notifier_(event_.get()),
          changed_(std::move(changed)) {
        QObject::connect(&notifier_, &QWinEventNotifier::activated, &notifier_, [this] { Look(); });
        Look();
    }
    ~RegistryWatch() override {
        notifier_.setEnabled(false);
        RegCloseKey(key_);
    }
    RegistryWatch(const RegistryWatch&) = delete;
    RegistryWatch& operator=(const RegistryWatch&) = delete;

private:
    // Asked to be told again before it looks, so that no change is missed.
    void Look() {
        RegNotifyChangeKeyValue(key_, FALSE, REG_NOTIFY_CHANGE_LAST_SET, event_.get(), TRUE);
        const bool is_dark = RegistryNumber(HKEY_CURRENT_USER, kKey, kValue) == 0U;
        if (is_dark == std::exchange(is_dark_, is_dark)) return;
        changed_(is_dark);
    }

    HKEY key_;
    OwnedHandle event_;
    QWinEventNotifier notifier_;
    std::function<void(bool is_dark)> changed_;
    std::optional<bool> is_dark_;  // nullopt: nothing was said yet
};

}  // namespace

std::unique_ptr<ColourSchemeWatch> WatchColourScheme(std::function<void(bool is_dark)> changed) {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey.c_str(), 0, KEY_NOTIFY, &key) != ERROR_SUCCESS)
        return nullptr;
    return std::make_unique<RegistryWatch>(key, std::move(changed));
}

}  // namespace platform
