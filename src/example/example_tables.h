// The tables of the example collection: a dozen, all invented.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace example {

struct ExampleTable {
    std::u16string_view name;
    std::u16string_view author;
    std::u16string_view company;
    std::u16string_view year;
    std::u16string_view version;
    std::u16string_view blurb;  // in the table file, and the first line of the notes
    std::u16string_view rules;
    std::int32_t times_played = 0;
    std::u16string_view last_played;  // "3/14/2026 9:30:00 PM"; empty: never
    bool is_favourite = false;
    bool needs_pinmame = false;
    // Of its pictures, 0xRRGGBB: the ground, what stands on it, and the lamps.
    std::uint32_t ground = 0, figure = 0, light = 0;
};

std::span<const ExampleTable> ExampleTables();

}  // namespace example
