// PageCodec: pages made smaller, alone or as a change of an earlier state of the same page.
// Threads: a codec belongs to one thread.
#pragma once

#include "base/status.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace snapshots {

class PageCodec {
public:
    PageCodec();
    ~PageCodec();
    PageCodec(const PageCodec&) = delete;
    PageCodec& operator=(const PageCodec&) = delete;

    // Fills `stored` (its memory is used again) with fewer bytes than the page has, or with the
    // page itself where that fails. `base`: the earlier state, or empty.
    void Compress(std::span<const std::byte> page, std::span<const std::byte> base,
                  std::vector<std::byte>& stored);
    // Fills `page`. kCorruption: `stored` is not what a page of this size gives with this base.
    base::Status Expand(std::span<const std::byte> stored, std::span<const std::byte> base,
                        std::span<std::byte> page);

private:
    struct Contexts;
    std::unique_ptr<Contexts> contexts_;
};

}  // namespace snapshots
