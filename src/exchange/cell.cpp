#include "exchange/cell.h"

#include "exchange/csv_writer.h"
#include "exchange/wtf8.h"
#include "jet/values/coerce.h"
#include "jet/values/conversions.h"

#include "base/trim_spaces.h"
#include "base/unicode.h"

#include <QtCore/QByteArray>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <optional>
#include <type_traits>

namespace exchange {
namespace {

using jet::ColumnType;
using jet::Value;

template <typename Number>
std::string NumberText(Number number) {
    std::array<char, 40> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

// nullopt: `text` is not a number from its first character to its last.
template <typename Number>
std::optional<Number> ParsedNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::string DateText(double days) {
    const auto civil = jet::CivilFromDays(days);
    if (!civil || jet::DaysFromCivil(*civil) != days) return NumberText(days);
    char text[40];
    const bool midnight = civil->hour == 0 && civil->minute == 0 && civil->second == 0;
    const int size = midnight ? std::snprintf(text, sizeof text, "%04d-%02d-%02d", civil->year,
                                              civil->month, civil->day)
                              : std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d",
                                              civil->year, civil->month, civil->day, civil->hour,
                                              civil->minute, civil->second);
    return {text, static_cast<std::size_t>(size)};
}

// "2026-11-20", "2026-11-20 15:04:05", "2026-11-20T15:04:05"; nullopt: another text.
std::optional<double> ParseIsoDate(std::string_view text) {
    const auto part = [&](std::size_t at, std::size_t size) {
        const auto number = ParsedNumber<int>(text.substr(at, size));
        return number && *number >= 0 ? *number : -1;
    };
    const bool has_time = text.size() == 19;
    if ((!has_time && text.size() != 10) || text[4] != '-' || text[7] != '-') return std::nullopt;
    if (has_time && ((text[10] != ' ' && text[10] != 'T') || text[13] != ':' || text[16] != ':'))
        return std::nullopt;
    jet::CivilDateTime civil{part(0, 4), part(5, 2), part(8, 2), 0, 0, 0};
    if (has_time) {
        civil.hour = part(11, 2);
        civil.minute = part(14, 2);
        civil.second = part(17, 2);
    }
    const std::chrono::year_month_day day{std::chrono::year(civil.year),
                                          std::chrono::month(static_cast<unsigned>(civil.month)),
                                          std::chrono::day(static_cast<unsigned>(civil.day))};
    const bool is_date = civil.year >= 100 && civil.month > 0 && civil.day > 0 && day.ok();
    const bool is_time = civil.hour >= 0 && civil.hour < 24 && civil.minute >= 0 &&
                         civil.minute < 60 && civil.second >= 0 && civil.second < 60;
    if (!is_date || !is_time) return std::nullopt;
    return jet::DaysFromCivil(civil);
}

std::string Base64(const jet::Bytes& bytes) {
    return QByteArray(reinterpret_cast<const char*>(bytes.data()),
                      static_cast<qsizetype>(bytes.size()))
        .toBase64()
        .toStdString();
}

// The value without its quotes; texts are not asked for here.
std::string PlainText(const Value& value) {
    return std::visit(
        [&](const auto& content) -> std::string {
            using Content = std::decay_t<decltype(content)>;
            if constexpr (std::is_same_v<Content, bool>)
                return content ? "true" : "false";
            else if constexpr (std::is_arithmetic_v<Content>)
                return NumberText(content);
            else if constexpr (std::is_same_v<Content, jet::Date>)
                return DateText(content.days);
            else if constexpr (std::is_same_v<Content, jet::Bytes>)
                return Base64(content);
            else
                return base::ToUtf8(jet::ToText(value));
        },
        value.content());
}

bool IsJsonNumber(const Value& value) {
    if (const auto* number = value.get_if<double>()) return std::isfinite(*number);
    if (const auto* number = value.get_if<float>()) return std::isfinite(*number);
    return value.is<std::uint8_t>() || value.is<std::int16_t>() || value.is<std::int32_t>();
}

// As far as it need not be escaped.
std::size_t PlainLength(std::u16string_view text) {
    std::size_t at = 0;
    while (at < text.size()) {
        const char16_t c = text[at];
        const bool is_pair = c >= 0xD800 && c <= 0xDBFF && at + 1 < text.size() &&
                             text[at + 1] >= 0xDC00 && text[at + 1] <= 0xDFFF;
        // Readers take U+FEFF at the start of a text for a byte order mark and drop it.
        if (c < 0x20 || c == u'"' || c == u'\\' || c == 0xFEFF) break;
        if (c >= 0x7F && c <= 0x9F) break;  // a terminal would obey it
        if (!is_pair && c >= 0xD800 && c <= 0xDFFF) break;
        at += is_pair ? 2 : 1;
    }
    return at;
}

void AppendEscaped(std::string& json, char16_t c) {
    switch (c) {
    case u'"':
        json += "\\\"";
        return;
    case u'\\':
        json += "\\\\";
        return;
    case u'\n':
        json += "\\n";
        return;
    case u'\r':
        json += "\\r";
        return;
    case u'\t':
        json += "\\t";
        return;
    default:
        break;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
    json += escape;
}

base::Status Refused(const jet::ColumnDesign& column, std::string_view what) {
    return {base::StatusCode::kInvalidArgument,
            base::ToUtf8(column.name) + ": " + std::string(what)};
}

// The cell as the text that it would be in CSV.
std::u16string TextOf(const Cell& cell) {
    if (cell.kind == Cell::Kind::kNumber) return base::ToUtf16(NumberText(cell.number));
    if (cell.kind == Cell::Kind::kTruth) return cell.truth ? u"true" : u"false";
    return cell.text;
}

// For the texts of messages.
std::string Shown(std::u16string_view text) {
    constexpr std::size_t kMaxShown = 40;
    std::string shown = base::ToUtf8(text.substr(0, kMaxShown));
    if (text.size() > kMaxShown) shown += "...";
    return "\"" + shown + "\"";
}

base::Result<Value> TruthOf(const std::string& text, const jet::ColumnDesign& column) {
    std::string lower = text;
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = char(c + ('a' - 'A'));
    for (const char* yes : {"true", "yes", "1", "-1"})
        if (lower == yes) return Value::Boolean(true);
    for (const char* no : {"false", "no", "0"})
        if (lower == no) return Value::Boolean(false);
    return Refused(column, Shown(base::ToUtf16(text)) + " is neither true nor false");
}

base::Result<Value> DateOf(const std::string& text, const jet::ColumnDesign& column) {
    if (const auto days = ParseIsoDate(text)) return Value::DateTime(*days);
    // The years 100 to 9999.
    if (const auto days = ParsedNumber<double>(text); days && jet::CivilFromDays(*days))
        return Value::DateTime(*days);
    const std::u16string wide = base::ToUtf16(text);
    // Read by the engine itself, which knows what year two digits mean.
    if (jet::IsDate(wide)) return jet::Coerce(Value::Text(wide), column);
    return Refused(column, Shown(wide) + " is not a date");
}

base::Result<Value> NumberOf(const std::string& text, const jet::ColumnDesign& column) {
    const bool is_whole = column.type == ColumnType::kByte || column.type == ColumnType::kShort ||
                          column.type == ColumnType::kLong;
    const auto number = ParsedNumber<double>(text);
    if (!number || !std::isfinite(*number))
        return Refused(column, Shown(base::ToUtf16(text)) + " is not a number");
    if (is_whole && std::trunc(*number) != *number)
        return Refused(column, Shown(base::ToUtf16(text)) + " is not a whole number");
    if (column.type == ColumnType::kSingle)
        if (const auto single = ParsedNumber<float>(text)) return Value::Single(*single);
    if (is_whole || column.type == ColumnType::kDouble)
        return jet::Coerce(Value::Double(*number), column);
    return jet::Coerce(Value::Text(base::ToUtf16(text)), column);
}

base::Result<Value> BytesOf(const std::string& text, const jet::ColumnDesign& column) {
    const auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(text),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) return Refused(column, "the bytes are not Base64");
    const auto* first = reinterpret_cast<const std::byte*>(decoded.decoded.constData());
    return Value::Binary(jet::Bytes(first, first + decoded.decoded.size()));
}

base::Result<Value> TypedValue(const Cell& cell, const jet::ColumnDesign& column) {
    if (cell.kind == Cell::Kind::kNull) return jet::Coerce(Value::Null(), column);
    const std::u16string text = TextOf(cell);
    if (column.type == ColumnType::kText || column.type == ColumnType::kMemo)
        return jet::Coerce(Value::Text(text), column);
    const std::string trimmed = base::ToUtf8(base::TrimSpaces(text));
    switch (column.type) {
    case ColumnType::kBoolean:
        return TruthOf(trimmed, column);
    case ColumnType::kDate:
        return DateOf(trimmed, column);
    case ColumnType::kBinary:
    case ColumnType::kFixedBinary:
    case ColumnType::kOle:
        return BytesOf(trimmed, column);
    case ColumnType::kGuid:
        return jet::Coerce(Value::Text(text), column);
    default:
        return NumberOf(trimmed, column);
    }
}

}  // namespace

void AppendCsvCell(std::string& line, const Value& value, bool escape_formulas) {
    if (value.is_null()) return;
    const auto* text = value.get_if<std::u16string>();
    if (text == nullptr) {
        AppendCsvText(line, PlainText(value));
        return;
    }
    std::string bytes;
    AppendWtf8(bytes, *text);
    if (escape_formulas && LooksLikeFormula(bytes)) bytes.insert(bytes.begin(), '\'');
    AppendCsvText(line, bytes);
}

void UnescapeFormula(std::u16string& text) {
    if (text.size() < 2 || text.front() != u'\'') return;
    if (LooksLikeFormula(base::ToUtf8(std::u16string_view(text).substr(1)))) text.erase(0, 1);
}

void AppendJsonText(std::string& json, std::u16string_view text) {
    json += '"';
    while (!text.empty()) {
        const std::size_t plain = PlainLength(text);
        AppendWtf8(json, text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) break;
        AppendEscaped(json, text.front());
        text.remove_prefix(1);
    }
    json += '"';
}

void AppendJsonCell(std::string& json, const Value& value) {
    if (value.is_null()) {
        json += "null";
    } else if (const auto* text = value.get_if<std::u16string>()) {
        AppendJsonText(json, *text);
    } else if (value.is<bool>() || IsJsonNumber(value)) {
        json += PlainText(value);
    } else {
        json += '"';
        json += PlainText(value);  // dates, digits and Base64: nothing to escape
        json += '"';
    }
}

base::Result<Value> ValueOf(const Cell& cell, const jet::ColumnDesign& column) {
    auto value = TypedValue(cell, column);
    if (value.ok() || value.status().number() == 0) return value;
    return base::Status(value.status().code(),
                        base::ToUtf8(column.name) + ": " + value.status().message(),
                        value.status().number());
}

}  // namespace exchange
