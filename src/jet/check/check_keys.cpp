#include "jet/check/check_keys.h"

#include "jet/text/collation.h"
#include "jet/text/text_key.h"

#include <algorithm>

namespace jet::check {
namespace {

constexpr std::uint16_t kEnglish = 0x0409;

// The value's bytes, ascending, of the types that are stored little endian.
Bytes Reversed(std::span<const std::byte> field) {
    return {field.rbegin(), field.rend()};
}

void AppendSigned(std::span<const std::byte> field, Bytes& key) {
    Bytes bytes = Reversed(field);
    if (!bytes.empty()) bytes[0] ^= std::byte{0x80};
    key.insert(key.end(), bytes.begin(), bytes.end());
}

void AppendFloating(std::span<const std::byte> field, Bytes& key) {
    Bytes bytes = Reversed(field);
    if (bytes.empty()) return;
    const bool negative = (bytes[0] & std::byte{0x80}) != std::byte{0};
    for (std::byte& byte : bytes)
        if (negative) byte = ~byte;
    if (!negative) bytes[0] ^= std::byte{0x80};
    key.insert(key.end(), bytes.begin(), bytes.end());
}

// Blocks of eight with a count byte behind each; the one of a block that is not the last is never
// complemented.
void AppendBlocks(std::span<const std::byte> field, bool ascending, Bytes& key) {
    const auto turn = [&](std::byte byte) { return ascending ? byte : ~byte; };
    for (std::size_t at = 0; at < field.size(); at += 8) {
        const std::size_t size = std::min<std::size_t>(8, field.size() - at);
        for (std::size_t i = 0; i < 8; ++i)
            key.push_back(turn(i < size ? field[at + i] : std::byte{0}));
        const bool is_last = at + 8 >= field.size();
        key.push_back(is_last ? turn(static_cast<std::byte>(size)) : std::byte{9});
    }
}

Bytes TextualOrder(std::span<const std::byte> guid) {
    Bytes bytes(guid.begin(), guid.end());
    if (bytes.size() != 16) return bytes;
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
    return bytes;
}

void AppendText(const CheckRun& run, std::span<const std::byte> field, bool ascending, Bytes& key) {
    const std::size_t start = key.size();
    if (run.format().jet4())
        AppendTextKey(run.text().DecodeValue(field), key);
    else
        AppendTextKeyJet3(field, key);
    if (ascending) return;
    for (std::size_t i = start; i < key.size(); ++i)
        key[i] = ~key[i];
    if (run.format().jet4()) key.push_back(std::byte{0});
}

// Descending: the sign byte stays, and the complement of the magnitude changes sides.
void AppendNumeric(std::span<const std::byte> field, bool ascending, Bytes& key) {
    if (field.size() < 17) return;
    const bool negative = field[0] != std::byte{0};
    key.push_back(negative ? std::byte{0} : std::byte{0xFF});
    const bool complement = negative == ascending;
    for (std::size_t word = 0; word < 4; ++word)
        for (std::size_t i = 4; i-- > 0;) {
            const std::byte byte = field[1 + 4 * word + i];
            key.push_back(complement ? ~byte : byte);
        }
}

void AppendSimple(const Column& column, std::span<const std::byte> field, Bytes& key) {
    switch (column.type) {
    case ColumnType::kShort:
    case ColumnType::kLong:
    case ColumnType::kMoney:
        return AppendSigned(field, key);
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
        return AppendFloating(field, key);
    default:
        key.insert(key.end(), field.begin(), field.end());
    }
}

}  // namespace

bool KnowsKeysOf(const CheckRun& run, const Column& column) {
    if (column.type == ColumnType::kOle) return false;
    if (!column.is_text()) return static_cast<int>(column.type) <= 0x11;
    if (column.sort_order != kEnglish || column.sort_version != 0) return false;
    return run.format().jet4() || run.text().code_page() == 1252;
}

void AppendKey(const CheckRun& run, const Column& column, bool ascending,
               std::optional<std::span<const std::byte>> field, bool bit, Bytes& key) {
    const std::byte truth = bit == ascending ? std::byte{0x00} : std::byte{0xFF};
    if (column.type != ColumnType::kBoolean && !field) {
        key.push_back(ascending ? std::byte{0x00} : std::byte{0xFF});
        return;
    }
    key.push_back(ascending ? std::byte{0x7F} : std::byte{0x80});
    if (column.type == ColumnType::kBoolean) {
        key.push_back(truth);
    } else if (column.is_text()) {
        AppendText(run, *field, ascending, key);
    } else if (column.type == ColumnType::kBinary || column.type == ColumnType::kFixedBinary) {
        AppendBlocks(*field, ascending, key);
    } else if (column.type == ColumnType::kGuid) {
        AppendBlocks(TextualOrder(*field), ascending, key);
    } else if (column.type == ColumnType::kNumeric) {
        AppendNumeric(*field, ascending, key);
    } else {
        const std::size_t start = key.size();
        AppendSimple(column, *field, key);
        if (ascending) return;
        for (std::size_t i = start; i < key.size(); ++i)
            key[i] = ~key[i];
    }
}

bool SamePrimaryWeights(std::span<const std::byte> a, std::span<const std::byte> b) {
    constexpr std::byte kEndOfSection{1};
    const auto end_a = std::ranges::find(a, kEndOfSection);
    const auto end_b = std::ranges::find(b, kEndOfSection);
    return end_a != a.end() && std::ranges::equal(a.begin(), end_a, b.begin(), end_b);
}

}  // namespace jet::check
