#include "platform/settings_store.h"

#include "platform/ini_settings.h"

namespace platform {

std::unique_ptr<SettingsStore> MakeSettingsStore(const QString& folder) {
    return MakeIniSettings(folder);
}

}  // namespace platform
