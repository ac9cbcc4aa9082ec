#include "duel.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace bench {
namespace {

constexpr int kRounds = 5;

// Bytes that this process has handed to the system by write calls, all its threads.
std::uint64_t WrittenBytes() {
    std::ifstream counters("/proc/self/io");
    std::string name;
    std::uint64_t count = 0;
    while (counters >> name >> count)
        if (name == "wchar:") return count;
    Require({base::StatusCode::kIoError, "the system does not count written bytes"});
    return 0;
}

void Run(const Writer& writer, double& best, std::uint64_t& bytes) {
    writer.prepare();
    const std::uint64_t before = WrittenBytes();
    best = std::min(best, Seconds(writer.work));
    writer.finish();
    bytes = WrittenBytes() - before;
}

}  // namespace

Duel Alternate(const std::function<void()>& ours, const std::function<void()>& theirs) {
    Duel best;
    for (int round = 0; round < kRounds; ++round) {
        best.ours = std::min(best.ours, Seconds(ours));
        best.theirs = std::min(best.theirs, Seconds(theirs));
    }
    return best;
}

WritingDuel Alternate(const Writer& ours, const Writer& theirs) {
    WritingDuel duel;
    for (int round = 0; round < kRounds; ++round) {
        Run(ours, duel.time.ours, duel.our_bytes);
        Run(theirs, duel.time.theirs, duel.their_bytes);
    }
    return duel;
}

}  // namespace bench
