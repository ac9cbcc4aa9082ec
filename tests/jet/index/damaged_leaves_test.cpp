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

const Format& kFormat = FormatOf(4);
const std::size_t kPreviousAt = kFormat.LinkOffset(IndexLink::kPrevious);
const std::size_t kNextAt = kFormat.LinkOffset(IndexLink::kNext);

// A file with a table T of 600 names and an index of several leaves.
void MakeNames(test_support::FaultyFileSystem& files) {
    const base::Status created = CreateDatabaseFile(files, kPath, 46000);
    ASSERT_TRUE(created.ok()) << created.message();
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

// Gives `damage` each leaf, and its number. The leaves there were.
template <typename Damage>
int DamageLeaves(test_support::FaultyFileSystem& files, Damage damage) {
    auto file = files.Get(kPath);
    int leaves = 0;
    for (std::size_t at = 0; at < file.size(); at += kFormat.page_size) {
        const auto page = std::span(file).subspan(at, kFormat.page_size);
        if (!HasType(page, PageType::kIndexLeaf)) continue;
        damage(page, static_cast<PageNumber>(at / kFormat.page_size));
        ++leaves;
    }
    files.Put(kPath, file);
    return leaves;
}

// An empty leaf that is its own successor: no key tells that the walk has been here.
TEST(DamagedLeaves, ACircleOfEmptyLeavesIsDamage) {
    test_support::FaultyFileSystem files;
    MakeNames(files);
    int damaged = 0;
    DamageLeaves(files, [&](std::span<std::byte> leaf, PageNumber page) {
        if (base::LoadLittle<PageNumber>(leaf.data() + kNextAt) == 0) return;
        ++damaged;
        std::fill(leaf.data() + kFormat.index_mask_offset,
                  leaf.data() + kFormat.index_entries_offset, std::byte{0});
        base::StoreLittle(leaf.data() + kNextAt, page);
    });
    ASSERT_GT(damaged, 0);
    Connection connection(files);
    ASSERT_TRUE(connection.Open(u"Data Source=/made.mdb;Mode=Read").ok());
    auto rows = connection.Execute(u"SELECT Name FROM T WHERE Name >= '1000'");
    base::Status status = rows.status();
    while (status.ok() && !rows->Eof())
        status = rows->MoveNext();
    EXPECT_EQ(status.number(), 3049) << status.message();
}

// The last leaf leads back to the first: each row is met once, then the walk ends.
TEST(DamagedLeaves, ACircleOfFullLeavesIsDamage) {
    test_support::FaultyFileSystem files;
    MakeNames(files);
    PageNumber first = 0;
    DamageLeaves(files, [&](std::span<std::byte> leaf, PageNumber page) {
        if (base::LoadLittle<PageNumber>(leaf.data() + kPreviousAt) == 0 &&
            base::LoadLittle<PageNumber>(leaf.data() + kNextAt) != 0)
            first = page;
    });
    ASSERT_NE(first, 0U);
    DamageLeaves(files, [&](std::span<std::byte> leaf, PageNumber) {
        if (base::LoadLittle<PageNumber>(leaf.data() + kPreviousAt) != 0 &&
            base::LoadLittle<PageNumber>(leaf.data() + kNextAt) == 0)
            base::StoreLittle(leaf.data() + kNextAt, first);
    });
    Connection connection(files);
    ASSERT_TRUE(connection.Open(u"Data Source=/made.mdb;Mode=Read").ok());
    auto rows = connection.Execute(u"SELECT Name FROM T WHERE Name >= '1000'");
    base::Status status = rows.status();
    std::size_t met = 0;
    for (; status.ok() && !rows->Eof() && met < 2000; ++met)
        status = rows->MoveNext();
    EXPECT_EQ(status.number(), 3049) << status.message();
    EXPECT_LE(met, 600U);
}

// Leaves that removals have left almost empty are joined, but not those whose links contradict each
// other: which pages belong between them is not known.
TEST(DamagedLeaves, NeighboursThatDoNotNameEachOtherAreNotJoined) {
    const auto leaves_left = [](auto damage) {
        test_support::FaultyFileSystem files;
        MakeNames(files);
        const int before = DamageLeaves(files, damage);
        Connection connection(files);
        EXPECT_TRUE(connection.Open(u"Data Source=/made.mdb").ok());
        const auto done = connection.Execute(u"DELETE FROM T WHERE Right(Name, 1) <> '0'");
        EXPECT_TRUE(done.ok()) << done.status().message();
        EXPECT_TRUE(connection.Close().ok());
        return std::pair(before, DamageLeaves(files, [](auto, auto) {}));
    };
    const auto [sound_before, sound_after] = leaves_left([](auto, auto) {});
    EXPECT_LT(sound_after, sound_before);
    const auto [before, after] = leaves_left([](std::span<std::byte> leaf, PageNumber) {
        base::StoreLittle(leaf.data() + kPreviousAt, PageNumber{3});
    });
    EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace jet
