// How a database file is opened: lock, format, left-over journal, in this order.
#include "jet/pages/page_store.h"

#include "base/byte_reader.h"
#include "base/file_names.h"
#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/file_page_store.h"
#include "jet/pages/page_header.h"
#include "jet/pages/page_header_layout.h"

#include <array>
#include <cstring>
#include <optional>

namespace jet {
namespace {

base::Status Unrecognized(const std::filesystem::path& path) {
    return JetError(ErrorNumber::kUnrecognizedFormat, base::Utf8Of(path));
}

// Says what the file is if that is known.
base::Status Unrecognized(const File& file, const std::filesystem::path& path) {
    std::array<std::byte, kMaskStart> head{};
    const auto size = file.Size();
    if (!size.ok() || *size < head.size() || !file.ReadAt(0, head).ok()) return Unrecognized(path);
    return UnrecognizedFormat(head, base::Utf8Of(path));
}

base::Status CannotOpen(FileSystem& files, const std::filesystem::path& path,
                        const base::Status& status) {
    const std::filesystem::path folder = path.parent_path();
    switch (status.code()) {
    case base::StatusCode::kNotFound:
        if (!folder.empty() && !files.Exists(folder))
            return JetError(ErrorNumber::kNotAValidPath, base::Utf8Of(path));
        return JetError(ErrorNumber::kNoSuchFile, base::Utf8Of(path));
    case base::StatusCode::kPermissionDenied:
        return JetError(ErrorNumber::kCannotOpenFile, base::Utf8Of(path));
    case base::StatusCode::kBusy:
        if (Is(status, ErrorNumber::kOpenedExclusively)) return status;
        return JetError(ErrorNumber::kFileInUse, base::Utf8Of(path));
    default:
        return EngineStatus(status);
    }
}

base::Status LockDatabase(FileSystem& files, const std::filesystem::path& path, File& file,
                          bool read_only) {
    const base::Status locked =
        file.Lock(read_only ? FileLock::kShared : FileLock::kExclusive, kBehindContent);
    if (locked.code() == base::StatusCode::kBusy) return LockFile::BusyStatus(files, path);
    // A medium without locks, a read-only one for instance, can still be read.
    if (read_only) return LockFile::CheckFree(files, path);
    return EngineStatus(locked);
}

// By the version of the format; nullopt: not a database of this format.
base::Result<std::optional<std::uint32_t>> ReadPageSize(const File& file) {
    std::array<std::byte, kMaskStart> head{};
    ASSIGN_OR_RETURN(const std::uint64_t size, file.Size());
    if (size < FormatOf(3).page_size) return std::optional<std::uint32_t>();
    RETURN_IF_ERROR(file.ReadAt(0, head));
    const auto version = base::LoadLittle<std::uint32_t>(head.data() + kVersionAt);
    const bool signed_so =
        std::memcmp(head.data() + kSignatureAt, kSignature.data(), kSignature.size()) == 0 &&
        head[kSignatureAt + kSignature.size()] == std::byte{0};
    if (!signed_so || version > kVersionJet4) return std::optional<std::uint32_t>();
    const std::uint32_t page_size = FormatOf(version == kVersionJet3 ? 3 : 4).page_size;
    if (size < page_size) return std::optional<std::uint32_t>();
    return std::optional(page_size);
}

base::Result<PageEncoding> ReadEncoding(const File& file, std::uint32_t page_size) {
    std::vector<std::byte> first_page(page_size);
    RETURN_IF_ERROR(file.ReadAt(0, first_page));
    return EncodingOf(first_page);
}

struct FoundJournal {
    std::unique_ptr<File> file;  // null: no journal
    LeftOverJournal left_over;
    bool is_ours() const { return left_over.owner == JournalOwner::kThisFile; }
};

base::Result<FoundJournal> FindJournal(FileSystem& files, const std::filesystem::path& database,
                                       const FilePageStore::Parts& parts, bool read_only) {
    FoundJournal journal;
    const std::filesystem::path path = Journal::PathFor(database);
    if (!files.Exists(path)) return journal;
    ASSIGN_OR_RETURN(journal.file,
                     files.Open(path, read_only ? OpenMode::kRead : OpenMode::kReadWrite));
    ASSIGN_OR_RETURN(journal.left_over, ReadJournal(*journal.file, *parts.file, parts.page_size));
    // A journal of another file stays, in case that file is restored; the first commit replaces it.
    if (!read_only && journal.left_over.owner == JournalOwner::kNobody) files.Remove(path).Ignore();
    return journal;
}

// Tells who takes notes which marks the file can carry.
base::Status BindNotes(CommitNotes& notes, const FilePageStore::Parts& parts,
                       const FoundJournal& journal) {
    std::vector<std::uint64_t> marks = journal.left_over.content.marks;
    if (!journal.is_ours()) {
        std::vector<std::byte> first_page(parts.page_size);
        RETURN_IF_ERROR(parts.file->ReadAt(0, first_page));
        marks.assign(1, ReadFileMark(first_page));
    }
    notes.Bind(std::move(marks));
    return {};
}

}  // namespace

base::Result<std::unique_ptr<PageStore>> OpenPageStore(FileSystem& files,
                                                       const std::filesystem::path& path,
                                                       const PageStoreOptions& options) {
    FilePageStore::Parts parts;
    auto file = files.Open(path, options.read_only ? OpenMode::kRead : OpenMode::kReadWrite);
    if (file.status().code() == base::StatusCode::kBusy) return LockFile::BusyStatus(files, path);
    if (!file.ok()) return CannotOpen(files, path, file.status());
    parts.file = std::move(file).value();
    RETURN_IF_ERROR(LockDatabase(files, path, *parts.file, options.read_only));

    const auto page_size = ReadPageSize(*parts.file);
    if (!page_size.ok()) return EngineStatus(page_size.status());
    if (!page_size.value()) return Unrecognized(*parts.file, path);
    parts.page_size = **page_size;
    const auto encoding = ReadEncoding(*parts.file, parts.page_size);
    if (!encoding.ok()) return EngineStatus(encoding.status());
    parts.encoding = *encoding;

    if (!options.read_only) {
        auto owner = LockFile::Take(files, path);
        if (!owner.ok()) return CannotOpen(files, path, owner.status());
        parts.owner = std::move(owner).value();
    }
    // Somebody held it and has put another file in its place (a compaction does): what is written
    // into this one would be lost.
    if (!parts.file->IsAt(path)) return JetError(ErrorNumber::kFileInUse, base::Utf8Of(path));
    auto journal = FindJournal(files, path, parts, options.read_only);
    if (!journal.ok()) return CannotOpen(files, path, journal.status());
    const auto size = parts.file->Size();
    if (!size.ok()) return EngineStatus(size.status());
    if (!journal->is_ours() && *size % parts.page_size != 0) return Unrecognized(path);
    parts.page_count = static_cast<PageNumber>(*size / parts.page_size);

    if (options.notes != nullptr && !options.read_only && parts.encoding.is_plain()) {
        const base::Status bound = BindNotes(*options.notes, parts, *journal);
        if (!bound.ok()) return EngineStatus(bound);
    }

    auto store = std::make_unique<FilePageStore>(files, path, std::move(parts), options);
    if (journal->is_ours()) {
        const base::Status recovered =
            store->Recover(std::move(journal->left_over.content),
                           options.read_only ? nullptr : std::move(journal->file));
        if (!recovered.ok()) return EngineStatus(recovered);
    }
    if (!options.read_only && options.flush_delay.count() > 0)
        store->StartFlusher(options.flush_delay);
    return std::unique_ptr<PageStore>(std::move(store));
}

}  // namespace jet
