// Directory: the entries of a compound file. The members of a storage form a binary tree of
// entries; it is walked in order with a bound, whatever its links say. Errors: kCorruption,
// kIoError.
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

class Directory {
public:
    // Requires: both outlive the directory.
    Directory(SectorReader& sectors, AllocationTable& table, const Header& header);
    // kCorruption: there is no such entry, it is not in use, or its name is impossible.
    base::Result<DirectoryEntry> Entry(EntryId id);
    base::Result<std::vector<Element>> Members(const DirectoryEntry& storage);

private:
    base::Status DescendLeft(EntryId from, std::vector<DirectoryEntry>& path);

    SectorReader& sectors_;
    SectorChain chain_;
    bool has_long_sizes_;  // version 3 leaves rubbish in the upper half of a size
};

}  // namespace cfb
