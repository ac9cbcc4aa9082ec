// PackSet: the packs of a folder of snapshots, opened as they are needed, and the pages in them.
// Errors: kCorruption when a pack is missing, damaged or does not have the record; kIoError.
// Threads: belongs to one thread.
#pragma once

#include "jet/pages/file_system.h"
#include "snapshots/page_codec.h"
#include "snapshots/snapshot_format.h"

#include <map>

namespace snapshots {

class PackSet {
public:
    // `files` is borrowed.
    PackSet(jet::FileSystem& files, std::filesystem::path folder)
        : files_(files), folder_(std::move(folder)) {}

    static std::string FileName(PackNumber pack);

    base::Result<const PackDirectory*> Directory(PackNumber pack);
    // The record, which is there and not dropped.
    base::Result<const PackRecord*> Record(RecordPlace place);
    // Fills `bytes` with the page of this number, all its checksums tested.
    base::Status ReadPage(RecordPlace place, jet::PageNumber page, std::span<std::byte> bytes);
    // The stored bytes of a record, tested.
    base::Result<std::vector<std::byte>> ReadStored(RecordPlace place);
    // Whether the bytes stored for each record are those that were written, and so for the whole
    // page that it is a change of. The answer of each record is found once.
    bool IsWhole(RecordPlace place);

private:
    enum class Known : std::uint8_t { kNotYet, kWhole, kDamaged };
    struct Pack {
        std::unique_ptr<jet::File> file;
        PackDirectory directory;
        std::vector<std::uint64_t> offsets;  // of the records in the file
        std::vector<Known> known;
    };

    base::Result<Pack*> Open(PackNumber number);
    base::Result<std::unique_ptr<Pack>> Load(PackNumber number);
    bool FindOut(Pack& pack, std::uint32_t record);

    jet::FileSystem& files_;
    std::filesystem::path folder_;
    std::map<PackNumber, base::Result<std::unique_ptr<Pack>>> packs_;
    PageCodec codec_;
    std::vector<std::byte> base_page_;
};

}  // namespace snapshots
