#include "jet/pages/journal_format.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/pages/page_move.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

namespace jet {
namespace {

constexpr char kMagic[] = "Jet page journal";
constexpr std::size_t kMagicSize = sizeof kMagic - 1;
constexpr std::uint32_t kVersion = 4;
// Without moves; 2: without changes in the file; 3: without notes.
constexpr std::uint32_t kOldestVersion = 1;
constexpr std::size_t kHeaderChecksumAt = 40;
constexpr std::size_t kRecordChecksumAt = 16;

// Two changes nearer than a range's own head become one.
constexpr std::size_t kGapWorthARange = 4;

constexpr std::size_t kMoveBytes = 6;
// Changes of more bytes than this are searched for a move.
constexpr std::size_t kWorthAMove = 256;
constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

// What a change starts from: a page of zeros, the page as the journal has it, the same with a block
// of it moved, the page in the database file.
enum class ChangeBase : std::uint16_t { kZeros = 0, kJournal = 1, kMoved = 2, kFile = 3 };

// page 4, base 2, number of ranges 2.
constexpr std::size_t kChangeHead = 8;
constexpr std::size_t kRangesAt = 6;
constexpr std::size_t kRangeHead = 4;

std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
    return hash ^ (hash >> 32);
}

std::uint64_t HeaderChecksum(std::span<const std::byte> header,
                             std::span<const std::byte> first_page) {
    return JournalChecksum(JournalChecksum(0, header.first(kHeaderChecksumAt)), first_page);
}

std::uint64_t RecordChecksum(std::span<const std::byte> record, std::uint64_t chain) {
    return JournalChecksum(JournalChecksum(chain, record.first(kRecordChecksumAt)),
                           record.subspan(kRecordHeadSize));
}

void AppendRange(std::vector<std::byte>& out, std::span<const std::byte> page, std::size_t begin,
                 std::size_t end) {
    base::AppendLittle(out, static_cast<std::uint16_t>(begin));
    base::AppendLittle(out, static_cast<std::uint16_t>(end - begin));
    out.insert(out.end(), page.begin() + static_cast<std::ptrdiff_t>(begin),
               page.begin() + static_cast<std::ptrdiff_t>(end));
}

// First position from `at` on where the two differ, or where they are equal; their size if there
// is no such position.
std::size_t FindDifference(std::span<const std::byte> a, std::span<const std::byte> b,
                           std::size_t at) {
    while (at + 8 <= a.size() && std::memcmp(a.data() + at, b.data() + at, 8) == 0)
        at += 8;
    while (at < a.size() && a[at] == b[at])
        ++at;
    return at;
}

// The bits in which eight bytes differ; which byte is which does not matter here.
std::uint64_t DifferenceAt(std::span<const std::byte> a, std::span<const std::byte> b,
                           std::size_t at) {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::memcpy(&first, a.data() + at, sizeof first);
    std::memcpy(&second, b.data() + at, sizeof second);
    return first ^ second;
}

bool HasZeroByte(std::uint64_t word) {
    constexpr std::uint64_t kOnes = 0x0101010101010101U;
    return ((word - kOnes) & ~word & (kOnes << 7)) != 0;
}

// Where the bytes that differ end, small gaps included: one past the last of them.
std::size_t FindEnd(std::span<const std::byte> a, std::span<const std::byte> b, std::size_t at) {
    std::size_t end = at;
    while (at < a.size() && at - end <= kGapWorthARange) {
        std::size_t stop = at + 1;
        if (at + 8 <= a.size()) {
            stop = at + 8;
            if (!HasZeroByte(DifferenceAt(a, b, at))) end = at = stop;
        }
        for (; at < stop && at - end <= kGapWorthARange; ++at)
            if (a[at] != b[at]) end = at + 1;
    }
    return end;
}

// Reads a move off the front of `payload` and makes it. false: it contradicts the format.
bool ParseMove(std::span<const std::byte>& payload, std::span<std::byte> page) {
    if (payload.size() < kMoveBytes) return false;
    const PageMove move{base::LoadLittle<std::uint16_t>(payload.data()),
                        base::LoadLittle<std::uint16_t>(payload.data() + 2),
                        base::LoadLittle<std::uint16_t>(payload.data() + 4)};
    if (std::size_t{std::max(move.from, move.to)} + move.size > page.size()) return false;
    ApplyMove(move, page);
    payload = payload.subspan(kMoveBytes);
    return true;
}

// The page that a change starts from, before any move. null: it contradicts the format.
SharedPage StartOf(PageNumber number, std::uint16_t base, std::uint32_t page_size,
                   const JournalPages& known, const JournalPages& of_file) {
    const auto found = [number](const JournalPages& pages) {
        const auto page = pages.find(number);
        return page == pages.end() ? SharedPage() : page->second;
    };
    switch (static_cast<ChangeBase>(base)) {
    case ChangeBase::kZeros:
        return std::make_shared<PageBytes>(page_size);
    case ChangeBase::kJournal:
    case ChangeBase::kMoved:
        return found(known);
    case ChangeBase::kFile:
        return known.contains(number) ? SharedPage() : found(of_file);
    }
    return nullptr;
}

// Reads one page change off the front of `payload`. false: it contradicts the format.
bool ParseChange(std::span<const std::byte>& payload, std::uint32_t page_size,
                 PageNumber page_count, const JournalPages& known, const JournalPages& of_file,
                 JournalPages& changed) {
    if (payload.size() < kChangeHead) return false;
    const auto number = base::LoadLittle<std::uint32_t>(payload.data());
    const auto base = base::LoadLittle<std::uint16_t>(payload.data() + 4);
    const auto ranges = base::LoadLittle<std::uint16_t>(payload.data() + 6);
    payload = payload.subspan(kChangeHead);
    if (number >= page_count) return false;
    const SharedPage start = StartOf(number, base, page_size, known, of_file);
    if (start == nullptr) return false;
    auto page = std::make_shared<PageBytes>(*start);
    if (static_cast<ChangeBase>(base) == ChangeBase::kMoved && !ParseMove(payload, *page))
        return false;
    for (std::size_t i = 0; i < ranges; ++i) {
        if (payload.size() < kRangeHead) return false;
        const auto offset = base::LoadLittle<std::uint16_t>(payload.data());
        const auto size = base::LoadLittle<std::uint16_t>(payload.data() + 2);
        const auto bytes = base::BytesAt(payload, kRangeHead, size);
        if (!bytes || offset > page_size || page_size - offset < size) return false;
        std::memcpy(page->data() + offset, bytes->data(), size);
        payload = payload.subspan(kRangeHead + size);
    }
    changed[number] = std::move(page);
    return true;
}

// What turns `from`, the base in which `move` was made if there is one, into `after`. False: that
// takes more than `limit` bytes, and nothing is appended.
bool AppendChange(std::vector<std::byte>& out, PageNumber page, ChangeBase kind,
                  const std::optional<PageMove>& move, std::span<const std::byte> from,
                  std::span<const std::byte> after, std::size_t limit) {
    assert(from.size() == after.size() && after.size() <= 0x8000);
    const std::size_t start = out.size();
    base::AppendLittle(out, page);
    base::AppendLittle(out, static_cast<std::uint16_t>(kind));
    base::AppendLittle(out, std::uint16_t{0});
    if (move)
        for (const std::uint16_t number : {move->from, move->to, move->size})
            base::AppendLittle(out, number);
    std::uint16_t ranges = 0;
    for (std::size_t at = FindDifference(from, after, 0); at < after.size();) {
        const std::size_t end = FindEnd(from, after, at);
        AppendRange(out, after, at, end);
        ++ranges;
        if (out.size() - start > limit) {
            out.resize(start);
            return false;
        }
        at = FindDifference(from, after, end);
    }
    base::StoreLittle(out.data() + start + kRangesAt, ranges);
    return true;
}

// The whole page; only long runs of zeros are left out.
void AppendWhole(std::vector<std::byte>& out, PageNumber page, std::span<const std::byte> after) {
    constexpr std::size_t kWord = 8;
    constexpr std::size_t kRunWorthARange = 8 * kWord;
    const auto is_zero = [&](std::size_t at) {
        std::uint64_t word = 0;
        std::memcpy(&word, after.data() + at, std::min(kWord, after.size() - at));
        return word == 0;
    };
    const std::size_t start = out.size();
    base::AppendLittle(out, page);
    base::AppendLittle(out, static_cast<std::uint16_t>(ChangeBase::kZeros));
    base::AppendLittle(out, std::uint16_t{0});
    std::uint16_t ranges = 0;
    for (std::size_t at = 0; at < after.size();) {
        for (; at < after.size() && is_zero(at); at += kWord) {
        }
        const std::size_t begin = at;
        std::size_t end = at;
        for (; at < after.size() && at - end < kRunWorthARange; at += kWord)
            if (!is_zero(at)) end = at + kWord;
        end = std::min(end, after.size());
        if (begin >= end) break;
        AppendRange(out, after, begin, end);
        ++ranges;
    }
    base::StoreLittle(out.data() + start + kRangesAt, ranges);
}

}  // namespace

std::uint64_t JournalChecksum(std::uint64_t seed, std::span<const std::byte> bytes) {
    std::uint64_t hash = Mix(seed, bytes.size());
    std::size_t at = 0;
    for (; at + 8 <= bytes.size(); at += 8)
        hash = Mix(hash, base::LoadLittle<std::uint64_t>(bytes.data() + at));
    std::uint64_t rest = 0;
    for (std::size_t shift = 0; at < bytes.size(); ++at, shift += 8)
        rest |= std::to_integer<std::uint64_t>(bytes[at]) << shift;
    return Mix(hash, rest);
}

std::uint64_t AppendJournalHeader(std::vector<std::byte>& out, const JournalHeader& header) {
    const std::size_t start = out.size();
    assert(header.first_page.size() == header.page_size);
    out.resize(start + kMagicSize);
    std::memcpy(out.data() + start, kMagic, kMagicSize);
    base::AppendLittle(out, kVersion);
    base::AppendLittle(out, header.page_size);
    base::AppendLittle(out, header.salt);
    base::AppendLittle(out, header.page_count);
    base::AppendLittle(out, std::uint32_t{0});
    const std::uint64_t checksum = HeaderChecksum(std::span(out).subspan(start), header.first_page);
    base::AppendLittle(out, checksum);
    out.insert(out.end(), header.first_page.begin(), header.first_page.end());
    return checksum;
}

std::optional<ParsedHeader> ParseJournalHeader(std::span<const std::byte> bytes) {
    if (bytes.size() < kJournalHeaderSize || std::memcmp(bytes.data(), kMagic, kMagicSize) != 0)
        return std::nullopt;
    const auto version = base::LoadLittle<std::uint32_t>(bytes.data() + 16);
    if (version < kOldestVersion || version > kVersion) return std::nullopt;
    ParsedHeader parsed;
    parsed.header.page_size = base::LoadLittle<std::uint32_t>(bytes.data() + 20);
    parsed.header.salt = base::LoadLittle<std::uint64_t>(bytes.data() + 24);
    parsed.header.page_count = base::LoadLittle<std::uint32_t>(bytes.data() + 32);
    parsed.checksum = base::LoadLittle<std::uint64_t>(bytes.data() + kHeaderChecksumAt);
    const auto page = base::BytesAt(bytes, kJournalHeaderSize, parsed.header.page_size);
    if (!page || HeaderChecksum(bytes, *page) != parsed.checksum) return std::nullopt;
    parsed.header.first_page.assign(page->begin(), page->end());
    return parsed;
}

std::size_t BeginRecord(std::vector<std::byte>& out) {
    const std::size_t start = out.size();
    out.resize(start + kRecordHeadSize);
    return start;
}

std::uint64_t FinishRecord(std::vector<std::byte>& out, std::size_t start, RecordKind kind,
                           PageNumber page_count, std::uint64_t chain) {
    std::byte* head = out.data() + start;
    base::StoreLittle(head, static_cast<std::uint32_t>(kind));
    base::StoreLittle(head + 4, page_count);
    base::StoreLittle(head + 8, std::uint64_t{out.size() - start - kRecordHeadSize});
    const std::uint64_t checksum = RecordChecksum(std::span(out).subspan(start), chain);
    base::StoreLittle(head + kRecordChecksumAt, checksum);
    return checksum;
}

void AppendPageChange(std::vector<std::byte>& out, PageNumber page,
                      std::span<const std::byte> before, std::span<const std::byte> after) {
    if (before.empty()) return AppendWhole(out, page, after);
    if (AppendChange(out, page, ChangeBase::kJournal, {}, before, after, kWorthAMove)) return;
    PageBytes from(before.begin(), before.end());
    const std::optional<PageMove> move = FindMove(before, after);
    if (move) ApplyMove(*move, from);
    AppendChange(out, page, move ? ChangeBase::kMoved : ChangeBase::kJournal, move, from, after,
                 kNoLimit);
}

bool AppendChangeInFile(std::vector<std::byte>& out, PageNumber page, bool is_known,
                        std::span<const std::byte> before, std::span<const std::byte> after,
                        std::size_t limit) {
    return AppendChange(out, page, is_known ? ChangeBase::kJournal : ChangeBase::kFile, {}, before,
                        after, limit);
}

RecordHead ParseRecordHead(std::span<const std::byte> bytes) {
    assert(bytes.size() >= kRecordHeadSize);
    RecordHead head;
    head.kind = static_cast<RecordKind>(base::LoadLittle<std::uint32_t>(bytes.data()));
    head.page_count = base::LoadLittle<std::uint32_t>(bytes.data() + 4);
    head.payload_size = base::LoadLittle<std::uint64_t>(bytes.data() + 8);
    head.checksum = base::LoadLittle<std::uint64_t>(bytes.data() + kRecordChecksumAt);
    return head;
}

bool RecordIsWhole(std::span<const std::byte> record, std::uint64_t chain) {
    return RecordChecksum(record, chain) ==
           base::LoadLittle<std::uint64_t>(record.data() + kRecordChecksumAt);
}

std::vector<PageNumber> PagesOfFileIn(std::span<const std::byte> payload) {
    std::vector<PageNumber> pages;
    while (payload.size() >= kChangeHead) {
        const auto number = base::LoadLittle<std::uint32_t>(payload.data());
        const auto base =
            static_cast<ChangeBase>(base::LoadLittle<std::uint16_t>(payload.data() + 4));
        const auto ranges = base::LoadLittle<std::uint16_t>(payload.data() + 6);
        std::size_t size = kChangeHead + (base == ChangeBase::kMoved ? kMoveBytes : 0);
        for (std::size_t i = 0; i < ranges; ++i) {
            const auto bytes = base::LittleAt<std::uint16_t>(payload, size + 2);
            if (!bytes) return pages;
            size += kRangeHead + *bytes;
        }
        if (size > payload.size()) return pages;
        if (base == ChangeBase::kFile) pages.push_back(number);
        payload = payload.subspan(size);
    }
    return pages;
}

std::optional<JournalPages> ParseTransaction(std::span<const std::byte> payload,
                                             std::uint32_t page_size, PageNumber page_count,
                                             const JournalPages& known,
                                             const JournalPages& of_file) {
    JournalPages changed;
    while (!payload.empty())
        if (!ParseChange(payload, page_size, page_count, known, of_file, changed))
            return std::nullopt;
    return changed;
}

}  // namespace jet
