#include "snapshots/page_codec.h"

#include <zstd.h>

#include <cstring>

namespace snapshots {
namespace {

// The quickest of those that still find repeated texts: a first snapshot has to compress the whole
// catalogue while somebody waits.
constexpr int kLevel = 1;

}  // namespace

struct PageCodec::Contexts {
    ~Contexts() {
        ZSTD_freeCCtx(compress);
        ZSTD_freeDCtx(expand);
    }
    ZSTD_CCtx* compress = nullptr;
    ZSTD_DCtx* expand = nullptr;
};

PageCodec::PageCodec() : contexts_(std::make_unique<Contexts>()) {
    contexts_->compress = ZSTD_createCCtx();
    contexts_->expand = ZSTD_createDCtx();
}

PageCodec::~PageCodec() = default;

void PageCodec::Compress(std::span<const std::byte> page, std::span<const std::byte> base,
                         std::vector<std::byte>& stored) {
    stored.resize(page.size());
    std::size_t size = page.size();
    if (contexts_->compress != nullptr)
        size = ZSTD_compress_usingDict(contexts_->compress, stored.data(), stored.size(),
                                       page.data(), page.size(), base.data(), base.size(), kLevel);
    if (ZSTD_isError(size) != 0 || size >= page.size())
        std::memcpy(stored.data(), page.data(), page.size());
    else
        stored.resize(size);
}

base::Status PageCodec::Expand(std::span<const std::byte> stored, std::span<const std::byte> base,
                               std::span<std::byte> page) {
    if (stored.size() == page.size()) {
        std::memcpy(page.data(), stored.data(), page.size());
        return {};
    }
    std::size_t size = 0;
    if (contexts_->expand != nullptr)
        size = ZSTD_decompress_usingDict(contexts_->expand, page.data(), page.size(), stored.data(),
                                         stored.size(), base.data(), base.size());
    if (size == page.size()) return {};
    return {base::StatusCode::kCorruption, "The snapshot is damaged: a page in a pack"};
}

}  // namespace snapshots
