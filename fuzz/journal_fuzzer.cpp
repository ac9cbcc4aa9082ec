// Opens a database with a left-over journal beside it, reads everything and goes on writing.
// Input: byte 0 even: the rest is the journal itself. Odd: the rest are records (u8 kind, u8 page
// count, u16 size, payload) that get a right header and right checksums, so that their content is
// looked at. With bit 1 the database is encoded.
#include "base/byte_reader.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/journal.h"
#include "jet/pages/page_store.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"
#include "support/make_pages.h"

#include <algorithm>
#include <cstdlib>

namespace {

// Takes what is handed on; checks that its order is that of the journal.
class Notes final : public jet::CommitNotes {
public:
    void Bind(std::vector<std::uint64_t>) override {}
    void Keep(std::vector<jet::CommitNote> notes, std::uint64_t mark) override {
        if (mark == 0) std::abort();
        for (std::size_t i = 1; i < notes.size(); ++i)
            if (notes[i].journal == notes[i - 1].journal && notes[i].offset <= notes[i - 1].offset)
                std::abort();
    }
};

using Bytes = std::vector<std::byte>;
using test_support::FaultyFileSystem;

constexpr const char* kPath = "a.mdb";
constexpr const char* kJournalPath = "a.mdb-journal";
constexpr jet::PageNumber kPages = 4;

Bytes MakeMarkedFile() {
    Bytes file = test_support::MakePages(1, kPages);
    jet::StoreFileMark(std::span(file).subspan(jet::FileMarkOffset(4096), jet::kFileMarkBytes), 77);
    return file;
}

Bytes MakeJournal(const Bytes& file, std::span<const std::byte> input) {
    Bytes journal;
    const jet::JournalHeader header{4096, 5, kPages, Bytes(file.begin(), file.begin() + 4096)};
    std::uint64_t chain = jet::AppendJournalHeader(journal, header);
    while (input.size() >= 4) {
        const auto kind = static_cast<jet::RecordKind>(std::to_integer<unsigned>(input[0]) % 4);
        const auto page_count = kPages + std::to_integer<jet::PageNumber>(input[1]) % 16;
        const std::size_t size = std::min<std::size_t>(
            base::LoadLittle<std::uint16_t>(input.data() + 2), input.size() - 4);
        const std::size_t record = jet::BeginRecord(journal);
        const auto payload = input.subspan(4, size);
        journal.insert(journal.end(), payload.begin(), payload.end());
        chain = jet::FinishRecord(journal, record, kind, page_count, chain);
        input = input.subspan(4 + size);
    }
    return journal;
}

void ReadEverything(jet::PageStore& store) {
    for (jet::PageNumber page = 0; page < store.page_count(); ++page)
        (void)store.Read(page);
}

std::unique_ptr<jet::PageStore> Open(FaultyFileSystem& files, bool read_only,
                                     jet::CommitNotes* notes = nullptr) {
    jet::PageStoreOptions options;
    options.notes = notes;
    options.read_only = read_only;
    options.flush_delay = {};
    auto store = jet::OpenPageStore(files, kPath, options);
    return store.ok() ? std::move(store).value() : nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Bytes plain = MakeMarkedFile();
    static const Bytes encoded = [] {
        Bytes file = plain;
        test_support::EncodeFile(file, 0x1234ABCD);
        return file;
    }();
    if (size < 1) return 0;
    const Bytes& file = (data[0] & 2) != 0 ? encoded : plain;
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    const auto rest = input.subspan(1);
    FaultyFileSystem files;
    files.Put(kPath, file);
    files.Put(kJournalPath,
              (data[0] & 1) != 0 ? MakeJournal(file, rest) : Bytes(rest.begin(), rest.end()));

    jet::PageNumber pages = 0;
    if (const auto reader = Open(files, true)) {
        ReadEverything(*reader);
        pages = reader->page_count();
    }
    if (files.Get(kPath) != file) std::abort();  // a reader writes nothing
    Notes notes;
    const auto writer = Open(files, false, &notes);
    if (writer == nullptr) return 0;
    if (writer->page_count() != pages) std::abort();
    ReadEverything(*writer);
    if (writer->Begin().ok()) {
        if (const auto page = writer->Change(1); page.ok()) (*page)[9] = std::byte{9};
        if (!writer->Commit(Bytes(rest.begin(), rest.end())).ok()) std::abort();
    }
    if (!writer->Close().ok()) std::abort();
    return 0;
}
