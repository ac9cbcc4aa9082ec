#include "jet/pages/page_header.h"

#include "jet/errors.h"
#include "jet/pages/page_header_layout.h"
#include "jet/pages/rc4.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace jet {
namespace {

using base::LoadLittle;
using base::StoreLittle;

constexpr std::uint32_t kBuildNumber = 9756;  // of the last engines that wrote the format
constexpr std::uint32_t kBuildNumberJet3 = 3428;

using Head = std::array<std::byte, kMaskStart + kMaskBytesJet4>;

void ApplyMask(std::span<std::byte> head, int version) {
    ApplyRc4(kMaskKey, head.subspan(kMaskStart, version == 3 ? kMaskBytesJet3 : kMaskBytesJet4));
}

// The password field of Jet 4 is XORed once more, with the creation day.
void ApplyPasswordMask(std::span<std::byte> head) {
    const double created = base::LoadDouble(head.data() + kCreated);
    std::uint32_t day = 0;
    if (std::isfinite(created) && std::abs(created) < 4.0e6)
        day = static_cast<std::uint32_t>(static_cast<std::int64_t>(created));
    for (std::size_t at = 0; at < kPasswordBytesJet4; at += 4)
        StoreLittle(head.data() + kPassword + at,
                    LoadLittle<std::uint32_t>(head.data() + kPassword + at) ^ day);
}

// The key comes from the low bytes of the plain password, the build number, the sort order and
// the creation date. Requires: an unmasked head whose password is plain.
std::array<std::byte, 4> ScrambleKey(std::span<const std::byte> head) {
    std::uint32_t hash = 0;
    for (std::size_t unit = 0; unit < 28; ++unit) {
        const std::size_t at = unit < 20 ? kPassword + 2 * unit : kBuild + 2 * (unit - 20);
        hash ^= std::to_integer<std::uint32_t>(head[at]) << (unit % 24);
    }
    std::array<std::byte, 4> key{};
    StoreLittle(key.data(), LoadLittle<std::uint32_t>(head.data() + kCreated) ^ hash);
    return key;
}

bool AnySet(std::span<const std::byte> bytes) {
    return std::ranges::any_of(bytes, [](std::byte b) { return b != std::byte{0}; });
}

std::string_view Signature(std::span<const std::byte> head) {
    return {reinterpret_cast<const char*>(head.data()) + kSignatureAt, kSignature.size()};
}

// Names related formats that the engine does not read, as the end of a sentence; nullopt: the file
// is not one of them.
std::optional<std::string_view> OtherFormat(std::span<const std::byte> head) {
    const std::string_view signature = Signature(head);
    if (signature == "Standard ACE DB")
        return "the file was made by a newer version of the database engine (.accdb)";
    if (signature == "MSISAM Database") return "the file is an encrypted database";
    if (signature == kSignature &&
        LoadLittle<std::uint32_t>(head.data() + kVersionAt) > kVersionJet4)
        return "the file was made by a newer version of the database engine";
    return std::nullopt;
}

}  // namespace

base::Status UnrecognizedFormat(std::span<const std::byte> head, std::string_view path) {
    const auto other = OtherFormat(head);
    return JetError(ErrorNumber::kUnrecognizedFormat, path,
                    other ? ": " + std::string(*other) : std::string());
}

base::Result<PageHeader> ReadPageHeader(std::span<const std::byte> page, std::string_view path) {
    Head head{};
    if (page.size() < head.size()) return JetError(ErrorNumber::kUnrecognizedFormat, path);
    std::memcpy(head.data(), page.data(), head.size());
    if (OtherFormat(head)) return UnrecognizedFormat(head, path);
    if (Signature(head) != kSignature) return JetError(ErrorNumber::kUnrecognizedFormat, path);
    PageHeader header;
    header.version = LoadLittle<std::uint32_t>(head.data() + kVersionAt) == kVersionJet3 ? 3 : 4;
    if (page.size() != FormatOf(header.version).page_size)
        return JetError(ErrorNumber::kUnrecognizedFormat, path);
    ApplyMask(head, header.version);
    header.encoding_key = LoadLittle<std::uint32_t>(head.data() + kEncodingKey);
    header.code_page = LoadLittle<std::uint16_t>(head.data() + kCodePage);
    if (header.version == 3) {
        header.has_password =
            AnySet(std::span<const std::byte>(head).subspan(kPassword, kPasswordBytesJet3));
        return header;
    }
    ApplyPasswordMask(head);
    header.has_password =
        AnySet(std::span<const std::byte>(head).subspan(kPassword, kPasswordBytesJet4));
    header.scramble_key = ScrambleKey(head);
    return header;
}

std::vector<std::byte> MakePageHeader(int version, double created) {
    std::vector<std::byte> page(FormatOf(version).page_size);
    std::byte* at = page.data();
    StoreLittle(at, kHeaderMark);
    std::memcpy(at + kSignatureAt, kSignature.data(), kSignature.size());
    StoreLittle(at + kVersionAt, version == 3 ? kVersionJet3 : kVersionJet4);
    StoreRowPointer(at + kGlobalMapAt, {1, 0});
    StoreRowPointer(at + kSecondMapAt, {1, 1});
    for (PageNumber system = 0; system < kSystemPages; ++system)
        StoreLittle(at + kSystemPagesAt + std::size_t{4} * system, kObjectsPage + system);
    StoreLittle<std::uint16_t>(at + kCodePage, 1252);
    if (version == 3) {
        StoreLittle(at + kSortOrderAtJet3, kSortOrderGeneral);
        StoreLittle(at + kBuildJet3, kBuildNumberJet3);
    } else {
        StoreLittle(at + kBuild, kBuildNumber);
        StoreLittle(at + kSortOrderAt, kSortOrderGeneral);
        base::StoreDouble(at + kCreated, created);
        ApplyPasswordMask(page);
        StoreLittle(at + kAfterMaskAt, kAfterMask);
        std::memcpy(at + kFormatTextAt, kFormatText.data(), kFormatText.size());
    }
    ApplyMask(page, version);
    const std::size_t words = version == 3 ? kCommitWordsJet3 : kCommitWordsJet4;
    for (std::size_t slot = 0; slot < kCommitWordCount; ++slot)
        StoreLittle(at + words + 2 * slot, kNeutralCommitWord);
    StoreLittle<std::uint16_t>(at + words, kNeutralCommitWord + 1);
    return page;
}

}  // namespace jet
