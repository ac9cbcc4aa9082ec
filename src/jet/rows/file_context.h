// FileContext: what every part of an open database shares: its pages, its measures, its text
// coding, its allocator.
#pragma once

#include "jet/pages/page_allocator.h"
#include "jet/pages/page_header.h"
#include "jet/pages/usage_map.h"
#include "jet/text/text_codec.h"

namespace jet {

struct FileContext {
    // `pages` must outlive the context.
    FileContext(PageStore& pages, const PageHeader& page_header)
        : store(pages), header(page_header), format(FormatOf(page_header.version)),
          text(page_header.version, page_header.code_page), allocator(pages, format) {}
    FileContext(const FileContext&) = delete;
    FileContext& operator=(const FileContext&) = delete;

    UsageMap Map(RowPointer row) { return UsageMap(store, format, row); }

    PageStore& store;
    PageHeader header;
    const Format& format;
    TextCodec text;
    PageAllocator allocator;
};

}  // namespace jet
