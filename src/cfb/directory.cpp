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

base::Status CheckEntry(const Element& element) {
    if (!IsKnownType(element.type)) return Damaged(element.id, "not in use");
    if (element.name.empty() && element.type != ElementType::kRoot)
        return Damaged(element.id, "impossible name");
    return {};
}

}  // namespace

Directory::Directory(SectorReader& sectors, AllocationTable& table, const Header& header)
    : sectors_(sectors), chain_(table, header.directory_start),
      has_long_sizes_(header.major_version >= 4) {}

base::Result<DirectoryEntry> Directory::AnyEntry(EntryId id) {
    const auto per_sector = static_cast<std::uint32_t>(sectors_.sector_size() / entry::kSize);
    ASSIGN_OR_RETURN(const SectorNumber sector, chain_.At(id / per_sector));
    ASSIGN_OR_RETURN(const auto bytes, sectors_.Sector(sector));
    DirectoryEntry result =
        Decode(bytes.subspan((id % per_sector) * entry::kSize, entry::kSize), has_long_sizes_);
    result.element.id = id;
    return result;
}

base::Result<DirectoryEntry> Directory::Entry(EntryId id) {
    ASSIGN_OR_RETURN(DirectoryEntry result, AnyEntry(id));
    RETURN_IF_ERROR(CheckEntry(result.element));
    return result;
}

// In order: left branch, entry, right branch. Each entry is visited once: a second visit (a loop, a
// shared branch) is damage and ends the branch.
class Directory::Walk {
public:
    explicit Walk(Directory& directory) : directory_(directory) {}

    Members From(EntryId top) {
        DescendLeft(top);
        while (!path_.empty()) {
            DirectoryEntry current = std::move(path_.back());
            path_.pop_back();
            const EntryId right = current.right;
            Take(std::move(current.element));
            DescendLeft(right);
        }
        return std::move(members_);
    }

private:
    void DescendLeft(EntryId id) {
        while (id != kNoEntry) {
            if (!met_.insert(id).second) return Note(Damaged(id, "met twice"));
            auto current = directory_.AnyEntry(id);
            if (!current.ok()) return Note(current.status());
            id = current->left;
            path_.push_back(std::move(*current));
        }
    }

    void Take(Element element) {
        base::Status usable = CheckEntry(element);
        if (usable.ok() && element.type == ElementType::kRoot)
            usable = Damaged(element.id, "root as a member");
        if (!usable.ok()) return Note(usable);
        members_.elements.push_back(std::move(element));
    }

    void Note(const base::Status& trouble) {
        if (members_.damage.ok()) members_.damage = trouble;
    }

    Directory& directory_;
    std::unordered_set<EntryId> met_;
    std::vector<DirectoryEntry> path_;  // entries whose left branch has been taken
    Members members_;
};

Members Directory::MembersOf(const DirectoryEntry& storage) {
    return Walk(*this).From(storage.child);
}

}  // namespace cfb
