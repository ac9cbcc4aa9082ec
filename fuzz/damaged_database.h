// A sound database that the engine made, and patches that a fuzzer makes in it: so small inputs
// reach deep.
#pragma once

#include "jet/connection.h"
#include "jet/tables/database.h"
#include "support/faulty_file_system.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace fuzz {

inline std::vector<std::byte> MakeSoundFile() {
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

// `patches`: u24 offset, u8 size, bytes, again and again.
inline std::vector<std::byte> Patched(const std::vector<std::byte>& sound,
                                      std::span<const std::byte> patches) {
    std::vector<std::byte> file = sound;
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

}  // namespace fuzz
