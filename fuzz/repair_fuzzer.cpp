// Repairs a file, and has the checker look at what comes out; what is sound is compacted as well.
// Input: as for the open_database fuzzer. Byte 0 even: the rest is the file itself. Odd: the rest
// are patches (u24 offset, u8 size, bytes) of a sound file. With bit 1 the file of the patches is
// encoded.
#include "damaged_database.h"
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/repair/compact.h"
#include "jet/repair/repair.h"
#include "jet/tables/database.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"

#include <cstdlib>

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kMaxFileSize = 1U << 20;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Bytes sound = fuzz::MakeSoundFile();
    if (size < 2 || size > kMaxFileSize) return 0;
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    const auto rest = input.subspan(1);
    Bytes file = (data[0] & 1) != 0 ? fuzz::Patched(sound, rest) : Bytes(rest.begin(), rest.end());
    if ((data[0] & 3) == 3) test_support::EncodeFile(file, 0x1234ABCD);
    test_support::FaultyFileSystem files;
    files.Put("a.mdb", file);
    jet::RepairReport report;
    if (!jet::Repair(files, "a.mdb", "b.mdb", report).ok()) return 0;
    if (files.Get("a.mdb") != file) std::abort();
    if (!jet::CompactInPlace(files, "b.mdb").ok()) std::abort();  // it checks the file first
    jet::Compact(files, "a.mdb", "c.mdb").status().Ignore();
    return 0;
}
