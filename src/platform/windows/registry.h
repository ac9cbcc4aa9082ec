// Values of the registry; knows no Qt.
#pragma once

#include "platform/windows/windows_header.h"

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

// A text up to its first zero, names of variables in it (%SystemRoot%) replaced where the value is
// of the kind that has them. nullopt: there is no such value, or it is no text.
std::optional<std::wstring> RegistryText(HKEY root, const std::wstring& key,
                                         const std::wstring& value);
std::optional<std::uint32_t> RegistryNumber(HKEY root, const std::wstring& key,
                                            const std::wstring& value);
// Makes the key where it is missing. ERROR_SUCCESS, or the system's number of the failure.
std::uint32_t SetRegistryText(HKEY root, const std::wstring& key, const std::wstring& value,
                              const std::wstring& text);

}  // namespace platform
