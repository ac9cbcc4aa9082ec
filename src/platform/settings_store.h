// SettingsStore: the per-user store of named texts, by application, section and key.
#pragma once

#include <QtCore/QString>

#include <memory>

namespace platform {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual QString GetSetting(const QString& application, const QString& section, const QString& key,
                               const QString& fallback = {}) = 0;
    virtual void SaveSetting(const QString& application, const QString& section, const QString& key,
                             const QString& value) = 0;
};

std::unique_ptr<SettingsStore> MakeSettingsStore();

}  // namespace platform
