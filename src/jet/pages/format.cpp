#include "jet/pages/format.h"

namespace jet {
namespace {

constexpr Format kJet3{
    .version = 3,
    .page_size = 2048,
    .max_file_bytes = std::uint64_t{1} << 30,
    .slot_count_offset = 8,
    .slots_offset = 10,
    .max_row_bytes = 2012,
    .row_head_bytes = 1,
    .fresh_map_bytes = 133,
    .index_links_offset = 8,
    .index_prefix_offset = 20,
    .index_prefix_bytes = 1,
    .index_level_offset = 21,
    .index_mask_offset = 22,
    .index_entries_offset = 248,
    .max_inline_bytes = 32,
    .max_single_bytes = 2032,
    .chain_piece_bytes = 2032,
};

constexpr Format kJet4{
    .version = 4,
    .page_size = 4096,
    .max_file_bytes = std::uint64_t{1} << 31,
    .slot_count_offset = 12,
    .slots_offset = 14,
    .max_row_bytes = 4060,
    .row_head_bytes = 2,
    .fresh_map_bytes = 69,
    .index_links_offset = 12,
    .index_prefix_offset = 24,
    .index_prefix_bytes = 2,
    .index_level_offset = 26,
    .index_mask_offset = 27,
    .index_entries_offset = 480,
    .max_inline_bytes = 64,
    .max_single_bytes = 4076,
    .chain_piece_bytes = 4072,
};

}  // namespace

const Format& FormatOf(int version) {
    return version == 3 ? kJet3 : kJet4;
}

const Format& FormatOfPages(std::uint32_t page_size) {
    return page_size == kJet3.page_size ? kJet3 : kJet4;
}

}  // namespace jet
