#include "cfb/directory.h"

#include "base/byte_reader.h"

#include <string>
#include <unordered_set>
#include <utility>

namespace cfb {
namespace {

base::Status Damaged(EntryId id, const char* what) {
    return {base::StatusCode::kCorruption, "directory entry " + std::to_string(id) + ": " + what};
}

bool IsKnownType(ElementType type) {
    return type == ElementType::kStorage || type == ElementType::kStream ||
           type == ElementType::kRoot;
}

// Requires: `bytes` is a whole entry. Empty: the name's length is impossible.
std::u16string NameIn(std::span<const std::byte> bytes) {
    const std::size_t length = base::LoadLittle<std::uint16_t>(bytes.data() + entry::kNameLength);
    std::u16string name;
    if (length < 2 || length > entry::kNameBytes || length % 2 != 0) return name;
    for (std::size_t at = 0; at + 2 < length; at += 2)
        name.push_back(base::LoadLittle<char16_t>(bytes.data() + at));
    return name;
}

std::uint64_t SizeIn(std::span<const std::byte> bytes, bool has_long_sizes) {
    const auto size = base::LoadLittle<std::uint64_t>(bytes.data() + entry::kStreamSize);
    return has_long_sizes ? size : size & 0xFFFFFFFF;
}

DirectoryEntry Decode(std::span<const std::byte> bytes, bool has_long_sizes) {
    DirectoryEntry result;
    result.element.name = NameIn(bytes);
    result.element.type = static_cast<ElementType>(bytes[entry::kType]);
    result.element.size_bytes = SizeIn(bytes, has_long_sizes);
    result.left = base::LoadLittle<EntryId>(bytes.data() + entry::kLeft);
    result.right = base::LoadLittle<EntryId>(bytes.data() + entry::kRight);
    result.child = base::LoadLittle<EntryId>(bytes.data() + entry::kChild);
    result.start = base::LoadLittle<SectorNumber>(bytes.data() + entry::kStart);
    return result;
}

}  // namespace

Directory::Directory(SectorReader& sectors, AllocationTable& table, const Header& header)
    : sectors_(sectors), chain_(table, header.directory_start),
      has_long_sizes_(header.major_version >= 4) {}

base::Result<DirectoryEntry> Directory::Entry(EntryId id) {
    const auto per_sector = static_cast<std::uint32_t>(sectors_.sector_size() / entry::kSize);
    ASSIGN_OR_RETURN(const SectorNumber sector, chain_.At(id / per_sector));
    ASSIGN_OR_RETURN(const auto bytes, sectors_.Sector(sector));
    DirectoryEntry result =
        Decode(bytes.subspan((id % per_sector) * entry::kSize, entry::kSize), has_long_sizes_);
    result.element.id = id;
    if (!IsKnownType(result.element.type)) return Damaged(id, "not in use");
    if (result.element.name.empty() && result.element.type != ElementType::kRoot)
        return Damaged(id, "impossible name");
    return result;
}

// In order: left branch, entry, right branch. Each entry is met once, so a loop and a shared branch
// are damage.
base::Result<std::vector<Element>> Directory::Members(const DirectoryEntry& storage) {
    std::vector<Element> members;
    std::unordered_set<EntryId> met;
    std::vector<DirectoryEntry> path;
    RETURN_IF_ERROR(DescendLeft(storage.child, path));
    while (!path.empty()) {
        DirectoryEntry current = std::move(path.back());
        path.pop_back();
        if (!met.insert(current.element.id).second) return Damaged(current.element.id, "met twice");
        if (current.element.type == ElementType::kRoot)
            return Damaged(current.element.id, "root as a member");
        const EntryId right = current.right;
        members.push_back(std::move(current.element));
        RETURN_IF_ERROR(DescendLeft(right, path));
    }
    return members;
}

base::Status Directory::DescendLeft(EntryId from, std::vector<DirectoryEntry>& path) {
    std::unordered_set<EntryId> met;
    for (EntryId id = from; id != kNoEntry; id = path.back().left) {
        if (!met.insert(id).second) return Damaged(id, "its left branch is a loop");
        ASSIGN_OR_RETURN(DirectoryEntry current, Entry(id));
        path.push_back(std::move(current));
    }
    return base::Status::Ok();
}

}  // namespace cfb
