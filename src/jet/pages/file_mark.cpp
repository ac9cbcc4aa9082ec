#include "jet/pages/file_mark.h"

#include "jet/pages/format.h"
#include "jet/pages/page_header_layout.h"
#include "jet/pages/sectors.h"

#include <algorithm>
#include <random>

namespace jet {
namespace {

constexpr std::size_t kCommitWordsBytes = 2 * kCommitWordCount;
constexpr std::byte kNeutralHighByte{1};

}  // namespace

std::size_t FileMarkOffset(std::uint32_t page_size) {
    const std::size_t commit_words =
        FormatOfPages(page_size).jet4() ? kCommitWordsJet4 : kCommitWordsJet3;
    return commit_words + kCommitWordsBytes - kFileMarkBytes;
}

std::uint64_t ReadFileMark(std::span<const std::byte> first_page) {
    const std::byte* words =
        first_page.data() + FileMarkOffset(static_cast<std::uint32_t>(first_page.size()));
    std::uint64_t mark = 0;
    for (std::size_t i = 0; i < kFileMarkBytes; i += 2)
        mark = mark << 8 | std::to_integer<std::uint64_t>(words[i]);
    return mark;
}

void StoreFileMark(std::span<std::byte> words, std::uint64_t mark) {
    for (std::size_t i = kFileMarkBytes; i > 0; i -= 2, mark >>= 8) {
        words[i - 2] = static_cast<std::byte>(mark & 0xFF);
        words[i - 1] = kNeutralHighByte;
    }
}

std::uint64_t MakeFileMark() {
    std::random_device device;
    const std::uint64_t mark = std::uint64_t{device()} << 32 | device();
    return mark != 0 ? mark : 1;
}

bool SameSector(std::span<const std::byte> page, std::span<const std::byte> known,
                std::size_t sector) {
    const std::size_t mark = FileMarkOffset(static_cast<std::uint32_t>(page.size()));
    const std::size_t begin = sector * kSectorSize;
    std::size_t end = std::min(begin + kSectorSize, page.size());
    if (begin <= mark && mark < end) end = mark;  // the mark is the last thing in its sector
    return std::equal(page.begin() + static_cast<std::ptrdiff_t>(begin),
                      page.begin() + static_cast<std::ptrdiff_t>(end),
                      known.begin() + static_cast<std::ptrdiff_t>(begin));
}

}  // namespace jet
