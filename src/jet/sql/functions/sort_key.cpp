#include "jet/sql/functions/sort_key.h"

#include "base/byte_writer.h"
#include "jet/text/collation.h"
#include "jet/text/plain_text.h"
#include "jet/values/guid_text.h"
#include "jet/values/value_number.h"

#include <bit>
#include <cmath>

namespace jet::sql {
namespace {

constexpr char kNullMark = '\0';
constexpr char kNumberMark = '\1';
constexpr char kTextMark = '\2';
constexpr char kBytesMark = '\3';
constexpr std::uint64_t kTopBit = std::uint64_t{1} << 63;

void AppendBits(std::uint64_t bits, std::string& key) {
    for (int shift = 56; shift >= 0; shift -= 8)
        key += static_cast<char>(bits >> shift & 0xFF);
}

void AppendNumber(double number, std::string& key) {
    if (number == 0) number = 0;  // minus zero
    const auto bits = std::bit_cast<std::uint64_t>(number);
    AppendBits((bits & kTopBit) != 0 ? ~bits : bits | kTopBit, key);
}

void AppendText(std::u16string_view text, std::string& key) {
    if (AppendPlainKey(text, key)) return;
    Bytes bytes;
    bytes.reserve(TextKeyRoom(text));
    AppendTextKey(text, bytes);
    for (const std::byte b : bytes)
        key += static_cast<char>(b);
}

// A zero inside is written 00 01, the end 00 00: no key is the beginning of another one.
template <typename Range>
void AppendBytes(const Range& bytes, std::string& key) {
    for (const std::byte b : bytes) {
        key += static_cast<char>(b);
        if (b == std::byte{0}) key += '\1';
    }
    key.append(2, '\0');
}

void Complement(std::size_t begin, std::string& key) {
    for (std::size_t i = begin; i < key.size(); ++i)
        key[i] = static_cast<char>(~key[i]);
}

}  // namespace

double SecondsOfDate(double days) {
    constexpr double kSecondsPerDay = 86400;
    const double whole = std::trunc(days);
    return whole * kSecondsPerDay + std::round(std::fabs(days - whole) * kSecondsPerDay);
}

void AppendSortKey(const Value& value, bool descending, std::string& key) {
    const std::size_t begin = key.size();
    if (value.is_null()) {
        key += kNullMark;
    } else if (const auto* text = value.get_if<std::u16string>()) {
        key += kTextMark;
        AppendText(*text, key);
    } else if (const auto* date = value.get_if<Date>()) {
        key += kNumberMark;
        AppendNumber(SecondsOfDate(date->days) / 86400.0, key);
    } else if (const auto* bytes = value.get_if<Bytes>()) {
        key += kBytesMark;
        AppendBytes(*bytes, key);
    } else if (const auto* guid = value.get_if<Guid>()) {
        key += kTextMark;
        AppendText(GuidText(*guid), key);
    } else {
        key += kNumberMark;
        AppendNumber(NumberOf(value).value_or(0), key);
    }
    if (descending) Complement(begin, key);
}

void AppendEqualKey(const Value& value, std::string& key) {
    AppendSortKey(value, false, key);
    const auto* text = value.get_if<std::u16string>();
    if (text == nullptr) return;
    static const std::string nothing = [] {
        std::string empty;
        AppendText({}, empty);
        return empty;
    }();
    // Pieces without a weight count only where another one follows.
    std::string pending;
    for (std::size_t at = kKeyUnits; at < text->size(); at += kKeyUnits) {
        std::string piece;
        AppendText(std::u16string_view(*text).substr(at), piece);
        pending += piece;
        if (piece == nothing) continue;
        key += pending;
        pending.clear();
    }
}

bool AppendNarrowSortKey(std::string_view narrow, bool descending, std::string& key) {
    const std::size_t begin = key.size();
    key += kTextMark;
    if (!AppendPlainKey(narrow, key)) {
        key.resize(begin);
        return false;
    }
    if (descending) Complement(begin, key);
    return true;
}

}  // namespace jet::sql
