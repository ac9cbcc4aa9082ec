// Where the settings live in the settings store: under this application name and section.
#pragma once

#include <QtCore/QStringView>

namespace catalogue {

inline constexpr QStringView kSettingsApplication = u"TAVOLO";
inline constexpr QStringView kSettingsSection = u"GENERAL";

}  // namespace catalogue
