// Lists, reads, thins out and restores from a folder of snapshots with any bytes in it. Input: byte
// 0: what the rest is. 0: a snapshot's bytes, 1: a pack's; 2 and 3: the same, given a right
// checksum (of a pack's directory), so that the content is looked at. The other one of the two is a
// whole file.
#include "base/byte_writer.h"
#include "snapshots/pack_set.h"
#include "snapshots/restore.h"
#include "support/faulty_file_system.h"
#include "support/make_pages.h"

#include <cstdlib>

namespace {

using Bytes = std::vector<std::byte>;
using test_support::FaultyFileSystem;

constexpr const char* kDatabase = "/a/a.mdb";
const std::filesystem::path kFolder = "/a/a.mdb-snapshots";

struct WholeFiles {
    Bytes database = test_support::MakePages(1, 4);
    Bytes snapshot;
    Bytes pack;
};

// What a store makes of the database; the checker has something against it, as it holds no tables.
WholeFiles MakeWholeFiles() {
    WholeFiles whole;
    FaultyFileSystem files;
    files.Put(kDatabase, whole.database);
    snapshots::SnapshotStore store(files, kDatabase);
    if (!store.Make({}).ok()) std::abort();
    whole.snapshot = files.Get(kFolder / "00000001.unchecked");
    whole.pack = files.Get(kFolder / "00000001.pages");
    if (whole.snapshot.empty() || whole.pack.empty()) std::abort();
    return whole;
}

// In place of the bytes that stand there.
void GiveChecksum(Bytes& bytes, bool is_snapshot) {
    constexpr std::size_t kChecksumBytes = 8;
    std::uint64_t end = bytes.size();
    if (!is_snapshot) end = snapshots::DirectoryBytes(bytes).value_or(0);
    if (end < kChecksumBytes || end > bytes.size()) return;
    const auto content = std::span(bytes).first(end - kChecksumBytes);
    base::StoreLittle(bytes.data() + content.size(), snapshots::StoredChecksum(content));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const WholeFiles whole = MakeWholeFiles();
    if (size < 1) return 0;
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    const unsigned kind = data[0] & 3U;
    Bytes bytes(input.begin() + 1, input.end());
    const bool is_snapshot = kind % 2 == 0;
    if (kind >= 2) GiveChecksum(bytes, is_snapshot);

    FaultyFileSystem files;
    files.Put(kDatabase, whole.database);
    files.Put(kFolder / "00000001.snapshot", is_snapshot ? bytes : whole.snapshot);
    files.Put(kFolder / "00000001.pages", is_snapshot ? whole.pack : bytes);
    snapshots::SnapshotStore store(files, kDatabase);
    const auto list = store.List();
    if (!list.ok()) std::abort();
    for (const auto& info : *list) {
        const auto read = store.Read(info.number);
        if (read.ok() && info.state != snapshots::SnapshotState::kGood) std::abort();
        if (read.ok()) (void)snapshots::Restore(files, store, *read, 0);
    }
    // A new one stands beside whatever is there, and is whole.
    files.Put(kDatabase, whole.database);
    const auto made = store.Make({});
    if (made.ok() && *made) {
        if (!store.Keep().ok()) std::abort();
        const auto after = store.List();
        if (!after.ok() || after->empty() ||
            after->back().state == snapshots::SnapshotState::kDamaged)
            std::abort();
    }
    return 0;
}
