#include "platform/windows/last_error.h"

#include "base/file_names.h"
#include "base/unicode.h"
#include "platform/windows/windows_header.h"

#include <array>

namespace platform {
namespace {

struct CodeOfNumber {
    std::uint32_t number;
    base::StatusCode code;
};

using base::StatusCode;

// ERROR_DISK_QUOTA_EXCEEDED and ERROR_FILE_SYSTEM_LIMITATION, which older headers do not have.
constexpr std::uint32_t kDiskQuotaExceeded = 1295;
constexpr std::uint32_t kFileSystemLimitation = 665;

// All others are kIoError. A name that the system cannot have is the name of no file.
constexpr std::array kCodes = {
    CodeOfNumber{ERROR_FILE_NOT_FOUND, StatusCode::kNotFound},
    CodeOfNumber{ERROR_PATH_NOT_FOUND, StatusCode::kNotFound},
    CodeOfNumber{ERROR_INVALID_DRIVE, StatusCode::kNotFound},
    CodeOfNumber{ERROR_BAD_NETPATH, StatusCode::kNotFound},
    CodeOfNumber{ERROR_BAD_NET_NAME, StatusCode::kNotFound},
    CodeOfNumber{ERROR_INVALID_NAME, StatusCode::kNotFound},
    CodeOfNumber{ERROR_BAD_PATHNAME, StatusCode::kNotFound},
    CodeOfNumber{ERROR_FILENAME_EXCED_RANGE, StatusCode::kNotFound},
    CodeOfNumber{ERROR_DIRECTORY, StatusCode::kNotFound},
    CodeOfNumber{ERROR_ACCESS_DENIED, StatusCode::kPermissionDenied},
    CodeOfNumber{ERROR_WRITE_PROTECT, StatusCode::kPermissionDenied},
    CodeOfNumber{ERROR_NETWORK_ACCESS_DENIED, StatusCode::kPermissionDenied},
    CodeOfNumber{ERROR_PRIVILEGE_NOT_HELD, StatusCode::kPermissionDenied},
    CodeOfNumber{ERROR_DELETE_PENDING, StatusCode::kPermissionDenied},
    CodeOfNumber{ERROR_SHARING_VIOLATION, StatusCode::kBusy},
    CodeOfNumber{ERROR_LOCK_VIOLATION, StatusCode::kBusy},
    CodeOfNumber{ERROR_USER_MAPPED_FILE, StatusCode::kBusy},
    CodeOfNumber{ERROR_DISK_FULL, StatusCode::kNoSpace},
    CodeOfNumber{ERROR_HANDLE_DISK_FULL, StatusCode::kNoSpace},
    CodeOfNumber{kDiskQuotaExceeded, StatusCode::kNoSpace},
    CodeOfNumber{ERROR_FILE_TOO_LARGE, StatusCode::kNoSpace},
    CodeOfNumber{kFileSystemLimitation, StatusCode::kNoSpace},
    CodeOfNumber{ERROR_FILE_EXISTS, StatusCode::kAlreadyExists},
    CodeOfNumber{ERROR_ALREADY_EXISTS, StatusCode::kAlreadyExists},
};

// In English, as all of our texts; a system without these texts gives the number.
std::string TextOfError(std::uint32_t error) {
    std::array<wchar_t, 512> text{};
    const DWORD size = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                          FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                      nullptr, error, MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US),
                                      text.data(), static_cast<DWORD>(text.size()), nullptr);
    std::string utf8 = base::ToUtf8(std::u16string(text.data(), text.data() + size));
    utf8.erase(utf8.find_last_not_of(' ') + 1);
    return utf8.empty() ? "error " + std::to_string(error) : utf8;
}

}  // namespace

StatusCode CodeOfError(std::uint32_t error) {
    for (const CodeOfNumber& known : kCodes)
        if (known.number == error) return known.code;
    return StatusCode::kIoError;
}

base::Status ErrorStatus(std::uint32_t error, const std::filesystem::path& path) {
    return {CodeOfError(error), base::Utf8Of(path) + ": " + TextOfError(error),
            static_cast<std::int32_t>(error)};
}

}  // namespace platform
