#include "history/history_format.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"

#include <cstring>

namespace history {
namespace {

constexpr char kMagic[] = "Tavolo history 1";
constexpr std::size_t kMagicSize = sizeof kMagic - 1;
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kVersionAt = 16;
constexpr std::size_t kSaltAt = 24;
constexpr std::size_t kFirstNumberAt = 32;
constexpr std::size_t kChecksumAt = 40;

}  // namespace

std::uint64_t AppendHeader(std::vector<std::byte>& out, const Header& header) {
    const std::size_t start = out.size();
    out.resize(start + kMagicSize);
    std::memcpy(out.data() + start, kMagic, kMagicSize);
    base::AppendLittle(out, kVersion);
    base::AppendLittle(out, std::uint32_t{0});
    base::AppendLittle(out, header.salt);
    base::AppendLittle(out, header.first_number);
    const std::uint64_t checksum = jet::JournalChecksum(0, std::span(out).subspan(start));
    base::AppendLittle(out, checksum);
    return checksum;
}

std::optional<ParsedHeader> ParseHeader(std::span<const std::byte> bytes) {
    if (bytes.size() < kHeaderSize || std::memcmp(bytes.data(), kMagic, kMagicSize) != 0)
        return std::nullopt;
    ParsedHeader parsed;
    parsed.checksum = base::LoadLittle<std::uint64_t>(bytes.data() + kChecksumAt);
    if (base::LoadLittle<std::uint32_t>(bytes.data() + kVersionAt) != kVersion ||
        jet::JournalChecksum(0, bytes.first(kChecksumAt)) != parsed.checksum)
        return std::nullopt;
    parsed.header.salt = base::LoadLittle<std::uint64_t>(bytes.data() + kSaltAt);
    parsed.header.first_number = base::LoadLittle<std::uint64_t>(bytes.data() + kFirstNumberAt);
    return parsed;
}

std::uint64_t AppendNote(std::vector<std::byte>& out, const jet::CommitNote& note,
                         std::uint64_t chain) {
    const std::size_t record = jet::BeginRecord(out);
    base::AppendLittle(out, note.journal);
    base::AppendLittle(out, note.offset);
    out.insert(out.end(), note.bytes.begin(), note.bytes.end());
    return jet::FinishRecord(out, record, jet::RecordKind::kNote, 0, chain);
}

std::uint64_t AppendMark(std::vector<std::byte>& out, std::uint64_t mark, std::uint64_t chain,
                         std::optional<std::uint64_t> or_before) {
    const std::size_t record = jet::BeginRecord(out);
    base::AppendLittle(out, mark);
    if (or_before) base::AppendLittle(out, *or_before);
    return jet::FinishRecord(out, record, jet::RecordKind::kMark, 0, chain);
}

}  // namespace history
