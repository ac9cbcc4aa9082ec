#include "snapshots/snapshot_store.h"

#include "jet/check/check.h"
#include "jet/pages/page_copy.h"
#include "snapshots/keep_rules.h"
#include "snapshots/pack_set.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <set>

namespace snapshots {
namespace {

constexpr std::string_view kCheckedEnding = ".snapshot";
constexpr std::string_view kUncheckedEnding = ".unchecked";
constexpr std::string_view kPackEnding = ".pages";
constexpr std::string_view kNewEnding = ".new";  // being written
constexpr const char* kLockName = "lock";
// More would let numbers run out of eight digits.
constexpr std::uint32_t kLastNumber = 99'999'998;

std::string NameOf(SnapshotNumber number, bool is_checked) {
    std::array<char, 32> name{};
    std::snprintf(name.data(), name.size(), "%08u%s", static_cast<unsigned>(number),
                  is_checked ? kCheckedEnding.data() : kUncheckedEnding.data());
    return name.data();
}

// nullopt: the name is not eight digits and this ending.
std::optional<std::uint32_t> NumberOf(std::string_view name, std::string_view ending) {
    constexpr std::size_t kDigits = 8;
    if (name.size() != kDigits + ending.size() || !name.ends_with(ending)) return std::nullopt;
    std::uint32_t number = 0;
    const auto read = std::from_chars(name.data(), name.data() + kDigits, number);
    if (read.ec != std::errc() || read.ptr != name.data() + kDigits) return std::nullopt;
    return number;
}

std::string CutLabel(std::string label) {
    std::size_t size = std::min(label.size(), kMaxLabelBytes);
    while (size > 0 && size < label.size() && (label[size] & 0xC0) == 0x80)
        --size;
    label.resize(size);
    return label;
}

bool IsDamage(const base::Status& status) {
    return status.code() == base::StatusCode::kCorruption ||
           status.code() == base::StatusCode::kUnsupported;
}

bool AllAreWhole(const Snapshot& snapshot, PackSet& packs) {
    return std::ranges::all_of(PlacesOf(snapshot),
                               [&](const RecordPlace& place) { return packs.IsWhole(place); });
}

}  // namespace

// While it lives, no other thread or process is at work on the snapshots.
class SnapshotStore::Session {
public:
    Session(std::unique_lock<std::mutex> held, std::unique_ptr<jet::File> file)
        : held_(std::move(held)), file_(std::move(file)) {}

private:
    std::unique_lock<std::mutex> held_;
    std::unique_ptr<jet::File> file_;  // null: there is no folder, or none that could be changed
};

struct SnapshotStore::Entry {
    SnapshotNumber number = 0;
    bool is_checked = false;
    base::Result<Snapshot> snapshot = Snapshot();  // kCorruption, kUnsupported: cannot be read
};

struct SnapshotStore::Folder {
    std::vector<Entry> entries;  // by their numbers
    std::vector<PackNumber> packs;
    std::vector<std::string> leftovers;

    std::uint32_t NextNumber() const {
        std::uint32_t last = 0;
        for (const Entry& entry : entries)
            last = std::max(last, entry.number);
        for (const PackNumber pack : packs)
            last = std::max(last, pack);
        return last + 1;
    }
    // The newest whose list of pages can be read; null: none.
    const Snapshot* Newest() const {
        for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
            if (entry->snapshot.ok()) return &entry->snapshot.value();
        return nullptr;
    }
};

SnapshotStore::SnapshotStore(jet::FileSystem& files, std::filesystem::path database)
    : files_(files), database_(std::move(database)), folder_(FolderFor(database_)) {}

SnapshotStore::~SnapshotStore() = default;

std::filesystem::path SnapshotStore::FolderFor(const std::filesystem::path& database) {
    std::filesystem::path folder = database;
    folder += "-snapshots";
    return folder;
}

base::Result<std::unique_ptr<SnapshotStore::Session>> SnapshotStore::Begin(bool makes_folder) {
    std::unique_lock held(mutex_);
    if (makes_folder)
        RETURN_IF_ERROR(files_.MakeFolder(folder_));
    else if (!files_.Exists(folder_))
        return std::make_unique<Session>(std::move(held), nullptr);
    auto file = files_.Open(folder_ / kLockName, jet::OpenMode::kOpenOrCreate);
    // Who may not change the folder can still read what is in it.
    if (!file.ok() && makes_folder) return file.status();
    if (!file.ok()) return std::make_unique<Session>(std::move(held), nullptr);
    const base::Status locked = (*file)->Lock(jet::FileLock::kExclusive, jet::kBehindContent);
    if (locked.code() == base::StatusCode::kBusy)
        return base::Status(base::StatusCode::kBusy,
                            "Another program is working on the snapshots of this catalogue.");
    RETURN_IF_ERROR(locked);
    return std::make_unique<Session>(std::move(held), std::move(file).value());
}

base::Result<SnapshotStore::Entry> SnapshotStore::ReadEntry(SnapshotNumber number,
                                                            bool is_checked) {
    Entry entry{number, is_checked};
    ASSIGN_OR_RETURN(const auto file,
                     files_.Open(folder_ / NameOf(number, is_checked), jet::OpenMode::kRead));
    ASSIGN_OR_RETURN(const std::uint64_t size, file->Size());
    std::vector<std::byte> bytes(
        static_cast<std::size_t>(std::min<std::uint64_t>(size, kMaxSnapshotBytes)));
    RETURN_IF_ERROR(file->ReadAt(0, bytes));
    entry.snapshot = ParseSnapshot(bytes);
    return entry;
}

base::Result<SnapshotStore::Folder> SnapshotStore::ReadFolder() {
    Folder folder;
    auto names = files_.FileNames(folder_);
    if (names.status().code() == base::StatusCode::kNotFound) return folder;
    if (!names.ok()) return names.status();
    for (const std::string& name : *names) {
        const auto pack = NumberOf(name, kPackEnding);
        const auto checked = NumberOf(name, kCheckedEnding);
        const auto unchecked = NumberOf(name, kUncheckedEnding);
        if (pack) folder.packs.push_back(*pack);
        if (name.ends_with(kNewEnding)) folder.leftovers.push_back(name);
        if (!checked && !unchecked) continue;
        ASSIGN_OR_RETURN(Entry entry, ReadEntry(checked ? *checked : *unchecked, bool(checked)));
        folder.entries.push_back(std::move(entry));
    }
    std::ranges::sort(folder.entries, {}, &Entry::number);
    std::ranges::sort(folder.packs);
    return folder;
}

base::Status SnapshotStore::RemoveLeftovers(const Folder& folder) {
    for (const std::string& name : folder.leftovers)
        RETURN_IF_ERROR(files_.Remove(folder_ / name));
    return {};
}

// -------------------------------------------------------------------------------------- making

// The pages that a new snapshot stores. A page that the snapshot before has, undamaged, is not
// stored again; one that differs from it becomes a change of the last whole one.
struct SnapshotStore::NewPack {
    NewPack(PackNumber number, PackSet& packs, std::uint32_t page_size)
        : number_(number), packs_(packs), before_(page_size) {
        directory_.page_size = page_size;
    }

    // `known`: where the page of the snapshot before is; nullopt: it has none.
    RecordPlace Place(jet::PageNumber page, std::span<const std::byte> bytes,
                      std::uint64_t checksum, std::optional<RecordPlace> known) {
        std::optional<RecordPlace> base;
        if (known && packs_.IsWhole(*known)) {
            const auto record = packs_.Record(*known);
            if (record.ok() && (*record)->page == page && (*record)->page_checksum == checksum)
                return *known;
            if (record.ok()) base = (*record)->base ? (*record)->base : known;
        }
        Compress(page, bytes, base);
        directory_.records.push_back({page, static_cast<std::uint32_t>(stored_.size()), base,
                                      checksum, StoredChecksum(stored_)});
        data_.insert(data_.end(), stored_.begin(), stored_.end());
        return {number_, static_cast<std::uint32_t>(directory_.records.size() - 1)};
    }

    const PackDirectory& directory() const { return directory_; }
    const std::vector<std::byte>& data() const { return data_; }

private:
    // A change that takes more than this part of a page must be much smaller than the page alone.
    static constexpr std::size_t kSmallPart = 8;

    void Compress(jet::PageNumber page, std::span<const std::byte> bytes,
                  std::optional<RecordPlace>& base) {
        if (base && !packs_.ReadPage(*base, page, before_).ok()) base.reset();
        if (!base) return codec_.Compress(bytes, {}, stored_);
        codec_.Compress(bytes, before_, stored_);
        if (stored_.size() <= bytes.size() / kSmallPart) return;
        codec_.Compress(bytes, {}, whole_);
        if (2 * stored_.size() < whole_.size()) return;
        stored_.swap(whole_);
        base.reset();
    }

    PackNumber number_;
    PackSet& packs_;
    PageCodec codec_;
    PackDirectory directory_;
    std::vector<std::byte> data_;
    std::vector<std::byte> before_;
    std::vector<std::byte> stored_;
    std::vector<std::byte> whole_;
};

// A state of the catalogue that is to become a snapshot.
struct SnapshotStore::NewState {
    Snapshot snapshot;
    std::unique_ptr<NewPack> pack;  // what of it is not stored yet
    bool is_new = false;            // the newest snapshot has another state
};

base::Result<std::optional<SnapshotNumber>> SnapshotStore::Make(const Request& request,
                                                                const base::RunSteps& steps) {
    ASSIGN_OR_RETURN(const auto session, Begin(true));
    ASSIGN_OR_RETURN(const Folder folder, ReadFolder());
    RETURN_IF_ERROR(RemoveLeftovers(folder));
    const SnapshotNumber number = folder.NextNumber();
    if (number > kLastNumber)
        return base::Status(base::StatusCode::kUnsupported, "There are too many snapshots.");
    PackSet packs(files_, folder_);
    ASSIGN_OR_RETURN(NewState state, ReadDatabase(folder, number, packs, steps));
    const PackDirectory& directory = state.pack->directory();
    if (!directory.records.empty())
        RETURN_IF_ERROR(
            WriteFile(PackSet::FileName(number), StoreDirectory(directory), state.pack->data()));
    if (!state.is_new) return std::optional<SnapshotNumber>();
    state.snapshot.head.occasion = request.occasion;
    state.snapshot.head.time = request.time;
    state.snapshot.head.label = CutLabel(request.label);
    RETURN_IF_ERROR(WriteFile(NameOf(number, false), StoreSnapshot(state.snapshot), {}));
    RETURN_IF_ERROR(files_.SyncFolder(folder_));
    return std::optional(number);
}

// Page by page, unless somebody changes the catalogue at this very time: then as a whole.
base::Result<SnapshotStore::NewState> SnapshotStore::ReadDatabase(const Folder& folder,
                                                                  SnapshotNumber number,
                                                                  PackSet& packs,
                                                                  const base::RunSteps& steps) {
    base::Result<NewState> state = NewState();
    const auto read = [&](const jet::PageSource& pages) {
        state = ReadState(pages, folder, number, packs, steps);
        return state.status();
    };
    const auto is_steady = jet::ReadSteadyPages(files_, database_, read);
    if ((is_steady.ok() && *is_steady) || base::IsStopped(state.status())) return state;
    ASSIGN_OR_RETURN(const std::vector<std::byte> bytes, jet::CopyFileBytes(files_, database_));
    ASSIGN_OR_RETURN(const std::uint32_t page_size, jet::PageSizeOf(bytes));
    return ReadState(jet::PagesOf(bytes, page_size), folder, number, packs, steps);
}

base::Result<SnapshotStore::NewState>
SnapshotStore::ReadState(const jet::PageSource& pages, const Folder& folder, SnapshotNumber number,
                         PackSet& packs, const base::RunSteps& steps) {
    NewState state;
    SnapshotHead& head = state.snapshot.head;
    head.page_size = pages.page_size;
    head.page_count = pages.page_count;
    std::vector<RecordPlace> known;
    const Snapshot* const newest = folder.Newest();
    if (newest != nullptr && newest->head.page_size == pages.page_size) known = PlacesOf(*newest);
    state.pack = std::make_unique<NewPack>(number, packs, pages.page_size);
    std::vector<RecordPlace> places;
    places.reserve(pages.page_count);
    std::vector<std::byte> content(pages.page_size);
    base::StepCount count(steps, pages.page_count);
    for (jet::PageNumber page = 0; page < pages.page_count; ++page) {
        RETURN_IF_ERROR(count.Next());
        RETURN_IF_ERROR(pages.read(page, content));
        const std::uint64_t checksum = PageChecksum(page, content);
        head.checksum = FileChecksum(head.checksum, checksum);
        const auto before = page < known.size() ? std::optional(known[page]) : std::nullopt;
        places.push_back(state.pack->Place(page, content, checksum, before));
    }
    state.is_new = places != known;
    state.snapshot.runs = MakeRuns(places);
    return state;
}

// The file is complete and on the disk before it has its name.
base::Status SnapshotStore::WriteFile(const std::string& name, std::span<const std::byte> head,
                                      std::span<const std::byte> rest) {
    const std::filesystem::path path = folder_ / name;
    std::filesystem::path written = path;
    written += kNewEnding;
    const auto write = [&]() -> base::Status {
        ASSIGN_OR_RETURN(const auto file, files_.Open(written, jet::OpenMode::kCreate));
        RETURN_IF_ERROR(file->WriteAt(0, head));
        if (!rest.empty()) RETURN_IF_ERROR(file->WriteAt(head.size(), rest));
        return file->Sync();
    };
    base::Status done = write();
    if (done.ok()) done = files_.Rename(written, path);
    if (!done.ok()) files_.Remove(written).Ignore();  // the next call removes it, too
    return done;
}

// ------------------------------------------------------------------------------------ checking

// Calls `visit` with each page and tests what the snapshot says of all.
base::Status
SnapshotStore::VisitPages(const Snapshot& snapshot, PackSet& packs,
                          const std::function<void(std::span<const std::byte> page)>& visit) {
    std::vector<std::byte> content(snapshot.head.page_size);
    std::uint64_t checksum = 0;
    jet::PageNumber page = 0;
    for (const RecordPlace& place : PlacesOf(snapshot)) {
        RETURN_IF_ERROR(packs.ReadPage(place, page, content));
        checksum = FileChecksum(checksum, PageChecksum(page, content));
        visit(content);
        ++page;
    }
    if (checksum == snapshot.head.checksum) return {};
    return {base::StatusCode::kCorruption,
            "The snapshot is damaged: its pages do not belong together"};
}

base::Result<std::vector<std::byte>> SnapshotStore::ReadPages(const Snapshot& snapshot) {
    PackSet packs(files_, folder_);
    std::vector<std::byte> bytes;
    bytes.reserve(std::size_t{snapshot.head.page_size} * snapshot.head.page_count);
    RETURN_IF_ERROR(VisitPages(snapshot, packs, [&](std::span<const std::byte> page) {
        bytes.insert(bytes.end(), page.begin(), page.end());
    }));
    return bytes;
}

// kCorruption: it is no sound database.
base::Status SnapshotStore::CheckContent(PackSet& packs, const std::vector<RecordPlace>& places,
                                         std::uint32_t page_size) {
    base::Status unread;
    const auto read = [&](jet::PageNumber page, std::span<std::byte> bytes) {
        base::Status done = packs.ReadPage(places[page], page, bytes);
        if (unread.ok()) unread = done;
        return done;
    };
    const auto pages =
        jet::MakeReadOnlyPageStore({page_size, static_cast<jet::PageNumber>(places.size()), read});
    const jet::CheckReport report = jet::CheckIntegrity(*pages);
    if (!unread.ok() || report.sound()) return unread;
    const auto fault =
        std::ranges::find(report.findings, jet::Severity::kFault, &jet::Finding::severity);
    return {base::StatusCode::kCorruption,
            "No snapshot was kept: the catalogue is damaged (" +
                (fault == report.findings.end() ? "" : Describe(*fault)) + ")."};
}

base::Status SnapshotStore::CheckAll() {
    std::vector<SnapshotNumber> unchecked;
    {
        ASSIGN_OR_RETURN(const auto session, Begin(false));
        ASSIGN_OR_RETURN(const Folder folder, ReadFolder());
        for (const Entry& entry : folder.entries)
            if (!entry.is_checked) unchecked.push_back(entry.number);
    }
    base::Status first;
    for (const SnapshotNumber number : unchecked) {
        const base::Status checked = CheckOne(number);
        if (first.ok()) first = checked;
    }
    return first;
}

// Each page is read twice, and few are held: first all, while nobody else is at work on the packs,
// for what the snapshot says of the whole; then, from the packs that are open now, as the checker
// asks for them.
base::Status SnapshotStore::CheckOne(SnapshotNumber number) {
    std::vector<RecordPlace> places;
    std::uint32_t page_size = 0;
    PackSet packs(files_, folder_);
    base::Status found;
    {
        ASSIGN_OR_RETURN(const auto session, Begin(true));
        const auto entry = ReadEntry(number, false);
        // Another process has checked it meanwhile, or removed it.
        if (entry.status().code() == base::StatusCode::kNotFound) return {};
        if (!entry.ok()) return entry.status();
        found = entry->snapshot.status();
        if (found.ok()) {
            page_size = entry->snapshot->head.page_size;
            places = PlacesOf(*entry->snapshot);
            found = VisitPages(*entry->snapshot, packs, [](std::span<const std::byte>) {});
        }
    }
    if (found.ok()) found = CheckContent(packs, places, page_size);
    if (!found.ok() && !IsDamage(found)) return found;
    RETURN_IF_ERROR(EndCheck(number, found.ok()));
    return found;
}

base::Status SnapshotStore::EndCheck(SnapshotNumber number, bool is_good) {
    ASSIGN_OR_RETURN(const auto session, Begin(true));
    const std::filesystem::path unchecked = folder_ / NameOf(number, false);
    const base::Status done = is_good ? files_.Rename(unchecked, folder_ / NameOf(number, true))
                                      : files_.Remove(unchecked);
    if (done.code() == base::StatusCode::kNotFound) return {};  // another process was quicker
    RETURN_IF_ERROR(done);
    return files_.SyncFolder(folder_);
}

// ------------------------------------------------------------------------------------- reading

base::Result<std::vector<SnapshotInfo>> SnapshotStore::List() {
    ASSIGN_OR_RETURN(const auto session, Begin(false));
    ASSIGN_OR_RETURN(const Folder folder, ReadFolder());
    PackSet packs(files_, folder_);
    std::vector<SnapshotInfo> list;
    for (const Entry& entry : folder.entries) {
        SnapshotInfo info{entry.number, SnapshotState::kDamaged, {}};
        if (entry.snapshot.ok()) {
            info.head = entry.snapshot->head;
            if (AllAreWhole(*entry.snapshot, packs))
                info.state = entry.is_checked ? SnapshotState::kGood : SnapshotState::kUnchecked;
        }
        list.push_back(std::move(info));
    }
    return list;
}

base::Result<std::optional<SnapshotInfo>> SnapshotStore::NewestGood() {
    ASSIGN_OR_RETURN(const std::vector<SnapshotInfo> list, List());
    const auto newest = std::find_if(list.rbegin(), list.rend(), [](const SnapshotInfo& info) {
        return info.state == SnapshotState::kGood;
    });
    return newest == list.rend() ? std::optional<SnapshotInfo>() : std::optional(*newest);
}

base::Result<std::vector<std::byte>> SnapshotStore::Read(SnapshotNumber number) {
    ASSIGN_OR_RETURN(const auto session, Begin(false));
    const auto entry = ReadEntry(number, true);
    if (entry.ok())
        return entry->snapshot.ok() ? ReadPages(*entry->snapshot) : entry->snapshot.status();
    if (entry.status().code() != base::StatusCode::kNotFound) return entry.status();
    if (files_.Exists(folder_ / NameOf(number, false)))
        return base::Status(base::StatusCode::kUnsupported,
                            "The snapshot " + std::to_string(number) + " was not checked yet.");
    return base::Status(base::StatusCode::kNotFound,
                        "There is no snapshot " + std::to_string(number) + ".");
}

// ------------------------------------------------------------------------------------- keeping

base::Status SnapshotStore::Keep() {
    ASSIGN_OR_RETURN(const auto session, Begin(true));
    ASSIGN_OR_RETURN(Folder folder, ReadFolder());
    RETURN_IF_ERROR(RemoveLeftovers(folder));
    RETURN_IF_ERROR(RemoveWhatIsNotKept(folder));
    return CollectGarbage(folder);
}

base::Status SnapshotStore::Remove(const Entry& entry) {
    return files_.Remove(folder_ / NameOf(entry.number, entry.is_checked));
}

// Damaged ones are kept by the same rules, but take no good one's place. What cannot be read at all
// goes.
base::Status SnapshotStore::RemoveWhatIsNotKept(Folder& folder) {
    PackSet packs(files_, folder_);
    std::vector<KeepCandidate> whole;
    std::vector<KeepCandidate> damaged;
    for (const Entry& entry : folder.entries) {
        if (!entry.snapshot.ok()) continue;
        const SnapshotHead& head = entry.snapshot->head;
        auto& candidates = AllAreWhole(*entry.snapshot, packs) ? whole : damaged;
        candidates.push_back({entry.number, head.time, head.occasion});
    }
    std::set<SnapshotNumber> kept = WhichToKeep(std::move(whole));
    kept.merge(WhichToKeep(std::move(damaged)));
    std::vector<Entry> left;
    for (Entry& entry : folder.entries) {
        const bool is_newer_format =
            entry.snapshot.status().code() == base::StatusCode::kUnsupported;
        if (kept.contains(entry.number) || is_newer_format)
            left.push_back(std::move(entry));
        else
            RETURN_IF_ERROR(Remove(entry));
    }
    const bool removed_any = left.size() != folder.entries.size();
    folder.entries = std::move(left);
    // A pack goes only after it is certain that nobody names it.
    return removed_any ? files_.SyncFolder(folder_) : base::Status();
}

base::Status SnapshotStore::CollectGarbage(const Folder& folder) {
    PackSet packs(files_, folder_);
    std::map<PackNumber, std::vector<bool>> used;
    const auto use = [&](const RecordPlace& place) {
        std::vector<bool>& records = used[place.pack];
        if (records.size() <= place.record) records.resize(std::size_t{place.record} + 1);
        records[place.record] = true;
    };
    for (const Entry& entry : folder.entries) {
        if (!entry.snapshot.ok()) return {};  // nobody knows what one of a newer format needs
        for (const RecordPlace& place : PlacesOf(*entry.snapshot)) {
            use(place);
            const auto record = packs.Record(place);
            // What cannot be read now may be whole, and what it builds on needed.
            if (!record.ok() && !IsDamage(record.status())) return record.status();
            if (record.ok() && (*record)->base) use(*(*record)->base);
        }
    }
    for (const PackNumber number : folder.packs) {
        const auto records = used.find(number);
        RETURN_IF_ERROR(records == used.end() ? files_.Remove(folder_ / PackSet::FileName(number))
                                              : Rewrite(packs, number, records->second));
    }
    return {};
}

// Leaves out the pages that nobody needs when they are more than half of the pack. The records keep
// their numbers, so that nothing else changes.
base::Status SnapshotStore::Rewrite(PackSet& packs, PackNumber number,
                                    const std::vector<bool>& is_used) {
    const auto opened = packs.Directory(number);
    if (!opened.ok()) return IsDamage(opened.status()) ? base::Status() : opened.status();
    PackDirectory directory = **opened;
    std::uint64_t all = 0;
    std::uint64_t needed = 0;
    for (std::uint32_t i = 0; i < directory.records.size(); ++i) {
        all += directory.records[i].stored_bytes;
        if (i < is_used.size() && is_used[i]) needed += directory.records[i].stored_bytes;
    }
    if (2 * needed >= all) return {};
    std::vector<std::byte> data;
    for (std::uint32_t i = 0; i < directory.records.size(); ++i) {
        PackRecord& record = directory.records[i];
        if (record.stored_bytes == 0) continue;
        if (i >= is_used.size() || !is_used[i]) {
            record = {record.page, 0, std::nullopt, 0, 0};
            continue;
        }
        const auto stored = packs.ReadStored({number, i});
        // A damaged pack stays as it is.
        if (!stored.ok()) return IsDamage(stored.status()) ? base::Status() : stored.status();
        data.insert(data.end(), stored->begin(), stored->end());
    }
    return WriteFile(PackSet::FileName(number), StoreDirectory(directory), data);
}

}  // namespace snapshots
