#include "snapshots/snapshot_format.h"

#include <gtest/gtest.h>

namespace {

using namespace snapshots;

Snapshot Sample() {
    Snapshot snapshot;
    snapshot.head = {4096, 5, Occasion::kBeforeCommand, 1'700'000'000, 77, "Purge"};
    snapshot.runs = {{{1, 0}, 2}, {{2, 7}, 1}, {{1, 3}, 2}};
    return snapshot;
}

PackDirectory SampleDirectory() {
    PackDirectory directory;
    directory.page_size = 4096;
    directory.records = {{0, 4096, std::nullopt, 11, 12}, {9, 80, RecordPlace{1, 4}, 13, 14}};
    return directory;
}

TEST(SnapshotFormatTest, ASnapshotIsReadAsItWasStored) {
    const auto parsed = ParseSnapshot(StoreSnapshot(Sample()));
    ASSERT_TRUE(parsed.ok()) << parsed.status().message();
    EXPECT_EQ(*parsed, Sample());
}

TEST(SnapshotFormatTest, TheBytesOfASnapshot) {
    const std::vector<std::byte> bytes = StoreSnapshot(Sample());
    ASSERT_EQ(bytes.size(), 16U + 40U + 5U + 3U * 12U + 8U);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), 16), "Tavolo snapshot\n");
    EXPECT_EQ(bytes[16], std::byte{1});     // version
    EXPECT_EQ(bytes[21], std::byte{0x10});  // page size
    EXPECT_EQ(bytes[24], std::byte{5});     // pages
    EXPECT_EQ(bytes[28], std::byte{2});     // occasion
    EXPECT_EQ(bytes[40], std::byte{77});    // checksum of the pages
    EXPECT_EQ(bytes[48], std::byte{5});     // bytes of the label
    EXPECT_EQ(bytes[52], std::byte{3});     // runs
    EXPECT_EQ(bytes[56], std::byte{'P'});
    EXPECT_EQ(bytes[61 + 12], std::byte{2});  // the pack of the second run
    EXPECT_EQ(bytes[61 + 16], std::byte{7});
}

TEST(SnapshotFormatTest, ASnapshotWithOneOtherBitIsRefused) {
    const std::vector<std::byte> whole = StoreSnapshot(Sample());
    for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
        std::vector<std::byte> bytes = whole;
        bytes[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(ParseSnapshot(bytes).ok()) << "bit " << bit;
    }
}

TEST(SnapshotFormatTest, ASnapshotThatIsCutIsRefused) {
    const std::vector<std::byte> whole = StoreSnapshot(Sample());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(ParseSnapshot(std::span(whole).first(size)).ok()) << size;
}

TEST(SnapshotFormatTest, RunsThatDoNotCoverThePagesAreRefused) {
    Snapshot snapshot = Sample();
    snapshot.head.page_count = 6;
    EXPECT_FALSE(ParseSnapshot(StoreSnapshot(snapshot)).ok());
    snapshot.head.page_count = 4;
    EXPECT_FALSE(ParseSnapshot(StoreSnapshot(snapshot)).ok());
    snapshot = Sample();
    snapshot.runs[1].first.record = UINT32_MAX;
    EXPECT_FALSE(ParseSnapshot(StoreSnapshot(snapshot)).ok());
}

TEST(SnapshotFormatTest, PlacesBecomeRunsAndRunsPlaces) {
    const std::vector<RecordPlace> places = {{1, 0}, {1, 1}, {2, 2}, {2, 3}, {2, 5}, {1, 6}};
    Snapshot snapshot;
    snapshot.head.page_count = 6;
    snapshot.runs = MakeRuns(places);
    EXPECT_EQ(snapshot.runs.size(), 4U);
    EXPECT_EQ(PlacesOf(snapshot), places);
}

TEST(SnapshotFormatTest, ADirectoryIsReadAsItWasStored) {
    const auto parsed = ParseDirectory(StoreDirectory(SampleDirectory()));
    ASSERT_TRUE(parsed.ok()) << parsed.status().message();
    EXPECT_EQ(*parsed, SampleDirectory());
}

TEST(SnapshotFormatTest, ADirectoryWithOneOtherBitIsRefused) {
    const std::vector<std::byte> whole = StoreDirectory(SampleDirectory());
    for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
        std::vector<std::byte> bytes = whole;
        bytes[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(ParseDirectory(bytes).ok()) << "bit " << bit;
    }
}

TEST(SnapshotFormatTest, APageIsNotTakenForAnotherOne) {
    const std::vector<std::byte> page(4096);
    EXPECT_NE(PageChecksum(1, page), PageChecksum(2, page));
    EXPECT_NE(FileChecksum(FileChecksum(0, 1), 2), FileChecksum(FileChecksum(0, 2), 1));
}

}  // namespace
