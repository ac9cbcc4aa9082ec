// A new file against the one that the engine itself wrote.
#include "base/byte_reader.h"
#include "jet/format.h"
#include "jet/page_header.h"
#include "jet/rc4.h"
#include "jet/storage_support.h"
#include "platform/file_system.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <set>

namespace jet::test {
namespace {

constexpr std::size_t kPage = 4096;

double CreationDate(std::vector<std::byte> file) {
    const std::array key = {std::byte{0xC7}, std::byte{0xDA}, std::byte{0x39}, std::byte{0x6B}};
    ApplyRc4(key, std::span(file).subspan(0x18, 128));
    return base::LoadDouble(file.data() + 0x72);
}

// Bytes of definitions that the engine leaves as they happen to be.
std::set<std::size_t> RubbishOf(std::size_t page, std::size_t columns, std::size_t indexes,
                                std::size_t name_bytes) {
    std::set<std::size_t> rubbish;
    const std::size_t start = page * kPage;
    const std::size_t first_column = start + 63 + 12 * indexes;
    for (std::size_t c = 0; c < columns; ++c)
        rubbish.insert({first_column + 25 * c + 21, first_column + 25 * c + 22});
    const std::size_t first_index = first_column + 25 * columns + name_bytes;
    for (std::size_t i = 0; i < indexes; ++i) {
        for (std::size_t c = 1; c < 10; ++c)
            rubbish.insert(first_index + 52 * i + 4 + 3 * c + 2);
        for (std::size_t b = 42; b < 46; ++b)
            rubbish.insert(first_index + 52 * i + b);
    }
    return rubbish;
}

std::size_t NameBytes(const std::vector<std::u16string>& names) {
    std::size_t bytes = 0;
    for (const std::u16string& name : names)
        bytes += 2 + 2 * name.size();
    return bytes;
}

TEST(DatabaseCreationTest, NewFileIsTheOneThatTheEngineWrites) {
    const auto samples = SampleFolder();
    if (!samples) GTEST_SKIP() << "no sample files on this machine";
    const auto expected = ReadWholeFile(*samples / "mdb" / "jet4-engine-fresh.mdb");
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    const base::Status created = CreateDatabaseFile(*files, path, CreationDate(expected));
    ASSERT_TRUE(created.ok()) << created.message();
    const auto actual = ReadWholeFile(path);
    ASSERT_EQ(actual.size(), expected.size());

    std::set<std::size_t> ignored = RubbishOf(
        2, 17, 2,
        NameBytes({u"Connect", u"Database", u"DateCreate", u"DateUpdate", u"Flags", u"ForeignName",
                   u"Id", u"Lv", u"LvExtra", u"LvModule", u"LvProp", u"Name", u"Owner", u"ParentId",
                   u"RmtInfoLong", u"RmtInfoShort", u"Type"}));
    ignored.merge(RubbishOf(3, 4, 1, NameBytes({u"ACM", u"FInheritable", u"ObjectId", u"SID"})));
    ignored.merge(RubbishOf(4, 8, 1,
                            NameBytes({u"Attribute", u"Expression", u"Flag", u"LvExtra", u"Name1",
                                       u"Name2", u"ObjectId", u"Order"})));
    ignored.merge(
        RubbishOf(5, 8, 3,
                  NameBytes({u"ccolumn", u"grbit", u"icolumn", u"szColumn", u"szObject",
                             u"szReferencedColumn", u"szReferencedObject", u"szRelationship"})));
    // Dates of the catalog's rows.
    for (std::size_t slot = 0; slot < 8; ++slot) {
        const std::size_t word =
            base::LoadLittle<std::uint16_t>(expected.data() + 14 * kPage + 14 + 2 * slot);
        for (std::size_t b = 12; b < 28; ++b)
            ignored.insert(14 * kPage + (word & 0x1FFF) + b);
    }
    std::size_t differences = 0;
    for (std::size_t at = 0; at < actual.size(); ++at) {
        if (actual[at] == expected[at] || ignored.contains(at)) continue;
        if (++differences < 40)
            ADD_FAILURE() << "page " << at / kPage << " byte " << at % kPage << ": "
                          << std::to_integer<int>(actual[at]) << ", the engine has "
                          << std::to_integer<int>(expected[at]);
    }
    EXPECT_EQ(differences, 0U);
}

// Whatever fails, and by half: no file is left that would be taken for a catalogue.
TEST(DatabaseCreationTest, AFailedCreationLeavesNothingBehind) {
    using test_support::FaultKind;
    const std::filesystem::path path = "folder/new.mdb";
    for (const FaultKind kind : {FaultKind::kRefuse, FaultKind::kHalf, FaultKind::kDoneButFail}) {
        std::uint64_t failed = 0;
        for (std::uint64_t call = 1;; ++call) {
            test_support::FaultyFileSystem files;
            files.SetPlan({call, kind, base::StatusCode::kNoSpace});
            const base::Status created = CreateDatabaseFile(files, path, 45000);
            if (!files.fault_happened()) break;
            ++failed;
            EXPECT_EQ(created.code(), base::StatusCode::kNoSpace) << call;
            EXPECT_FALSE(files.Exists(path)) << call;
            files.SetPlan({});
            EXPECT_TRUE(CreateDatabaseFile(files, path, 45000).ok()) << call;
            EXPECT_EQ(files.Get(path).size(), 16U * kPage);
        }
        EXPECT_GE(failed, 4U);  // open, write, sync, sync of the folder
    }
}

TEST(DatabaseCreationTest, ANewFileOutlivesAPowerCut) {
    const std::filesystem::path path = "folder/new.mdb";
    test_support::FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, path, 45000).ok());
    for (std::uint32_t seed = 0; seed < 20; ++seed)
        EXPECT_EQ(files.CutPower(seed)->Get(path), files.Get(path)) << seed;
}

TEST(DatabaseCreationTest, ExistingFileIsNotReplaced) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    WriteWholeFile(path, std::vector<std::byte>(10));
    const base::Status created = CreateDatabaseFile(*files, path, 45000);
    EXPECT_EQ(created.number(), 3204);
    EXPECT_EQ(ReadWholeFile(path).size(), 10U);
}

}  // namespace
}  // namespace jet::test
