// Settings where the system's own functions for programs in Basic (SaveSetting, GetSetting) keep
// them: texts below HKEY_CURRENT_USER\Software\VB and VBA Program Settings, a key for each
// application and one in it for each section. Knows no Qt.
#pragma once

#include "base/status.h"

#include <map>
#include <optional>
#include <string>
#include <tuple>

namespace platform {

class UserSettings {
public:
    // nullopt: nothing is stored.
    std::optional<std::wstring> Get(const std::wstring& application, const std::wstring& section,
                                    const std::wstring& key) const;
    // Stored at once. kIoError names the key that cannot be written; Get gives the new value
    // nevertheless as long as this object lives, and the next Save writes it again.
    base::Status Save(const std::wstring& application, const std::wstring& section,
                      const std::wstring& key, const std::wstring& value);

private:
    using Name = std::tuple<std::wstring, std::wstring, std::wstring>;

    std::map<Name, std::wstring> unsaved_;
};

}  // namespace platform
