#include "snapshots/pack_set.h"

#include <array>
#include <cstdio>

namespace snapshots {
namespace {

base::Status Damaged(const std::string& what) {
    return {base::StatusCode::kCorruption, "The snapshot is damaged: " + what};
}

}  // namespace

std::string PackSet::FileName(PackNumber pack) {
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "%08u.pages", static_cast<unsigned>(pack));
    return name.data();
}

base::Result<std::unique_ptr<PackSet::Pack>> PackSet::Load(PackNumber number) {
    auto pack = std::make_unique<Pack>();
    auto file = files_.Open(folder_ / FileName(number), jet::OpenMode::kRead);
    if (file.status().code() == base::StatusCode::kNotFound)
        return Damaged(FileName(number) + " is missing");
    if (!file.ok()) return file.status();
    pack->file = std::move(file).value();
    ASSIGN_OR_RETURN(const std::uint64_t size, pack->file->Size());
    std::vector<std::byte> bytes(kPackHeadBytes);
    if (size < bytes.size()) return Damaged(FileName(number) + " is too short");
    RETURN_IF_ERROR(pack->file->ReadAt(0, bytes));
    ASSIGN_OR_RETURN(const std::uint64_t directory_bytes, DirectoryBytes(bytes));
    if (directory_bytes > size) return Damaged(FileName(number) + " is too short");
    bytes.resize(static_cast<std::size_t>(directory_bytes));
    RETURN_IF_ERROR(pack->file->ReadAt(0, bytes));
    ASSIGN_OR_RETURN(pack->directory, ParseDirectory(bytes));
    std::uint64_t offset = directory_bytes;
    for (const PackRecord& record : pack->directory.records) {
        pack->offsets.push_back(offset);
        offset += record.stored_bytes;
    }
    if (offset != size) return Damaged(FileName(number) + " has another size");
    pack->known.resize(pack->directory.records.size());
    return pack;
}

base::Result<PackSet::Pack*> PackSet::Open(PackNumber number) {
    auto found = packs_.find(number);
    if (found == packs_.end()) found = packs_.emplace(number, Load(number)).first;
    if (!found->second.ok()) return found->second.status();
    return found->second->get();
}

base::Result<const PackDirectory*> PackSet::Directory(PackNumber pack) {
    ASSIGN_OR_RETURN(const Pack* opened, Open(pack));
    return &opened->directory;
}

base::Result<const PackRecord*> PackSet::Record(RecordPlace place) {
    ASSIGN_OR_RETURN(const PackDirectory* directory, Directory(place.pack));
    if (place.record >= directory->records.size() ||
        directory->records[place.record].stored_bytes == 0)
        return Damaged(FileName(place.pack) + " does not have a page");
    return &directory->records[place.record];
}

base::Result<std::vector<std::byte>> PackSet::ReadStored(RecordPlace place) {
    ASSIGN_OR_RETURN(const PackRecord* record, Record(place));
    ASSIGN_OR_RETURN(Pack * pack, Open(place.pack));
    std::vector<std::byte> stored(record->stored_bytes);
    RETURN_IF_ERROR(pack->file->ReadAt(pack->offsets[place.record], stored));
    if (StoredChecksum(stored) != record->stored_checksum)
        return Damaged("a page in " + FileName(place.pack));
    return stored;
}

base::Status PackSet::ReadPage(RecordPlace place, jet::PageNumber page,
                               std::span<std::byte> bytes) {
    ASSIGN_OR_RETURN(const PackRecord* record, Record(place));
    ASSIGN_OR_RETURN(const PackDirectory* directory, Directory(place.pack));
    if (record->page != page || directory->page_size != bytes.size())
        return Damaged("a page in " + FileName(place.pack) + " is another one");
    ASSIGN_OR_RETURN(const std::vector<std::byte> stored, ReadStored(place));
    std::span<const std::byte> base;
    if (record->base) {
        ASSIGN_OR_RETURN(const PackRecord* whole, Record(*record->base));
        // One step, so that no chain can be made that does not end.
        if (whole->base) return Damaged("a page builds on one that is not whole");
        ASSIGN_OR_RETURN(const std::vector<std::byte> stored_base, ReadStored(*record->base));
        base_page_.resize(bytes.size());
        RETURN_IF_ERROR(codec_.Expand(stored_base, {}, base_page_));
        base = base_page_;
    }
    RETURN_IF_ERROR(codec_.Expand(stored, base, bytes));
    if (PageChecksum(page, bytes) != record->page_checksum)
        return Damaged("a page in " + FileName(place.pack));
    return {};
}

bool PackSet::IsWhole(RecordPlace place) {
    const auto opened = Open(place.pack);
    if (!opened.ok() || place.record >= (*opened)->known.size()) return false;
    const PackRecord& record = (*opened)->directory.records[place.record];
    if (!FindOut(**opened, place.record)) return false;
    if (!record.base) return true;
    const auto base = Open(record.base->pack);
    if (!base.ok() || record.base->record >= (*base)->known.size()) return false;
    return FindOut(**base, record.base->record);
}

bool PackSet::FindOut(Pack& pack, std::uint32_t record) {
    Known& known = pack.known[record];
    if (known == Known::kNotYet) {
        const PackRecord& wanted = pack.directory.records[record];
        std::vector<std::byte> stored(wanted.stored_bytes);
        const bool is_whole = !stored.empty() &&
                              pack.file->ReadAt(pack.offsets[record], stored).ok() &&
                              StoredChecksum(stored) == wanted.stored_checksum;
        known = is_whole ? Known::kWhole : Known::kDamaged;
    }
    return known == Known::kWhole;
}

}  // namespace snapshots
