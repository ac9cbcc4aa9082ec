// Settings in files that a person can read.
#pragma once

#include "platform/settings_store.h"

namespace platform {

// A file <folder>/<application>.ini for each application, a group for each section. Values are
// written to the file at once. An empty folder stands for the one of the user's configuration.
std::unique_ptr<SettingsStore> MakeIniSettings(const QString& folder);

}  // namespace platform
