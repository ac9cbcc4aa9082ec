#include "snapshots/restore.h"

#include "base/file_names.h"
#include "jet/check/check.h"
#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/journal.h"
#include "jet/pages/lock_file.h"
#include "jet/pages/page_copy.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace snapshots {
namespace {

using Bytes = std::vector<std::byte>;

constexpr const char* kLabel = "Restore...";
constexpr std::uint64_t kChunkBytes = 1U << 20;
constexpr std::uint64_t kSectorBytes = 512;

std::filesystem::path NewName(const std::filesystem::path& database) {
    std::filesystem::path path = database;
    path += ".restored";
    return path;
}

base::Status CheckState(const Bytes& state) {
    ASSIGN_OR_RETURN(const std::uint32_t page_size, jet::PageSizeOf(state));
    const auto pages = jet::MakeReadOnlyPageStore(jet::PagesOf(state, page_size));
    const jet::CheckReport report = jet::CheckIntegrity(*pages);
    if (report.sound()) return {};
    const auto fault =
        std::ranges::find(report.findings, jet::Severity::kFault, &jet::Finding::severity);
    return {base::StatusCode::kCorruption,
            "This state is damaged (" + (fault == report.findings.end() ? "" : Describe(*fault)) +
                ")."};
}

void GiveNewMark(Bytes& state, std::uint32_t page_size) {
    jet::StoreFileMark(
        std::span(state).subspan(jet::FileMarkOffset(page_size), jet::kFileMarkBytes),
        jet::MakeFileMark());
}

// Written, on the disk, and read back.
base::Status WriteState(jet::FileSystem& files, const std::filesystem::path& path,
                        const Bytes& state) {
    ASSIGN_OR_RETURN(const auto file, files.Open(path, jet::OpenMode::kCreate));
    RETURN_IF_ERROR(file->WriteAt(0, state));
    RETURN_IF_ERROR(file->Sync());
    Bytes chunk(static_cast<std::size_t>(kChunkBytes));
    for (std::uint64_t at = 0; at < state.size(); at += chunk.size()) {
        chunk.resize(static_cast<std::size_t>(std::min(kChunkBytes, state.size() - at)));
        RETURN_IF_ERROR(file->ReadAt(at, chunk));
        if (!std::ranges::equal(chunk, std::span(state).subspan(at, chunk.size())))
            return {base::StatusCode::kIoError,
                    base::Utf8Of(path) + ": what was written is not what is read back"};
    }
    return {};
}

// The catalogue as it is now, held against other programs.
struct Today {
    std::unique_ptr<jet::PageStore> pages;  // null: there is none, or it cannot be opened
    std::unique_ptr<jet::File> file;        // held when it cannot be opened
    std::unique_ptr<jet::LockFile> owner;
    bool exists() const { return pages != nullptr || file != nullptr; }
};

base::Result<Today> Hold(jet::FileSystem& files, const std::filesystem::path& database) {
    Today today;
    if (!files.Exists(database)) return today;
    jet::PageStoreOptions options;
    options.flush_delay = std::chrono::milliseconds(0);
    auto pages = jet::OpenPageStore(files, database, options);
    if (pages.status().code() == base::StatusCode::kBusy) return pages.status();
    if (pages.ok() && (*pages)->Flush().ok()) {
        today.pages = std::move(pages).value();
        return today;
    }
    pages = base::Status(base::StatusCode::kIoError, "not needed");
    ASSIGN_OR_RETURN(today.file, files.Open(database, jet::OpenMode::kReadWrite));
    if (today.file->Lock(jet::FileLock::kExclusive, jet::kBehindContent).code() ==
        base::StatusCode::kBusy)
        return jet::LockFile::BusyStatus(files, database);
    ASSIGN_OR_RETURN(today.owner, jet::LockFile::Take(files, database));
    return today;
}

// What cannot be read of a file becomes zeros.
void ReadWhatCanBeRead(const jet::File& file, std::uint64_t at, Bytes& chunk) {
    if (file.ReadAt(at, chunk).ok()) return;
    for (std::size_t done = 0; done < chunk.size(); done += kSectorBytes) {
        const std::size_t size = std::min<std::size_t>(kSectorBytes, chunk.size() - done);
        const auto sector = std::span(chunk).subspan(done, size);
        if (!file.ReadAt(at + done, sector).ok()) std::ranges::fill(sector, std::byte{0});
    }
}

base::Status KeepCopy(jet::FileSystem& files, const std::filesystem::path& from,
                      const std::filesystem::path& to) {
    ASSIGN_OR_RETURN(const auto source, files.Open(from, jet::OpenMode::kRead));
    ASSIGN_OR_RETURN(const std::uint64_t size, source->Size());
    ASSIGN_OR_RETURN(const auto copy, files.Open(to, jet::OpenMode::kCreate));
    Bytes chunk;
    for (std::uint64_t at = 0; at < size; at += chunk.size()) {
        chunk.resize(static_cast<std::size_t>(std::min(kChunkBytes, size - at)));
        ReadWhatCanBeRead(*source, at, chunk);
        RETURN_IF_ERROR(copy->WriteAt(at, chunk));
    }
    return copy->Sync();
}

// With the journal, which may hold what the file does not have yet.
base::Result<std::filesystem::path>
KeepDamaged(jet::FileSystem& files, const std::filesystem::path& database, LocalSeconds now) {
    const std::filesystem::path first = DamagedName(database, now);
    std::filesystem::path name = first;
    for (int i = 2; files.Exists(name); ++i) {
        name = first.parent_path() / first.stem();
        name += "-" + std::to_string(i);
        name += first.extension();
    }
    base::Status kept = KeepCopy(files, database, name);
    const std::filesystem::path journal = jet::Journal::PathFor(database);
    if (kept.ok() && files.Exists(journal))
        kept = KeepCopy(files, journal, jet::Journal::PathFor(name));
    if (kept.ok()) return name;
    files.Remove(name).Ignore();
    files.Remove(jet::Journal::PathFor(name)).Ignore();
    return kept;
}

// nullopt: the state of today is damaged, so that no snapshot of it counts.
base::Result<std::optional<SnapshotNumber>> SnapshotOfToday(SnapshotStore& store, LocalSeconds now,
                                                            const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(auto number, store.Make({Occasion::kBeforeCommand, now, kLabel}, steps));
    store.CheckAll().Ignore();  // what came of it, the list tells
    ASSIGN_OR_RETURN(const std::vector<SnapshotInfo> list, store.List());
    if (list.empty()) return std::optional<SnapshotNumber>();
    // Nothing new: the newest one has this state.
    if (!number) number = list.back().number;
    const auto found = std::ranges::find(list, *number, &SnapshotInfo::number);
    const bool is_good = found != list.end() && found->state == SnapshotState::kGood;
    return is_good ? number : std::optional<SnapshotNumber>();
}

base::Result<Restored> KeepToday(jet::FileSystem& files, SnapshotStore& store, const Today& today,
                                 LocalSeconds now, const base::RunSteps& steps) {
    Restored kept;
    if (!today.exists()) return kept;
    if (today.pages != nullptr) {
        ASSIGN_OR_RETURN(kept.snapshot_before, SnapshotOfToday(store, now, steps));
        if (kept.snapshot_before) return kept;
    }
    ASSIGN_OR_RETURN(kept.damaged_file, KeepDamaged(files, store.database(), now));
    return kept;
}

}  // namespace

base::Result<Restored> Restore(jet::FileSystem& files, SnapshotStore& store, Bytes state,
                               LocalSeconds now, const base::RunSteps& steps) {
    RETURN_IF_ERROR(CheckState(state));
    RETURN_IF_ERROR(base::StatusOf(steps.stop));
    ASSIGN_OR_RETURN(const std::uint32_t page_size, jet::PageSizeOf(state));
    const std::filesystem::path& database = store.database();
    ASSIGN_OR_RETURN(Today today, Hold(files, database));
    GiveNewMark(state, page_size);
    const std::filesystem::path written = NewName(database);
    base::Status done = WriteState(files, written, state);
    base::Result<Restored> kept = Restored();
    if (done.ok()) {
        kept = KeepToday(files, store, today, now, steps);
        done = kept.status();
    }
    if (done.ok()) done = base::StatusOf(steps.stop);
    if (done.ok()) done = files.Rename(written, database);
    if (!done.ok()) {
        files.Remove(written).Ignore();
        return done;
    }
    // The exchange is made. Without this a power cut may bring back the state before.
    files.SyncFolder(database.parent_path()).Ignore();
    return kept;
}

base::Result<Bytes> ReadCopy(jet::FileSystem& files, const std::filesystem::path& path) {
    return jet::CopyFileBytes(files, path);
}

void RemoveRestoreLeftovers(jet::FileSystem& files, const std::filesystem::path& database) {
    if (files.Exists(NewName(database))) files.Remove(NewName(database)).Ignore();
}

std::filesystem::path DamagedName(const std::filesystem::path& database, LocalSeconds now) {
    using namespace std::chrono;
    const sys_seconds time{seconds(now)};
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), ".damaged-%04d%02u%02u-%02d%02d%02d",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()));
    std::filesystem::path path = database.parent_path() / database.stem();
    path += text.data();
    return path += database.extension();
}

}  // namespace snapshots
