// Every call of a workload that reaches the disk is made to fail in turn, in several ways; and the
// process or the power stops at each of them. Afterwards every committed transaction is there and
// none by half.
#include "jet/pages/page_store.h"
#include "support/faulty_file_system.h"
#include "support/page_workload.h"
#include "support/wait_for.h"

#include <gtest/gtest.h>

namespace {

using test_support::FaultKind;
using test_support::FaultPlan;
using test_support::FaultyFileSystem;
using test_support::PageWorkload;

using test_support::kDatabasePath;
constexpr std::size_t kTransactions = 14;

base::Result<std::unique_ptr<jet::PageStore>> Open(jet::FileSystem& files, bool read_only = false) {
    jet::PageStoreOptions options;
    options.read_only = read_only;
    options.cache_bytes = 0;
    options.flush_delay = {};
    return jet::OpenPageStore(files, kDatabasePath, options);
}

// What is known of a run that met a fault.
struct Outcome {
    std::size_t committed = 0;  // transactions that Commit said ok to
    std::size_t durable = 0;    // of these, the ones that a Flush said ok to
    // kDiesAfterTheCall: the files at that moment, before the store could do anything more.
    std::shared_ptr<FaultyFileSystem> left_behind;
    bool in_doubt = false;  // one more may be there: the process was stopped inside its Commit
};

// What becomes of the process at the fault.
enum class Process { kGoesOn, kDiesInTheCall, kDiesAfterTheCall };

class FaultTest : public testing::Test {
protected:
    // Opens, commits, flushes now and then, closes; goes on after failures as a program would.
    // When the store itself fails from then on, that transaction is in doubt.
    Outcome RunWorkload(FaultyFileSystem& files, Process process) {
        Outcome outcome;
        auto store = Open(files);
        if (!store.ok()) return outcome;
        for (std::size_t tries = 0; tries < 2 * kTransactions; ++tries) {
            if (outcome.committed == kTransactions) break;
            const bool had_fault = files.fault_happened();
            const base::Status done = workload_.Run(**store, outcome.committed);
            if (done.ok()) {
                ++outcome.committed;
                outcome.in_doubt = false;
            } else if (process == Process::kDiesInTheCall) {
                outcome.in_doubt = !had_fault;
                return outcome;
            } else if (!CheckAfterFailure(**store, outcome)) {
                break;
            }
            if (process == Process::kDiesAfterTheCall && files.fault_happened()) {
                outcome.left_behind = files.Kill();
                return outcome;
            }
            if (tries % 4 == 3 && (*store)->Flush().ok()) outcome.durable = outcome.committed;
            if (process != Process::kGoesOn && files.fault_happened()) return outcome;
        }
        if ((*store)->Close().ok()) outcome.durable = outcome.committed;
        return outcome;
    }

    // After a failed transaction the store shows the state before it, or nothing any more (then the
    // fault is for good).
    bool CheckAfterFailure(jet::PageStore& store, Outcome& outcome) {
        const auto content = PageWorkload::TryRead(store);
        outcome.in_doubt = !content.ok();
        if (!content.ok()) return false;
        workload_.Recognize(*content, outcome.committed, outcome.committed);
        return true;
    }

    void CheckReopened(FaultyFileSystem& files, std::size_t least, std::size_t most) {
        int seen_by_reader = -1;
        {
            auto reader = Open(files, true);
            ASSERT_TRUE(reader.ok()) << reader.status().message();
            seen_by_reader = workload_.Recognize(PageWorkload::Read(**reader), least, most);
        }
        auto store = Open(files);
        ASSERT_TRUE(store.ok()) << store.status().message();
        const int seen = workload_.Recognize(PageWorkload::Read(**store), least, most);
        EXPECT_EQ(seen, seen_by_reader);
        ASSERT_TRUE((*store)->Close().ok());
    }

    std::unique_ptr<FaultyFileSystem> FreshDisk(FaultPlan plan) {
        auto files = std::make_unique<FaultyFileSystem>();
        files->Put(kDatabasePath, workload_.first_file());
        files->SetPlan(plan);
        return files;
    }

    // Calls `check` with a plan for each call of the workload.
    template <typename Check>
    void ForEachCall(FaultKind kind, base::StatusCode code, Check check,
                     Process process = Process::kGoesOn) {
        for (std::uint64_t call = 1;; ++call) {
            SCOPED_TRACE("call " + std::to_string(call));
            const FaultPlan plan{call, kind, code};
            const auto files = FreshDisk(plan);
            if (kind == FaultKind::kStop) process = Process::kDiesInTheCall;
            const Outcome outcome = RunWorkload(*files, process);
            if (!files->fault_happened()) {
                EXPECT_GT(call, 60u);  // the workload does reach the disk
                return;
            }
            check(*files, outcome);
            if (HasFatalFailure() || HasNonfatalFailure()) return;
        }
    }

    // How many calls the second transaction makes of a new file; the last is the commit's write.
    std::uint64_t CallsOfTheSecond(bool after_a_flush) {
        const auto files = FreshDisk({});
        auto store = Open(*files);
        EXPECT_TRUE(store.ok() && workload_.Run(**store, 0).ok());
        if (after_a_flush) {
            EXPECT_TRUE((*store)->Flush().ok());
        }
        files->SetPlan({});
        EXPECT_TRUE(workload_.Run(**store, 1).ok());
        return files->calls();
    }

    PageWorkload workload_{21};
};

class FailingCallTest : public FaultTest, public testing::WithParamInterface<FaultKind> {};

TEST_P(FailingCallTest, EveryCommittedTransactionIsThereAndNoOther) {
    for (const auto code : {base::StatusCode::kIoError, base::StatusCode::kNoSpace})
        ForEachCall(GetParam(), code, [&](FaultyFileSystem& files, const Outcome& outcome) {
            const auto next = files.Kill();
            CheckReopened(*next, outcome.committed, outcome.committed + (outcome.in_doubt ? 1 : 0));
        });
}

TEST_P(FailingCallTest, AFailedTransactionDoesNotComeBackAfterTheProcessDied) {
    std::size_t deaths = 0;
    ForEachCall(
        GetParam(), base::StatusCode::kIoError,
        [&](FaultyFileSystem&, const Outcome& outcome) {
            if (outcome.left_behind == nullptr) return;  // the fault was in opening or closing
            ++deaths;
            CheckReopened(*outcome.left_behind, outcome.committed,
                          outcome.committed + (outcome.in_doubt ? 1 : 0));
        },
        Process::kDiesAfterTheCall);
    EXPECT_GT(deaths, GetParam() == FaultKind::kLost ? 0u : 20u);
}

TEST_P(FailingCallTest, PowerCutLaterLosesNothingThatWasFlushed) {
    ForEachCall(GetParam(), base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    for (std::uint32_t seed = 0; seed < 4; ++seed) {
                        const auto next = files.CutPower(seed);
                        CheckReopened(*next, outcome.durable,
                                      outcome.committed + (outcome.in_doubt ? 1 : 0));
                    }
                });
}

std::string FaultName(const testing::TestParamInfo<FaultKind>& kind) {
    constexpr const char* kNames[] = {"refused", "half", "doneButFailed", "forgotten", "diskGone"};
    return kNames[static_cast<int>(kind.param)];
}

INSTANTIATE_TEST_SUITE_P(Kinds, FailingCallTest,
                         testing::Values(FaultKind::kRefuse, FaultKind::kHalf,
                                         FaultKind::kDoneButFail, FaultKind::kForgotten,
                                         FaultKind::kLost),
                         FaultName);

TEST_F(FaultTest, ProcessStoppedAtAnyCallLosesNothingCommitted) {
    ForEachCall(FaultKind::kStop, base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    const auto next = files.Kill();
                    CheckReopened(*next, outcome.committed,
                                  outcome.committed + (outcome.in_doubt ? 1 : 0));
                });
}

TEST_F(FaultTest, PowerCutAtAnyCallLeavesWholeTransactions) {
    ForEachCall(FaultKind::kStop, base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    for (std::uint32_t seed = 0; seed < 12; ++seed) {
                        const auto next = files.CutPower(seed);
                        CheckReopened(*next, outcome.durable,
                                      outcome.committed + (outcome.in_doubt ? 1 : 0));
                    }
                });
}

// The second stop hits the recovery from the first.
TEST_F(FaultTest, StopInsideRecoveryLeavesWholeTransactions) {
    std::size_t recoveries = 0;
    ForEachCall(FaultKind::kStop, base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    const std::size_t most = outcome.committed + (outcome.in_doubt ? 1 : 0);
                    for (std::uint64_t call = 1;; ++call) {
                        const auto next = files.CutPower(static_cast<std::uint32_t>(call));
                        next->SetPlan({call, FaultKind::kStop, base::StatusCode::kIoError});
                        if (auto store = Open(*next); store.ok()) store.value().reset();
                        if (!next->fault_happened()) break;
                        ++recoveries;
                        for (std::uint32_t seed = 0; seed < 3; ++seed)
                            CheckReopened(*next->CutPower(seed), outcome.durable, most);
                        CheckReopened(*next->Kill(), outcome.durable, most);
                        if (HasFailure()) return;
                    }
                });
    EXPECT_GT(recoveries, 500u);
}

// Systems report a failed sync once and then forget the pages that they could not write. The power
// fails a little later.
TEST_F(FaultTest, PowerCutAfterAForgottenSyncLeavesWholeTransactions) {
    std::size_t cuts = 0;
    for (std::uint64_t call = 1; call < 90; ++call) {
        for (std::uint64_t behind = 1; behind < 21; ++behind) {
            SCOPED_TRACE("call " + std::to_string(call) + ", then " + std::to_string(behind));
            const auto files =
                FreshDisk({call, FaultKind::kForgotten, base::StatusCode::kIoError, behind});
            const Outcome outcome = RunWorkload(*files, Process::kGoesOn);
            const std::size_t most = outcome.committed + 1;  // it may have stopped inside a commit
            for (std::uint32_t seed = 0; seed < 2; ++seed)
                CheckReopened(*files->CutPower(seed), outcome.durable, most);
            if (HasFailure()) return;
            cuts += files->fault_happened() ? 1 : 0;
        }
    }
    EXPECT_GT(cuts, 1200u);
}

// The same of encoded files: what the journal holds is encoded as the pages of the file are.
class EncodedFaultTest : public FaultTest, public testing::WithParamInterface<std::uint32_t> {
protected:
    EncodedFaultTest() { workload_ = PageWorkload(22, GetParam(), 0x9A7B01FEU); }
};

TEST_P(EncodedFaultTest, EveryCommittedTransactionIsThereAndNoOther) {
    ForEachCall(FaultKind::kHalf, base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    const auto next = files.Kill();
                    CheckReopened(*next, outcome.committed,
                                  outcome.committed + (outcome.in_doubt ? 1 : 0));
                });
}

TEST_P(EncodedFaultTest, ProcessStoppedAtAnyCallLosesNothingCommitted) {
    ForEachCall(FaultKind::kStop, base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    const auto next = files.Kill();
                    CheckReopened(*next, outcome.committed,
                                  outcome.committed + (outcome.in_doubt ? 1 : 0));
                });
}

TEST_P(EncodedFaultTest, PowerCutAtAnyCallLeavesWholeTransactions) {
    ForEachCall(FaultKind::kStop, base::StatusCode::kIoError,
                [&](FaultyFileSystem& files, const Outcome& outcome) {
                    for (std::uint32_t seed = 0; seed < 4; ++seed) {
                        const auto next = files.CutPower(seed);
                        CheckReopened(*next, outcome.durable,
                                      outcome.committed + (outcome.in_doubt ? 1 : 0));
                    }
                });
}

INSTANTIATE_TEST_SUITE_P(Versions, EncodedFaultTest, testing::Values(0U, 1U),
                         [](const auto& version) {
                             return version.param == 0 ? std::string("Jet3") : std::string("Jet4");
                         });

TEST_F(FaultTest, AStoreInDoubtIsNotUsedAnyMore) {
    const auto files = FreshDisk({});
    auto store = Open(*files);
    ASSERT_TRUE(store.ok());
    ASSERT_TRUE(workload_.Run(**store, 0).ok());
    // The disk goes away inside the commit: what was written of it cannot be taken back.
    files->SetPlan({CallsOfTheSecond(false), FaultKind::kLost, base::StatusCode::kIoError});
    EXPECT_FALSE(workload_.Run(**store, 1).ok());
    files->SetPlan({});  // and is back
    EXPECT_EQ((*store)->Read(1).status().number(), 3043);
    EXPECT_EQ((*store)->Begin().number(), 3043);
    EXPECT_EQ((*store)->Flush().number(), 3043);
    EXPECT_FALSE((*store)->in_transaction());
}

// A failed commit that could be taken back leaves a good store, also one after the other.
TEST_F(FaultTest, AStoreIsUsableAfterCommitsThatWereTakenBack) {
    const auto files = FreshDisk({});
    auto store = Open(*files);
    ASSERT_TRUE(store.ok());
    for (std::size_t number = 0; number < 4; ++number) {
        files->SetPlan({1, FaultKind::kHalf, base::StatusCode::kIoError});
        EXPECT_FALSE(workload_.Run(**store, number).ok());
        EXPECT_TRUE(files->fault_happened());
        files->SetPlan({});
        ASSERT_TRUE(workload_.Run(**store, number).ok());
    }
    workload_.Recognize(PageWorkload::Read(**store), 4, 4);
    EXPECT_TRUE((*store)->Close().ok());
}

// The flusher has no one to tell: it tries again until it succeeds, asked once.
TEST_F(FaultTest, AFlushThatFailsIsTriedAgain) {
    const auto files = FreshDisk({});
    jet::PageStoreOptions options;
    options.cache_bytes = 0;
    options.flush_delay = std::chrono::milliseconds(1);
    auto store = jet::OpenPageStore(*files, kDatabasePath, options);
    ASSERT_TRUE(store.ok());
    ASSERT_TRUE(workload_.Run(**store, 0).ok());
    ASSERT_TRUE((*store)->Flush().ok());
    const auto flushed = files->Get(kDatabasePath);
    files->SetPlan({CallsOfTheSecond(true) + 1, FaultKind::kRefuse, base::StatusCode::kIoError});
    ASSERT_TRUE(workload_.Run(**store, 1).ok());
    EXPECT_TRUE(test_support::WaitFor([&] { return files->fault_happened(); }));
    EXPECT_TRUE(test_support::WaitFor([&] {
        return files->Get("folder/tables.mdb-journal").empty() &&
               files->Get(kDatabasePath) != flushed;
    }));
    EXPECT_TRUE((*store)->Close().ok());
}

// Pages are read many at a time; one that cannot be read takes no other with it.
TEST_F(FaultTest, OneUnreadablePageIsAlone) {
    constexpr jet::PageNumber kPages = 40;
    FaultyFileSystem files;
    files.Put(kDatabasePath, test_support::MakePages(1, kPages));
    files.SetUnreadable(kDatabasePath, 4096 * 20 + 100);
    auto store = Open(files);
    ASSERT_TRUE(store.ok());
    for (int walk = 0; walk < 2; ++walk)
        for (jet::PageNumber page = 0; page < kPages; ++page)
            EXPECT_EQ((*store)->Read(page).ok(), page != 20) << page;
    EXPECT_EQ((*store)->Read(20).status().number(), 3043);
}

TEST_F(FaultTest, FullDiskSaysSoAndGoesOnWhenThereIsRoom) {
    const auto files = FreshDisk({});
    auto store = Open(*files);
    ASSERT_TRUE(store.ok());
    ASSERT_TRUE(workload_.Run(**store, 0).ok());
    files->SetPlan({2, FaultKind::kHalf, base::StatusCode::kNoSpace});
    base::Status failed = workload_.Run(**store, 1);
    for (int i = 0; i < 3 && failed.ok(); ++i) {
        files->SetPlan({1, FaultKind::kHalf, base::StatusCode::kNoSpace});
        failed = (*store)->Flush();
    }
    EXPECT_EQ(failed.code(), base::StatusCode::kNoSpace);
    EXPECT_EQ(failed.number(), 3026);
    EXPECT_EQ(failed.message(), "Not enough space on disk.");
    EXPECT_TRUE((*store)->Flush().ok());
}

TEST_F(FaultTest, ReadErrorSaysSo) {
    const auto files = FreshDisk({});
    auto store = Open(*files);
    ASSERT_TRUE(store.ok());
    files->SetPlan({1, FaultKind::kLost, base::StatusCode::kIoError});
    const auto view = (*store)->Read(1);
    files->SetPlan({});
    EXPECT_EQ(view.status().number(), 3043);
    EXPECT_EQ(view.status().message(), "Disk or network error.");
    EXPECT_TRUE((*store)->Read(1).ok());
}

}  // namespace
