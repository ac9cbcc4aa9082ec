// Where things lie in a property blob; reader, writer and checker share it. Tables of offsets:
// docs/formats/jet.md, "Property blobs".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace jet {

inline constexpr std::string_view kPropertiesJet4("MR2\0", 4);
inline constexpr std::string_view kPropertiesJet3("KKD\0", 4);

// A block: u32 bytes, its head included; u16 type.
inline constexpr std::size_t kBlockType = 4;
inline constexpr std::size_t kBlockHead = 6;
inline constexpr std::uint16_t kNameList = 0x80;
inline constexpr std::uint16_t kTableBlock = 0;
inline constexpr std::uint16_t kColumnBlock = 1;

// A name: u16 bytes, then these.
inline constexpr std::size_t kNameHead = 2;
// The content of a table's or a column's block: u32 bytes of what stands before the entries, then
// the column's name.
inline constexpr std::size_t kOwnerName = 4;
inline constexpr std::size_t kOwnerHead = kOwnerName + kNameHead;

// A property: u16 bytes, its head included.
inline constexpr std::size_t kPropertyName = 4;       // u16, position in the list of names
inline constexpr std::size_t kPropertyValueSize = 6;  // u16
inline constexpr std::size_t kPropertyHead = 8;

}  // namespace jet
