#include "jet/values/coerce.h"

#include "jet/errors.h"
#include "jet/values/conversions.h"
#include "jet/values/decimal.h"
#include "jet/values/guid_text.h"
#include "jet/values/number_text.h"
#include "jet/values/system_clock.h"
#include "jet/values/value_number.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace jet {
namespace {

using base::Result;

base::Status Mismatch() {
    return JetError(ErrorNumber::kTypeMismatch);
}
base::Status NumericOverflow() {
    return JetError(ErrorNumber::kNumericOverflow);
}

Result<Value> ToBoolean(const Value& value) {
    if (const auto* text = value.get_if<std::u16string>())
        if (const auto word = TruthWord(*text)) return Value::Boolean(*word);
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    return Value::Boolean(*number != 0);
}

// Whole numbers round half to even.
template <typename Int>
Result<Int> ToWhole(const Value& value) {
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    const double rounded = std::nearbyint(*number);
    if (!(rounded >= static_cast<double>(std::numeric_limits<Int>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<Int>::max())))
        return NumericOverflow();
    return static_cast<Int>(rounded);
}

Result<Value> ToByte(const Value& value) {
    if (const auto* truth = value.get_if<bool>()) return Value::Byte(*truth ? 255 : 0);
    ASSIGN_OR_RETURN(const auto whole, ToWhole<std::uint8_t>(value));
    return Value::Byte(whole);
}

// The number as plain decimal text, exact where the value is.
Result<std::string> DecimalText(const Value& value) {
    if (const auto* text = value.get_if<std::u16string>()) {
        if (auto plain = PlainNumber(*text)) return std::move(*plain);
    } else if (value.is<Numeric>()) {
        return NumericText(value.as<Numeric>());
    } else if (value.is<Money>()) {
        return *PlainNumber(ToText(value));
    }
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    if (!std::isfinite(*number)) return NumericOverflow();
    char buffer[64];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, *number, std::chars_format::scientific, 14);
    return std::string(buffer, end.ptr);
}

Result<Value> ToMoney(const Value& value) {
    if (value.is<Money>()) return value;
    ASSIGN_OR_RETURN(const std::string text, DecimalText(value));
    constexpr std::uint8_t kDecimals = 4;
    const auto numeric = NumericFromText(text, 19, kDecimals);
    if (!numeric || numeric->magnitude[0] != 0 || numeric->magnitude[1] != 0)
        return NumericOverflow();
    const std::uint64_t units =
        (std::uint64_t{numeric->magnitude[2]} << 32) | numeric->magnitude[3];
    constexpr std::uint64_t kMaxUnits = std::numeric_limits<std::int64_t>::max();
    if (units > kMaxUnits + (numeric->negative ? 1 : 0)) return NumericOverflow();
    return Value::Currency({static_cast<std::int64_t>(numeric->negative ? ~units + 1 : units)});
}

Result<Value> ToSingle(const Value& value) {
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    if (std::fabs(*number) > static_cast<double>(std::numeric_limits<float>::max()))
        return NumericOverflow();
    return Value::Single(static_cast<float>(*number));
}

Result<Value> ToDouble(const Value& value) {
    const auto number = NumberOf(value);
    if (!number) return Mismatch();
    return Value::Double(*number);
}

Result<Value> ToDate(const Value& value) {
    std::optional<double> days;
    if (const auto* text = value.get_if<std::u16string>()) days = ParseDate(*text, CurrentYear());
    if (!days) days = NumberOf(value);
    if (!days) return Mismatch();
    if (!CivilFromDays(*days)) return NumericOverflow();
    return Value::DateTime(*days);
}

Result<Value> ToColumnText(const Value& value, const ColumnDesign& column) {
    std::u16string text = ToText(value);
    if (column.type == ColumnType::kMemo) return Value::Text(std::move(text));
    if (text.size() > column.size) return JetError(ErrorNumber::kFieldTooSmall);
    if (column.fixed_text) text.resize(column.size, u' ');
    return Value::Text(std::move(text));
}

Result<Value> ToBinary(const Value& value, const ColumnDesign& column) {
    Bytes bytes;
    if (const auto* given = value.get_if<Bytes>())
        bytes = *given;
    else if (const auto* guid = value.get_if<Guid>())
        bytes.assign(guid->bytes.begin(), guid->bytes.end());
    else if (const auto* text = value.get_if<std::u16string>()) {
        for (const char16_t c : *text) {
            bytes.push_back(static_cast<std::byte>(c & 0xFF));
            bytes.push_back(static_cast<std::byte>(c >> 8));
        }
    } else {
        return Mismatch();
    }
    if (column.type != ColumnType::kOle && bytes.size() > column.size)
        return JetError(ErrorNumber::kFieldTooSmall);
    return Value::Binary(std::move(bytes));
}

Result<Value> ToGuid(const Value& value) {
    if (value.is<Guid>()) return value;
    if (const auto* text = value.get_if<std::u16string>())
        if (const auto guid = ParseGuid(*text)) return Value::OfGuid(*guid);
    if (const auto* bytes = value.get_if<Bytes>(); bytes != nullptr && bytes->size() == 16) {
        Guid guid;
        std::copy(bytes->begin(), bytes->end(), guid.bytes.begin());
        return Value::OfGuid(guid);
    }
    return Mismatch();
}

Result<Value> ToNumeric(const Value& value, const ColumnDesign& column) {
    ASSIGN_OR_RETURN(const std::string text, DecimalText(value));
    const auto numeric = NumericFromText(text, column.precision, column.scale);
    if (!numeric) return NumericOverflow();
    return Value::Decimal(*numeric);
}

}  // namespace

Result<Value> Coerce(const Value& value, const ColumnDesign& column) {
    if (value.is_null())
        return column.type == ColumnType::kBoolean ? Value::Boolean(false) : Value::Null();
    switch (column.type) {
    case ColumnType::kBoolean:
        return ToBoolean(value);
    case ColumnType::kByte:
        return ToByte(value);
    case ColumnType::kShort: {
        ASSIGN_OR_RETURN(const auto whole, ToWhole<std::int16_t>(value));
        return Value::Short(whole);
    }
    case ColumnType::kLong: {
        ASSIGN_OR_RETURN(const auto whole, ToWhole<std::int32_t>(value));
        return Value::Long(whole);
    }
    case ColumnType::kMoney:
        return ToMoney(value);
    case ColumnType::kSingle:
        return ToSingle(value);
    case ColumnType::kDouble:
        return ToDouble(value);
    case ColumnType::kDate:
        return ToDate(value);
    case ColumnType::kText:
    case ColumnType::kMemo:
        return ToColumnText(value, column);
    case ColumnType::kBinary:
    case ColumnType::kFixedBinary:
    case ColumnType::kOle:
        return ToBinary(value, column);
    case ColumnType::kGuid:
        return ToGuid(value);
    case ColumnType::kNumeric:
        return ToNumeric(value, column);
    }
    return Mismatch();
}

}  // namespace jet
