#include "jet/pages/file_page_store.h"

#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/format.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t kMaxBytesAtOnce = 1U << 20;
// Above this size a commit waits for a checkpoint, so that the journal cannot grow without end.
constexpr std::uint64_t kMaxJournalBytes = 64U << 20;

base::Status NoSuchPage(PageNumber page) {
    return {base::StatusCode::kCorruption,
            "page " + std::to_string(page) + " is past the end of the file"};
}

// An encoded copy; a plain one of an encoded page.
std::shared_ptr<PageBytes> Encoded(const PageEncoding& encoding, PageNumber number,
                                   const SharedPage& page) {
    auto encoded = std::make_shared<PageBytes>(*page);
    encoding.Apply(number, *encoded);
    return encoded;
}

// A new page differs from whatever the file has.
Sectors DifferentSectors(const PageTransaction::ChangedPage& page) {
    if (page.before == nullptr) return kAllSectors;
    Sectors sectors = 0;
    for (std::size_t at = 0; at < page.after->size(); at += kSectorSize)
        if (std::memcmp(page.before->data() + at, page.after->data() + at, kSectorSize) != 0)
            sectors |= static_cast<Sectors>(1U << (at / kSectorSize));
    return sectors;
}

}  // namespace

// Writes bytes that follow each other in the file with one call.
class FilePageStore::Writer {
public:
    explicit Writer(File& file) : file_(file) {}

    base::Status Write(std::uint64_t offset, std::span<const std::byte> bytes) {
        const bool continues = offset == start_ + bytes_.size() && bytes_.size() < kMaxBytesAtOnce;
        if (!continues) RETURN_IF_ERROR(Finish());
        if (bytes_.empty()) start_ = offset;
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        return {};
    }
    base::Status Finish() {
        if (bytes_.empty()) return {};
        base::Status written = file_.WriteAt(start_, bytes_);
        bytes_.clear();
        return written;
    }

private:
    File& file_;
    std::uint64_t start_ = 0;
    PageBytes bytes_;
};

// Turns an error of the system into the engine's own.
base::Status EngineStatus(const base::Status& status) {
    switch (status.code()) {
    case base::StatusCode::kNoSpace:
        return JetError(ErrorNumber::kNotEnoughSpace);
    case base::StatusCode::kIoError:
        return JetError(ErrorNumber::kDiskError);
    default:
        return status;
    }
}

FilePageStore::FilePageStore(FileSystem& files, const std::filesystem::path& path, Parts parts,
                             const PageStoreOptions& options)
    : path_(path), page_size_(parts.page_size), encoding_(parts.encoding),
      read_only_(options.read_only),
      notes_(read_only_ || !encoding_.is_plain() ? nullptr : options.notes),
      committed_count_(parts.page_count), prefetch_(parts.page_size), file_(std::move(parts.file)),
      owner_(std::move(parts.owner)), journal_(files, Journal::PathFor(path)),
      cache_(options.cache_bytes / parts.page_size), pages_in_file_(parts.page_count) {}

FilePageStore::~FilePageStore() {
    Close().Ignore();
}

void FilePageStore::StartFlusher(std::chrono::milliseconds delay) {
    flusher_ = std::make_unique<Flusher>(delay, [this] { return Checkpoint().ok(); });
}

base::Status FilePageStore::Recover(RecoveredJournal recovered, std::unique_ptr<File> journal) {
    for (auto& [number, page] : recovered.pages) {
        if (!encoding_.is_plain()) page = Encoded(encoding_, number, page);
        pending_[number] = {std::move(page), kAllSectors};
    }
    committed_count_ = recovered.page_count;
    pages_in_file_ = std::min(pages_in_file_, committed_count_);
    if (journal == nullptr) return {};
    journal_.Resume(std::move(journal), std::move(recovered.end));
    return Checkpoint();
}

PageNumber FilePageStore::page_count() const {
    return transaction_.open() ? transaction_.page_count() : committed_count_;
}

base::Status FilePageStore::CheckUsable() const {
    if (closed_) return {base::StatusCode::kInvalidArgument, "The database is closed."};
    if (is_in_doubt_) return JetError(ErrorNumber::kDiskError);
    return {};
}

// ---------------------------------------------------------------------------------- reading

base::Result<PageView> FilePageStore::Read(PageNumber page) {
    RETURN_IF_ERROR(CheckUsable());
    if (page >= page_count()) return NoSuchPage(page);
    if (SharedPage changed = transaction_.Find(page)) return PageView(std::move(changed));
    ASSIGN_OR_RETURN(SharedPage bytes, Load(page));
    return PageView(std::move(bytes));
}

SharedPage FilePageStore::FindInMemory(PageNumber page) {
    const auto pending = pending_.find(page);
    return pending != pending_.end() ? pending->second.page : cache_.Find(page);
}

base::Result<SharedPage> FilePageStore::Load(PageNumber page) {
    {
        const std::lock_guard lock(mutex_);
        if (SharedPage known = FindInMemory(page)) return known;
        if (page >= pages_in_file_) return NoSuchPage(page);
    }
    if (SharedPage prefetched = TakePrefetched(page)) return prefetched;
    return Fetch(page);
}

// Commits come from this thread, so a page that is not pending now stays so until this returns,
// and what is read without the lock is not being written.
base::Result<SharedPage> FilePageStore::Fetch(PageNumber page) {
    PageNumber count = read_ahead_.PagesFrom(page);
    if (page == 0) count = 1;  // a checkpoint changes its mark without a commit
    {
        const std::lock_guard lock(mutex_);
        count = std::min(count, pages_in_file_ - page);
        const auto next_pending = pending_.upper_bound(page);
        if (next_pending != pending_.end()) count = std::min(count, next_pending->first - page);
    }
    const std::uint64_t offset = std::uint64_t{page} * page_size_;
    const std::span<std::byte> bytes = prefetch_.Reserve(count);
    // If several cannot be read at once, perhaps this one alone can.
    if (count > 1 && !file_->ReadAt(offset, bytes).ok()) count = 1;
    if (count == 1) {
        const base::Status read = file_->ReadAt(offset, bytes.first(page_size_));
        if (!read.ok()) return EngineStatus(read);
    }
    for (PageNumber i = 0; i < count; ++i)
        encoding_.Apply(page + i, bytes.subspan(std::size_t{i} * page_size_, page_size_));
    prefetch_.Fill(page, count);
    if (count > 1 && read_ahead_.is_long_scan()) return TakePrefetched(page);
    const std::lock_guard lock(mutex_);
    SharedPage wanted;
    for (PageNumber i = count; i-- > 0;) {
        if (i > 0 && cache_.Contains(page + i)) continue;
        wanted = prefetch_.Take(page + i);
        cache_.Put(page + i, wanted);
    }
    prefetch_.Clear();
    return wanted;
}

// null: not prefetched. A page that is read twice does not belong to a scan and goes to the cache.
SharedPage FilePageStore::TakePrefetched(PageNumber page) {
    if (!prefetch_.Contains(page)) return nullptr;
    SharedPage bytes = prefetch_.Take(page);
    if (page == last_prefetched_) {
        const std::lock_guard lock(mutex_);
        cache_.Put(page, bytes);
    }
    last_prefetched_ = page;
    return bytes;
}

// ---------------------------------------------------------------------------------- changing

base::Status FilePageStore::Begin() {
    RETURN_IF_ERROR(CheckUsable());
    if (read_only_) return JetError(ErrorNumber::kReadOnly);
    transaction_.Begin(committed_count_);
    return {};
}

base::Result<std::span<std::byte>> FilePageStore::Change(PageNumber page) {
    assert(transaction_.open());
    RETURN_IF_ERROR(CheckUsable());
    if (page >= page_count()) return NoSuchPage(page);
    if (const auto again = transaction_.ChangeAgain(page); !again.empty()) return again;
    ASSIGN_OR_RETURN(const SharedPage before, Load(page));
    return transaction_.Change(page, before);
}

base::Result<PageNumber> FilePageStore::Extend() {
    assert(transaction_.open());
    RETURN_IF_ERROR(CheckUsable());
    const std::uint64_t max_bytes = FormatOfPages(page_size_).max_file_bytes;
    if ((std::uint64_t{page_count()} + 1) * page_size_ > max_bytes) return FileIsFull();
    return transaction_.Extend(page_size_);
}

base::Status FilePageStore::Commit(std::vector<std::byte> note) {
    assert(transaction_.open());
    base::Status done = CheckUsable();
    if (!takes_notes()) note.clear();
    if (done.ok() && !(transaction_.pages().empty() && note.empty()))
        done = CommitPages(std::move(note));
    transaction_.End();
    return EngineStatus(done);
}

base::Status FilePageStore::CommitPages(std::vector<std::byte> note) {
    std::uint64_t journal_size = 0;
    {
        const std::lock_guard lock(mutex_);
        RETURN_IF_ERROR(AppendToJournal(std::move(note)));
        TakeIntoPending();
        journal_size = journal_.size_bytes();
    }
    const bool nobody_flushes = flusher_ != nullptr && !flusher_->Request();
    if (nobody_flushes || journal_size > kMaxJournalBytes)
        Checkpoint().Ignore();  // tried again later
    return {};
}

base::Status FilePageStore::AppendToJournal(std::vector<std::byte> note) {
    JournalHeader header;
    if (journal_.empty()) {
        ASSIGN_OR_RETURN(header, MakeJournalHeader());
    }
    base::Status added =
        journal_.AddTransaction(encoding_.is_plain() ? transaction_.pages() : EncodedPages(),
                                transaction_.page_count(), header, std::move(note));
    is_in_doubt_ = !added.ok() && journal_.is_in_doubt();
    return added;
}

// What the open transaction changes, as it is in the file and will be.
PageTransaction::ChangedPages FilePageStore::EncodedPages() const {
    PageTransaction::ChangedPages encoded = transaction_.pages();
    for (auto& [number, page] : encoded) {
        if (page.before != nullptr) page.before = Encoded(encoding_, number, page.before);
        page.after = Encoded(encoding_, number, page.after);
    }
    return encoded;
}

void FilePageStore::TakeIntoPending() {
    prefetch_.Clear();
    for (const auto& [number, page] : transaction_.pages()) {
        PendingPage& pending = pending_[number];
        pending.sectors |= DifferentSectors(page);
        pending.page = page.after;
        cache_.Erase(number);
    }
    committed_count_ = transaction_.page_count();
}

base::Result<JournalHeader> FilePageStore::MakeJournalHeader() {
    JournalHeader header;
    header.page_size = page_size_;
    header.salt = MakeFileMark();
    header.page_count = pages_in_file_;
    header.first_page.resize(page_size_);
    RETURN_IF_ERROR(file_->ReadAt(0, header.first_page));
    if (ReadFileMark(header.first_page) == 0 || !first_mark_is_durable_)
        RETURN_IF_ERROR(GiveFirstMark(header.first_page));
    return header;
}

// Before the first journal of a file: without a mark of its own, a copy could be taken for it.
// Synced at once, as the journal's header relies on it.
base::Status FilePageStore::GiveFirstMark(PageBytes& first_page) {
    const auto words = std::span(first_page).subspan(FileMarkOffset(page_size_), kFileMarkBytes);
    StoreFileMark(words, MakeFileMark());
    cache_.Erase(0);
    first_mark_is_durable_ = false;
    RETURN_IF_ERROR(file_->WriteAt(FileMarkOffset(page_size_), words));
    RETURN_IF_ERROR(file_->Sync());
    first_mark_is_durable_ = true;
    return {};
}

// -------------------------------------------------------------------------------- checkpoint

base::Status FilePageStore::Flush() {
    RETURN_IF_ERROR(CheckUsable());
    return EngineStatus(Checkpoint());
}

base::Status FilePageStore::Checkpoint() {
    if (read_only_) return {};
    const std::lock_guard one_at_a_time(checkpoint_mutex_);
    ASSIGN_OR_RETURN(const std::optional<Snapshot> snapshot, BeginCheckpoint());
    if (!snapshot) return {};
    RETURN_IF_ERROR(journal_.Sync());
    HandNotesOn(*snapshot);
    RETURN_IF_ERROR(WriteSnapshot(*snapshot));
    RETURN_IF_ERROR(file_->Sync());
    return EndCheckpoint(*snapshot);
}

// nullopt: there is nothing to do.
base::Result<std::optional<FilePageStore::Snapshot>> FilePageStore::BeginCheckpoint() {
    const std::lock_guard lock(mutex_);
    if (journal_.empty()) return std::optional<Snapshot>();
    Snapshot snapshot{pending_, MakeFileMark(), journal_.note_count()};
    RETURN_IF_ERROR(journal_.AddMark(snapshot.mark));
    return std::optional<Snapshot>(std::move(snapshot));
}

// Those of later commits wait for their own checkpoint: the journal on the disk may not have them.
void FilePageStore::HandNotesOn(const Snapshot& snapshot) {
    std::vector<CommitNote> taken;
    {
        const std::lock_guard lock(mutex_);
        taken = journal_.TakeNotes(snapshot.notes);
    }
    if (takes_notes()) notes_->Keep(std::move(taken), snapshot.mark);
}

base::Status FilePageStore::WriteSnapshot(const Snapshot& snapshot) {
    Writer writer(*file_);
    for (const auto& [number, pending] : snapshot.pages)
        RETURN_IF_ERROR(WritePage(number, pending, snapshot.mark, writer));
    RETURN_IF_ERROR(writer.Finish());
    if (snapshot.pages.contains(0)) return {};
    std::array<std::byte, kFileMarkBytes> words{};
    StoreFileMark(words, snapshot.mark);
    return file_->WriteAt(FileMarkOffset(page_size_), words);
}

// What differs from the file; page 0 as a whole, since its mark does.
base::Status FilePageStore::WritePage(PageNumber number, const PendingPage& pending,
                                      std::uint64_t mark, Writer& writer) const {
    std::span<const std::byte> bytes = *pending.page;
    PageBytes copy;
    if (number == 0 || !encoding_.is_plain()) {
        copy = *pending.page;
        encoding_.Apply(number, copy);
        bytes = copy;
    }
    unsigned sectors = pending.sectors;
    if (number == 0) {
        StoreFileMark(std::span(copy).subspan(FileMarkOffset(page_size_), kFileMarkBytes), mark);
        sectors = kAllSectors;
    }
    sectors |= (sectors << 1) & (sectors >> 1);  // a gap of one costs less than another write
    for (std::size_t at = 0; at < bytes.size(); at += kSectorSize, sectors >>= 1)
        if ((sectors & 1U) != 0)
            RETURN_IF_ERROR(writer.Write(std::uint64_t{number} * page_size_ + at,
                                         bytes.subspan(at, kSectorSize)));
    return {};
}

base::Status FilePageStore::EndCheckpoint(const Snapshot& snapshot) {
    const std::lock_guard lock(mutex_);
    for (const auto& [number, written] : snapshot.pages) {
        pages_in_file_ = std::max(pages_in_file_, number + 1);
        const auto pending = pending_.find(number);
        if (pending->second.page != written.page) continue;  // committed again meanwhile
        pending_.erase(pending);
        if (number != 0) cache_.Put(number, written.page);  // page 0 has another mark now
    }
    cache_.Erase(0);
    const bool is_done = pending_.empty() && journal_.note_count() == 0;
    return is_done ? journal_.Reset() : base::Status();
}

base::Status FilePageStore::Close() {
    if (closed_) return {};
    transaction_.End();
    flusher_.reset();
    const base::Status done = Checkpoint();
    if (!read_only_ && journal_.empty()) journal_.RemoveFile();
    closed_ = true;
    pending_.clear();
    owner_.reset();
    file_.reset();
    return EngineStatus(done);
}

}  // namespace jet
