// crc_bench: the CRC-32 of 1 GiB of files in the page cache, as ratios of our time to that of zlib
// and of libdeflate over the same files. Each peer gets the plainest fast loop there is: open, read
// into one buffer, sum, close. The files are read once before, so that no disk is measured; the
// rounds take turns, so that a busy machine hits all alike. Best of several rounds; 1.00 means
// level, below 1 that we are faster.
#include "checksum/clsCRC.h"

#include <libdeflate.h>
#include <zlib.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kRounds = 7;
constexpr std::size_t kPeerBuffer = std::size_t{64} << 10;
constexpr std::uint64_t kTotalBytes = std::uint64_t{1} << 30;

using Paths = std::vector<std::filesystem::path>;
using Sum = std::uint32_t (*)(const std::filesystem::path&);

// As table files are: most of a few hundred KB to a few MB, some of 30 MB.
Paths MakeFiles(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    std::mt19937_64 random(1);
    std::vector<std::uint64_t> block(std::size_t{1} << 17);
    for (auto& word : block)
        word = random();
    Paths paths;
    for (std::uint64_t total = 0; total < kTotalBytes;) {
        const std::uint64_t wanted =
            300'000 + random() % (random() % 8 == 0 ? 30'000'000 : 4'000'000);
        const std::uint64_t size = std::min(wanted, kTotalBytes - total);
        paths.push_back(folder / (std::to_string(paths.size()) + ".vpt"));
        std::ofstream file(paths.back(), std::ios::binary);
        for (std::uint64_t left = size; left > 0;) {
            block[0] = random();
            const std::uint64_t part = std::min<std::uint64_t>(left, block.size() * 8);
            file.write(reinterpret_cast<const char*>(block.data()),
                       static_cast<std::streamsize>(part));
            left -= part;
        }
        total += size;
    }
    return paths;
}

template <typename Update>
std::uint32_t ReadAndSum(const std::filesystem::path& path, Update update) {
    static std::vector<unsigned char> buffer(kPeerBuffer);
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::uint32_t crc = 0;
    for (ssize_t got; (got = read(file, buffer.data(), buffer.size())) > 0;)
        crc = update(crc, buffer.data(), static_cast<std::size_t>(got));
    close(file);
    return crc;
}

std::uint32_t SumOfZlib(const std::filesystem::path& path) {
    return ReadAndSum(path, [](std::uint32_t crc, const unsigned char* bytes, std::size_t size) {
        return static_cast<std::uint32_t>(crc32_z(crc, bytes, size));
    });
}

std::uint32_t SumOfLibdeflate(const std::filesystem::path& path) {
    return ReadAndSum(path, [](std::uint32_t crc, const unsigned char* bytes, std::size_t size) {
        return libdeflate_crc32(crc, bytes, size);
    });
}

std::uint32_t SumOfOurs(const std::filesystem::path& path) {
    static checksum::clsCRC crc;
    const auto value = crc.CalculateFile(path);
    return value.ok() ? static_cast<std::uint32_t>(value->value_or(0)) : 0;
}

struct Contender {
    const char* name;
    Sum sum;
    double best_seconds = 1e9;
    std::uint32_t all = 0;
};

void Run(Contender& contender, const Paths& paths) {
    const auto start = std::chrono::steady_clock::now();
    contender.all = 0;
    for (const auto& path : paths)
        contender.all = contender.all * 31 + contender.sum(path);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    contender.best_seconds = std::min(contender.best_seconds, took.count());
}

}  // namespace

int main() {
    const auto folder =
        std::filesystem::temp_directory_path() / ("crc_bench-" + std::to_string(getpid()));
    const Paths paths = MakeFiles(folder);
    Contender contenders[] = {
        {"clsCRC", SumOfOurs}, {"zlib", SumOfZlib}, {"libdeflate", SumOfLibdeflate}};
    for (int round = 0; round < kRounds; ++round)
        for (Contender& contender : contenders)
            Run(contender, paths);
    std::filesystem::remove_all(folder);

    const Contender& ours = contenders[0];
    std::printf("CRC-32 of %zu files, 1 GiB in the page cache\n%-12s %9s %9s   ours / theirs\n",
                paths.size(), "", "seconds", "GB/s");
    for (const Contender& contender : contenders) {
        if (contender.all != ours.all)
            return std::fprintf(stderr, "%s disagrees\n", contender.name), 1;
        std::printf("%-12s %9.3f %9.2f   %.2f\n", contender.name, contender.best_seconds,
                    double(kTotalBytes) / contender.best_seconds / 1e9,
                    ours.best_seconds / contender.best_seconds);
    }
    return 0;
}
