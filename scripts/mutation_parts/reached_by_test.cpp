// Part of every test program in the copy of the tree that scripts/mutation makes: says in the file of TAVOLO_FAULTS_REACHED which
// test the numbers that follow belong to.
#include "active_fault.h"

#include <gtest/gtest.h>

namespace {

void Begin(const std::string& test) {
    for (auto& reached : planted_faults::g_reached) reached = false;
    planted_faults::Report("=" + test + "\n");
}

class ReachedByTest final : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo& test) override {
        Begin(std::string(test.test_suite_name()) + "." + test.name());
    }
    void OnTestEnd(const testing::TestInfo&) override { Begin(""); }
};

const bool g_listening = [] {
    if (planted_faults::IsReporting()) testing::UnitTest::GetInstance()->listeners().Append(new ReachedByTest);
    return true;
}();

}  // namespace
