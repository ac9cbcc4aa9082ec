#include "jet/page_header.h"

#include "jet/rc4.h"
#include "jet/storage_errors.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace jet {
namespace {

using base::LoadLittle;
using base::StoreLittle;

constexpr std::array kMaskKey = {std::byte{0xC7}, std::byte{0xDA}, std::byte{0x39},
                                 std::byte{0x6B}};
constexpr std::size_t kMaskStart = 0x18;
constexpr std::size_t kMaskBytesJet4 = 128;
constexpr std::size_t kMaskBytesJet3 = 126;
constexpr std::size_t kEncodingKey = 0x3E;
constexpr std::size_t kCodePage = 0x3C;
constexpr std::size_t kPassword = 0x42;
constexpr std::size_t kPasswordBytesJet4 = 40;
constexpr std::size_t kPasswordBytesJet3 = 20;
constexpr std::size_t kBuild = 0x6A;
constexpr std::size_t kCreated = 0x72;
constexpr std::size_t kCommitWords = 0xE00;
constexpr std::uint32_t kBuildNumber = 9756;  // of the last engines that wrote the format

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

constexpr std::string_view kSignature = "Standard Jet DB";

std::string_view Signature(std::span<const std::byte> head) {
    return {reinterpret_cast<const char*>(head.data()) + 4, kSignature.size()};
}

}  // namespace

std::optional<std::string_view> OtherFormat(std::span<const std::byte> head) {
    const std::string_view signature = Signature(head);
    if (signature == "Standard ACE DB")
        return "the file was made by a newer version of the database engine (.accdb)";
    if (signature == "MSISAM Database") return "the file is an encrypted database";
    if (signature == kSignature && LoadLittle<std::uint32_t>(head.data() + 0x14) > 1)
        return "the file was made by a newer version of the database engine";
    return std::nullopt;
}

base::Result<PageHeader> ReadPageHeader(std::span<const std::byte> page, std::string_view path) {
    Head head{};
    if (page.size() < head.size()) return errors::NotADatabase(path);
    std::memcpy(head.data(), page.data(), head.size());
    if (const auto other = OtherFormat(head)) return errors::UnsupportedDatabase(path, *other);
    if (Signature(head) != kSignature) return errors::NotADatabase(path);
    PageHeader header;
    header.version = LoadLittle<std::uint32_t>(head.data() + 0x14) == 0 ? 3 : 4;
    if (page.size() != FormatOf(header.version).page_size) return errors::NotADatabase(path);
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

std::vector<std::byte> MakePageHeader(double created) {
    std::vector<std::byte> page(FormatOf(4).page_size);
    std::byte* at = page.data();
    StoreLittle<std::uint32_t>(at, 0x100);
    std::memcpy(at + 4, "Standard Jet DB", 16);
    StoreLittle<std::uint32_t>(at + 0x14, 1);
    StoreRowPointer(at + 0x18, {1, 0});
    StoreRowPointer(at + 0x1C, {1, 1});
    for (std::uint32_t system = 0; system < 4; ++system)
        StoreLittle(at + 0x20 + 4 * system, kObjectsPage + system);
    StoreLittle<std::uint16_t>(at + kCodePage, 1252);
    StoreLittle(at + kBuild, kBuildNumber);
    StoreLittle<std::uint16_t>(at + 0x6E, 0x0409);
    base::StoreDouble(at + kCreated, created);
    ApplyPasswordMask(page);
    ApplyMask(page, 4);
    StoreLittle<std::uint16_t>(at + 0x98, 1620);
    std::memcpy(at + 0x9C, "4.0", 4);
    for (std::size_t slot = 0; slot < 256; ++slot)
        StoreLittle<std::uint16_t>(at + kCommitWords + 2 * slot, slot == 0 ? 0x0101 : 0x0100);
    return page;
}

}  // namespace jet
