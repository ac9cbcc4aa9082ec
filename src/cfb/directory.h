// Directory: the entries of a compound file. The members of a storage form a binary tree of
// entries; it is walked in order; the walk is bounded, and leaves out what cannot be read. Errors:
// kCorruption, kIoError.
#pragma once

#include "base/status.h"
#include "cfb/allocation.h"
#include "cfb/compound_file.h"
#include "cfb/header.h"
#include "cfb/layout.h"
#include "cfb/sector_reader.h"

#include <cstdint>
#include <vector>

namespace cfb {

struct DirectoryEntry {
    Element element;
    EntryId left = kNoEntry;
    EntryId right = kNoEntry;
    EntryId child = kNoEntry;  // storages: the top of the members' tree
    SectorNumber start = kEndOfChain;
};

// What a storage holds.
struct Members {
    std::vector<Element> elements;  // those that could be read, in the tree's order
    base::Status damage;            // the first error on the way; ok: `elements` is complete
};

class Directory {
public:
    // Requires: both outlive the directory.
    Directory(SectorReader& sectors, AllocationTable& table, const Header& header);
    // kCorruption: there is no such entry, it is not in use, or its name is impossible.
    base::Result<DirectoryEntry> Entry(EntryId id);
    // Leaves out a member that cannot be read and those that are reached through it only.
    Members MembersOf(const DirectoryEntry& storage);

private:
    class Walk;

    // Without a check of its type and name.
    base::Result<DirectoryEntry> AnyEntry(EntryId id);

    SectorReader& sectors_;
    SectorChain chain_;
    bool has_long_sizes_;  // in version 3 the upper half of a size is undefined
};

}  // namespace cfb
