// The bytes of a history file: a header, then records, each with a checksum that continues the one
// before it, as in a journal. docs/formats/history.md has the table of offsets. Everything here
// works on bytes in memory and checks whatever it reads.
#pragma once

#include "jet/pages/commit_notes.h"
#include "jet/pages/journal_format.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace history {

// magic 16, version 4, zero 4, salt 8, number of the first change 8, checksum 8.
inline constexpr std::size_t kHeaderSize = 48;
// In front of the note in the record of one: journal 8, offset 8.
inline constexpr std::size_t kNoteHead = 16;

struct Header {
    std::uint64_t salt = 0;          // random: tells these records from those of older files
    std::uint64_t first_number = 1;  // what the oldest change in the file is called
};

// Each appends to `out`; the answer is the checksum that the next record continues.
std::uint64_t AppendHeader(std::vector<std::byte>& out, const Header& header);
std::uint64_t AppendNote(std::vector<std::byte>& out, const jet::CommitNote& note,
                         std::uint64_t chain);
// `or_before`: the file may still carry this one.
std::uint64_t AppendMark(std::vector<std::byte>& out, std::uint64_t mark, std::uint64_t chain,
                         std::optional<std::uint64_t> or_before = std::nullopt);

struct ParsedHeader {
    Header header;
    std::uint64_t checksum = 0;
};
// nullopt: not a history file, or damaged.
std::optional<ParsedHeader> ParseHeader(std::span<const std::byte> bytes);

}  // namespace history
