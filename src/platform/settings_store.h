// SettingsStore: the per-user store of named texts, by application, section and key.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <memory>

namespace platform {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual QString GetSetting(const QString& application, const QString& section,
                               const QString& key, const QString& fallback = {}) = 0;
    // A failure names the file that could not be written. GetSetting gives the new value all the
    // same until the program ends, and the next SaveSetting tries to write it again.
    virtual base::Status SaveSetting(const QString& application, const QString& section,
                                     const QString& key, const QString& value) = 0;
};

std::unique_ptr<SettingsStore> MakeSettingsStore();

}  // namespace platform
