#include "platform/windows/registry.h"

namespace platform {

std::optional<std::wstring> RegistryText(HKEY root, const std::wstring& key,
                                         const std::wstring& value) {
    constexpr DWORD kKinds = RRF_RT_REG_SZ;  // what the other kind becomes when it is expanded
    std::wstring text;
    DWORD bytes = 0;
    LSTATUS error =
        RegGetValueW(root, key.c_str(), value.c_str(), kKinds, nullptr, nullptr, &bytes);
    // Another program may write a longer text in between.
    while (error == ERROR_SUCCESS || error == ERROR_MORE_DATA) {
        text.assign(bytes / sizeof(wchar_t) + 1, L'\0');
        bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
        error =
            RegGetValueW(root, key.c_str(), value.c_str(), kKinds, nullptr, text.data(), &bytes);
        if (error == ERROR_SUCCESS) return text.substr(0, text.find(L'\0'));
    }
    return std::nullopt;
}

std::optional<std::uint32_t> RegistryNumber(HKEY root, const std::wstring& key,
                                            const std::wstring& value) {
    DWORD number = 0;
    DWORD bytes = sizeof number;
    const LSTATUS error =
        RegGetValueW(root, key.c_str(), value.c_str(), RRF_RT_REG_DWORD, nullptr, &number, &bytes);
    if (error != ERROR_SUCCESS) return std::nullopt;
    return number;
}

std::uint32_t SetRegistryText(HKEY root, const std::wstring& key, const std::wstring& value,
                              const std::wstring& text) {
    // With its final zero.
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return static_cast<std::uint32_t>(
        RegSetKeyValueW(root, key.c_str(), value.c_str(), REG_SZ, text.c_str(), bytes));
}

}  // namespace platform
