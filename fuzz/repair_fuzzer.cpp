// Repairs a file, and has the checker look at what comes out; what is sound is compacted as well.
// Input: as for the open_database fuzzer. Byte 0 even: the rest is the file itself. Odd: the rest
// are patches (u24 offset, u8 size, bytes) of a sound file. With bit 1 the file of the patches is
// encoded.
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/repair/compact.h"
#include "jet/repair/repair.h"
#include "jet/tables/database.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kMaxFileSize = 1U << 20;

Bytes MakeSoundFile() {
    test_support::FaultyFileSystem files;
    if (!jet::CreateDatabaseFile(files, "a.mdb", 40000.25).ok()) std::abort();
    jet::Connection connection(files);
    if (!connection.Open(u"Data Source=a.mdb").ok()) std::abort();
    const auto execute = [&](const std::u16string& sql) {
        if (!connection.Execute(sql).ok()) std::abort();
    };
    execute(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, Name TEXT(50), Notes MEMO, D DATETIME, "
            u"N LONG, B BIT, M CURRENCY)");
    execute(u"CREATE INDEX NameIndex ON T (Name)");
    execute(u"CREATE INDEX Two ON T (N DESC, Name)");
    for (int i = 0; i < 60; ++i) {
        const std::u16string name(static_cast<std::size_t>(i % 40),
                                  u'a' + static_cast<char16_t>(i % 26));
        const std::u16string notes(static_cast<std::size_t>(i % 7 == 0 ? 5000 : i), u'x');
        execute(u"INSERT INTO T (Name, Notes, D, N, B, M) VALUES ('" + name + u"', '" + notes +
                u"', #1/2/2003#, 5, true, 1.5)");
    }
    execute(u"DELETE FROM T WHERE ID = 7");
    execute(u"UPDATE T SET Name = 'a much longer name than it had before' WHERE ID = 3");
    execute(u"ALTER TABLE T ADD COLUMN Extra TEXT(20)");
    if (!connection.Close().ok()) std::abort();
    return files.Get("a.mdb");
}

Bytes Patched(const Bytes& sound, std::span<const std::byte> patches) {
    Bytes file = sound;
    while (patches.size() > 4) {
        const auto at = (std::to_integer<std::size_t>(patches[0]) |
                         std::to_integer<std::size_t>(patches[1]) << 8 |
                         std::to_integer<std::size_t>(patches[2]) << 16) %
                        file.size();
        const std::size_t size = std::min({std::to_integer<std::size_t>(patches[3]) % 64 + 1,
                                           patches.size() - 4, file.size() - at});
        std::memcpy(file.data() + at, patches.data() + 4, size);
        patches = patches.subspan(4 + size);
    }
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Bytes sound = MakeSoundFile();
    if (size < 2 || size > kMaxFileSize) return 0;
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    const auto rest = input.subspan(1);
    Bytes file = (data[0] & 1) != 0 ? Patched(sound, rest) : Bytes(rest.begin(), rest.end());
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
