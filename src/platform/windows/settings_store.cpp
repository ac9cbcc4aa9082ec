#include "platform/settings_store.h"

#include "platform/ini_settings.h"
#include "platform/windows/qt_text.h"
#include "platform/windows/user_settings.h"

namespace platform {
namespace {

class RegistrySettings final : public SettingsStore {
public:
    QString GetSetting(const QString& application, const QString& section, const QString& key,
                       const QString& fallback) override {
        const auto value = settings_.Get(Wide(application), Wide(section), Wide(key));
        return value ? FromWide(*value) : fallback;
    }

    base::Status SaveSetting(const QString& application, const QString& section, const QString& key,
                             const QString& value) override {
        return settings_.Save(Wide(application), Wide(section), Wide(key), Wide(value));
    }

private:
    UserSettings settings_;
};

}  // namespace

std::unique_ptr<SettingsStore> MakeSettingsStore(const QString& folder) {
    if (!folder.isEmpty()) return MakeIniSettings(folder);
    return std::make_unique<RegistrySettings>();
}

}  // namespace platform
