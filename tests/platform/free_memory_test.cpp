#include "platform/free_memory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <vector>

namespace platform {
namespace {

// Of this process, in pages of memory.
long ResidentPages() {
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return resident;
}

TEST(FreeMemoryTest, WhatWasFreedBetweenBlocksInUseIsHandedBack) {
    constexpr std::size_t kBlocks = 16'000;
    constexpr std::size_t kBlockBytes = 4'000;
    constexpr std::size_t kKeptOfEach = 100;
    std::vector<std::unique_ptr<char[]>> blocks;
    for (std::size_t i = 0; i < kBlocks; ++i) {
        blocks.push_back(std::make_unique<char[]>(kBlockBytes));
        blocks.back()[i % kBlockBytes] = 'x';
    }
    for (std::size_t i = 0; i < kBlocks; ++i)
        if (i % kKeptOfEach != 0) blocks[i].reset();
    const long before = ResidentPages();
    ASSERT_GT(before, 0);
    ReleaseFreeMemory();
    // 64 MB in pages of 4 KB at least; half of them leaves room for the rest of the program.
    EXPECT_LT(ResidentPages(), before - 8'000) << before;
    for (std::size_t i = 0; i < kBlocks; i += kKeptOfEach)
        EXPECT_EQ(blocks[i][i % kBlockBytes], 'x');
}

}  // namespace
}  // namespace platform
