#include "jet/pages/journal.h"

#include "base/byte_writer.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace jet {
namespace {

// A page whose changes have taken so large a part of it is told as a whole: what comes then can be
// told by moves, which need a page that the journal has.
constexpr std::size_t kPartWorthAWholePage = 4;
// For the heads of a transaction's records; a small transaction needs no more as a whole.
constexpr std::size_t kSmallTransaction = 512;

// The answer: its checksum.
std::uint64_t AppendNote(std::vector<std::byte>& out, std::span<const std::byte> note,
                         std::uint64_t chain) {
    const std::size_t record = BeginRecord(out);
    out.insert(out.end(), note.begin(), note.end());
    return FinishRecord(out, record, RecordKind::kNote, 0, chain);
}

}  // namespace

Journal::Journal(FileSystem& files, std::filesystem::path path)
    : files_(files), path_(std::move(path)) {}

std::filesystem::path Journal::PathFor(const std::filesystem::path& database) {
    std::filesystem::path path = database;
    path += "-journal";
    return path;
}

void Journal::Resume(std::unique_ptr<File> file, JournalEnd end) {
    file_ = std::move(file);
    end_ = std::move(end);
}

base::Status Journal::EnsureOpen() {
    if (file_ != nullptr) return {};
    // A file of this name is known not to be a journal of this database.
    ASSIGN_OR_RETURN(file_, files_.Open(path_, OpenMode::kCreate));
    folder_synced_ = false;
    return {};
}

base::Status Journal::AddTransaction(const PageTransaction::ChangedPages& pages,
                                     PageNumber page_count, const JournalHeader& header,
                                     std::vector<std::byte> note) {
    RETURN_IF_ERROR(EnsureOpen());
    std::vector<std::byte> bytes;
    std::uint64_t chain = empty() ? AppendJournalHeader(bytes, header) : end_.chain;
    if (empty()) {
        end_.first_new_page = header.page_count;
        end_.salt = header.salt;
    }
    const std::uint64_t note_at = end_.offset + bytes.size();
    // What a transaction of many rows does to the pages takes about as much as its note.
    bytes.reserve(bytes.size() + 2 * note.size() + kSmallTransaction);
    if (!note.empty()) chain = AppendNote(bytes, note, chain);
    const std::size_t record = BeginRecord(bytes);
    std::vector<std::pair<PageNumber, std::size_t>> told;
    told.reserve(pages.size());
    for (const auto& [number, page] : pages)
        told.emplace_back(number, AppendChangeOf(number, page, bytes));
    chain = FinishRecord(bytes, record, RecordKind::kTransaction, page_count, chain);
    base::Status added = Append(bytes, chain);
    if (!added.ok()) {
        TakeBack();
        return added;
    }
    in_doubt_ = false;
    if (!note.empty()) end_.notes.push_back({end_.salt, note_at, std::move(note)});
    for (const auto& [number, bytes_told] : told)
        end_.pages[number] = bytes_told;
    return {};
}

// Page 0 is always told as a whole, as recovery knows the file by it.
std::size_t Journal::AppendChangeOf(PageNumber number, const PageTransaction::ChangedPage& page,
                                    std::vector<std::byte>& bytes) const {
    const auto known = end_.pages.find(number);
    const bool is_known = known != end_.pages.end();
    const bool is_whole = is_known && known->second == JournalEnd::kWhole;
    const bool is_in_file =
        page.before != nullptr && !is_whole && number != 0 && number < end_.first_new_page;
    if (is_in_file) {
        const std::size_t start = bytes.size();
        const std::size_t told = is_known ? known->second : 0;
        const std::size_t limit = page.after->size() / kPartWorthAWholePage;
        if (told < limit &&
            AppendChangeInFile(bytes, number, is_known, *page.before, *page.after, limit - told))
            return told + bytes.size() - start;
    }
    const bool continues = page.before != nullptr && is_whole;
    AppendPageChange(bytes, number,
                     continues ? std::span<const std::byte>(*page.before)
                               : std::span<const std::byte>(),
                     *page.after);
    return JournalEnd::kWhole;
}

base::Status Journal::AddMark(std::uint64_t mark) {
    assert(!empty());
    std::vector<std::byte> bytes;
    const std::size_t record = BeginRecord(bytes);
    base::AppendLittle(bytes, mark);
    const std::uint64_t chain = FinishRecord(bytes, record, RecordKind::kMark, 0, end_.chain);
    return Append(bytes, chain);  // one that failed does no harm, whether it is found or not
}

std::vector<CommitNote> Journal::TakeNotes(std::size_t count) {
    const auto end = end_.notes.begin() + static_cast<std::ptrdiff_t>(count);
    std::vector<CommitNote> taken(std::make_move_iterator(end_.notes.begin()),
                                  std::make_move_iterator(end));
    end_.notes.erase(end_.notes.begin(), end);
    return taken;
}

base::Status Journal::Append(std::span<const std::byte> bytes, std::uint64_t chain) {
    RETURN_IF_ERROR(file_->WriteAt(end_.offset, bytes));
    end_.offset += bytes.size();
    end_.chain = chain;
    return {};
}

// A failed write may still have reached the file; recovery must not find it.
void Journal::TakeBack() {
    if (file_->Truncate(end_.offset).ok()) return;
    const std::vector<std::byte> nothing(kRecordHeadSize);
    in_doubt_ = !file_->WriteAt(end_.offset, nothing).ok();
}

base::Status Journal::Sync() {
    if (sync_failed_) RETURN_IF_ERROR(WriteAnew());
    sync_failed_ = true;
    RETURN_IF_ERROR(file_->Sync());
    sync_failed_ = false;
    if (folder_synced_) return {};
    RETURN_IF_ERROR(files_.SyncFolder(path_.parent_path()));
    folder_synced_ = true;
    return {};
}

// Rewrites the same bytes: the content does not change, but the system marks the pages dirty again.
// Commits that are appended meanwhile lie behind the size asked for here.
base::Status Journal::WriteAnew() {
    constexpr std::uint64_t kAtOnce = 1U << 20;
    ASSIGN_OR_RETURN(const std::uint64_t size, file_->Size());
    std::vector<std::byte> bytes;
    for (std::uint64_t at = 0; at < size; at += bytes.size()) {
        bytes.resize(std::min(kAtOnce, size - at));
        RETURN_IF_ERROR(file_->ReadAt(at, bytes));
        RETURN_IF_ERROR(file_->WriteAt(at, bytes));
    }
    return {};
}

base::Status Journal::Reset() {
    RETURN_IF_ERROR(file_->Truncate(0));
    end_ = {};
    in_doubt_ = false;
    sync_failed_ = false;
    return {};
}

void Journal::RemoveFile() {
    assert(empty());
    if (file_ == nullptr) return;
    file_.reset();
    files_.Remove(path_).Ignore();  // an empty journal that stays does no harm
}

}  // namespace jet
