// Leaves of an index whose links are damaged: every walk ends, with a message.
#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/connection.h"
#include "jet/pages/format.h"
#include "jet/tables/database.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace jet {
namespace {

constexpr const char* kPath = "/made.mdb";

std::u16string Number(int i) {
    const std::string digits = std::to_string(1000 + i);
    return {digits.begin(), digits.end()};
}

// An empty leaf that is its own successor: no key tells that the walk has been here.
TEST(DamagedLeaves, ACircleOfEmptyLeavesIsDamage) {
    test_support::FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, kPath, 46000).ok());
    {
        Connection connection(files);
        ASSERT_TRUE(connection.Open(u"Data Source=/made.mdb").ok());
        ASSERT_TRUE(connection.Execute(u"CREATE TABLE T (Name TEXT(100))").ok());
        ASSERT_TRUE(connection.Execute(u"CREATE INDEX ByName ON T (Name)").ok());
        for (int i = 0; i < 600; ++i) {
            const auto done =
                connection.Execute(u"INSERT INTO T VALUES ('" + Number(i * 7 % 600) + u"')");
            ASSERT_TRUE(done.ok()) << done.status().message();
        }
        ASSERT_TRUE(connection.Close().ok());
    }
    const Format& format = FormatOf(4);
    auto file = files.Get(kPath);
    int damaged = 0;
    for (std::size_t page = 0; page * format.page_size < file.size(); ++page) {
        std::byte* const bytes = file.data() + page * format.page_size;
        const std::size_t next = format.index_links_offset + 4;
        if (bytes[0] != static_cast<std::byte>(PageType::kIndexLeaf) ||
            base::LoadLittle<std::uint32_t>(bytes + next) == 0)
            continue;
        std::fill(bytes + format.index_mask_offset, bytes + format.index_entries_offset,
                  std::byte{0});
        base::StoreLittle(bytes + next, static_cast<std::uint32_t>(page));
        ++damaged;
    }
    ASSERT_GT(damaged, 0);
    files.Put(kPath, file);
    Connection connection(files);
    ASSERT_TRUE(connection.Open(u"Data Source=/made.mdb;Mode=Read").ok());
    auto rows = connection.Execute(u"SELECT Name FROM T WHERE Name >= '1000'");
    base::Status status = rows.status();
    while (status.ok() && !rows->Eof())
        status = rows->MoveNext();
    EXPECT_EQ(status.number(), 3049) << status.message();
}

}  // namespace
}  // namespace jet
