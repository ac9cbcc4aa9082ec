#include "snapshots/snapshot_format.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "jet/pages/byte_cursor.h"
#include "jet/pages/format.h"
#include "jet/pages/journal_format.h"

#include <array>
#include <cassert>
#include <cstring>
#include <string_view>

namespace snapshots {
namespace {

constexpr std::string_view kSnapshotMagic = "Tavolo snapshot\n";
constexpr std::string_view kPackMagic = "Tavolo pagepack\n";
constexpr std::uint32_t kVersion = 1;
constexpr std::size_t kChecksumBytes = 8;
constexpr std::size_t kRecordBytes = 32;
constexpr std::size_t kRecordCountAt = 24;
constexpr std::uint32_t kNoBase = 0xFFFFFFFF;

base::Status Damaged(const char* what) {
    return {base::StatusCode::kCorruption, std::string("The snapshot is damaged: ") + what};
}

void AppendText(std::vector<std::byte>& out, std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    out.insert(out.end(), bytes.begin(), bytes.end());
}

void AppendChecksum(std::vector<std::byte>& out) {
    base::AppendLittle(out, StoredChecksum(out));
}

bool IsPageSize(std::uint32_t size) {
    return size == jet::FormatOf(3).page_size || size == jet::FormatOf(4).page_size;
}

// The most pages that a database has.
std::uint64_t MostPages(std::uint32_t page_size) {
    return jet::FormatOfPages(page_size).max_file_bytes / page_size;
}

bool BeginsWith(std::span<const std::byte> bytes, std::string_view magic) {
    return bytes.size() >= magic.size() &&
           std::memcmp(bytes.data(), magic.data(), magic.size()) == 0;
}

// Whether the last eight bytes are the checksum of the others.
bool EndsInChecksum(std::span<const std::byte> bytes) {
    if (bytes.size() < kChecksumBytes) return false;
    const auto content = bytes.first(bytes.size() - kChecksumBytes);
    return base::LoadLittle<std::uint64_t>(bytes.data() + content.size()) ==
           StoredChecksum(content);
}

bool IsOccasion(std::uint32_t number) {
    return number >= static_cast<std::uint32_t>(Occasion::kClock) &&
           number <= static_cast<std::uint32_t>(Occasion::kByHand);
}

base::Status TakeHead(jet::ByteCursor& cursor, SnapshotHead& head) {
    head.page_size = cursor.Take<std::uint32_t>();
    head.page_count = cursor.Take<std::uint32_t>();
    const auto occasion = cursor.Take<std::uint32_t>();
    head.time = cursor.Take<std::int64_t>();
    head.checksum = cursor.Take<std::uint64_t>();
    if (cursor.failed() || !IsPageSize(head.page_size) || !IsOccasion(occasion))
        return Damaged("its head");
    if (head.page_count == 0 || head.page_count > MostPages(head.page_size))
        return Damaged("its number of pages");
    head.occasion = static_cast<Occasion>(occasion);
    return {};
}

base::Status TakeRuns(jet::ByteCursor& cursor, std::uint32_t count, Snapshot& snapshot) {
    if (count > snapshot.head.page_count) return Damaged("its number of runs");
    std::uint64_t pages = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        PageRun run;
        run.first.pack = cursor.Take<std::uint32_t>();
        run.first.record = cursor.Take<std::uint32_t>();
        run.count = cursor.Take<std::uint32_t>();
        pages += run.count;
        const bool is_right = run.count > 0 && pages <= snapshot.head.page_count &&
                              run.first.record <= UINT32_MAX - run.count;
        if (cursor.failed() || !is_right) return Damaged("a run of pages");
        snapshot.runs.push_back(run);
    }
    return pages == snapshot.head.page_count ? base::Status() : Damaged("pages are missing");
}

PackRecord TakeRecord(jet::ByteCursor& cursor) {
    PackRecord record;
    record.page = cursor.Take<std::uint32_t>();
    record.stored_bytes = cursor.Take<std::uint32_t>();
    RecordPlace base;
    base.pack = cursor.Take<std::uint32_t>();
    base.record = cursor.Take<std::uint32_t>();
    if (base.record != kNoBase) record.base = base;
    record.page_checksum = cursor.Take<std::uint64_t>();
    record.stored_checksum = cursor.Take<std::uint64_t>();
    return record;
}

}  // namespace

std::vector<std::byte> StoreSnapshot(const Snapshot& snapshot) {
    assert(snapshot.head.label.size() <= kMaxLabelBytes);
    std::vector<std::byte> out;
    AppendText(out, kSnapshotMagic);
    base::AppendLittle(out, kVersion);
    base::AppendLittle(out, snapshot.head.page_size);
    base::AppendLittle(out, snapshot.head.page_count);
    base::AppendLittle(out, static_cast<std::uint32_t>(snapshot.head.occasion));
    base::AppendLittle(out, snapshot.head.time);
    base::AppendLittle(out, snapshot.head.checksum);
    base::AppendLittle(out, static_cast<std::uint32_t>(snapshot.head.label.size()));
    base::AppendLittle(out, static_cast<std::uint32_t>(snapshot.runs.size()));
    AppendText(out, snapshot.head.label);
    for (const PageRun& run : snapshot.runs) {
        base::AppendLittle(out, run.first.pack);
        base::AppendLittle(out, run.first.record);
        base::AppendLittle(out, run.count);
    }
    AppendChecksum(out);
    return out;
}

base::Result<Snapshot> ParseSnapshot(std::span<const std::byte> bytes) {
    if (!BeginsWith(bytes, kSnapshotMagic)) return Damaged("its beginning");
    if (!EndsInChecksum(bytes)) return Damaged("its checksum");
    jet::ByteCursor cursor(bytes.first(bytes.size() - kChecksumBytes), kSnapshotMagic.size());
    if (cursor.Take<std::uint32_t>() != kVersion)
        return base::Status(base::StatusCode::kUnsupported,
                            "The snapshot was made by a newer version of the program.");
    Snapshot snapshot;
    RETURN_IF_ERROR(TakeHead(cursor, snapshot.head));
    const auto label_bytes = cursor.Take<std::uint32_t>();
    const auto run_count = cursor.Take<std::uint32_t>();
    if (label_bytes > kMaxLabelBytes) return Damaged("its name");
    const auto label = cursor.TakeBytes(label_bytes);
    snapshot.head.label.assign(reinterpret_cast<const char*>(label.data()), label.size());
    RETURN_IF_ERROR(TakeRuns(cursor, run_count, snapshot));
    if (cursor.failed() || cursor.left() != 0) return Damaged("its end");
    return snapshot;
}

std::vector<PageRun> MakeRuns(std::span<const RecordPlace> places) {
    std::vector<PageRun> runs;
    for (const RecordPlace& place : places) {
        const bool continues = !runs.empty() && runs.back().first.pack == place.pack &&
                               runs.back().first.record + runs.back().count == place.record;
        if (continues)
            ++runs.back().count;
        else
            runs.push_back({place, 1});
    }
    return runs;
}

std::vector<RecordPlace> PlacesOf(const Snapshot& snapshot) {
    std::vector<RecordPlace> places;
    places.reserve(snapshot.head.page_count);
    for (const PageRun& run : snapshot.runs)
        for (std::uint32_t i = 0; i < run.count; ++i)
            places.push_back({run.first.pack, run.first.record + i});
    return places;
}

std::vector<std::byte> StoreDirectory(const PackDirectory& directory) {
    std::vector<std::byte> out;
    out.reserve(kPackHeadBytes + kRecordBytes * directory.records.size() + kChecksumBytes);
    AppendText(out, kPackMagic);
    base::AppendLittle(out, kVersion);
    base::AppendLittle(out, directory.page_size);
    base::AppendLittle(out, static_cast<std::uint32_t>(directory.records.size()));
    base::AppendLittle(out, std::uint32_t{0});
    for (const PackRecord& record : directory.records) {
        const RecordPlace base = record.base.value_or(RecordPlace{0, kNoBase});
        base::AppendLittle(out, record.page);
        base::AppendLittle(out, record.stored_bytes);
        base::AppendLittle(out, base.pack);
        base::AppendLittle(out, base.record);
        base::AppendLittle(out, record.page_checksum);
        base::AppendLittle(out, record.stored_checksum);
    }
    AppendChecksum(out);
    return out;
}

base::Result<std::uint64_t> DirectoryBytes(std::span<const std::byte> head) {
    if (head.size() < kPackHeadBytes || !BeginsWith(head, kPackMagic))
        return Damaged("the beginning of a pack");
    const auto version = base::LoadLittle<std::uint32_t>(head.data() + kPackMagic.size());
    if (version != kVersion)
        return base::Status(base::StatusCode::kUnsupported,
                            "The snapshot was made by a newer version of the program.");
    const auto count = base::LoadLittle<std::uint32_t>(head.data() + kRecordCountAt);
    return kPackHeadBytes + std::uint64_t{kRecordBytes} * count + kChecksumBytes;
}

base::Result<PackDirectory> ParseDirectory(std::span<const std::byte> bytes) {
    ASSIGN_OR_RETURN(const std::uint64_t size, DirectoryBytes(bytes));
    if (bytes.size() != size || !EndsInChecksum(bytes)) return Damaged("the checksum of a pack");
    jet::ByteCursor cursor(bytes, kPackMagic.size() + sizeof kVersion);
    PackDirectory directory;
    directory.page_size = cursor.Take<std::uint32_t>();
    const auto count = cursor.Take<std::uint32_t>();
    const bool is_right = IsPageSize(directory.page_size) &&
                          count <= MostPages(directory.page_size) &&
                          cursor.Take<std::uint32_t>() == 0;
    if (!is_right) return Damaged("the head of a pack");
    directory.records.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        directory.records.push_back(TakeRecord(cursor));
        if (directory.records.back().stored_bytes > directory.page_size)
            return Damaged("the size of a page in a pack");
    }
    return directory;
}

std::uint64_t PageChecksum(jet::PageNumber page, std::span<const std::byte> bytes) {
    return jet::JournalChecksum(std::uint64_t{page} + 1, bytes);
}

std::uint64_t StoredChecksum(std::span<const std::byte> bytes) {
    return jet::JournalChecksum(bytes.size() + 1, bytes);
}

std::uint64_t FileChecksum(std::uint64_t checksum, std::uint64_t page_checksum) {
    std::array<std::byte, sizeof page_checksum> bytes{};
    base::StoreLittle(bytes.data(), page_checksum);
    return jet::JournalChecksum(checksum, bytes);
}

}  // namespace snapshots
