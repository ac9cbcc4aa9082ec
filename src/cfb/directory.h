// Directory: the entries of a compound file. The members of a storage form a binary tree of
// entries; it is walked in order with a bound, whatever its links say, and around what cannot be
// read. Errors: kCorruption, kIoError.
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
    base::Status damage;            // the first trouble on the way; ok: these are all there are
};

class Directory {
public:
    // Requires: both outlive the directory.
    Directory(SectorReader& sectors, AllocationTable& table, const Header& header);
    // kCorruption: there is no such entry, it is not in use, or its name is impossible.
    base::Result<DirectoryEntry> Entry(EntryId id);
    // A member that cannot be read hides itself and what only it leads to, nothing else.
    Members MembersOf(const DirectoryEntry& storage);

private:
    class Walk;

    // Whatever type and name it has.
    base::Result<DirectoryEntry> AnyEntry(EntryId id);

    SectorReader& sectors_;
    SectorChain chain_;
    bool has_long_sizes_;  // version 3 leaves rubbish in the upper half of a size
};

}  // namespace cfb
