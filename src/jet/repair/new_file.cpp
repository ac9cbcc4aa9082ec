#include "jet/repair/new_file.h"

#include "jet/errors.h"
#include "jet/pages/bit_set_view.h"
#include "jet/pages/data_page.h"
#include "jet/pages/file_mark.h"
#include "jet/pages/page_encoding.h"

namespace jet {
namespace {

constexpr PageNumber kFixedPages = kRelationsPage + 1;
constexpr std::size_t kMaxBytesAtOnce = 1U << 20;

}  // namespace

base::Result<std::unique_ptr<NewFile>> NewFile::Make(std::vector<std::byte> first_page) {
    ASSIGN_OR_RETURN(const PageHeader header, ReadPageHeader(first_page, "the new file"));
    const auto page_size = static_cast<std::uint32_t>(first_page.size());
    StoreFileMark(std::span(first_page).subspan(FileMarkOffset(page_size), kFileMarkBytes),
                  MakeFileMark());
    std::unique_ptr<NewFile> file(new NewFile(MakeMemoryPageStore(page_size, first_page), header));
    RETURN_IF_ERROR(file->MakeFixedPages());
    return file;
}

// The maps of all pages, and pages for the definitions that have fixed places.
base::Status NewFile::MakeFixedPages() {
    RETURN_IF_ERROR(store_->Begin());
    while (store_->page_count() < kFixedPages)
        RETURN_IF_ERROR(store_->Extend().status());
    ASSIGN_OR_RETURN(const std::span<std::byte> page, store_->Change(kGlobalMapPage));
    DataPageEditor editor = DataPageEditor::Create(page, context_.format, kGlobalMapOwner);
    std::vector<std::byte> free_pages = MakeMapRow(context_.format);
    const auto bits = std::span(free_pages).subspan(kInlineHead);
    for (std::size_t bit = kFixedPages; bit < 8 * bits.size(); ++bit)
        AssignBit(bits, bit, true);
    editor.Append(free_pages, 0);
    editor.Append(MakeMapRow(context_.format), 0);
    return {};
}

base::Status NewFile::Write(File& file) {
    const std::uint32_t page_size = store_->page_size();
    if (std::uint64_t{page_count()} * page_size > context_.format.max_file_bytes)
        return FileIsFull();
    const PageEncoding encoding(context_.header.encoding_key);
    std::vector<std::byte> run;
    PageNumber run_start = 0;
    for (PageNumber number = 0; number < page_count(); ++number) {
        {
            ASSIGN_OR_RETURN(const PageView page, store_->Read(number));
            run.insert(run.end(), page.bytes().begin(), page.bytes().end());
        }
        encoding.Apply(number, std::span(run).last(page_size));
        if (run.size() < kMaxBytesAtOnce && number + 1 < page_count()) continue;
        RETURN_IF_ERROR(file.WriteAt(std::uint64_t{run_start} * page_size, run));
        run_start = number + 1;
        run.clear();
    }
    return {};
}

}  // namespace jet
