#include "platform/windows/user_settings.h"

#include "base/file_names.h"
#include "platform/windows/last_error.h"
#include "platform/windows/registry.h"

namespace platform {
namespace {

std::wstring KeyOf(const std::wstring& application, const std::wstring& section) {
    return L"Software\\VB and VBA Program Settings\\" + application + L'\\' + section;
}

base::Status CannotStore(const std::wstring& place, std::uint32_t error) {
    const base::Status reason = ErrorStatus(error, L"HKEY_CURRENT_USER\\" + place);
    return {base::StatusCode::kIoError, "The settings cannot be stored in " + reason.message(),
            reason.number()};
}

}  // namespace

std::optional<std::wstring> UserSettings::Get(const std::wstring& application,
                                              const std::wstring& section,
                                              const std::wstring& key) const {
    const auto unsaved = unsaved_.find({application, section, key});
    if (unsaved != unsaved_.end()) return unsaved->second;
    return RegistryText(HKEY_CURRENT_USER, KeyOf(application, section), key);
}

base::Status UserSettings::Save(const std::wstring& application, const std::wstring& section,
                                const std::wstring& key, const std::wstring& value) {
    unsaved_[{application, section, key}] = value;
    // One that cannot be written keeps no other one back.
    base::Status first_failure;
    std::erase_if(unsaved_, [&](const auto& entry) {
        const auto& [name, text] = entry;
        const std::wstring place = KeyOf(std::get<0>(name), std::get<1>(name));
        const std::uint32_t error =
            SetRegistryText(HKEY_CURRENT_USER, place, std::get<2>(name), text);
        if (error != ERROR_SUCCESS && first_failure.ok()) first_failure = CannotStore(place, error);
        return error == ERROR_SUCCESS;
    });
    return first_failure;
}

}  // namespace platform
