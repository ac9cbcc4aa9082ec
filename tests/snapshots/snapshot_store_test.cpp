#include "snapshots/snapshot_store.h"

#include "snapshots/snapshot_fixture.h"

#include "jet/check/check.h"

#include <algorithm>
#include <map>

namespace {

using snapshots::Occasion;
using snapshots::SnapshotNumber;
using snapshots::SnapshotState;

class SnapshotStoreTest : public test_support::SnapshotFixture {
protected:
    void ExpectAllReadable(const std::map<SnapshotNumber, Bytes>& states) {
        for (const auto& [number, bytes] : states) {
            const auto read = store_->Read(number);
            ASSERT_TRUE(read.ok()) << number << ": " << read.status().message();
            EXPECT_EQ(*read, bytes) << number;
        }
    }
};

TEST_F(SnapshotStoreTest, GivesBackTheFileByteForByte) {
    const Bytes before = Database();
    const SnapshotNumber number = Take(1000, "by hand", Occasion::kByHand);
    EXPECT_EQ(Database(), before);
    Run(u"Update Tables set Played = 7");
    EXPECT_EQ(*store_->Read(number), before);
    const auto list = List();
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0].number, number);
    EXPECT_EQ(list[0].state, SnapshotState::kGood);
    EXPECT_EQ(list[0].head.label, "by hand");
    EXPECT_EQ(list[0].head.time, 1000);
    EXPECT_EQ(list[0].head.occasion, Occasion::kByHand);
    EXPECT_EQ(list[0].head.size_bytes(), before.size());
}

TEST_F(SnapshotStoreTest, AnUnchangedFileIsNotStoredAgain) {
    EXPECT_NE(Take(), 0U);
    const std::uint64_t bytes = BytesOfSnapshots();
    EXPECT_EQ(Take(5 * kHour), 0U);
    EXPECT_EQ(BytesOfSnapshots(), bytes);
}

TEST_F(SnapshotStoreTest, HoldsWhatIsCommittedThoughNotYetInTheFile) {
    Open();
    Execute(u"Insert into Tables (Name) values ('committed')");
    const auto copied = jet::CopyFileBytes(*files_, kDatabase);
    ASSERT_TRUE(copied.ok());
    const SnapshotNumber number = Take();
    const auto read = store_->Read(number);
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(*read, *copied);
    EXPECT_NE(*read, Database());
    Close();
}

TEST_F(SnapshotStoreTest, IsNotOfferedBeforeItWasChecked) {
    const auto made = store_->Make({Occasion::kClock, 0, ""});
    ASSERT_TRUE(made.ok() && *made);
    ASSERT_EQ(List().size(), 1U);
    EXPECT_EQ(List()[0].state, SnapshotState::kUnchecked);
    EXPECT_EQ(store_->Read(**made).status().code(), base::StatusCode::kUnsupported);
    EXPECT_FALSE(*store_->NewestGood());
    ASSERT_TRUE(store_->CheckAll().ok());
    EXPECT_EQ((*store_->NewestGood())->number, **made);
}

TEST_F(SnapshotStoreTest, OfADamagedCatalogueNoneIsKept) {
    const SnapshotNumber good = Take();
    Bytes bytes = Database();
    bytes[2 * 4096] = std::byte{0x55};  // the definition of the catalogue's own table
    files_->Put(kDatabase, bytes);
    const auto made = store_->Make({Occasion::kClock, 0, ""});
    ASSERT_TRUE(made.ok() && *made) << made.status().message();
    const base::Status checked = store_->CheckAll();
    EXPECT_EQ(checked.code(), base::StatusCode::kCorruption);
    EXPECT_NE(checked.message().find("No snapshot was kept: the catalogue is damaged (page 2"),
              std::string::npos)
        << checked.message();
    ASSERT_EQ(List().size(), 1U);
    EXPECT_EQ(List()[0].number, good);
}

TEST_F(SnapshotStoreTest, ASmallChangeTakesLittleRoom) {
    Open();
    for (int i = 0; i < 500; ++i)
        Execute(u"Insert into Tables (Name, Notes) values ('Table " + Number(i) + u"', '" +
                std::u16string(100, static_cast<char16_t>(u'a' + i % 26)) + Number(i * 7919) +
                u"')");
    Close();
    Take();
    const std::uint64_t first = BytesOfSnapshots();
    EXPECT_LT(first, Database().size());
    Run(u"Update Tables set Played = 5 where ID = 17");
    Take();
    // Two pages, each as a change of the one before.
    EXPECT_LT(BytesOfSnapshots() - first, 1000U);
}

TEST_F(SnapshotStoreTest, RandomChangesAndRandomRemovalsGiveBackEachState) {
    std::mt19937 random(5);
    std::map<SnapshotNumber, Bytes> states;
    for (int round = 0; round < 60; ++round) {
        Bytes bytes = Database();
        const std::size_t pages = bytes.size() / 4096;
        // Pages of no table, so that the checker has nothing against what stands on them.
        if (round % 7 == 0) bytes.resize(bytes.size() + 4096 * (1 + random() % 3));
        if (round % 11 == 5 && pages > 40) bytes.resize(bytes.size() - 4096);
        for (int i = 0; i < 20; ++i) {
            const std::size_t from = 4096 * std::min<std::size_t>(pages - 1, 30);
            bytes[from + random() % (bytes.size() - from)] = static_cast<std::byte>(random());
        }
        files_->Put(kDatabase, bytes);
        const auto made = store_->Make({Occasion::kClock, round * 20 * kHour, ""});
        ASSERT_TRUE(made.ok() && *made);
        if (store_->CheckAll().ok()) states[**made] = bytes;
        ASSERT_TRUE(store_->Keep().ok());
        std::map<SnapshotNumber, Bytes> left;
        for (const auto& info : List())
            if (const auto state = states.find(info.number); state != states.end())
                left.insert(*state);
        states = left;
        ExpectAllReadable(states);
    }
    EXPECT_GT(states.size(), 20U);
    EXPECT_LT(states.size(), 45U);
}

TEST_F(SnapshotStoreTest, OneInTheMiddleGoesWithoutHarm) {
    std::map<SnapshotNumber, Bytes> states;
    for (int i = 0; i < 10; ++i) {
        Run(u"Update Tables set Played = " + Number(i + 1) + u" where ID > " + Number(3 * i));
        // All in one hour of one day: the newest stays.
        const SnapshotNumber number = Take(i);
        states = {{number, Database()}};
        ASSERT_TRUE(store_->Keep().ok());
        ASSERT_EQ(List().size(), 1U);
        ExpectAllReadable(states);
    }
    // Nothing is kept that nobody needs, but for less than half of a pack.
    EXPECT_LT(BytesOfSnapshots(), 2 * Database().size());
}

TEST_F(SnapshotStoreTest, WithOneOtherBitItIsNeverOffered) {
    std::map<SnapshotNumber, Bytes> states;
    for (int i = 0; i < 5; ++i) {
        Run(u"Update Tables set Name = 'other " + Number(i) + u"' where ID = " + Number(i + 1));
        states[Take(i * kHour)] = Database();
    }
    ASSERT_EQ(states.size(), 5U);
    const auto paths = FilesOfSnapshots();
    std::mt19937 random(3);
    int refused = 0;
    for (int i = 0; i < 1000; ++i) {
        const auto& path = paths[random() % paths.size()];
        const Bytes whole = files_->Get(path);
        if (whole.empty()) continue;  // the lock
        Bytes bytes = whole;
        bytes[random() % bytes.size()] ^= std::byte{1} << (random() % 8);
        files_->Put(path, bytes);
        bool any_is_damaged = false;
        for (const auto& info : List()) {
            const auto read = store_->Read(info.number);
            EXPECT_EQ(info.state == SnapshotState::kGood, read.ok());
            if (read.ok()) {
                EXPECT_EQ(*read, states[info.number]);
            } else {
                any_is_damaged = true;
                EXPECT_EQ(info.state, SnapshotState::kDamaged);
            }
        }
        EXPECT_TRUE(any_is_damaged) << path;
        refused += any_is_damaged ? 1 : 0;
        files_->Put(path, whole);
    }
    EXPECT_GT(refused, 800);
    ExpectAllReadable(states);
}

TEST_F(SnapshotStoreTest, ANewOneDoesNotBuildOnDamage) {
    Take();
    for (const auto& path : FilesOfSnapshots()) {
        Bytes bytes = files_->Get(path);
        if (path.extension() != ".pages") continue;
        bytes.back() ^= std::byte{1};
        files_->Put(path, bytes);
    }
    EXPECT_EQ(List()[0].state, SnapshotState::kDamaged);
    const SnapshotNumber second = Take(kHour);
    ASSERT_NE(second, 0U);
    EXPECT_EQ(*store_->Read(second), Database());
}

TEST_F(SnapshotStoreTest, WhatWasBegunIsRemoved) {
    Take();
    const std::filesystem::path begun = std::filesystem::path(kFolder) / "00000009.pages.new";
    files_->Put(begun, Bytes(100));
    EXPECT_EQ(Take(), 0U);
    EXPECT_FALSE(files_->Exists(begun));
}

TEST_F(SnapshotStoreTest, FilesOfOthersStay) {
    Take();
    const std::filesystem::path other = std::filesystem::path(kFolder) / "notes.txt";
    files_->Put(other, Bytes(100));
    ASSERT_TRUE(store_->Keep().ok());
    EXPECT_TRUE(files_->Exists(other));
    EXPECT_EQ(List().size(), 1U);
}

TEST_F(SnapshotStoreTest, AnotherProcessAtWorkIsTold) {
    Take();
    const auto lock =
        files_->Open(std::filesystem::path(kFolder) / "lock", jet::OpenMode::kReadWrite);
    ASSERT_TRUE(lock.ok() && (*lock)->Lock(jet::FileLock::kExclusive, jet::kBehindContent).ok());
    EXPECT_EQ(store_->Make({}).status().code(), base::StatusCode::kBusy);
    EXPECT_EQ(store_->List().status().code(), base::StatusCode::kBusy);
}

TEST_F(SnapshotStoreTest, WithoutSnapshotsTheListIsEmptyAndNothingIsMade) {
    EXPECT_TRUE(List().empty());
    EXPECT_FALSE(files_->Exists(kFolder));
    EXPECT_EQ(store_->Read(1).status().code(), base::StatusCode::kNotFound);
}

// The steps of a snapshot from the first to the last call of the file system.
base::Status MakeOne(snapshots::SnapshotStore& store, snapshots::LocalSeconds time) {
    const auto made = store.Make({Occasion::kClock, time, ""});
    RETURN_IF_ERROR(made.status());
    RETURN_IF_ERROR(store.CheckAll());
    return store.Keep();
}

class SnapshotFaultTest : public SnapshotStoreTest,
                          public testing::WithParamInterface<test_support::FaultKind> {};

TEST_P(SnapshotFaultTest, AfterEachFailedCallEarlierOnesAreWhole) {
    std::map<SnapshotNumber, Bytes> states;
    for (int i = 0; i < 3; ++i) {
        Run(u"Update Tables set Name = 'other " + Number(i) + u"' where ID = " + Number(i + 1));
        states[Take(i * kHour)] = Database();
    }
    // So much that a pack is rewritten, and one snapshot that goes.
    Run(u"Update Tables set Notes = '" + std::u16string(300, u'x') + u"'");
    states.erase(3);
    const auto start = files_->Kill();
    const bool stops = GetParam() == test_support::FaultKind::kStop;
    for (std::uint64_t call = 1;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        GoOnWith(start->Kill());
        const Bytes database = Database();
        files_->SetPlan({call, GetParam()});
        const base::Status made = MakeOne(*store_, 2 * kHour + 1);
        const bool happened = files_->fault_happened();
        if (stops) {
            GoOnWith(call % 2 == 0 ? files_->Kill()
                                   : files_->CutPower(static_cast<std::uint32_t>(call)));
        }
        files_->SetPlan({});
        EXPECT_EQ(Database(), database);
        ExpectAllReadable(states);
        // The next one finds its way.
        ASSERT_TRUE(MakeOne(*store_, 2 * kHour + 2).ok());
        ExpectAllReadable(states);
        const auto newest = store_->NewestGood();
        ASSERT_TRUE(newest.ok() && *newest);
        EXPECT_EQ(*store_->Read((*newest)->number), database);
        for (const auto& path : FilesOfSnapshots())
            EXPECT_NE(path.extension(), ".new");
        if (!happened) {
            EXPECT_TRUE(made.ok()) << made.message();
            EXPECT_GT(call, 50U);
            break;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, SnapshotFaultTest,
                         testing::Values(test_support::FaultKind::kRefuse,
                                         test_support::FaultKind::kHalf,
                                         test_support::FaultKind::kDoneButFail,
                                         test_support::FaultKind::kStop));

TEST_F(SnapshotStoreTest, AFullDiskIsToldAndLeavesNothing) {
    Take();
    Run(u"Update Tables set Notes = '" + std::u16string(300, u'x') + u"'");
    const std::uint64_t bytes = BytesOfSnapshots();
    files_->SetPlan({8, test_support::FaultKind::kRefuse, base::StatusCode::kNoSpace});
    std::uint64_t call = 1;
    base::Status made;
    for (; made.code() != base::StatusCode::kNoSpace; ++call) {
        ASSERT_LT(call, 100U);
        files_->SetPlan({call, test_support::FaultKind::kHalf, base::StatusCode::kNoSpace});
        made = store_->Make({Occasion::kClock, 0, ""}).status();
    }
    files_->SetPlan({});
    EXPECT_EQ(BytesOfSnapshots(), bytes);
}

}  // namespace
