#include "history/history_file.h"

#include "base/byte_reader.h"
#include "base/file_names.h"
#include "jet/pages/file_mark.h"

#include <algorithm>
#include <numeric>

namespace history {
namespace {

using base::Status;
using jet::CommitNote;

// What failed to be kept waits in memory up to this size; then it is lost.
constexpr std::size_t kMaxUnsavedBytes = 64U << 20;
// What was kept and is not counted yet waits in memory up to this size.
constexpr std::size_t kMaxUncountedBytes = 16U << 20;
// A file beyond its limit is cut back so far, so that this is not done with every change.
constexpr std::uint64_t kPartsOfLimit = 4;  // one of them is left free
constexpr const char* kTemporary = ".new";
// More than the head of a note's record, a mark or the file's header.
constexpr std::size_t kMaxAroundNote = 64;

std::size_t SizeOf(std::span<const CommitNote> notes) {
    std::size_t size = 0;
    for (const CommitNote& note : notes)
        size += note.bytes.size();
    return size;
}

std::filesystem::path WithSuffix(std::filesystem::path path, const std::string& suffix) {
    path += suffix;
    return path;
}

Status SetAsideMessage(const std::filesystem::path& to) {
    return {base::StatusCode::kInvalidArgument,
            "The history of changes did not belong to this catalogue; it was set aside as " +
                base::Utf8Of(to.filename()) + "."};
}

}  // namespace

// The file as it is, up to its last mark.
struct HistoryFile::Loaded {
    std::unique_ptr<jet::File> file;  // null: there is none
    std::uint64_t end = 0;
    std::uint64_t chain = 0;
    // That the database file may carry, as told behind the last note.
    std::vector<std::uint64_t> last_marks;
    // The note taken last.
    std::uint64_t journal = 0;
    std::uint64_t offset = 0;

    bool IsKnown(const CommitNote& note) const {
        return note.journal == journal && note.offset <= offset;
    }
    // Notes are counted when somebody asks, which no command does before its end.
    void Take(CommitNote note, ChangeIndex::Place place) {
        journal = note.journal;
        offset = note.offset;
        uncounted_bytes_ += note.bytes.size();
        uncounted_.emplace_back(std::move(note.bytes), place);
        if (uncounted_bytes_ > kMaxUncountedBytes) CountAll();
    }
    ChangeIndex& index() {
        CountAll();
        return index_;
    }
    void Begin(std::uint64_t first_number) { index_ = ChangeIndex(first_number); }

private:
    void CountAll() {
        for (const auto& [note, place] : uncounted_)
            index_.Add(note, place);
        uncounted_.clear();
        uncounted_bytes_ = 0;
    }

    ChangeIndex index_;
    std::vector<std::pair<jet::Bytes, ChangeIndex::Place>> uncounted_;
    std::size_t uncounted_bytes_ = 0;
};

namespace {

// Reads the records of a file one after the other. A group of notes counts when the mark behind it
// is there.
class RecordWalk {
public:
    RecordWalk(const jet::File& file, std::uint64_t size, std::uint64_t at, std::uint64_t chain)
        : file_(file), size_(size), at_(at), chain_(chain) {}

    struct Record {
        jet::RecordKind kind = jet::RecordKind::kMark;
        std::uint64_t offset = 0;
        std::vector<std::byte> bytes;  // the head included
        std::span<const std::byte> payload() const {
            return std::span(bytes).subspan(jet::kRecordHeadSize);
        }
    };

    // False: the good part ends here.
    base::Result<bool> Next(Record& record) {
        if (size_ - at_ < jet::kRecordHeadSize) return false;
        record.bytes.resize(jet::kRecordHeadSize);
        RETURN_IF_ERROR(file_.ReadAt(at_, record.bytes));
        const jet::RecordHead head = jet::ParseRecordHead(record.bytes);
        if (head.payload_size > size_ - at_ - jet::kRecordHeadSize) return false;
        const bool is_note = head.kind == jet::RecordKind::kNote;
        if (head.payload_size < (is_note ? kNoteHead : sizeof(std::uint64_t))) return false;
        if (!is_note && head.kind != jet::RecordKind::kMark) return false;
        record.bytes.resize(jet::kRecordHeadSize + head.payload_size);
        RETURN_IF_ERROR(file_.ReadAt(at_ + jet::kRecordHeadSize,
                                     std::span(record.bytes).subspan(jet::kRecordHeadSize)));
        if (!jet::RecordIsWhole(record.bytes, chain_)) return false;
        record.kind = head.kind;
        record.offset = at_;
        at_ += record.bytes.size();
        chain_ = head.checksum;
        return true;
    }
    std::uint64_t at() const { return at_; }
    std::uint64_t chain() const { return chain_; }

private:
    const jet::File& file_;
    std::uint64_t size_;
    std::uint64_t at_;
    std::uint64_t chain_;
};

// Writes a new file in pieces.
class PieceWriter {
public:
    explicit PieceWriter(jet::File& file) : file_(file) {}
    // What comes next is appended here.
    std::vector<std::byte>& bytes() { return bytes_; }
    std::uint64_t end() const { return written_ + bytes_.size(); }
    Status WriteWhenLarge() {
        constexpr std::size_t kLarge = 1U << 20;
        return bytes_.size() < kLarge ? Status() : Write();
    }
    Status Write() {
        RETURN_IF_ERROR(file_.WriteAt(written_, bytes_));
        written_ += bytes_.size();
        bytes_.clear();
        return {};
    }

private:
    jet::File& file_;
    std::uint64_t written_ = 0;
    std::vector<std::byte> bytes_;
};

// Of the record of a mark: one, or one and that before it.
std::vector<std::uint64_t> MarksOf(std::span<const std::byte> payload) {
    std::vector<std::uint64_t> marks;
    for (std::size_t at = 0; at + sizeof(std::uint64_t) <= payload.size();
         at += sizeof(std::uint64_t))
        marks.push_back(base::LoadLittle<std::uint64_t>(payload.data() + at));
    return marks;
}

CommitNote NoteOf(std::span<const std::byte> payload) {
    const auto bytes = payload.subspan(kNoteHead);
    return {base::LoadLittle<std::uint64_t>(payload.data()),
            base::LoadLittle<std::uint64_t>(payload.data() + 8),
            {bytes.begin(), bytes.end()}};
}

base::Result<CommitNote> ReadNote(const jet::File& file, ChangeIndex::Place place) {
    std::vector<std::byte> record(place.size);
    RETURN_IF_ERROR(file.ReadAt(place.offset, record));
    return NoteOf(std::span(record).subspan(jet::kRecordHeadSize));
}

}  // namespace

HistoryFile::HistoryFile(jet::FileSystem& files, std::filesystem::path database,
                         std::uint64_t limit_bytes)
    : files_(files), database_(std::move(database)), path_(PathFor(database_)),
      limit_(limit_bytes) {}

HistoryFile::~HistoryFile() = default;

std::filesystem::path HistoryFile::PathFor(const std::filesystem::path& database) {
    return WithSuffix(database, "-history");
}

void HistoryFile::Bind(std::vector<std::uint64_t> marks) {
    const std::lock_guard lock(mutex_);
    marks_ = std::move(marks);
    loaded_.reset();
}

void HistoryFile::Fail(const Status& status) {
    if (!std::exchange(has_failed_, true) && failure_.ok())
        failure_ = {status.code(), "The history of changes could not be kept: " + status.message()};
}

Status HistoryFile::TakeFailure() {
    const std::lock_guard lock(mutex_);
    return std::exchange(failure_, Status());
}

// -------------------------------------------------------------------------------------- opening

Status HistoryFile::EnsureLoaded() {
    if (loaded_ != nullptr) return {};
    Status done = Load();
    if (!done.ok()) loaded_.reset();
    return done;
}

Status HistoryFile::Load() {
    loaded_ = std::make_unique<Loaded>();
    if (!files_.Exists(path_)) return {};
    Loaded found;
    const bool is_bound = marks_.has_value();
    ASSIGN_OR_RETURN(found.file, files_.Open(path_, is_bound ? jet::OpenMode::kReadWrite
                                                             : jet::OpenMode::kRead));
    ASSIGN_OR_RETURN(const std::uint64_t size, found.file->Size());
    std::vector<std::byte> head(std::min<std::uint64_t>(size, kHeaderSize));
    RETURN_IF_ERROR(found.file->ReadAt(0, head));
    if (const auto parsed = ParseHeader(head)) {
        found.Begin(parsed->header.first_number);
        RecordWalk walk(*found.file, size, kHeaderSize, parsed->checksum);
        RecordWalk::Record record;
        std::vector<std::pair<CommitNote, ChangeIndex::Place>> notes;
        for (;;) {
            ASSIGN_OR_RETURN(const bool more, walk.Next(record));
            if (!more) break;
            if (record.kind == jet::RecordKind::kNote) {
                notes.push_back({NoteOf(record.payload()), {record.offset, record.bytes.size()}});
                continue;
            }
            for (auto& [note, place] : notes)
                found.Take(std::move(note), place);
            notes.clear();
            found.last_marks = MarksOf(record.payload());
            found.end = walk.at();
            found.chain = walk.chain();
        }
    }
    const bool is_ours = is_bound && found.end > 0 &&
                         std::ranges::find_first_of(*marks_, found.last_marks) != marks_->end();
    if (is_bound && !is_ours) {
        found.file.reset();
        return SetAside();
    }
    *loaded_ = std::move(found);
    return {};
}

Status HistoryFile::SetAside() {
    std::filesystem::path to = WithSuffix(path_, ".old");
    for (int number = 2; files_.Exists(to); ++number)
        to = WithSuffix(path_, ".old" + std::to_string(number));
    RETURN_IF_ERROR(files_.Rename(path_, to));
    if (failure_.ok()) failure_ = SetAsideMessage(to);
    return {};
}

// -------------------------------------------------------------------------------------- keeping

void HistoryFile::Keep(std::vector<CommitNote> notes, std::uint64_t mark) {
    const std::lock_guard lock(mutex_);
    for (CommitNote& note : notes) {
        unsaved_bytes_ += note.bytes.size();
        unsaved_.push_back(std::move(note));
    }
    Status kept = EnsureLoaded();
    if (kept.ok()) {
        std::erase_if(unsaved_, [&](const CommitNote& note) { return loaded_->IsKnown(note); });
        kept = Append(unsaved_, mark);
    }
    if (kept.ok() || unsaved_bytes_ > kMaxUnsavedBytes) {
        unsaved_.clear();
        unsaved_bytes_ = 0;
    }
    if (kept.ok()) kept = TrimToLimit(mark);
    if (kept.ok())
        has_failed_ = false;
    else
        Fail(kept);
}

Status HistoryFile::Append(std::vector<CommitNote>& notes, std::uint64_t mark) {
    const bool is_new = loaded_->file == nullptr;
    if (is_new && notes.empty()) return {};
    std::vector<std::byte> bytes;
    bytes.reserve(SizeOf(notes) + kMaxAroundNote * (notes.size() + 2));
    std::uint64_t chain = loaded_->chain;
    if (is_new) chain = AppendHeader(bytes, {jet::MakeFileMark(), loaded_->index().next_number()});
    const std::uint64_t start = is_new ? 0 : loaded_->end;
    std::vector<ChangeIndex::Place> places;
    for (const CommitNote& note : notes) {
        const std::size_t at = bytes.size();
        chain = AppendNote(bytes, note, chain);
        places.push_back({start + at, bytes.size() - at});
    }
    chain = AppendMark(bytes, mark, chain);
    const std::uint64_t end = start + bytes.size();
    if (is_new) {
        RETURN_IF_ERROR(WriteNew(bytes));
    } else {
        RETURN_IF_ERROR(loaded_->file->WriteAt(start, bytes));
        RETURN_IF_ERROR(loaded_->file->Sync());
    }
    for (std::size_t i = 0; i < notes.size(); ++i)
        loaded_->Take(std::move(notes[i]), places[i]);
    loaded_->end = end;
    loaded_->chain = chain;
    loaded_->last_marks = {mark};
    return {};
}

Status HistoryFile::WriteNew(std::span<const std::byte> bytes) {
    const std::filesystem::path temporary = WithSuffix(path_, kTemporary);
    {
        ASSIGN_OR_RETURN(const auto file, files_.Open(temporary, jet::OpenMode::kCreate));
        RETURN_IF_ERROR(file->WriteAt(0, bytes));
        RETURN_IF_ERROR(file->Sync());
    }
    return PutInPlace(temporary);
}

// The history file is the old one as a whole, or this one.
Status HistoryFile::PutInPlace(const std::filesystem::path& temporary) {
    RETURN_IF_ERROR(files_.Rename(temporary, path_));
    RETURN_IF_ERROR(files_.SyncFolder(path_.parent_path()));
    ASSIGN_OR_RETURN(loaded_->file, files_.Open(path_, jet::OpenMode::kReadWrite));
    return {};
}

Status HistoryFile::TrimToLimit(std::uint64_t mark) {
    if (loaded_->end <= limit_) return {};
    const auto& places = loaded_->index().places();
    std::uint64_t kept = 0;
    std::size_t first = places.size();
    while (first > 0) {
        const std::uint64_t size = std::accumulate(
            places[first - 1].begin(), places[first - 1].end(), std::uint64_t{0},
            [](std::uint64_t sum, const ChangeIndex::Place& place) { return sum + place.size; });
        const bool fits = kept + size <= limit_ - limit_ / kPartsOfLimit;
        if (!fits && first < places.size()) break;  // the newest change always stays
        kept += size;
        --first;
    }
    return first == 0 ? Status() : DropOldest(first, mark);
}

Status HistoryFile::DropOldest(std::size_t first, std::uint64_t mark) {
    const std::filesystem::path temporary = WithSuffix(path_, kTemporary);
    Loaded fresh;
    const std::uint64_t first_number = loaded_->index().changes()[first].number;
    fresh.Begin(first_number);
    {
        ASSIGN_OR_RETURN(const auto file, files_.Open(temporary, jet::OpenMode::kCreate));
        PieceWriter writer(*file);
        fresh.chain = AppendHeader(writer.bytes(), {jet::MakeFileMark(), first_number});
        for (std::size_t i = first; i < loaded_->index().places().size(); ++i)
            for (const ChangeIndex::Place& place : loaded_->index().places()[i]) {
                ASSIGN_OR_RETURN(CommitNote note, ReadNote(*loaded_->file, place));
                const std::uint64_t at = writer.end();
                fresh.chain = AppendNote(writer.bytes(), note, fresh.chain);
                fresh.Take(std::move(note), {at, writer.end() - at});
                RETURN_IF_ERROR(writer.WriteWhenLarge());
            }
        fresh.chain = AppendMark(writer.bytes(), mark, fresh.chain);
        fresh.last_marks = {mark};
        fresh.end = writer.end();
        RETURN_IF_ERROR(writer.Write());
        RETURN_IF_ERROR(file->Sync());
    }
    RETURN_IF_ERROR(PutInPlace(temporary));
    fresh.file = std::move(loaded_->file);
    *loaded_ = std::move(fresh);
    return {};
}

Status HistoryFile::Rebind(jet::FileSystem& files, const std::filesystem::path& database,
                           std::uint64_t before, std::uint64_t after) {
    HistoryFile history(files, database);
    if (!files.Exists(history.path_)) return {};
    const std::lock_guard lock(history.mutex_);
    // Not bound yet: what is not ours stays where it is.
    RETURN_IF_ERROR(history.EnsureLoaded());
    if (std::ranges::count(history.loaded_->last_marks, before) == 0) return {};
    std::vector<std::byte> mark;
    AppendMark(mark, after, history.loaded_->chain, before);
    ASSIGN_OR_RETURN(const auto file, files.Open(history.path_, jet::OpenMode::kReadWrite));
    RETURN_IF_ERROR(file->WriteAt(history.loaded_->end, mark));
    return file->Sync();
}

// -------------------------------------------------------------------------------------- reading

base::Result<std::vector<Change>> HistoryFile::Changes() {
    const std::lock_guard lock(mutex_);
    RETURN_IF_ERROR(EnsureLoaded());
    return loaded_->index().changes();
}

base::Result<std::vector<jet::Bytes>> HistoryFile::NotesOf(std::uint64_t number) {
    const std::lock_guard lock(mutex_);
    RETURN_IF_ERROR(EnsureLoaded());
    const std::vector<Change>& changes = loaded_->index().changes();
    const auto found = std::ranges::lower_bound(changes, number, {}, &Change::number);
    if (found == changes.end() || found->number != number)
        return Status(base::StatusCode::kNotFound,
                      "The history has no change " + std::to_string(number) + ".");
    std::vector<jet::Bytes> notes;
    for (const ChangeIndex::Place& place :
         loaded_->index().places()[static_cast<std::size_t>(found - changes.begin())]) {
        ASSIGN_OR_RETURN(CommitNote note, ReadNote(*loaded_->file, place));
        notes.push_back(std::move(note.bytes));
    }
    return notes;
}

}  // namespace history
