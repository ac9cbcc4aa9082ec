#include "jet/pages/page_copy.h"

#include "base/file_names.h"
#include "jet/errors.h"
#include "jet/pages/file_page_store.h"
#include "jet/pages/format.h"
#include "jet/pages/journal.h"
#include "jet/pages/page_encoding.h"
#include "jet/pages/page_header_layout.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace jet {
namespace {

using FileBytes = std::vector<std::byte>;

// Each failed attempt means that a checkpoint ended meanwhile; they come half a second apart.
constexpr int kMaxAttempts = 20;
// More than page 0 of either version: it holds the mark that every checkpoint changes.
constexpr std::size_t kHeadBytes = 4096;
// Each page is read once.
constexpr std::size_t kSteadyCacheBytes = 1U << 20;

base::Status Refused() {
    return {base::StatusCode::kPermissionDenied, "A copy is not written to."};
}

// A file as it was read. Locks are granted: nobody else can reach it.
class BytesFile final : public File {
public:
    explicit BytesFile(const FileBytes& bytes) : bytes_(bytes) {}
    base::Result<std::uint64_t> Size() const override { return std::uint64_t{bytes_.size()}; }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        if (offset > bytes_.size() || bytes.size() > bytes_.size() - offset)
            return {base::StatusCode::kIoError, "The file ends too early."};
        std::memcpy(bytes.data(), bytes_.data() + offset, bytes.size());
        return {};
    }
    base::Status WriteAt(std::uint64_t, std::span<const std::byte>) override { return Refused(); }
    base::Status Truncate(std::uint64_t) override { return Refused(); }
    base::Status Sync() override { return Refused(); }
    base::Status Lock(FileLock, std::uint64_t) override { return {}; }

private:
    const FileBytes& bytes_;
};

// The database file and its journal as they were read, and no other file.
class BytesFileSystem final : public FileSystem {
public:
    BytesFileSystem(std::filesystem::path database, FileBytes database_bytes,
                    FileBytes journal_bytes)
        : database_(std::move(database)), database_bytes_(std::move(database_bytes)),
          journal_bytes_(std::move(journal_bytes)) {}

    base::Result<std::unique_ptr<File>> Open(const std::filesystem::path& path, OpenMode) override {
        if (!Exists(path)) return base::Status(base::StatusCode::kNotFound, "No such file.");
        const FileBytes& bytes = path == database_ ? database_bytes_ : journal_bytes_;
        return std::unique_ptr<File>(std::make_unique<BytesFile>(bytes));
    }
    bool Exists(const std::filesystem::path& path) override {
        return path == database_ ||
               (path == Journal::PathFor(database_) && !journal_bytes_.empty());
    }
    base::Status Remove(const std::filesystem::path&) override { return Refused(); }
    base::Status Rename(const std::filesystem::path&, const std::filesystem::path&) override {
        return Refused();
    }
    base::Status SyncFolder(const std::filesystem::path&) override { return Refused(); }
    std::string OwnerName() override { return {}; }
    // Requires: no file is open.
    FileBytes TakeDatabase() && { return std::move(database_bytes_); }

private:
    std::filesystem::path database_;
    FileBytes database_bytes_;
    FileBytes journal_bytes_;
};

// A file of others, without their locks: it is read beside its owner.
class FileBesideOwner final : public File {
public:
    explicit FileBesideOwner(std::unique_ptr<File> file) : file_(std::move(file)) {}
    base::Result<std::uint64_t> Size() const override { return file_->Size(); }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) const override {
        return file_->ReadAt(offset, bytes);
    }
    base::Status WriteAt(std::uint64_t, std::span<const std::byte>) override { return Refused(); }
    base::Status Truncate(std::uint64_t) override { return Refused(); }
    base::Status Sync() override { return Refused(); }
    base::Status Lock(FileLock, std::uint64_t) override { return {}; }

private:
    std::unique_ptr<File> file_;
};

// The database file as it is, its journal as it was read, and no other file.
class FilesBesideOwner final : public FileSystem {
public:
    FilesBesideOwner(FileSystem& files, std::filesystem::path database, const FileBytes& journal)
        : files_(files), database_(std::move(database)), journal_(journal) {}

    base::Result<std::unique_ptr<File>> Open(const std::filesystem::path& path, OpenMode) override {
        if (path != database_) return std::unique_ptr<File>(std::make_unique<BytesFile>(journal_));
        ASSIGN_OR_RETURN(auto file, files_.Open(path, OpenMode::kRead));
        return std::unique_ptr<File>(std::make_unique<FileBesideOwner>(std::move(file)));
    }
    bool Exists(const std::filesystem::path& path) override {
        return path == Journal::PathFor(database_) ? !journal_.empty() : path == database_;
    }
    base::Status Remove(const std::filesystem::path&) override { return Refused(); }
    base::Status Rename(const std::filesystem::path&, const std::filesystem::path&) override {
        return Refused();
    }
    base::Status SyncFolder(const std::filesystem::path&) override { return Refused(); }
    std::string OwnerName() override { return {}; }

private:
    FileSystem& files_;
    std::filesystem::path database_;
    const FileBytes& journal_;
};

// What the file holds as far as it can be read: one that shrinks meanwhile ends early.
base::Result<FileBytes> ReadUpTo(const File& file, std::uint64_t most) {
    ASSIGN_OR_RETURN(const std::uint64_t size, file.Size());
    FileBytes bytes(static_cast<std::size_t>(std::min(size, most)));
    RETURN_IF_ERROR(file.ReadAt(0, bytes));
    return bytes;
}

base::Result<FileBytes> ReadWhole(FileSystem& files, const std::filesystem::path& path,
                                  std::uint64_t most = UINT64_MAX) {
    ASSIGN_OR_RETURN(const auto file, files.Open(path, OpenMode::kRead));
    return ReadUpTo(*file, most);
}

// Empty: no journal.
base::Result<FileBytes> ReadJournalBytes(FileSystem& files, const std::filesystem::path& database) {
    auto bytes = ReadWhole(files, Journal::PathFor(database));
    if (bytes.status().code() == base::StatusCode::kNotFound) return FileBytes();
    return bytes;
}

bool BeginsWith(const FileBytes& bytes, const FileBytes& start) {
    return bytes.size() >= start.size() &&
           std::ranges::equal(start, std::span(bytes).first(start.size()));
}

// nullopt: a checkpoint ended meanwhile. A journal that goes on where it stood when the reading
// began tells all that has changed since. Where there was none, a whole checkpoint may have come
// and gone, and even another journal been begun: it would have left its mark.
base::Result<std::optional<BytesFileSystem>> TryToRead(FileSystem& files,
                                                       const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(const FileBytes head_before, ReadWhole(files, path, kHeadBytes));
    ASSIGN_OR_RETURN(const FileBytes journal_before, ReadJournalBytes(files, path));
    ASSIGN_OR_RETURN(FileBytes database, ReadWhole(files, path));
    ASSIGN_OR_RETURN(FileBytes journal, ReadJournalBytes(files, path));
    ASSIGN_OR_RETURN(const FileBytes head, ReadWhole(files, path, kHeadBytes));
    if (!BeginsWith(journal, journal_before) || (journal_before.empty() && head != head_before))
        return std::optional<BytesFileSystem>();
    return std::optional(BytesFileSystem(path, std::move(database), std::move(journal)));
}

// The pages as a database file has them. `store` is borrowed.
PageSource FileBytesOf(PageStore& store) {
    const auto read = [&store, encoding = std::optional<PageEncoding>()](
                          PageNumber number, std::span<std::byte> bytes) mutable -> base::Status {
        if (!encoding) {
            ASSIGN_OR_RETURN(const PageView first, store.Read(0));
            encoding = EncodingOf(first.bytes());
        }
        ASSIGN_OR_RETURN(const PageView view, store.Read(number));
        std::ranges::copy(view.bytes(), bytes.begin());
        encoding->Apply(number, bytes);
        return {};
    };
    return {store.page_size(), store.page_count(), read};
}

base::Result<FileBytes> BytesOf(PageStore& store) {
    const PageSource pages = FileBytesOf(store);
    FileBytes bytes(std::size_t{pages.page_size} * pages.page_count);
    for (PageNumber number = 0; number < pages.page_count; ++number)
        RETURN_IF_ERROR(
            pages.read(number, std::span(bytes).subspan(std::size_t{number} * pages.page_size,
                                                        pages.page_size)));
    return bytes;
}

}  // namespace

base::Result<FileBytes> CopyFileBytes(FileSystem& files, const std::filesystem::path& path) {
    PageStoreOptions options;
    options.read_only = true;
    base::Status failure = JetError(ErrorNumber::kFileInUse, base::Utf8Of(path));
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        auto read = TryToRead(files, path);
        // A file that shrinks while it is read cannot be told from one that cannot be read.
        if (read.status().code() == base::StatusCode::kIoError) {
            failure = read.status();
        } else if (!read.ok()) {
            // The ordinary way says best what is wrong with the file.
            const auto opened = OpenPageStore(files, path, options);
            return opened.ok() ? read.status() : opened.status();
        }
        if (!read.ok() || !*read) continue;
        {
            ASSIGN_OR_RETURN(const auto store, OpenPageStore(**read, path, options));
            if ((*read)->Exists(Journal::PathFor(path))) return BytesOf(*store);
        }
        return std::move(**read).TakeDatabase();
    }
    return EngineStatus(failure);
}

base::Result<bool>
ReadSteadyPages(FileSystem& files, const std::filesystem::path& path,
                const std::function<base::Status(const PageSource& pages)>& read) {
    ASSIGN_OR_RETURN(const FileBytes head_before, ReadWhole(files, path, kHeadBytes));
    ASSIGN_OR_RETURN(const FileBytes journal_before, ReadJournalBytes(files, path));
    base::Status done;
    {
        FilesBesideOwner beside(files, path, journal_before);
        PageStoreOptions options;
        options.read_only = true;
        options.cache_bytes = kSteadyCacheBytes;
        ASSIGN_OR_RETURN(const auto store, OpenPageStore(beside, path, options));
        done = read(FileBytesOf(*store));
    }
    ASSIGN_OR_RETURN(const FileBytes journal, ReadJournalBytes(files, path));
    ASSIGN_OR_RETURN(const FileBytes head, ReadWhole(files, path, kHeadBytes));
    // A page that a checkpoint wrote meanwhile stands in the journal, too, and was taken from
    // there.
    if (journal != journal_before || (journal.empty() && head != head_before)) return false;
    RETURN_IF_ERROR(done);
    return true;
}

base::Result<std::unique_ptr<PageStore>> CopyPages(FileSystem& files,
                                                   const std::filesystem::path& path) {
    ASSIGN_OR_RETURN(const FileBytes bytes, CopyFileBytes(files, path));
    ASSIGN_OR_RETURN(const std::uint32_t page_size, PageSizeOf(bytes));
    return MakeMemoryPageStore(page_size, bytes);
}

base::Result<std::uint32_t> PageSizeOf(std::span<const std::byte> file) {
    const auto version = base::LittleAt<std::uint32_t>(file, kVersionAt);
    if (version && *version <= kVersionJet4) {
        const std::uint32_t page_size = FormatOf(*version == kVersionJet3 ? 3 : 4).page_size;
        if (!file.empty() && file.size() % page_size == 0) return page_size;
    }
    return base::Status(base::StatusCode::kCorruption, "These are not the pages of a database.");
}

}  // namespace jet
