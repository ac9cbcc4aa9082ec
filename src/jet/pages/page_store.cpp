// How a database file is opened: lock, format, left-over journal, in this order.
#include "jet/pages/page_store.h"

#include "base/byte_reader.h"
#include "jet/pages/file_page_store.h"
#include "jet/pages/page_header.h"
#include "jet/storage_errors.h"

#include <array>
#include <cstring>
#include <optional>
#include <system_error>

namespace jet {
namespace {

constexpr std::uint32_t kJet3PageSize = 2048;
constexpr std::uint32_t kJet4PageSize = 4096;

base::Status Unrecognized(const std::filesystem::path& path) {
    return {base::StatusCode::kCorruption, "Unrecognized database format '" + path.string() + "'.",
            3343};
}

// Says what the file is where that can be told.
base::Status Unrecognized(const File& file, const std::filesystem::path& path) {
    std::array<std::byte, 0x18> head{};
    const auto size = file.Size();
    if (!size.ok() || *size < head.size() || !file.ReadAt(0, head).ok()) return Unrecognized(path);
    const auto other = OtherFormat(head);
    return other ? errors::UnsupportedDatabase(path.string(), *other) : Unrecognized(path);
}

base::Status CannotOpen(FileSystem& files, const std::filesystem::path& path,
                        const base::Status& status) {
    const std::filesystem::path folder = path.parent_path();
    switch (status.code()) {
    case base::StatusCode::kNotFound:
        if (!folder.empty() && !files.Exists(folder))
            return {status.code(),
                    "'" + path.string() +
                        "' is not a valid path. Make sure that the path name is spelled correctly "
                        "and that you are connected to the server on which the file resides.",
                    3044};
        return {status.code(), "Could not find file '" + path.string() + "'.", 3024};
    case base::StatusCode::kPermissionDenied:
        return {status.code(),
                "The Microsoft Jet database engine cannot open the file '" + path.string() +
                    "'. It is already opened exclusively by another user, or you need permission "
                    "to view its data.",
                3051};
    default:
        return EngineStatus(status);
    }
}

base::Status LockFile(FileSystem& files, const std::filesystem::path& path, File& file,
                      bool read_only) {
    const base::Status locked = file.Lock(read_only ? FileLock::kShared : FileLock::kExclusive);
    if (locked.code() == base::StatusCode::kBusy) return OwnerFile::BusyStatus(files, path);
    // A medium without locks, a read-only one for instance, can still be read.
    if (read_only) return OwnerFile::CheckFree(files, path);
    return EngineStatus(locked);
}

// Page size by the format's version; nullopt: no database of this format.
base::Result<std::optional<std::uint32_t>> ReadPageSize(const File& file) {
    std::array<std::byte, 0x18> head{};
    ASSIGN_OR_RETURN(const std::uint64_t size, file.Size());
    if (size < kJet3PageSize) return std::optional<std::uint32_t>();
    RETURN_IF_ERROR(file.ReadAt(0, head));
    constexpr char kMagic[16] = "Standard Jet DB";
    const auto version = base::LoadLittle<std::uint32_t>(head.data() + 0x14);
    if (std::memcmp(head.data() + 4, kMagic, sizeof kMagic) != 0 || version > 1)
        return std::optional<std::uint32_t>();
    const std::uint32_t page_size = version == 0 ? kJet3PageSize : kJet4PageSize;
    if (size < page_size) return std::optional<std::uint32_t>();
    return std::optional(page_size);
}

base::Result<PageEncoding> ReadEncoding(const File& file, std::uint32_t page_size) {
    std::vector<std::byte> first_page(page_size);
    RETURN_IF_ERROR(file.ReadAt(0, first_page));
    return EncodingOf(first_page);
}

struct FoundJournal {
    std::unique_ptr<File> file;  // null: there is none
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
    // One of another file stays: it may be put back under this name. The first commit replaces it.
    if (!read_only && journal.left_over.owner == JournalOwner::kNobody) files.Remove(path).Ignore();
    return journal;
}

}  // namespace

base::Result<std::unique_ptr<PageStore>> OpenPageStore(FileSystem& files,
                                                       const std::filesystem::path& path,
                                                       const PageStoreOptions& options) {
    FilePageStore::Parts parts;
    auto file = files.Open(path, options.read_only ? OpenMode::kRead : OpenMode::kReadWrite);
    if (!file.ok()) return CannotOpen(files, path, file.status());
    parts.file = std::move(file).value();
    RETURN_IF_ERROR(LockFile(files, path, *parts.file, options.read_only));

    const auto page_size = ReadPageSize(*parts.file);
    if (!page_size.ok()) return EngineStatus(page_size.status());
    if (!page_size.value()) return Unrecognized(*parts.file, path);
    parts.page_size = **page_size;
    const auto encoding = ReadEncoding(*parts.file, parts.page_size);
    if (!encoding.ok()) return EngineStatus(encoding.status());
    parts.encoding = *encoding;

    if (!options.read_only) {
        auto owner = OwnerFile::Take(files, path);
        if (!owner.ok()) return CannotOpen(files, path, owner.status());
        parts.owner = std::move(owner).value();
    }
    auto journal = FindJournal(files, path, parts, options.read_only);
    if (!journal.ok()) return CannotOpen(files, path, journal.status());
    const auto size = parts.file->Size();
    if (!size.ok()) return EngineStatus(size.status());
    if (!journal->is_ours() && *size % parts.page_size != 0) return Unrecognized(path);
    parts.page_count = static_cast<PageNumber>(*size / parts.page_size);

    auto store = std::make_unique<FilePageStore>(files, path, std::move(parts), options);
    if (journal->is_ours()) {
        const base::Status recovered =
            store->Recover(std::move(journal->left_over.content),
                           options.read_only ? nullptr : std::move(journal->file));
        if (!recovered.ok()) return EngineStatus(recovered);
    }
    if (!options.read_only && options.flush_delay.count() > 0) {
        try {
            store->StartFlusher(options.flush_delay);
        } catch (const std::system_error& error) {
            return base::Status(base::StatusCode::kIoError, error.what());
        }
    }
    return std::unique_ptr<PageStore>(std::move(store));
}

}  // namespace jet
