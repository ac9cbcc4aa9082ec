#include "platform/windows/file_identity.h"

#include <algorithm>
#include <span>

namespace platform {

std::optional<FileIdentity> IdentityOf(const OwnedHandle& file) {
    FileIdentity identity;
    FILE_ID_INFO id{};
    if (GetFileInformationByHandleEx(file.get(), FileIdInfo, &id, sizeof id)) {
        identity.volume = id.VolumeSerialNumber;
        std::ranges::copy(std::as_bytes(std::span(id.FileId.Identifier)), identity.number.begin());
        return identity;
    }
    // File systems that have no such numbers have the older, shorter ones.
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(file.get(), &info)) return std::nullopt;
    identity.volume = info.dwVolumeSerialNumber;
    const std::array number = {info.nFileIndexHigh, info.nFileIndexLow};
    std::ranges::copy(std::as_bytes(std::span(number)), identity.number.begin());
    return identity;
}

}  // namespace platform
