#include "snapshots/restore.h"

#include "jet/check/check.h"
#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "snapshots/snapshot_fixture.h"

#include <map>

namespace {

using snapshots::Occasion;
using snapshots::Restored;
using snapshots::SnapshotNumber;
using snapshots::SnapshotState;

// 2026-11-22 15:30:05
constexpr snapshots::LocalSeconds kNow = 1'795'361'405;

class RestoreTest : public test_support::SnapshotFixture {
protected:
    // Without the mark, which is another after each restore.
    static Bytes WithoutMark(Bytes bytes) {
        const auto at = static_cast<std::ptrdiff_t>(jet::FileMarkOffset(4096));
        std::fill_n(bytes.begin() + at, jet::kFileMarkBytes, std::byte{0});
        return bytes;
    }
    base::Result<Restored> RestoreTo(const Bytes& state) {
        return snapshots::Restore(*files_, *store_, state, kNow);
    }
    // Of more pages than are counted at once.
    void MakeCatalogueLarge() {
        Open();
        for (int i = 0; i < 200; ++i)
            Execute(u"Insert into Tables (Name, Notes) values ('More', String(1800, 'n'))");
        Close();
    }
    std::u16string NameOfRow(int id) {
        Open();
        auto rows = connection_->Execute(u"Select Name from Tables where ID = " + Number(id));
        EXPECT_TRUE(rows.ok()) << rows.status().message();
        if (!rows.ok() || rows->Eof()) return u"";
        const auto value = rows->Fields(u"Name");
        const std::u16string name = value.ok() ? jet::ToText(*value) : u"";
        rows = jet::Recordset();
        Close();
        return name;
    }
    bool IsSound() {
        const auto bytes = jet::CopyFileBytes(*files_, kDatabase);
        return bytes.ok() && jet::CheckIntegrity(*jet::MakeMemoryPageStore(4096, *bytes)).sound();
    }
};

TEST_F(RestoreTest, StoppedItLeavesTheCatalogueAsItIs) {
    const Bytes then = Database();
    Run(u"Update Tables set Name = 'Other'");
    const Bytes now = Database();
    std::stop_source stop;
    stop.request_stop();
    const auto restored = snapshots::Restore(*files_, *store_, then, kNow, {{}, stop.get_token()});
    EXPECT_TRUE(base::IsStopped(restored.status())) << restored.status().message();
    EXPECT_EQ(Database(), now);
    EXPECT_TRUE(List().empty());
    EXPECT_FALSE(files_->Exists("/data/pinball.mdb.restored"));
}

// While it makes the snapshot of today.
TEST_F(RestoreTest, StoppedBeforeTheExchangeItLeavesNothingBehind) {
    MakeCatalogueLarge();
    const Bytes then = Database();
    Run(u"Update Tables set Name = 'Other'");
    const Bytes now = Database();
    std::stop_source stop;
    const auto restored = snapshots::Restore(
        *files_, *store_, then, kNow,
        {[&](std::int64_t, std::int64_t) { stop.request_stop(); }, stop.get_token()});
    EXPECT_TRUE(base::IsStopped(restored.status())) << restored.status().message();
    EXPECT_EQ(Database(), now);
    EXPECT_FALSE(files_->Exists("/data/pinball.mdb.restored"));
}

TEST_F(RestoreTest, BringsBackTheStateAndKeepsTheOneBefore) {
    const Bytes then = Database();
    const SnapshotNumber number = Take();
    Run(u"Update Tables set Name = 'changed' where ID = 3");
    const Bytes today = Database();
    const auto restored = RestoreTo(*store_->Read(number));
    ASSERT_TRUE(restored.ok()) << restored.status().message();
    EXPECT_EQ(WithoutMark(Database()), WithoutMark(then));
    EXPECT_TRUE(restored->damaged_file.empty());
    ASSERT_TRUE(restored->snapshot_before);
    EXPECT_EQ(*store_->Read(*restored->snapshot_before), today);
    EXPECT_EQ(NameOfRow(3), u"Table 2");
    // And back again.
    const auto back = RestoreTo(*store_->Read(*restored->snapshot_before));
    ASSERT_TRUE(back.ok()) << back.status().message();
    EXPECT_EQ(NameOfRow(3), u"changed");
}

TEST_F(RestoreTest, TheRestoredFileHasAMarkOfItsOwn) {
    const SnapshotNumber number = Take();
    Run(u"Delete from Tables");
    ASSERT_TRUE(RestoreTo(*store_->Read(number)).ok());
    const Bytes then = *store_->Read(number);
    const Bytes now = Database();
    EXPECT_NE(jet::ReadFileMark(std::span(now).first(4096)),
              jet::ReadFileMark(std::span(then).first(4096)));
}

// The journal that the process left behind began from the very file that the snapshot holds.
TEST_F(RestoreTest, ALeftOverJournalIsNotAppliedToTheRestoredFile) {
    Run(u"Update Tables set Name = 'first' where ID = 3");
    const SnapshotNumber number = Take();
    const Bytes state = *store_->Read(number);
    Open();
    Execute(u"Update Tables set Name = 'in the journal' where ID = 3");
    auto killed = files_->Kill();
    Close();
    GoOnWith(std::move(killed));
    const Bytes journal = files_->Get("/data/pinball.mdb-journal");
    ASSERT_FALSE(journal.empty());
    ASSERT_TRUE(RestoreTo(state).ok());
    // Even when it comes back, by a power cut for instance.
    files_->Put("/data/pinball.mdb-journal", journal);
    EXPECT_EQ(NameOfRow(3), u"first");
    // What it held is in the snapshot of the state before.
    const auto newest = store_->NewestGood();
    ASSERT_TRUE(newest.ok() && *newest);
    ASSERT_TRUE(RestoreTo(*store_->Read((*newest)->number)).ok());
    EXPECT_EQ(NameOfRow(3), u"in the journal");
}

TEST_F(RestoreTest, ACatalogueThatIsOpenIsNotTouched) {
    const SnapshotNumber number = Take();
    Run(u"Update Tables set Name = 'changed'");
    const Bytes today = Database();
    Open();
    const auto restored = RestoreTo(*store_->Read(number));
    EXPECT_EQ(restored.status().code(), base::StatusCode::kBusy);
    Close();
    EXPECT_EQ(Database(), today);
}

TEST_F(RestoreTest, ADamagedStateIsRefused) {
    Bytes state = Database();
    state[2 * 4096] = std::byte{0x55};
    const Bytes today = Database();
    const auto restored = RestoreTo(state);
    EXPECT_EQ(restored.status().code(), base::StatusCode::kCorruption);
    EXPECT_NE(restored.status().message().find("page 2"), std::string::npos);
    EXPECT_EQ(Database(), today);
    EXPECT_FALSE(files_->Exists(kFolder));
}

TEST_F(RestoreTest, NoDatabaseIsRefused) {
    EXPECT_FALSE(RestoreTo(Bytes(100)).ok());
    EXPECT_FALSE(RestoreTo({}).ok());
}

TEST_F(RestoreTest, ADamagedCatalogueIsKeptUnderANameOfItsOwn) {
    const SnapshotNumber number = Take();
    const Bytes then = Database();
    Bytes damaged = then;
    damaged[2 * 4096] = std::byte{0x55};
    files_->Put(kDatabase, damaged);
    const auto restored = RestoreTo(*store_->Read(number));
    ASSERT_TRUE(restored.ok()) << restored.status().message();
    EXPECT_FALSE(restored->snapshot_before);
    EXPECT_EQ(restored->damaged_file, "/data/pinball.damaged-20261122-153005.mdb");
    EXPECT_EQ(WithoutMark(files_->Get(restored->damaged_file)), WithoutMark(damaged));
    EXPECT_EQ(WithoutMark(Database()), WithoutMark(then));
}

TEST_F(RestoreTest, ASecondDamagedFileHasAnotherName) {
    const SnapshotNumber number = Take();
    const Bytes noise(5000, std::byte{0x77});
    for (const char* name : {"/data/pinball.damaged-20261122-153005.mdb",
                             "/data/pinball.damaged-20261122-153005-2.mdb"}) {
        files_->Put(kDatabase, noise);
        const auto restored = RestoreTo(*store_->Read(number));
        ASSERT_TRUE(restored.ok()) << restored.status().message();
        EXPECT_EQ(restored->damaged_file, name);
        EXPECT_EQ(files_->Get(name), noise);
    }
}

TEST_F(RestoreTest, AFileThatCannotBeReadIsKeptAsFarAsItCan) {
    const SnapshotNumber number = Take();
    const Bytes state = *store_->Read(number);
    Bytes damaged = Database();
    damaged[0x14] = std::byte{9};  // no version of the format
    files_->Put(kDatabase, damaged);
    files_->SetUnreadable(kDatabase, 5 * 4096 + 700);
    const auto restored = RestoreTo(state);
    ASSERT_TRUE(restored.ok()) << restored.status().message();
    std::fill_n(damaged.begin() + std::ptrdiff_t{5} * 4096 + 512, 512, std::byte{0});
    EXPECT_EQ(files_->Get(restored->damaged_file), damaged);
    EXPECT_TRUE(IsSound());
}

TEST_F(RestoreTest, WithoutACatalogueThereIsOneAfterwards) {
    const SnapshotNumber number = Take();
    const Bytes state = *store_->Read(number);
    ASSERT_TRUE(files_->Remove(kDatabase).ok());
    const auto restored = RestoreTo(state);
    ASSERT_TRUE(restored.ok()) << restored.status().message();
    EXPECT_FALSE(restored->snapshot_before);
    EXPECT_TRUE(restored->damaged_file.empty());
    EXPECT_EQ(WithoutMark(Database()), WithoutMark(state));
}

TEST_F(RestoreTest, WhatWasNotFinishedIsRemoved) {
    files_->Put("/data/pinball.mdb.restored", Bytes(100));
    snapshots::RemoveRestoreLeftovers(*files_, kDatabase);
    EXPECT_FALSE(files_->Exists("/data/pinball.mdb.restored"));
}

class RestoreFaultTest : public RestoreTest,
                         public testing::WithParamInterface<test_support::FaultKind> {};

TEST_P(RestoreFaultTest, AfterEachFailedCallItIsTheOneStateOrTheOther) {
    const SnapshotNumber number = Take();
    const Bytes then = *store_->Read(number);
    Run(u"Update Tables set Name = 'changed', Notes = '" + std::u16string(300, u'x') + u"'");
    const Bytes synced = Database();
    // A journal is left, so that the restore has to bring today's state together first.
    Open();
    Execute(u"Update Tables set Name = 'last' where ID = 3");
    const auto start = files_->Kill();
    Close();
    GoOnWith(start->Kill());
    const Bytes today = *jet::CopyFileBytes(*files_, kDatabase);
    const bool stops = GetParam() == test_support::FaultKind::kStop;
    int done = 0;
    for (std::uint64_t call = 1;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        GoOnWith(start->Kill());
        files_->SetPlan({call, GetParam()});
        const auto restored = RestoreTo(then);
        const bool happened = files_->fault_happened();
        if (stops) {
            GoOnWith(call % 2 == 0 ? files_->Kill()
                                   : files_->CutPower(static_cast<std::uint32_t>(call)));
        }
        files_->SetPlan({});
        const auto now = jet::CopyFileBytes(*files_, kDatabase);
        ASSERT_TRUE(now.ok()) << now.status().message();
        const bool is_then = WithoutMark(*now) == WithoutMark(then);
        // A power cut may take the commit with it that was not synced yet.
        EXPECT_TRUE(is_then || WithoutMark(*now) == WithoutMark(today) ||
                    (stops && call % 2 != 0 && WithoutMark(*now) == WithoutMark(synced)));
        // A call that fails although it was done tells a failure that is none.
        if (!stops && GetParam() != test_support::FaultKind::kDoneButFail) {
            EXPECT_EQ(restored.ok(), is_then);
        }
        EXPECT_EQ(WithoutMark(*store_->Read(number)), WithoutMark(then));
        // What was there before is in a snapshot or a file when it is not in the catalogue.
        if (is_then) {
            ++done;
            ASSERT_TRUE(store_->CheckAll().ok());
            bool is_kept = false;
            for (const auto& info : List())
                is_kept |= WithoutMark(*store_->Read(info.number)) == WithoutMark(today);
            if (restored.ok() && !restored->damaged_file.empty()) is_kept = true;
            EXPECT_TRUE(is_kept);
        }
        if (!happened) {
            EXPECT_TRUE(restored.ok()) << restored.status().message();
            EXPECT_GT(call, 50U);
            break;
        }
    }
    EXPECT_GT(done, 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, RestoreFaultTest,
                         testing::Values(test_support::FaultKind::kRefuse,
                                         test_support::FaultKind::kHalf,
                                         test_support::FaultKind::kDoneButFail,
                                         test_support::FaultKind::kStop));

// The catalogue and the files of the snapshots are damaged at random. Whatever the checker finds in
// the catalogue, the newest snapshot that is still offered brings back its state.
TEST_F(RestoreTest, ARandomlyDamagedCatalogueIsRestoredFromTheNewestGoodSnapshot) {
    std::map<SnapshotNumber, Bytes> states;
    for (int i = 0; i < 4; ++i) {
        Run(u"Update Tables set Name = 'other " + Number(i) + u"' where ID > " + Number(9 * i));
        states[Take(i * kHour)] = Database();
    }
    const auto start = files_->Kill();
    std::mt19937 random(11);
    int seen = 0;
    int from_older = 0;
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE("damage " + std::to_string(i));
        GoOnWith(start->Kill());
        Bytes bytes = Database();
        for (std::size_t changes = 1 + random() % 4; changes > 0; --changes)
            bytes[random() % bytes.size()] = static_cast<std::byte>(random());
        if (i % 10 == 0) bytes.resize(random() % bytes.size());
        files_->Put(kDatabase, bytes);
        if (i % 2 == 0) {
            const auto paths = FilesOfSnapshots();
            const auto& path = paths[random() % paths.size()];
            Bytes file = files_->Get(path);
            if (!file.empty()) file[random() % file.size()] ^= std::byte{1} << (random() % 8);
            files_->Put(path, file);
        }
        if (IsSound()) continue;
        ++seen;
        const auto newest = store_->NewestGood();
        ASSERT_TRUE(newest.ok()) << newest.status().message();
        if (!*newest) continue;  // the damage met what all of them need
        from_older += (*newest)->number != states.rbegin()->first ? 1 : 0;
        const auto state = store_->Read((*newest)->number);
        ASSERT_TRUE(state.ok()) << state.status().message();
        EXPECT_EQ(*state, states[(*newest)->number]);
        const auto restored = RestoreTo(*state);
        ASSERT_TRUE(restored.ok()) << restored.status().message();
        EXPECT_EQ(WithoutMark(Database()), WithoutMark(*state));
        EXPECT_FALSE(restored->damaged_file.empty());
    }
    EXPECT_GT(seen, 300);
    EXPECT_GT(from_older, 10);
}

}  // namespace
