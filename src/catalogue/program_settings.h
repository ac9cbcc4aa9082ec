// The program's settings in the SettingsStore: all are in one section.
#pragma once

#include "platform/settings_store.h"

#include <QtCore/QString>

namespace catalogue {

inline constexpr QStringView kSettingsApplication = u"TAVOLO";
inline constexpr QStringView kSettingsSection = u"GENERAL";

// What the program remembers beyond those, each kind in a section of its own.
inline constexpr QStringView kWindowSection = u"WINDOW";
inline constexpr QStringView kOptionSection = u"OPTIONS";

// An option of the second of them: whether the watch of a play waits for the simulator.
inline constexpr QStringView kWaitKey = u"WAIT";

// The key of the simulator's executable.
inline constexpr QStringView kExecutableKey = u"VPEXE";

// `fallback` when nothing is stored.
inline QString ReadSetting(platform::SettingsStore& store, QStringView key,
                           const QString& fallback = {}) {
    return store.GetSetting(kSettingsApplication.toString(), kSettingsSection.toString(),
                            key.toString(), fallback);
}

// Errors are those of SettingsStore::SaveSetting.
inline base::Status WriteSetting(platform::SettingsStore& store, QStringView key,
                                 const QString& value) {
    return store.SaveSetting(kSettingsApplication.toString(), kSettingsSection.toString(),
                             key.toString(), value);
}

inline QString ReadOwnSetting(platform::SettingsStore& store, QStringView section, QStringView key,
                              const QString& fallback = {}) {
    return store.GetSetting(kSettingsApplication.toString(), section.toString(), key.toString(),
                            fallback);
}

inline base::Status WriteOwnSetting(platform::SettingsStore& store, QStringView section,
                                    QStringView key, const QString& value) {
    return store.SaveSetting(kSettingsApplication.toString(), section.toString(), key.toString(),
                             value);
}

}  // namespace catalogue
