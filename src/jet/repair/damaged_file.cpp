#include "jet/repair/damaged_file.h"

#include "base/file_names.h"
#include "jet/errors.h"
#include "jet/pages/definition_layout.h"
#include "jet/pages/page_encoding.h"
#include "jet/pages/page_header.h"
#include "jet/pages/page_header_layout.h"
#include "jet/pages/rc4.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace jet {
namespace {

using Page = std::vector<std::byte>;

void ApplyMask(std::span<std::byte> page, bool jet4) {
    ApplyRc4(kMaskKey, page.subspan(kMaskStart, jet4 ? kMaskBytesJet4 : kMaskBytesJet3));
}

// The password as it is stored in version 4, XORed with the creation day, or the other way round.
void ApplyDay(std::span<std::byte> page) {
    const double created = base::LoadDouble(page.data() + kCreated);
    std::uint32_t day = 0;
    if (std::isfinite(created) && std::abs(created) < 4.0e6)
        day = static_cast<std::uint32_t>(static_cast<std::int64_t>(created));
    for (std::size_t at = kPassword; at < kPassword + kPasswordBytesJet4; at += 4)
        base::StoreLittle(page.data() + at,
                          base::LoadLittle<std::uint32_t>(page.data() + at) ^ day);
}

// Characters, then nothing but zeros. Everything else is damage and no password.
bool IsPassword(std::span<const std::byte> bytes, bool jet4) {
    const std::size_t unit = jet4 ? 2 : 1;
    bool ended = false;
    for (std::size_t at = 0; at + unit <= bytes.size(); at += unit) {
        const unsigned character = jet4 ? base::LoadLittle<std::uint16_t>(bytes.data() + at)
                                        : std::to_integer<unsigned>(bytes[at]);
        if (character == 0)
            ended = true;
        else if (ended || character < 0x20)
            return false;
    }
    return true;
}

// Page 0 with everything in it that has only one right value, and a key that fits the pages.
Page SoundFirstPage(const Page& damaged, bool jet4, std::uint32_t key) {
    const Page model = MakePageHeader(jet4 ? 4 : 3, 0);
    Page page = damaged;
    Page plain_model = model;
    ApplyMask(page, jet4);
    ApplyMask(plain_model, jet4);
    std::memcpy(page.data(), plain_model.data(), kSystemPagesAt + 4 * kSystemPages);
    base::StoreLittle(page.data() + kEncodingKey, key);
    if (jet4) ApplyDay(page);
    const auto password =
        std::span(page).subspan(kPassword, jet4 ? kPasswordBytesJet4 : kPasswordBytesJet3);
    if (!IsPassword(password, jet4)) std::ranges::fill(password, std::byte{0});
    if (jet4) ApplyDay(page);
    if (jet4) std::memcpy(page.data() + kAfterMaskAt, model.data() + kAfterMaskAt, 8);
    ApplyMask(page, jet4);
    const std::size_t words = jet4 ? kCommitWordsJet4 : kCommitWordsJet3;
    for (std::size_t at = words; at < words + 2 * kCommitWordCount; at += 2)
        if (base::LoadLittle<std::uint16_t>(page.data() + at) < kNeutralCommitWord)
            base::StoreLittle(page.data() + at, kNeutralCommitWord);
    return page;
}

std::uint32_t KeyOf(const Page& first_page, bool jet4) {
    Page plain = first_page;
    ApplyMask(plain, jet4);
    return base::LoadLittle<std::uint32_t>(plain.data() + kEncodingKey);
}

bool LooksLikeDefinition(std::span<const std::byte> page, bool jet4) {
    if (!HasType(page, PageType::kDefinition) || page[kSecondByteAt] != kSecondByte) return false;
    return jet4
               ? base::LoadLittle<std::uint32_t>(page.data() + kDefinitionMarkAt) == kDefinitionMark
               : base::LoadLittle<std::uint16_t>(page.data() + kDefinitionFreeBytes) ==
                     kJet3HeadText;
}

// How many definitions are on the pages from `first` to `last` when they are read so.
int Likelihood(const File& file, bool jet4, std::uint32_t key, PageNumber first, PageNumber last) {
    const std::uint32_t page_size = FormatOf(jet4 ? 4 : 3).page_size;
    const PageEncoding encoding(key);
    int found = 0;
    for (PageNumber number = first; number <= last; ++number) {
        Page page(page_size);
        if (!file.ReadAt(std::uint64_t{number} * page_size, page).ok()) continue;
        encoding.Apply(number, page);
        if (LooksLikeDefinition(page, jet4)) ++found;
    }
    return found;
}

struct Reading {
    bool jet4 = true;
    std::uint32_t key = 0;
    int likelihood = 0;
};

// By the definitions on the pages from 2 to `last`.
Reading BestReading(const File& file, PageNumber last) {
    Reading best;
    for (const bool jet4 : {true, false}) {
        Page first(FormatOf(jet4 ? 4 : 3).page_size);
        file.ReadAt(0, first).Ignore();  // zeros then
        for (const std::uint32_t key : {KeyOf(first, jet4), 0U})
            if (const int found = Likelihood(file, jet4, key, kObjectsPage, last);
                found > best.likelihood)
                best = {jet4, key, found};
    }
    return best;
}

// The definitions of the system tables are where they belong, or at least some definition is
// somewhere.
Reading BestReading(const File& file) {
    const Reading by_system_tables = BestReading(file, kRelationsPage);
    if (by_system_tables.likelihood > 0) return by_system_tables;
    const std::uint64_t size = std::min(file.Size().value_or(0), FormatOf(4).max_file_bytes);
    return BestReading(file, static_cast<PageNumber>(size / FormatOf(3).page_size));
}

// All pages; what cannot be read is zeros. The last one may be cut.
base::Result<Page> ReadAll(const File& file, std::uint32_t page_size, std::uint64_t max_bytes) {
    ASSIGN_OR_RETURN(const std::uint64_t size, file.Size());
    Page bytes((std::min(size, max_bytes) + page_size - 1) / page_size * page_size);
    for (std::size_t at = 0; at < bytes.size(); at += page_size) {
        const std::size_t length =
            static_cast<std::size_t>(std::min<std::uint64_t>(page_size, size - at));
        file.ReadAt(at, std::span(bytes).subspan(at, length)).Ignore();
    }
    return bytes;
}

}  // namespace

base::Result<DamagedFile> OpenDamagedFile(FileSystem& files, const std::filesystem::path& path) {
    PageStoreOptions options;
    options.read_only = true;
    auto store = OpenPageStore(files, path, options);
    const bool is_ours = store.ok() || store.status().code() == base::StatusCode::kUnsupported ||
                         store.status().code() == base::StatusCode::kIoError;
    if (!is_ours) return store.status();
    ASSIGN_OR_RETURN(const auto file, files.Open(path, OpenMode::kRead));
    RETURN_IF_ERROR(file->Lock(FileLock::kShared, kBehindContent));
    const Reading reading = BestReading(*file);
    if (reading.likelihood == 0)
        return JetError(ErrorNumber::kUnrecognizedFormat, base::Utf8Of(path));
    const Format& format = FormatOf(reading.jet4 ? 4 : 3);
    DamagedFile damaged;
    Page first(format.page_size);
    if (store.ok()) {
        if (const auto page = (*store)->Read(0); page.ok())
            std::ranges::copy(page->bytes().first(std::min(first.size(), page->bytes().size())),
                              first.begin());
    } else {
        file->ReadAt(0, first).Ignore();
    }
    damaged.first_page = SoundFirstPage(first, reading.jet4, reading.key);
    damaged.first_page_was_damaged = damaged.first_page != first;
    if (store.ok() && (*store)->page_size() == format.page_size &&
        KeyOf(first, reading.jet4) == reading.key) {
        damaged.pages = std::move(store).value();
        return damaged;
    }
    ASSIGN_OR_RETURN(Page bytes, ReadAll(*file, format.page_size, format.max_file_bytes));
    if (bytes.size() < format.page_size) bytes.resize(format.page_size);
    std::ranges::copy(damaged.first_page, bytes.begin());
    damaged.pages = MakeMemoryPageStore(format.page_size, bytes);
    return damaged;
}

}  // namespace jet
