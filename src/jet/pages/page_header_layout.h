// Where things lie in page 0; reader, writer and checker share it. The tables of both versions:
// docs/formats/jet.md, "Page 0".
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace jet {

inline constexpr std::uint32_t kHeaderMark = 0x100;  // the first four bytes
inline constexpr std::size_t kSignatureAt = 4;
inline constexpr std::string_view kSignature = "Standard Jet DB";  // and a zero byte
inline constexpr std::size_t kVersionAt = 0x14;
inline constexpr std::uint32_t kVersionJet3 = 0;
inline constexpr std::uint32_t kVersionJet4 = 1;

// The bytes from kMaskStart on are XORed with the RC4 stream of kMaskKey.
inline constexpr std::array<std::byte, 4> kMaskKey = {std::byte{0xC7}, std::byte{0xDA},
                                                      std::byte{0x39}, std::byte{0x6B}};
inline constexpr std::size_t kMaskStart = 0x18;
inline constexpr std::size_t kMaskBytesJet4 = 128;
inline constexpr std::size_t kMaskBytesJet3 = 126;

// Masked.
inline constexpr std::size_t kGlobalMapAt = 0x18;
inline constexpr std::size_t kSecondMapAt = 0x1C;
inline constexpr std::size_t kSystemPagesAt = 0x20;  // u32 each
inline constexpr std::size_t kSystemPages = 4;
inline constexpr std::size_t kSortOrderAtJet3 = 0x3A;
inline constexpr std::size_t kCodePage = 0x3C;
inline constexpr std::size_t kEncodingKey = 0x3E;
inline constexpr std::size_t kPassword = 0x42;
inline constexpr std::size_t kPasswordBytesJet4 = 40;
inline constexpr std::size_t kPasswordBytesJet3 = 20;
inline constexpr std::size_t kBuildJet3 = 0x56;
inline constexpr std::size_t kBuild = 0x6A;
inline constexpr std::size_t kSortOrderAt = 0x6E;
inline constexpr std::size_t kCreated = 0x72;

// Plain; Jet 4 only.
inline constexpr std::size_t kAfterMaskAt = 0x98;
inline constexpr std::uint16_t kAfterMask = 1620;
inline constexpr std::size_t kFormatTextAt = 0x9C;
inline constexpr std::string_view kFormatText = "4.0";  // and a zero byte

// One u16 for each user that may write.
inline constexpr std::size_t kCommitWordsJet4 = 0xE00;
inline constexpr std::size_t kCommitWordsJet3 = 0x600;
inline constexpr std::size_t kCommitWordCount = 256;
inline constexpr std::uint16_t kNeutralCommitWord = 0x100;  // less: a user vanished while writing

}  // namespace jet
