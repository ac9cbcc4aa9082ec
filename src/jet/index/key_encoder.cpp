#include "jet/index/key_encoder.h"

#include "jet/text/collation.h"
#include "jet/text/text_key.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace jet {
namespace {

constexpr std::byte kNull{0x00};
constexpr std::byte kNullDescending{0xFF};
constexpr std::byte kValue{0x7F};
constexpr std::byte kValueDescending{0x80};
constexpr std::size_t kBlock = 8;
constexpr std::byte kMoreFollows{9};

void Complement(std::span<std::byte> bytes) {
    for (std::byte& byte : bytes)
        byte = ~byte;
}

// Signed: the sign bit flipped, so that negative numbers come first.
template <std::signed_integral T>
void AppendInteger(Bytes& key, T value) {
    using U = std::make_unsigned_t<T>;
    constexpr U kSign = U{1} << (8 * sizeof(T) - 1);
    base::AppendBig(key, static_cast<U>(static_cast<U>(value) ^ kSign));
}

template <std::unsigned_integral U>
void AppendFloatBits(Bytes& key, U bits) {
    constexpr U kSign = U{1} << (8 * sizeof(U) - 1);
    base::AppendBig(key,
                    (bits & kSign) != 0 ? static_cast<U>(~bits) : static_cast<U>(bits | kSign));
}

// Blocks of 8 bytes, each followed by 9 when more follows, the last one by the number of its bytes.
// The 9s are not complemented in a descending column.
void AppendBlocks(Bytes& key, std::span<const std::byte> bytes, bool ascending) {
    for (std::size_t at = 0; at < bytes.size(); at += kBlock) {
        const std::size_t used = std::min(kBlock, bytes.size() - at);
        const bool last = at + kBlock >= bytes.size();
        const std::size_t start = key.size();
        key.insert(key.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at),
                   bytes.begin() + static_cast<std::ptrdiff_t>(at + used));
        key.resize(start + kBlock);
        if (last) key.push_back(static_cast<std::byte>(used));
        if (!ascending) Complement(std::span(key).subspan(start));
        if (!last) key.push_back(kMoreFollows);
    }
}

std::array<std::byte, 16> InTextualOrder(const Guid& guid) {
    std::array<std::byte, 16> bytes = guid.bytes;
    std::reverse(bytes.begin(), bytes.begin() + 4);
    std::reverse(bytes.begin() + 4, bytes.begin() + 6);
    std::reverse(bytes.begin() + 6, bytes.begin() + 8);
    return bytes;
}

void AppendNumeric(Bytes& key, const Numeric& numeric, bool ascending) {
    key.push_back(numeric.negative ? std::byte{0x00} : std::byte{0xFF});
    const std::size_t start = key.size();
    for (const std::uint32_t word : numeric.magnitude)
        base::AppendBig(key, word);
    // The sign byte stays as it is in a descending column: an oddity of the format.
    if (numeric.negative == ascending) Complement(std::span(key).subspan(start));
}

void AppendText(const FileContext& file, const std::u16string& text, bool ascending, Bytes& key) {
    const std::size_t start = key.size();
    if (file.format.jet4()) {
        AppendTextKey(text, key);
    } else {
        std::u16string_view significant = text;
        const auto bytes = file.text.EncodeName(significant.substr(0, 255));
        AppendTextKeyJet3(bytes ? std::span<const std::byte>(*bytes) : std::span<const std::byte>(),
                          key);
    }
    if (ascending) return;
    Complement(std::span(key).subspan(start));
    if (file.format.jet4()) key.push_back(std::byte{0});
}

// The ascending bytes of types that have nothing special about them.
bool AppendSimple(const Value& value, Bytes& key) {
    if (const auto* boolean = value.get_if<bool>()) {
        key.push_back(*boolean ? std::byte{0x00} : std::byte{0xFF});
    } else if (const auto* byte = value.get_if<std::uint8_t>()) {
        key.push_back(std::byte{*byte});
    } else if (const auto* small = value.get_if<std::int16_t>()) {
        AppendInteger(key, *small);
    } else if (const auto* number = value.get_if<std::int32_t>()) {
        AppendInteger(key, *number);
    } else if (const auto* money = value.get_if<Money>()) {
        AppendInteger(key, money->units);
    } else if (const auto* single = value.get_if<float>()) {
        AppendFloatBits(key, std::bit_cast<std::uint32_t>(*single));
    } else if (const auto* real = value.get_if<double>()) {
        AppendFloatBits(key, std::bit_cast<std::uint64_t>(*real));
    } else if (const auto* date = value.get_if<Date>()) {
        AppendFloatBits(key, std::bit_cast<std::uint64_t>(date->days));
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool CanEncodeKey(const FileContext& file, const ColumnDefinition& column) {
    switch (column.type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
        if (column.sort_order != kSortOrderGeneral) return false;
        return file.format.jet4() ? column.sort_version == 0 : column.code_page == 1252;
    case ColumnType::kOle:
        return false;
    case ColumnType::kNumeric:
        return file.format.jet4();
    case ColumnType::kFixedBinary:
        return true;
    default:
        return column.type >= ColumnType::kBoolean && column.type <= ColumnType::kGuid;
    }
}

void AppendKeyPart(const FileContext& file, [[maybe_unused]] const ColumnDefinition& column,
                   bool ascending, const Value& value, Bytes& key) {
    assert(CanEncodeKey(file, column));
    if (value.is_null()) {
        key.push_back(ascending ? kNull : kNullDescending);
        return;
    }
    key.push_back(ascending ? kValue : kValueDescending);
    const std::size_t start = key.size();
    if (AppendSimple(value, key)) {
        if (!ascending) Complement(std::span(key).subspan(start));
    } else if (const auto* text = value.get_if<std::u16string>()) {
        AppendText(file, *text, ascending, key);
    } else if (const auto* bytes = value.get_if<Bytes>()) {
        AppendBlocks(key, *bytes, ascending);
    } else if (const auto* guid = value.get_if<Guid>()) {
        AppendBlocks(key, InTextualOrder(*guid), ascending);
    } else if (const auto* numeric = value.get_if<Numeric>()) {
        AppendNumeric(key, *numeric, ascending);
    }
}

}  // namespace jet
